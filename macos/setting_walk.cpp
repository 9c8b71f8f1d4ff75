#include "macos/setting_walk.h"

#include "common/evidence/evidence_file.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"

#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace
{

constexpr QLatin1StringView entry_separator = ":+:"_L1;

bool has_type(const QJsonValue &value, json_type type)
{
    switch (type) {
    case json_type::boolean:
        return value.isBool();
    case json_type::number:
        return value.isDouble();
    case json_type::string:
        return value.isString();
    case json_type::array:
        return value.isArray();
    case json_type::object:
        return value.isObject();
    case json_type::text:
        return value.isString() || value.isDouble() || value.isObject();
    }
    return false;
}

QString setting_text(const QJsonValue &value)
{
    if (value.isDouble())
        return whole_decimal(value);
    if (value.isObject())
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    return value.toString();
}

QString known_text(const QString &number, number_texts texts)
{
    const auto known = std::ranges::find_if(
        texts, [&](const number_text &one) { return QString::number(one.number) == number; });
    return known == texts.end() ? QString() : QString::fromUtf8(known->text);
}

QJsonValue value_at(const QJsonObject &object, const json_path &path)
{
    QJsonValue value = object;
    for (const char *key : path.keys) {
        if (key != nullptr)
            value = value.toObject().value(QLatin1StringView(key));
    }
    return value;
}

/// The text of a setting; none where its value is missing.
std::optional<QString> text_at(const QJsonObject &object, const setting &one)
{
    const QJsonValue value = value_at(object, one.path);
    return has_type(value, one.type) ? one.rule.text_of(value, one.rule.texts) : std::nullopt;
}

std::optional<QString> entry_of(const QJsonObject &document, const setting &one)
{
    if (const std::optional<QString> text = text_at(document, one))
        return QString::fromUtf8(one.label) + text->trimmed();
    const bool applies = one.default_entry != nullptr &&
                         document.value(QLatin1StringView(one.path.keys[0])).isObject();
    return applies ? std::optional(QString::fromUtf8(one.default_entry)) : std::nullopt;
}

/// A further separator, which may stand in the value, ends the value.
bool write_entry(const QString &entry, record_sink &sink)
{
    const qsizetype end_of_key = entry.indexOf(entry_separator);
    if (end_of_key < 0)
        return true;
    const QString rest = entry.mid(end_of_key + entry_separator.size());
    return sink.write(
        {entry.first(end_of_key), not_null(rest.left(rest.indexOf(entry_separator)))});
}

} // namespace

std::optional<QString> flag_text(const QJsonValue &value, number_texts /*texts*/)
{
    return yes_or_no(value.toBool());
}

std::optional<QString> number_or_its_text(const QJsonValue &value, number_texts texts)
{
    const QString number = whole_decimal(value);
    const QString known = known_text(number, texts);
    return known.isNull() ? number : known;
}

std::optional<QString> text_of_number(const QJsonValue &value, number_texts texts)
{
    return known_text(whole_decimal(value), texts);
}

std::optional<QString> text_of_flag(const QJsonValue &value, number_texts texts)
{
    return known_text(value.toBool() ? u"1"_s : u"0"_s, texts);
}

std::optional<QString> plain_text(const QJsonValue &value, number_texts /*texts*/)
{
    return setting_text(value);
}

std::optional<QString> text_unless_empty(const QJsonValue &value, number_texts /*texts*/)
{
    const QString text = setting_text(value);
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

std::optional<QString> moment_text(const QJsonValue &value, number_texts /*texts*/)
{
    return unix_seconds_to_utc_text(microseconds_since_1601_to_unix_seconds(setting_text(value)));
}

std::optional<QString> joined_strings(const QJsonValue &value, number_texts /*texts*/)
{
    const QJsonArray items = value.toArray();
    QStringList strings;
    for (const auto &item : items) {
        if (item.isString())
            strings.append(item.toString());
    }
    return strings.join(u';');
}

QString whole_decimal(const QJsonValue &number)
{
    // Whole numbers are kept as such: a double does not hold all times in microseconds.
    const QVariant stored = number.toVariant();
    if (stored.typeId() == QMetaType::LongLong)
        return QString::number(stored.toLongLong());
    const double whole = std::trunc(number.toDouble());
    return whole == 0 ? u"0"_s : QString::number(whole, 'f', 0); // no "-0"
}

QString joined_settings(const QJsonObject &object, std::span<const setting> settings)
{
    QString text;
    for (const setting &one : settings) {
        if (const std::optional<QString> value = text_at(object, one))
            text += QString::fromUtf8(one.label) + *value + u';';
    }
    return text;
}

void write_settings(const QJsonObject &document, std::span<const setting> settings,
                    record_sink &sink)
{
    for (const setting &one : settings) {
        const std::optional<QString> entry = entry_of(document, one);
        if (entry && !write_entry(*entry, sink))
            return;
    }
}

void read_json_file(const record_reader &reader, const char *not_readable,
                    const QString &source_path, extraction_run &run,
                    const std::function<void(const QJsonObject &document, record_sink &)> &read)
{
    const QStringList files = source_path.isEmpty() ? QStringList() : QStringList(source_path);
    read_records(reader, files, run, [&](record_sink &sink) {
        evidence_file file(sink.file().path);
        QByteArray text;
        const QJsonDocument document =
            file.read_json(text) ? QJsonDocument::fromJson(text) : QJsonDocument();
        if (!document.isObject()) {
            if (file.isOpen())
                sink.damaged(u"no JSON object"_s);
            else
                sink.unreadable(file.errorString());
            log_failure({with_path(not_readable)}, QString::fromUtf8(reader.signature),
                        {.path = sink.file().path});
            return reading_end::at_once;
        }
        read(document.object(), sink);
        return reading_end::next_file;
    });
}
