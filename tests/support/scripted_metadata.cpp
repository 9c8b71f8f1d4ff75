#include "tests/support/scripted_metadata.h"

using namespace Qt::StringLiterals;

namespace
{

const QString &text_of(metadata_platform::reference value)
{
    return *static_cast<const QString *>(value);
}

const scripted_metadata::object &object_of(metadata_platform::reference value)
{
    return *static_cast<const scripted_metadata::object *>(value);
}

} // namespace

scripted_metadata::scripted_metadata()
{
    set_current(this);
}

scripted_metadata::~scripted_metadata()
{
    set_current(nullptr);
    for (const reference value : std::as_const(live_))
        delete static_cast<const QString *>(value);
}

metadata_platform::reference scripted_metadata::hand_out(const QString &text)
{
    ++handed_out_;
    return *live_.insert(new QString(text));
}

metadata_platform::reference scripted_metadata::create_item(const QString &path)
{
    return files.contains(path) ? hand_out(path) : nullptr;
}

metadata_platform::reference scripted_metadata::copy_attribute(reference item, const QString &name)
{
    const file &of = files[text_of(item)];
    return of.attributes.contains(name) ? hand_out(of.attributes.value(name)) : nullptr;
}

QString scripted_metadata::description(reference value)
{
    return text_of(value);
}

void scripted_metadata::release(reference value)
{
    if (!live_.remove(value))
        qFatal("scripted_metadata: released what is not handed out");
    delete static_cast<const QString *>(value);
}

metadata_platform::position scripted_metadata::picture_position(const QString &path)
{
    return files.value(path).place;
}

QString scripted_metadata::formatted_date(reference date, reference /*formatter*/,
                                          const QString &pattern)
{
    return pattern == "dd-MMM-yyyy,HH:mm:ss a"_L1 ? object_of(date).text : QString();
}

metadata_platform::reference scripted_metadata::dictionary_value(reference dictionary,
                                                                 reference key)
{
    return object_of(dictionary).members.value(key);
}

QString scripted_metadata::text(reference value)
{
    return object_of(value).text;
}

QString scripted_metadata::class_name(reference value)
{
    return object_of(value).class_name;
}

QList<metadata_platform::reference> scripted_metadata::array_items(reference array)
{
    return object_of(array).items;
}

QString scripted_string(const QString &text)
{
    return u"<CFString 0x7f80 [0x7fff]>{contents = \""_s + text + u"\"}";
}

QString scripted_number(const QString &number)
{
    return u"<CFNumber 0x7f80 [0x7fff]>{value = +"_s + number + u", type = kCFNumberSInt64Type}";
}

scripted_metadata::file every_attribute()
{
    return {{{u"kMDItemKind"_s, scripted_string(u"Ada\u2019s archive"_s)},
             {u"kMDItemContentCreationDate"_s, u"1970-01-01 00:00:01 +0000"_s},
             {u"kMDItemContentModificationDate"_s, u"1970-01-01 00:00:02 +0000"_s},
             {u"kMDItemContentType"_s, scripted_string(u"public.zip"_s)},
             {u"kMDItemFSContentChangeDate"_s, u"1970-01-01 00:00:03 +0000"_s},
             {u"kMDItemFSCreationDate"_s, u"1970-01-01 01:00:04 +0100"_s},
             {u"kMDItemFSName"_s, scripted_string(u"a b.tar.GZ"_s)},
             {u"kMDItemFSNodeCount"_s, scripted_number(u"5"_s)},
             {u"kMDItemWhereFroms"_s,
              u"(\n    \"https://a.example/;x\",\n    \"https://b.example/\"\n)"_s},
             {u"kMDItemAltitude"_s, scripted_number(u"6"_s)},
             {u"org_bittorrent_torrent_filenames"_s, u"(\n    one,\n    two\n)"_s},
             {u"kMDItemUsedDates"_s,
              u"(\n    \"1970-01-01 00:00:07 +0000\",\n    \"1970-01-01 00:00:08 +0000\"\n)"_s},
             {u"kMDItemLastUsedDate"_s, u"1970-01-01 00:00:09 +0000"_s}},
            {u"33.87"_s, u"S"_s, u"70.66"_s, u"W"_s}};
}
