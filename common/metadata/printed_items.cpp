// Turns the printed descriptions of metadata values into the bare values. The forms are
//   <CFNumber 0x7f80 [0x7fff]>{value = +5, type = kCFNumberSInt64Type}
//   <CFBoolean 0x7f80 [0x7fff]>{value = true}
//   <CFString 0x7f80 [0x7fff]>{contents = "report.pdf"}
//   2021-03-05 14:07:09 +0000
//   (
//       "https://a.example/x",
//       plain
//   )
// An item of a list stands in quotes unless it is a plain word; inside the quotes a backslash
// escapes quotes and backslashes, and "\U2019" is the character of that code.

#include "common/metadata/printed_items.h"

#include "common/debug_log.h"
#include "common/values/text_values.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace
{

/// What follows "NAME =" between the braces, which may be anything: a file name can hold every mark
/// of the printed form, so only the first marks and the last brace are taken for such. Null without
/// these marks.
QStringView braced_value(QStringView description)
{
    constexpr QStringView start_of_members = u"]>{";
    const qsizetype members = description.indexOf(start_of_members);
    if (members < 0)
        return {};
    const qsizetype equals = description.indexOf(u'=', members + start_of_members.size());
    if (equals < 0)
        return {};

    QStringView value = description.sliced(equals + 1).trimmed();
    if (value.endsWith(u'}'))
        value = value.chopped(1).trimmed();
    return value;
}

/// Undoes the escapes of a list item. Double quotes are dropped, escaped ones too.
QString unescaped(QStringView item)
{
    QString text = empty_text();
    while (!item.isEmpty()) {
        qsizetype used = 1;
        if (const std::optional<QChar> code_unit = leading_unicode_escape(item)) {
            text += *code_unit;
            used = unicode_escape_size;
        } else if (item.startsWith(u"\\\\")) {
            text += u'\\';
            used = 2;
        } else if (item.startsWith(u"\\\"")) {
            used = 2;
        } else if (item.front() != u'"') {
            text += item.front();
        }
        item = item.sliced(used);
    }
    return text;
}

bool is_list(QStringView description)
{
    return description.startsWith(u'(') && description.endsWith(u')');
}

} // namespace

// Brackets and commas are marks of the list outside of quotes only; inside they belong to the item,
// as in an address that ends in "Mercury_(planet)".
QStringList printed_items(QStringView description)
{
    if (!is_list(description))
        return {unescaped(description)};

    QStringList items;
    QString item;
    const auto finish_item = [&items, &item] {
        const QString text = unescaped(QStringView(item).trimmed());
        if (!text.isEmpty())
            items.append(text);
        item.clear();
    };

    bool quoted = false;
    for (qsizetype i = 0; i < description.size(); ++i) {
        const QChar c = description[i];
        if (c == u'"') {
            quoted = !quoted;
        } else if (quoted && c == u'\\' && i + 1 < description.size()) {
            item += c;
            item += description[++i];
        } else if (!quoted && c == u',') {
            finish_item();
        } else if (quoted || (c != u'(' && c != u')')) {
            item += c;
        }
    }
    finish_item();
    return items;
}

QStringList printed_addresses(QStringView description)
{
    QStringList addresses = printed_items(description.trimmed());
    for (QString &address : addresses) {
        // Angle brackets come from mail senders, "Jane <jane@a.example>"; no address holds them.
        address.remove(u'<').remove(u'>');
        address.replace(u"\u2019s"_s, u"'s"_s);
    }
    return addresses;
}

QString bare_number(const QString &description)
{
    QStringView value = QStringView(description).trimmed();
    if (const qsizetype equals = value.indexOf(u'='); equals >= 0) {
        value = value.sliced(equals + 1);
        if (const qsizetype comma = value.indexOf(u','); comma >= 0)
            value = value.first(comma);
    }
    QString number = empty_text() + value;
    number.remove(u',').remove(u'+').remove(u'}');
    return number.trimmed();
}

QString bare_boolean(const QString &description)
{
    return empty_text() + braced_value(description);
}

QString bare_string(const QString &description)
{
    return bare_boolean(description).remove(u'"');
}

QString joined_addresses(const QString &description)
{
    return not_null(printed_addresses(description).join(u';'));
}

QString joined_items(const QString &description)
{
    const QStringView text = QStringView(description).trimmed();
    if (!is_list(text))
        return empty_text() + text;
    return empty_text() + printed_items(text).join(u';');
}

QString printed_date_to_unix_seconds(const QString &description)
{
    if (description.trimmed().isEmpty())
        return empty_text();
    const QDateTime date = iso_text_to_date_time(description);
    if (!date.isValid())
        return empty_text();
    return QString::number(date.toMSecsSinceEpoch() / 1000);
}

QDateTime iso_text_to_date_time(const QString &text)
{
    const QString signature = u"static QDateTime plugin_static_function::"
                              "get_datetime_from_string_with_iso_date(QString)"_s;
    debug_log(u"Start " + text, signature);

    static const QRegularExpression iso_form(QRegularExpression::anchoredPattern(
        u"(\\d{4}-\\d\\d-\\d\\d)"
        "(?:[T ](\\d\\d:\\d\\d(?::\\d\\d)?)(?:[.,]\\d+)?)?"
        " ?(?:Z|UTC|GMT|([+-])([01]\\d|2[0-3]):?([0-5]\\d))?"_s));
    QDateTime date_time;
    if (const QRegularExpressionMatch parts = iso_form.match(text.trimmed()); parts.hasMatch()) {
        const QDate date = QDate::fromString(parts.captured(1), Qt::ISODate);
        const QTime time =
            parts.hasCaptured(2) ? QTime::fromString(parts.captured(2), Qt::ISODate) : QTime(0, 0);
        const int offset = (parts.captured(4).toInt() * 60 + parts.captured(5).toInt()) * 60;
        if (date.isValid() && time.isValid())
            date_time = QDateTime(date, time, Qt::UTC)
                            .addSecs(parts.captured(3) == u"-" ? offset : -offset);
    }

    debug_log(u"End " + text, signature);
    return date_time;
}
