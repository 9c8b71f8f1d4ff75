#include "report/instants.h"

#include <QDateTime>

#include <array>
#include <charconv>
#include <chrono>

namespace instants
{

namespace
{

constexpr qint64 second = 1'000'000;
constexpr qint64 earliest = -62'135'596'800 * second;
constexpr qint64 latest = 253'402'300'800 * second - 1;
constexpr qint64 seconds_from_1601 = 11'644'473'600;

void append_digits(std::string &out, qint64 number, size_t width)
{
    std::array<char, 8> digits{};
    for (size_t i = width; i-- > 0; number /= 10)
        digits[i] = static_cast<char>('0' + number % 10);
    out.append(digits.data(), width);
}

void append_date_and_time(std::string &out, qint64 instant, char between, bool always_fraction)
{
    using namespace std::chrono;
    const sys_time<microseconds> time{microseconds(instant)};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const qint64 of_day = (time - day).count();
    append_digits(out, int{date.year()}, 4);
    out += '-';
    append_digits(out, unsigned{date.month()}, 2);
    out += '-';
    append_digits(out, unsigned{date.day()}, 2);
    out += between;
    append_digits(out, of_day / (3600 * second), 2);
    out += ':';
    append_digits(out, of_day / (60 * second) % 60, 2);
    out += ':';
    append_digits(out, of_day / second % 60, 2);
    if (always_fraction || of_day % second != 0) {
        out += '.';
        append_digits(out, of_day % second, 6);
    }
}

void append_offset(std::string &out, qint64 offset)
{
    const qint64 minutes = qAbs(offset) / (60 * second);
    out += offset < 0 ? '-' : '+';
    append_digits(out, minutes / 60, 2);
    out += ':';
    append_digits(out, minutes % 60, 2);
}

std::optional<qint64> in_range(qint64 number, qint64 unit, qint64 shift = 0)
{
    if (number > latest / unit + shift || number < earliest / unit + shift)
        return std::nullopt;
    return (number - shift) * unit;
}

/// Seconds until the year 5138, milliseconds until 33658, microseconds since 1970 until 2338.
std::optional<qint64> by_magnitude(qint64 number)
{
    const qint64 size = number < 0 ? -(number + 1) : number;
    if (size < 100'000'000'000)
        return in_range(number, second);
    if (size < 1'000'000'000'000'000)
        return in_range(number, 1000);
    constexpr qint64 start_of_1970 = seconds_from_1601 * second;
    return number < start_of_1970 ? in_range(number, 1) : in_range(number, 1, start_of_1970);
}

template <typename number_type> bool read_digits(std::string_view text, number_type &number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

} // namespace

std::optional<qint64> of(qint64 stored, stored_form form)
{
    if (stored == 0)
        return std::nullopt;
    if (form == stored_form::as_the_browser_had_it)
        return by_magnitude(stored);
    return in_range(stored, second);
}

std::optional<qint64> of(std::string_view stored, stored_form form)
{
    qint64 number = 0;
    if (stored.empty() || !read_digits(stored, number))
        return std::nullopt;
    return of(number, form);
}

std::optional<qint64> of_visit(std::string_view text)
{
    constexpr std::string_view months = "JanFebMarAprMayJunJulAugSepOctNovDec";
    if (text.size() != 20 || text[2] != '-' || text[6] != '-' || text[11] != ' ' ||
        text[14] != ':' || text[17] != ':')
        return std::nullopt;
    const size_t month = months.find(text.substr(3, 3));
    unsigned day = 0;
    int year = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (month == std::string_view::npos || month % 3 != 0 || !read_digits(text.substr(0, 2), day) ||
        !read_digits(text.substr(7, 4), year) || !read_digits(text.substr(12, 2), hours) ||
        !read_digits(text.substr(15, 2), minutes) || !read_digits(text.substr(18, 2), seconds))
        return std::nullopt;
    using namespace std::chrono;
    const year_month_day date{std::chrono::year(year),
                              std::chrono::month(static_cast<unsigned>(month) / 3 + 1),
                              std::chrono::day(day)};
    if (!date.ok() || year < 1 || hours < 0 || hours > 23 || minutes < 0 || minutes > 59 ||
        seconds < 0 || seconds > 59)
        return std::nullopt;
    const qint64 days = sys_days(date).time_since_epoch().count();
    return (days * 86400 + hours * 3600 + minutes * 60 + seconds) * second;
}

void append_iso(std::string &out, qint64 instant)
{
    append_date_and_time(out, instant, 'T', true);
    out += "+00:00";
}

void append_readable(std::string &out, qint64 instant)
{
    append_date_and_time(out, instant, ' ', false);
}

zone::zone(const QByteArray &name)
    : zone_(name), name_(name.toStdString()), utc_(name == "UTC" || !zone_.isValid())
{
}

qint64 zone::offset(qint64 instant) const
{
    if (utc_)
        return 0;
    constexpr qint64 quarter = 900 * second; // no zone changes its offset between two of them
    const qint64 block = instant / quarter - (instant % quarter < 0 ? 1 : 0);
    if (!known_ || block != block_) {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(block * 900, Qt::UTC);
        offset_ = qint64{zone_.offsetFromUtc(time)} * second;
        block_ = block;
        known_ = true;
    }
    return offset_;
}

void zone::append_iso(std::string &out, qint64 instant) const
{
    const qint64 shift = offset(instant);
    append_date_and_time(out, qBound(earliest, instant + shift, latest), 'T', true);
    append_offset(out, shift);
}

void zone::append_readable(std::string &out, qint64 instant) const
{
    const qint64 shift = offset(instant);
    append_date_and_time(out, qBound(earliest, instant + shift, latest), ' ', false);
    out += ' ';
    append_offset(out, shift);
}

} // namespace instants
