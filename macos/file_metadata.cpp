// What macOS keeps about a file beside its content: which attributes are asked for, and how their
// printed values become texts. The system's own operations stand behind metadata_platform.

#include "common/evidence/native_path.h"
#include "common/metadata/metadata_platform.h"
#include "common/metadata/printed_items.h"
#include "common/plugin_static_function.h"
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

/// The printed description of an item's attribute; null when it has none.
QString printed_attribute(metadata_platform::reference item, const QString &name)
{
    metadata_platform &platform = metadata_platform::current();
    const metadata_reference value(platform.copy_attribute(item, name));
    return value ? not_null(platform.description(value.get())) : QString();
}

/// The bare value of a printed description; the kind of value shows in its beginning.
QString bare_value(const QString &name, const QString &description)
{
    using filters = plugin_static_function;
    if (description.startsWith("<CFNumber "_L1))
        return filters::get_filtered_number_value(description);
    if (description.startsWith("<CFBoolean "_L1))
        return filters::get_filtered_boolean_value(description);
    if (description.startsWith("<CFString "_L1))
        return filters::get_filtered_cfstring_value(description);
    const QString text = description.trimmed();
    if (name == "kMDItemWhereFroms"_L1)
        return filters::get_filtered_wherefrom_value(text);
    return filters::get_filtered_string_value(text);
}

QString attribute_text(metadata_platform::reference item, const QString &name)
{
    QString text = bare_value(name, printed_attribute(item, name));
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
    QByteArray document;
    QStringList values;
    QXmlStreamWriter xml(&document);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(u"Extended_Attributes_XML_Header"_s);
    for (qsizetype i = 0; i < file_paths.size() && !state_.run.cancelled(); ++i) {
        const QString &path = file_paths.at(i);
        if (!status_of(path).exists)
            continue;
        const metadata_reference item(metadata_platform::current().create_item(path));
        if (!item)
            continue;
        xml.writeStartElement(u"Extended_Attributes_Artifact_Source_Header"_s);
        xml.writeTextElement(u"File_Path"_s, printable(path_inside_source(path, state_.run)));
        for (const QString &name : attributes.value(std::min(i, attributes.size() - 1))) {
            const QString description = printed_attribute(item.get(), name);
            if (description.isNull())
                continue;
            const QString value = bare_value(name, description);
            values.append(value);
            xml.writeTextElement(name, printable(value));
        }
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    return {not_null(values.join(value_separator)), QString::fromUtf8(document)};
}

struct_GLOBAL_ARTIFACT_cfstring_attributes
opera_macos::extract_cfstring_attributes(const QString &file_path) const
{
    struct_GLOBAL_ARTIFACT_cfstring_attributes attributes;
    std::tie(attributes.latitude, attributes.longitude) = extract_longi_lati_attributes(file_path);
    const metadata_reference item(metadata_platform::current().create_item(file_path));
    if (!item)
        return attributes;

    attributes.date_added = attribute_text(item.get(), u"kMDItemDateAdded"_s);
    attributes.kind = attribute_text(item.get(), u"kMDItemKind"_s);
    attributes.content_creation_date = attribute_text(item.get(), u"kMDItemContentCreationDate"_s);
    attributes.content_modification_date =
        attribute_text(item.get(), u"kMDItemContentModificationDate"_s);
    attributes.content_type = attribute_text(item.get(), u"kMDItemContentType"_s);
    attributes.content_change_date = attribute_text(item.get(), u"kMDItemFSContentChangeDate"_s);
    attributes.creation_date = attribute_text(item.get(), u"kMDItemFSCreationDate"_s);
    attributes.file_name = attribute_text(item.get(), u"kMDItemFSName"_s);
    attributes.node_count = attribute_text(item.get(), u"kMDItemFSNodeCount"_s);
    attributes.altitude = attribute_text(item.get(), u"kMDItemAltitude"_s);
    attributes.where_from_items =
        printed_addresses(printed_attribute(item.get(), u"kMDItemWhereFroms"_s));
    attributes.where_from_items.removeAll(QString());
    attributes.where_froms = not_null(attributes.where_from_items.join(u';'));
    return attributes;
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
    using common = plugin_static_function;
    const auto seconds = [](const QString &printed_date) {
        return common::get_filtered_date_value(printed_date);
    };
    const struct_GLOBAL_ARTIFACT_cfstring_attributes attributes = extract_cfstring_attributes(path);
    const struct_GLOBAL_ARTIFACT_used_dates used = common::extract_used_date(path);
    QStringList used_seconds;
    for (const QString &date : used.used_dates.split(u';', Qt::SkipEmptyParts))
        used_seconds.append(seconds(date));
    const struct_extended_attributes extended =
        get_extended_attributes({path}, {extended_attributes_});

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
    file.torrent_names = torrent_names_of(path);
    file.attribute_document = extended.xml_text;
    file.attribute_values = extended.search_text;
    return file;
}

QString opera_macos::torrent_names_of(const QString &path) const
{
    const metadata_reference item(metadata_platform::current().create_item(path));
    if (!item)
        return empty_text();
    QStringList names = printed_items(
        printed_attribute(item.get(), u"org_bittorrent_torrent_filenames"_s).trimmed());
    names.removeAll(QString());
    return not_null(names.join(value_separator));
}
