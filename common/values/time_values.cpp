#include "common/values/time_values.h"

#include "common/values/text_values.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 seconds_from_1601_to_1970 = 11'644'473'600;
constexpr qint64 seconds_from_1970_to_2001 = 978'307'200;

bool is_empty_or_zero(QStringView text)
{
    return text.isEmpty() || text == u"0";
}

QStringView before_point(QStringView text)
{
    const qsizetype point = text.indexOf(u'.');
    return point < 0 ? text : text.first(point);
}

/// Fills the field with the number, right-aligned, with leading zeros.
void put_digits(std::span<char16_t> field, qint64 number)
{
    for (auto digit = field.rbegin(); digit != field.rend(); ++digit, number /= 10)
        *digit = static_cast<char16_t>(u'0' + number % 10);
}

QString two_digits(int number)
{
    const QString digits = QString::number(number);
    return digits.size() < 2 ? u'0' + digits : digits;
}

std::optional<qint64> parsed_seconds(const QString &text, const QString &format)
{
    const QDateTime instant = QLocale::c().toDateTime(text, format);
    if (!instant.isValid())
        return std::nullopt;
    return instant.toMSecsSinceEpoch() / 1000;
}

/// For a text that names no zone and means UTC. The zone is added before parsing: as local time, an
/// hour that the local clocks skip would not be readable.
std::optional<qint64> unix_seconds_of_utc(const QString &text, const QString &format)
{
    return parsed_seconds(text + u" UTC", format + u" t");
}

/// The human-readable forms give 0, not an empty text, for a date that cannot be read.
QString text_or_zero(std::optional<qint64> seconds)
{
    return QString::number(seconds.value_or(0));
}

QString text_or_empty(std::optional<qint64> seconds)
{
    return seconds ? QString::number(*seconds) : empty_text();
}

} // namespace

QString microseconds_since_1601_to_unix_seconds(const QString &microseconds)
{
    if (is_empty_or_zero(microseconds))
        return empty_text();
    if (microseconds.size() == 10)
        return microseconds;

    const auto time = static_cast<qint64>(microseconds.toULongLong());
    return QString::number(time / 1'000'000 - seconds_from_1601_to_1970);
}

QVariant microseconds_since_1601_to_unix_seconds(const QVariant &microseconds)
{
    const std::optional<qint64> time = whole_number(microseconds);
    if (!time || *time <= 0) // the text of a negative number is read in a way of its own
        return microseconds_since_1601_to_unix_seconds(microseconds.toString());
    const bool has_ten_digits = *time >= 1'000'000'000 && *time <= 9'999'999'999;
    return has_ten_digits ? *time : *time / 1'000'000 - seconds_from_1601_to_1970;
}

QString unix_seconds_to_utc_text(const QString &unix_seconds)
{
    return unix_seconds_to_utc_text(
        qint64{before_point(QStringView(unix_seconds).trimmed()).toInt()});
}

QString unix_seconds_to_utc_text(qint64 unix_time)
{
    using namespace std::chrono;

    if (unix_time == 0 || unix_time != static_cast<int>(unix_time))
        return empty_text();

    // Runs for every visit of a history; calendar arithmetic costs a fraction of a QDateTime.
    const sys_seconds instant{seconds(unix_time)};
    const sys_days midnight = floor<days>(instant);
    const year_month_day date(midnight);
    const hh_mm_ss time(instant - midnight);
    constexpr std::u16string_view months = u"JanFebMarAprMayJunJulAugSepOctNovDec";

    char16_t text[] = u"dd-MMM-yyyy hh:mm:ss";
    const std::span field(text);
    put_digits(field.subspan(0, 2), static_cast<unsigned>(date.day()));
    months.copy(&text[3], 3, std::size_t{3} * (static_cast<unsigned>(date.month()) - 1));
    put_digits(field.subspan(7, 4), static_cast<int>(date.year()));
    put_digits(field.subspan(12, 2), time.hours().count());
    put_digits(field.subspan(15, 2), time.minutes().count());
    put_digits(field.subspan(18, 2), time.seconds().count());
    return QString::fromUtf16(text, std::size(text) - 1);
}

QString english_date_to_unix_seconds(const QString &text)
{
    const QString format = u"MMM d, yyyy, h:mm:ss AP"_s;
    const QString padded = text.trimmed() + u' '; // so that the zone may be missing
    if (is_empty_or_zero(padded.chopped(1)))
        return empty_text();

    const qsizetype mark = std::max(padded.indexOf(u" AM "), padded.indexOf(u" PM "));
    if (mark < 0)
        return text_or_zero(std::nullopt);
    const QString date_time = padded.first(mark + 3);
    const QString zone = padded.sliced(mark + 3).trimmed();
    return text_or_zero(zone == u"UTC" ? unix_seconds_of_utc(date_time, format)
                                       : parsed_seconds(date_time, format));
}

QString sql_date_to_unix_seconds(const QString &text)
{
    QString date_time = text.trimmed();
    if (const qsizetype point = date_time.indexOf(u'.'); point >= 0) {
        qsizetype end = point + 1;
        while (end < date_time.size() && date_time[end].isDigit())
            ++end;
        date_time.remove(point, end - point); // what follows the fraction is the offset
    }
    if (is_empty_or_zero(date_time))
        return empty_text();

    const bool ahead_of_utc = date_time.contains(u'+');
    // A minus sign counts behind the hour only: the date is written with such signs.
    const qsizetype sign =
        ahead_of_utc ? date_time.indexOf(u'+') : date_time.indexOf(u'-', date_time.indexOf(u':'));
    qint64 offset = 0;
    if (sign >= 0) {
        offset = static_cast<qint64>(hhmm_to_seconds(date_time.sliced(sign + 1).remove(u':')));
        date_time = date_time.first(sign).trimmed();
    }

    std::optional<qint64> seconds = unix_seconds_of_utc(date_time, u"yyyy-MM-dd hh:mm:ss"_s);
    if (seconds)
        *seconds += ahead_of_utc ? -offset : offset;
    return text_or_zero(seconds);
}

QString http_date_to_unix_seconds(const QString &text)
{
    QString date_time = text.trimmed();
    if (is_empty_or_zero(date_time))
        return empty_text();

    date_time.remove(0, date_time.indexOf(u',') + 1);
    if (const qsizetype zone = date_time.lastIndexOf(u' '); zone >= 0)
        date_time.truncate(zone);
    return text_or_zero(unix_seconds_of_utc(date_time.trimmed(), u"dd MMM yyyy hh:mm:ss"_s));
}

quint64 hhmm_to_seconds(const QString &zone)
{
    const qint64 hours = QStringView(zone).left(2).toInt();
    const qint64 minutes = QStringView(zone).mid(2).toInt();
    return static_cast<quint64>((hours * 60 + minutes) * 60);
}

QString seconds_to_duration_text(const QString &seconds)
{
    const QStringView trimmed = QStringView(seconds).trimmed();
    if (trimmed.isEmpty())
        return empty_text();
    return seconds_to_duration_text(before_point(trimmed).toInt());
}

QString seconds_to_duration_text(int duration)
{
    if (duration < 0)
        return empty_text();
    // Runs for every visit of a history.
    const int hours = duration / 3600;
    char16_t text[] = u"mm:ss";
    const std::span field(text);
    put_digits(field.subspan(0, 2), duration % 3600 / 60);
    put_digits(field.subspan(3, 2), duration % 60);
    const QStringView below_hour(text, field.size() - 1);
    if (hours == 0)
        return below_hour + u" Min"_s;
    return two_digits(hours) + u':' + below_hour + u" Hrs"_s;
}

QString seconds_since_2001_to_unix_seconds(const QString &apple_time)
{
    const QStringView trimmed = QStringView(apple_time).trimmed();
    if (is_empty_or_zero(trimmed))
        return empty_text();
    return QString::number(before_point(trimmed).toInt() + seconds_from_1970_to_2001);
}

QString iso_date_to_unix_seconds(const QString &text)
{
    QString date_time = text.trimmed().replace(u'T', u' ');
    if (date_time.endsWith(u'Z'))
        date_time.chop(1);
    date_time = before_point(date_time).trimmed().toString();

    for (const QString &format : {u"yyyyMMdd hhmmss"_s, u"yyyyMMdd"_s, u"yyyy-MM-dd hh:mm:ss"_s}) {
        if (const std::optional<qint64> seconds = unix_seconds_of_utc(date_time, format))
            return QString::number(*seconds);
    }
    return empty_text();
}

QString utc_date_to_unix_seconds(const QString &text, const QString &format)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return empty_text();
    return text_or_empty(unix_seconds_of_utc(trimmed, format));
}
