// What macOS keeps about a file beside its content: which attributes are asked for, and how their
// printed values become texts. The system's own operations stand behind metadata_platform.

#include "common/evidence/native_path.h"
#include "common/metadata/metadata_item.h"
#include "common/metadata/printed_items.h"
#include "common/values/text_values.h"
#include "macos/opera_macos.h"

#include <QXmlStreamWriter>

using namespace Qt::StringLiterals;

namespace
{

const QString value_separator = u";++::++;"_s;

const QStringList attribute_names = {
    u"kMDItemDateAdded"_s,
    u"kMDItemKind"_s,
    u"kMDItemContentCreationDate"_s,
    u"kMDItemContentModificationDate"_s,
    u"kMDItemContentType"_s,
    u"kMDItemFSContentChangeDate"_s,
    u"kMDItemFSCreationDate"_s,
    u"kMDItemFSName"_s,
    u"kMDItemFSNodeCount"_s,
    u"kMDItemWhereFroms"_s,
    u"kMDItemLatitude"_s,
    u"kMDItemLongitude"_s,
    u"kMDItemAltitude"_s,
    u"org_bittorrent_torrent_filenames"_s,
    u"kMDItemUsedDates"_s,
    u"kMDItemLastUsedDate"_s,
};

/// The bare value of a printed description; the kind of value shows in its beginning.
QString bare_value(const QString &name, const QString &description)
{
    if (description.startsWith("<CFNumber "_L1))
        return bare_number(description);
    if (description.startsWith("<CFBoolean "_L1))
        return bare_boolean(description);
    if (description.startsWith("<CFString "_L1))
        return bare_string(description);
    const QString text = description.trimmed();
    if (name == "kMDItemWhereFroms"_L1)
        return joined_addresses(text);
    return joined_items(text);
}

QString attribute_text(const metadata_item &item, const QString &name)
{
    QString text = bare_value(name, item.printed(name));
    return not_null(text.replace(u"\u2019s"_s, u"'s"_s));
}

/// XML cannot hold most control characters, not even escaped.
QString printable(const QString &text)
{
    QString whole = QString::fromUtf8(text.toUtf8()); // halves of surrogate pairs are replaced
    whole.removeIf([](QChar c) {
        return (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') || c.unicode() >= 0xfffe;
    });
    return whole;
}

struct_GLOBAL_ARTIFACT_cfstring_attributes
attributes_of(const metadata_item &item, const std::pair<QString, QString> &latitude_and_longitude)
{
    struct_GLOBAL_ARTIFACT_cfstring_attributes attributes;
    std::tie(attributes.latitude, attributes.longitude) = latitude_and_longitude;
    attributes.date_added = attribute_text(item, u"kMDItemDateAdded"_s);
    attributes.kind = attribute_text(item, u"kMDItemKind"_s);
    attributes.content_creation_date = attribute_text(item, u"kMDItemContentCreationDate"_s);
    attributes.content_modification_date =
        attribute_text(item, u"kMDItemContentModificationDate"_s);
    attributes.content_type = attribute_text(item, u"kMDItemContentType"_s);
    attributes.content_change_date = attribute_text(item, u"kMDItemFSContentChangeDate"_s);
    attributes.creation_date = attribute_text(item, u"kMDItemFSCreationDate"_s);
    attributes.file_name = attribute_text(item, u"kMDItemFSName"_s);
    attributes.node_count = attribute_text(item, u"kMDItemFSNodeCount"_s);
    attributes.altitude = attribute_text(item, u"kMDItemAltitude"_s);
    attributes.where_from_items = printed_addresses(item.printed(u"kMDItemWhereFroms"_s));
    attributes.where_from_items.removeAll(QString());
    attributes.where_froms = not_null(attributes.where_from_items.join(u';'));
    return attributes;
}

QString torrent_names_of(const metadata_item &item)
{
    QStringList names =
        printed_items(item.printed(u"org_bittorrent_torrent_filenames"_s).trimmed());
    names.removeAll(QString());
    return not_null(names.join(value_separator));
}

/// The two extended-attribute columns of a row.
class attribute_document
{
public:
    attribute_document()
    {
        xml_.setAutoFormatting(true);
        xml_.writeStartDocument();
        xml_.writeStartElement(u"Extended_Attributes_XML_Header"_s);
    }

    void add_file(const QString &path_in_source, const metadata_item &item,
                  const QStringList &names)
    {
        if (!item)
            return;
        xml_.writeStartElement(u"Extended_Attributes_Artifact_Source_Header"_s);
        xml_.writeTextElement(u"File_Path"_s, printable(path_in_source));
        for (const QString &name : names) {
            const QString description = item.printed(name);
            if (description.isNull())
                continue;
            const QString value = bare_value(name, description);
            values_.append(value);
            xml_.writeTextElement(name, printable(value));
        }
        xml_.writeEndElement();
    }

    struct_extended_attributes finished()
    {
        xml_.writeEndDocument();
        return {not_null(values_.join(value_separator)), QString::fromUtf8(document_)};
    }

private:
    QByteArray document_;
    QStringList values_;
    QXmlStreamWriter xml_{&document_};
};

} // namespace

QStringList opera_macos::filter_extended_attribute_list() const
{
    if (selected_attributes_.isEmpty())
        return attribute_names;
    QStringList names;
    for (const QString &name : attribute_names) {
        if (selected_attributes_.contains(name))
            names.append(name);
    }
    return names;
}

struct_extended_attributes
opera_macos::get_extended_attributes(const QList<QString> &file_paths,
                                     const QList<QList<QString>> &attributes) const
{
    attribute_document document;
    for (qsizetype i = 0; i < file_paths.size() && !state_.run.cancelled(); ++i) {
        const QString &path = file_paths.at(i);
        if (status_of(path).exists)
            document.add_file(path_inside_source(path, state_.run), metadata_item(path),
                              attributes.value(std::min(i, attributes.size() - 1)));
    }
    return document.finished();
}

struct_GLOBAL_ARTIFACT_cfstring_attributes
opera_macos::extract_cfstring_attributes(const QString &file_path) const
{
    return attributes_of(metadata_item(file_path), extract_longi_lati_attributes(file_path));
}

std::pair<QString, QString>
opera_macos::extract_longi_lati_attributes(const QString &file_path) const
{
    const metadata_platform::position position =
        metadata_platform::current().picture_position(file_path);
    const auto with_sign = [](const QString &degrees, bool negative) {
        return not_null(negative && !degrees.isEmpty() ? u'-' + degrees : degrees);
    };
    return {with_sign(position.latitude, position.latitude_reference == "S"_L1),
            with_sign(position.longitude, position.longitude_reference == "W"_L1)};
}

file_description opera_macos::describe_file(const QString &path) const
{
    const auto seconds = printed_date_to_unix_seconds;
    const metadata_item item(path);
    const struct_GLOBAL_ARTIFACT_cfstring_attributes attributes =
        attributes_of(item, extract_longi_lati_attributes(path));
    const struct_GLOBAL_ARTIFACT_used_dates used = item.used_dates();
    QStringList used_seconds;
    for (const QString &date : used.used_dates.split(u';', Qt::SkipEmptyParts))
        used_seconds.append(seconds(date));
    attribute_document document;
    if (!state_.run.cancelled() && status_of(path).exists)
        document.add_file(path_inside_source(path, state_.run), item, extended_attributes_);
    const struct_extended_attributes extended = document.finished();

    file_description file;
    const QDateTime birth = status_of(path).birth;
    file.birth_time = birth.isValid() ? QString::number(birth.toSecsSinceEpoch()) : empty_text();
    file.kind = attributes.kind;
    file.content_creation_date = seconds(attributes.content_creation_date);
    file.content_modification_date = seconds(attributes.content_modification_date);
    file.content_type = attributes.content_type;
    file.fs_content_change_date = seconds(attributes.content_change_date);
    file.fs_creation_date = seconds(attributes.creation_date);
    file.fs_name = attributes.file_name;
    file.fs_node_count = attributes.node_count;
    file.where_froms = not_null(attributes.where_from_items.join(value_separator));
    file.latitude = attributes.latitude;
    file.longitude = attributes.longitude;
    file.altitude = attributes.altitude;
    file.last_used_date = seconds(used.last_used_date);
    file.all_used_dates = not_null(used_seconds.join(value_separator));
    file.first_used_date = used_seconds.isEmpty() ? empty_text() : used_seconds.first();
    file.final_used_date = used_seconds.isEmpty() ? empty_text() : used_seconds.last();
    file.torrent_names = torrent_names_of(item);
    file.attribute_document = extended.xml_text;
    file.attribute_values = extended.search_text;
    return file;
}
