#include "common/extraction/value_rules.h"

#include "common/run_state.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"

using namespace Qt::StringLiterals;

found_rows source_row::look_up(int, const QVariant &,
                               const std::function<void(const QSqlQuery &)> &)
{
    return found_rows::none;
}

constinit const value_rule untagged = {
    .of_file = [](const extraction_run &, const source_file &) -> QVariant { return u"0"_s; },
    .is_text = true};
constinit const value_rule untagged_number = {
    .of_file = [](const extraction_run &, const source_file &) -> QVariant { return 0; }};
constinit const value_rule system_user = {
    .of_file = [](const extraction_run &, const source_file &file) -> QVariant {
        return file.system_user;
    },
    .is_text = true};
constinit const value_rule domain_user = {
    .of_file = [](const extraction_run &, const source_file &file) -> QVariant {
        return file.domain_user;
    },
    .is_text = true};
constinit const value_rule source_file_path = {
    .of_file = [](const extraction_run &, const source_file &file) -> QVariant {
        return file.stored_path;
    },
    .is_text = true};
constinit const value_rule relation_source_file = {
    .of_file = [](const extraction_run &, const source_file &file) -> QVariant {
        return file.relation_path;
    },
    .is_text = true};
constinit const value_rule os_scheme_display = {
    .of_file = [](const extraction_run &run, const source_file &) -> QVariant {
        return run.os_scheme_display;
    },
    .is_text = true};
constinit const value_rule source_count_name = {
    .of_file = [](const extraction_run &, const source_file &) -> QVariant {
        return numbered_source_name();
    },
    .is_text = true};
constinit const value_rule empty_value = {
    .of_file = [](const extraction_run &, const source_file &) -> QVariant { return empty_text(); },
    .is_text = true};

namespace
{

/// What a placeholder for the stored value receives: its text. A whole number may stay one, as a
/// typed result column makes the same value of its text. Bytes that are no text stay bytes: an
/// encrypted password would otherwise lose what no text can hold.
QVariant text_or_number(const QVariant &stored)
{
    const int type = stored.typeId();
    if (type == QMetaType::LongLong || type == QMetaType::QString)
        return stored;
    const QString text = stored.toString();
    if (type != QMetaType::QByteArray)
        return text;
    const QByteArray bytes = stored.toByteArray();
    return bytes.contains('\0') || !bytes.isValidUtf8() ? stored : not_null(text);
}

} // namespace

value_rule as_stored(int column)
{
    return {.of_row = [](source_row &row, int from) { return text_or_number(row.stored(from)); },
            .column = column};
}

value_rule trimmed(int column)
{
    return {.of_row = [](source_row &row, int from) -> QVariant {
                const QVariant stored = row.stored(from);
                if (whole_number(stored))
                    return stored;
                const QString text = stored.toString();
                const QString rest = text.trimmed();
                // A text of blanks alone is empty, but it is not NULL.
                return rest.isNull() && !text.isNull() ? empty_text() : rest;
            },
            .column = column};
}

value_rule unix_seconds(int column)
{
    return {.of_row = [](source_row &row, int from) -> QVariant {
                return microseconds_since_1601_to_unix_seconds(row.stored(from));
            },
            .column = column};
}

value_rule unix_seconds_keeping_zero(int column)
{
    return {.of_row = [](source_row &row, int from) -> QVariant {
                const QVariant stored = row.stored(from);
                if (const std::optional<qint64> number = whole_number(stored))
                    return *number == 0 ? QVariant(u"0"_s)
                                        : microseconds_since_1601_to_unix_seconds(stored);
                const QVariant text = text_or_number(stored);
                return text.toString().isEmpty() || text == u"0"_s
                           ? QVariant(text.toString())
                           : microseconds_since_1601_to_unix_seconds(text);
            },
            .column = column};
}

value_rule yes_when_one(int column)
{
    return {.of_row = [](source_row &row, int from) -> QVariant {
                const QVariant stored = row.stored(from);
                const std::optional<qint64> number = whole_number(stored);
                return yes_or_no(number ? *number == 1 : stored.toString() == "1"_L1);
            },
            .column = column,
            .is_text = true};
}

value_rule yes_when_trimmed_one(int column)
{
    return {.of_row = [](source_row &row, int from) -> QVariant {
                const QVariant stored = row.stored(from);
                const std::optional<qint64> number = whole_number(stored);
                return yes_or_no(number ? *number == 1 : stored.toString().trimmed() == "1"_L1);
            },
            .column = column,
            .is_text = true};
}

value_rule percent_decoded(int column)
{
    return {.of_row = [](source_row &row, int from) -> QVariant {
                return decode_percent(row.text(from));
            },
            .column = column};
}

value_rule derived(int index)
{
    return {.of_row = [](source_row &row, int from) -> QVariant { return row.derived.value(from); },
            .column = index};
}

value_rule from_row(QVariant (*function)(source_row &, int), int column)
{
    return {.of_row = function, .column = column};
}

value_rule text_of(value_rule rule)
{
    rule.is_text = true;
    return rule;
}
