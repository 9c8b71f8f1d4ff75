#include "common/metadata/printed_values.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace
{

/// The form of values that are no dates and no lists. Here they have no address and no allocator's.
QString printed_value(QStringView kind, const QString &members)
{
    return u'<' + kind + u" 0x0 [0x0]>{" + members + u'}';
}

QString signed_text(const QString &number)
{
    return number.startsWith(u'-') ? number : u'+' + number;
}

QString indentation(int depth)
{
    return QString(depth * 4, u' ');
}

bool is_plain_word(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
        return c < u'\x80' && c.isLetterOrNumber();
    });
}

} // namespace

QString printed_string(const QString &text)
{
    return printed_value(u"CFString", u"contents = \""_s + text + u'"');
}

QString printed_number(qint64 number)
{
    return printed_value(u"CFNumber", u"value = "_s + signed_text(QString::number(number)) +
                                          u", type = kCFNumberSInt64Type"_s);
}

QString printed_number(double number)
{
    if (!std::isfinite(number))
        return {};
    const QString digits = QString::number(number, 'f', QLocale::FloatingPointShortest);
    return printed_value(u"CFNumber",
                         u"value = "_s + signed_text(digits) + u", type = kCFNumberFloat64Type"_s);
}

QString printed_boolean(bool value)
{
    return printed_value(u"CFBoolean", value ? u"value = true"_s : u"value = false"_s);
}

QString printed_date(const QDateTime &date)
{
    const QDateTime instant = date.toUTC();
    const int year = instant.date().year();
    if (!instant.isValid() || year < 1 || year > 9999)
        return {};
    return instant.toString(u"yyyy-MM-dd hh:mm:ss +0000"_s);
}

QString printed_bytes(const QByteArray &bytes)
{
    return u'<' + QString::fromLatin1(bytes.toHex()) + u'>';
}

QString printed_item(const QString &text)
{
    if (is_plain_word(text))
        return text;
    QString item = u"\""_s;
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\')
            item += u'\\';
        if (c < u' ' || c > u'~')
            item += u"\\U" + QString::number(c.unicode(), 16).rightJustified(4, u'0');
        else
            item += c;
    }
    return item + u'"';
}

QString printed_list(const QStringList &items, int depth)
{
    QStringList lines;
    for (const QString &item : items)
        lines.append(indentation(depth + 1) + item);
    return u"(\n" + lines.join(u",\n"_s) + (items.isEmpty() ? u""_s : u"\n"_s) +
           indentation(depth) + u')';
}

QString printed_dictionary(const QStringList &keys, const QStringList &values, int depth)
{
    QString text = u"{\n"_s;
    for (qsizetype i = 0; i < std::min(keys.size(), values.size()); ++i)
        text += indentation(depth + 1) + printed_item(keys.at(i)) + u" = " + values.at(i) + u";\n";
    return text + indentation(depth) + u'}';
}
