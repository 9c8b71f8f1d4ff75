// The members of plugin_static_function that read metadata values and dictionaries through the
// platform operations.

#include "common/debug_log.h"
#include "common/metadata/metadata_item.h"
#include "common/plugin_static_function.h"
#include "common/values/text_values.h"

using namespace Qt::StringLiterals;

namespace
{

const QString date_pattern = u"dd-MMM-yyyy,HH:mm:ss a"_s;

/// The value of a key; a missing one is logged as the operation's failure.
metadata_platform::reference value_of_key(void *dictionary, void *key, QLatin1StringView operation)
{
    metadata_platform &platform = metadata_platform::current();
    const auto value = dictionary != nullptr ? platform.dictionary_value(dictionary, key) : nullptr;
    if (value == nullptr)
        debug_log(u'[' + operation + u"]-----FAILED----- to get value: " +
                      (key != nullptr ? platform.text(key) : QString()),
                  u"static QString plugin_static_function::"_s + operation + u"(void*, void*)");
    return value;
}

QString bare_text(void *dictionary, void *key, QLatin1StringView operation)
{
    const auto value = value_of_key(dictionary, key, operation);
    return value != nullptr ? not_null(metadata_platform::current().text(value)) : empty_text();
}

QString labelled(const QString &label, const QString &value)
{
    return label + u":+:" + value;
}

} // namespace

struct_GLOBAL_ARTIFACT_used_dates
plugin_static_function::extract_used_date(const QString &file_path)
{
    return metadata_item(file_path).used_dates();
}

QString plugin_static_function::convert_cfstring_to_qstring(const __CFString *string)
{
    return string != nullptr ? not_null(metadata_platform::current().text(string)) : empty_text();
}

QString plugin_static_function::convert_nsdate_to_epoch(NSDate *date, NSObject *formatter)
{
    const QString printed =
        date != nullptr ? metadata_platform::current().formatted_date(date, formatter, date_pattern)
                        : QString();
    // The pattern's last mark, AM or PM, adds nothing to the 24-hour clock before it.
    const QDateTime instant =
        QLocale::c().toDateTime(printed.section(u' ', 0, 0) + u" UTC", u"dd-MMM-yyyy,HH:mm:ss t"_s);
    return instant.isValid() ? QString::number(instant.toSecsSinceEpoch()) : empty_text();
}

QString plugin_static_function::get_nsstring_values(void *dictionary, void *key)
{
    return bare_text(dictionary, key, "get_nsstring_values"_L1);
}

QString plugin_static_function::get_nsnumber_values(void *dictionary, void *key)
{
    return bare_text(dictionary, key, "get_nsnumber_values"_L1);
}

QString plugin_static_function::get_nsnumber_values_yes_no(void *dictionary, void *key)
{
    metadata_platform &platform = metadata_platform::current();
    const auto value = value_of_key(dictionary, key, "get_nsnumber_values_yes_no"_L1);
    if (value == nullptr)
        return empty_text();
    const QString text = not_null(platform.text(value));
    return platform.class_name(value) == "__NSCFBoolean"_L1 ? yes_or_no(text == "1"_L1) : text;
}

QString plugin_static_function::get_nsnumber_key_and_value_yes_no(void *dictionary, void *key,
                                                                  const QString &label)
{
    return labelled(label, get_nsnumber_values_yes_no(dictionary, key));
}

QString plugin_static_function::get_nsstring_key_and_values(void *dictionary, void *key,
                                                            const QString &label)
{
    return labelled(label, get_nsstring_values(dictionary, key));
}

QString plugin_static_function::get_nsnumber_key_and_values(void *dictionary, void *key,
                                                            const QString &label)
{
    return labelled(label, get_nsnumber_values(dictionary, key));
}

QString plugin_static_function::get_nsarray_key_and_values(void *dictionary, void *key,
                                                           const QString &label)
{
    metadata_platform &platform = metadata_platform::current();
    QStringList items;
    if (const auto array = value_of_key(dictionary, key, "get_nsstring_values"_L1)) {
        for (const auto item : platform.array_items(array))
            items.append(platform.text(item));
    }
    return labelled(label, items.join(u';'));
}
