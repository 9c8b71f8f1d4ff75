#include "common/values/text_values.h"

using namespace Qt::StringLiterals;

QString yes_or_no(bool yes)
{
    return yes ? u"YES"_s : u"NO"_s;
}

QString decode_percent(const QString &text)
{
    return text.contains(u'%') ? decode_percent(text.toUtf8()) : text;
}

QString decode_percent(const QByteArray &encoded)
{
    // Unlike the library's decoder this leaves a "%" alone that no two hexadecimal digits follow.
    const auto digit = [](char c) {
        if (c >= '0' && c <= '9')
            return c - '0';
        const char lower = static_cast<char>(c | 0x20);
        return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
    };
    QByteArray decoded;
    decoded.reserve(encoded.size());
    qsizetype from = 0; // of what is not taken over yet
    for (qsizetype at = encoded.indexOf('%'); at >= 0 && at + 2 < encoded.size();
         at = encoded.indexOf('%', at)) {
        const int high = digit(encoded.at(at + 1));
        const int low = digit(encoded.at(at + 2));
        if (high < 0 || low < 0) {
            ++at;
            continue;
        }
        decoded.append(encoded.constData() + from, at - from);
        decoded.append(static_cast<char>(high * 16 + low));
        at += 3;
        from = at;
    }
    decoded.append(encoded.constData() + from, encoded.size() - from);
    return QString::fromUtf8(decoded);
}

QString decode_unicode_escapes(const QString &text)
{
    QString decoded = empty_text();
    decoded.reserve(text.size());
    for (QStringView rest = text; !rest.isEmpty();) {
        qsizetype used = 1;
        if (const std::optional<QChar> code_unit = leading_unicode_escape(rest)) {
            decoded += *code_unit;
            used = unicode_escape_size;
        } else {
            // An escaped backslash begins no escape.
            used = rest.startsWith(u"\\\\") ? 2 : 1;
            decoded += rest.first(used);
        }
        rest = rest.sliced(used);
    }
    return decoded;
}

QString bytes_to_size_text(const QString &bytes)
{
    const QString trimmed = bytes.trimmed();
    if (trimmed.isEmpty())
        return empty_text();

    constexpr quint64 kilobyte = 1024;
    constexpr quint64 megabyte = 1024 * kilobyte;
    const quint64 size = trimmed.toULongLong();
    if (size < kilobyte)
        return QString::number(size) + u" B";
    const auto in_units_of = [size](quint64 unit) {
        return QString::number(static_cast<double>(size) / static_cast<double>(unit), 'f', 2);
    };
    if (size < megabyte)
        return in_units_of(kilobyte) + u" KB";
    // No larger unit: sizes from a megabyte up are meant to stay comparable at sight.
    return in_units_of(megabyte) + u" MB";
}
