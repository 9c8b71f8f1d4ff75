#pragma once

#include "common/extraction/record_reader.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>
#include <span>

// Settings of the browser as data. A setting is a place in a JSON document, the type its value must
// have, how the value becomes text, and a label. Label and text form an entry, "LABEL:+:TEXT",
// which is one row: what stands before and behind the separator.

/// What a value must be; a value of another type counts as missing.
enum class json_type {
    boolean,
    number,
    string,
    array,
    object,
    text, ///< anything that has a text: a string, a number, an object as JSON
};

/// The text that stands for a number.
struct number_text {
    int number;
    const char *text;
};

using number_texts = std::span<const number_text>;

/// How a value of the right type becomes text. Without a text the setting has no entry.
struct setting_rule {
    std::optional<QString> (*text_of)(const QJsonValue &value, number_texts texts);
    number_texts texts = {};
};

/// Keys from the top of the document down; unused ones are null.
struct json_path {
    const char *keys[4];
};

struct setting {
    json_path path;
    json_type type;
    setting_rule rule;
    const char *label;              ///< with its separator
    const char *default_entry = {}; ///< whole entry where the value is missing
};

// ---- Rules --------------------------------------------------------------------------------------

/// YES or NO.
std::optional<QString> flag_text(const QJsonValue &value, number_texts texts);
/// The text of the number, where it has one, otherwise its decimals.
std::optional<QString> number_or_its_text(const QJsonValue &value, number_texts texts);
/// The text of the number; empty where it has none.
std::optional<QString> text_of_number(const QJsonValue &value, number_texts texts);
/// The text of 1 (true) or 0 (false).
std::optional<QString> text_of_flag(const QJsonValue &value, number_texts texts);
std::optional<QString> plain_text(const QJsonValue &value, number_texts texts);
/// Without a text when the string is empty.
std::optional<QString> text_unless_empty(const QJsonValue &value, number_texts texts);
/// Microseconds since 1601-01-01 UTC as "dd-MMM-yyyy hh:mm:ss" UTC.
std::optional<QString> moment_text(const QJsonValue &value, number_texts texts);
/// The strings of an array, joined by ";".
std::optional<QString> joined_strings(const QJsonValue &value, number_texts texts);

namespace setting_rules
{

inline constexpr setting_rule yes_no = {flag_text};
inline constexpr setting_rule decimal = {number_or_its_text};
inline constexpr setting_rule as_it_stands = {plain_text};
inline constexpr setting_rule unless_empty = {text_unless_empty};
inline constexpr setting_rule utc_moment = {moment_text};
inline constexpr setting_rule joined = {joined_strings};

/// Numbers without a text of their own show their decimals.
constexpr setting_rule known_or_decimal(number_texts texts)
{
    return {number_or_its_text, texts};
}

/// Numbers without a text of their own show an empty text.
constexpr setting_rule known_only(number_texts texts)
{
    return {text_of_number, texts};
}

constexpr setting_rule by_flag(number_texts texts)
{
    return {text_of_flag, texts};
}

} // namespace setting_rules

// ---- Values -------------------------------------------------------------------------------------

/// A number without its fraction, in decimal.
QString whole_decimal(const QJsonValue &number);

/// The settings that an object holds, as one text: of each, label, text and ";", in the order of
/// the list. Paths count from the object.
QString joined_settings(const QJsonObject &object, std::span<const setting> settings);

// ---- Reading ------------------------------------------------------------------------------------

/// Writes a row for every setting that has an entry, in the order of the list. A default applies
/// only where the setting's topmost key holds an object. Ends early when the run is cancelled.
void write_settings(const QJsonObject &document, std::span<const setting> settings,
                    record_sink &sink);

/// Lets the function read the top object of a JSON file and writes its records. A file that does
/// not open or holds no object is logged with the text, followed by its path, and ends the
/// extractor without its end line.
void read_json_file(const record_reader &reader, const char *not_readable,
                    const QString &source_path, extraction_run &run,
                    const std::function<void(const QJsonObject &document, record_sink &)> &read);
