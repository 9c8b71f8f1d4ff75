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
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        const bool escape = encoded.at(i) == '%' && i + 2 < encoded.size() &&
                            digit(encoded.at(i + 1)) >= 0 && digit(encoded.at(i + 2)) >= 0;
        if (escape) {
            decoded.append(
                static_cast<char>(digit(encoded.at(i + 1)) * 16 + digit(encoded.at(i + 2))));
            i += 2;
        } else {
            decoded.append(encoded.at(i));
        }
    }
    return QString::fromUtf8(decoded);
}
