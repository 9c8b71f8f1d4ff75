#include "common/values/json_values.h"

#include "common/values/text_values.h"

#include <QJsonDocument>

namespace
{

/// Each comment replaced by a blank. Strings may hold the marks of comments.
QByteArray without_comments(const QByteArray &text)
{
    QByteArray bare;
    bare.reserve(text.size());
    bool in_string = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        const char next = i + 1 < text.size() ? text.at(i + 1) : '\0';
        if (in_string && c == '\\' && next != '\0') {
            bare.append(c).append(next);
            ++i;
        } else if (!in_string && c == '/' && (next == '/' || next == '*')) {
            const bool to_end_of_line = next == '/';
            const qsizetype end =
                to_end_of_line ? text.indexOf('\n', i) : text.indexOf("*/", i + 2);
            bare.append(' ');
            if (end < 0)
                break;
            i = to_end_of_line ? end : end + 1;
        } else {
            in_string ^= c == '"';
            bare.append(c);
        }
    }
    return bare;
}

} // namespace

QJsonObject relaxed_json_object(const QByteArray &text)
{
    static constexpr char byte_order_mark[] = "\xEF\xBB\xBF";
    const QByteArray json = text.startsWith(byte_order_mark) ? text.mid(3) : text;
    const QJsonDocument strict = QJsonDocument::fromJson(json);
    if (strict.isObject())
        return strict.object();
    return QJsonDocument::fromJson(without_comments(json)).object();
}

qint64 parsed_json_bytes(const QByteArray &text)
{
    // As Qt's parser allocates, rounded up: lists grow by doubling.
    constexpr qint64 of_container = 192;
    constexpr qint64 of_value = 32;
    constexpr qint64 of_character = 2;
    qint64 bytes = of_character * text.size();
    bool in_string = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (c == '"')
            in_string = !in_string;
        else if (in_string)
            i += c == '\\' ? 1 : 0;
        else if (c == '[' || c == '{')
            bytes += of_container;
        else if (c == ',' || c == ':')
            bytes += of_value;
    }
    return bytes;
}

QString json_text(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toVariant().toString();
    return not_null(value.toString());
}

QString json_flag(const QJsonValue &value)
{
    return yes_or_no(value.toBool());
}
