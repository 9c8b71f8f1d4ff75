#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <algorithm>
#include <cctype>
#include <optional>

/// The empty text of a value. It is not null: a null text would be bound as SQL NULL.
inline QString empty_text()
{
    return QString::fromUtf16(u"", 0);
}

/// The text, or the empty text in place of a null one.
inline QString not_null(const QString &text)
{
    return text.isNull() ? empty_text() : text;
}

/// Stands at the end of a text of which the rest was left out.
inline constexpr QStringView cut_mark = u"\u2026[cut]";

/// Length of a "\uXXXX" escape.
constexpr qsizetype unicode_escape_size = 6;

/// The UTF-16 code unit of the "\uXXXX" or "\UXXXX" escape that the text begins with, if it does.
/// An escaped zero counts as no escape: viewers would show nothing of the text behind it.
inline std::optional<QChar> leading_unicode_escape(QStringView text)
{
    if (text.size() < unicode_escape_size || text[0] != u'\\' || text[1].toLower() != u'u')
        return std::nullopt;

    // Checked one by one, as number parsing would also take signs, blanks and "0x".
    const QStringView digits = text.sliced(2, unicode_escape_size - 2);
    const auto is_digit = [](QChar digit) {
        return digit.unicode() < 0x80 && std::isxdigit(digit.unicode()) != 0;
    };
    const ushort code_unit = digits.toUShort(nullptr, 16);
    if (!std::ranges::all_of(digits, is_digit) || code_unit == 0)
        return std::nullopt;
    return QChar(code_unit);
}

/// Every "%" and two hexadecimal digits replaced by the byte they name, read as UTF-8. A "%" that
/// no two hexadecimal digits follow stays.
QString decode_percent(const QString &text);
QString decode_percent(const QByteArray &encoded);

/// Replaces "\uXXXX" and "\UXXXX" escapes by their characters. Other escapes stay as they are,
/// among them those of character 0 and of the backslash.
QString decode_unicode_escapes(const QString &text);

/// "n B", "n.nn KB" or "n.nn MB"; never larger units. Empty for an empty text.
QString bytes_to_size_text(const QString &bytes);

/// "YES" or "NO".
QString yes_or_no(bool yes);
