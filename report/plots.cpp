#include "report/plots.h"

#include "report/html.h"
#include "report/texts.h"

#include <algorithm>
#include <chrono>

namespace
{

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int width = 640;
constexpr size_t most_bars = 120;

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

std::string grouped(quint64 value)
{
    std::string text;
    html::append_number(text, static_cast<long long>(value));
    return text;
}

std::string text_at(double x, double y, std::string_view anchor, std::string_view text,
                    std::string_view style = "")
{
    std::string out = "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" text-anchor=\"";
    ((out += anchor) += '"') += style;
    out += '>';
    html::append_text(out, text);
    return out + "</text>";
}

std::string rectangle(double x, double y, double w, double h, std::string_view style,
                      std::string_view title)
{
    std::string out = "<rect x=\"" + number(x) + "\" y=\"" + number(y) + "\" width=\"" + number(w) +
                      "\" height=\"" + number(h) + "\" ";
    out += style;
    out += "><title>";
    html::append_text(out, title);
    return out + "</title></rect>";
}

std::string frame(std::string_view heading, std::string_view note, int height,
                  const std::string &drawing)
{
    std::string out = "<div class=\"plot\"><h3>";
    html::append_text(out, heading);
    out += "</h3><svg viewBox=\"0 0 " + std::to_string(width) + ' ' + std::to_string(height) +
           "\" role=\"img\" aria-label=\"";
    html::append_attribute(out, heading);
    out += "\">" + drawing + "</svg><small>";
    html::append_text(out, note);
    return out + "</small></div>";
}

struct bar {
    year_month_day from;
    quint64 count;
};

/// Days, weeks from Monday, months or years, so that the bars fit.
enum class bucket { day, week, month, year };

sys_days start_of(bucket size, sys_days day)
{
    const year_month_day date(day);
    switch (size) {
    case bucket::day:
        return day;
    case bucket::week:
        return day - (std::chrono::weekday(day) - std::chrono::Monday);
    case bucket::month:
        return date.year() / date.month() / 1;
    case bucket::year:
        break;
    }
    return date.year() / 1 / 1;
}

sys_days next_start(bucket size, sys_days start)
{
    constexpr int longest[] = {1, 7, 31, 366};
    return start_of(size, start + std::chrono::days(longest[static_cast<int>(size)]));
}

/// All bars from the first day that counts to the last; none when no day does.
std::vector<bar> bars_of(const std::vector<quint32> &days, bucket &size)
{
    const auto counts = [](quint32 count) { return count != 0; };
    const auto first = std::ranges::find_if(days, counts) - days.begin();
    const auto last = std::find_if(days.rbegin(), days.rend(), counts).base() - days.begin() - 1;
    if (last < 0)
        return {};
    const auto length = static_cast<size_t>(last - first + 1);
    size = length <= most_bars        ? bucket::day
           : length <= most_bars * 7  ? bucket::week
           : length <= most_bars * 30 ? bucket::month
                                      : bucket::year;
    const sys_days origin{std::chrono::days(activity::first_day)};
    std::vector<bar> bars;
    sys_days end{};
    for (auto i = first; i <= last; ++i) {
        const sys_days day = origin + std::chrono::days(i);
        if (bars.empty() || day >= end) {
            const sys_days start = start_of(size, day);
            bars.push_back({start, 0});
            end = next_start(size, start);
        }
        bars.back().count += days[static_cast<size_t>(i)];
    }
    return bars;
}

std::string date_text(year_month_day date, bucket size)
{
    char text[32];
    const int year{date.year()};
    const unsigned month{date.month()};
    if (size == bucket::year)
        std::snprintf(text, sizeof text, "%04d", year);
    else if (size == bucket::month)
        std::snprintf(text, sizeof text, "%04d-%02u", year, month);
    else
        std::snprintf(text, sizeof text, "%04d-%02u-%02u", year, month, unsigned{date.day()});
    return text;
}

std::string bars_plot(std::string_view heading, std::string_view what,
                      const std::vector<quint32> &days)
{
    constexpr double left = 52;
    constexpr double top = 12;
    constexpr double base = 150;
    bucket size = bucket::day;
    const std::vector<bar> bars = bars_of(days, size);
    if (bars.empty())
        return {};
    const quint64 most = std::ranges::max(bars, {}, &bar::count).count;
    const double step = (width - left - 4) / static_cast<double>(qMax(bars.size(), size_t{12}));
    std::string drawing = "<line class=\"grid\" x1=\"52\" y1=\"150.5\" x2=\"636\" y2=\"150.5\"/>" +
                          std::string("<line class=\"grid\" x1=\"52\" y1=\"12.5\" x2=\"636\" "
                                      "y2=\"12.5\"/>") +
                          text_at(left - 6, top + 5, "end", grouped(most)) +
                          text_at(left - 6, base + 4, "end", "0");
    const size_t labels = qMin(bars.size(), size_t{5});
    for (size_t i = 0; i < bars.size(); ++i) {
        const double x = left + step * static_cast<double>(i);
        const double height =
            (base - top) * static_cast<double>(bars[i].count) / static_cast<double>(most);
        const std::string date = date_text(bars[i].from, size);
        if (bars[i].count > 0)
            drawing +=
                rectangle(x + 0.5, base - qMax(height, 1.0), qMax(step - 1, 1.0), qMax(height, 1.0),
                          "class=\"value\"", date + ": " + grouped(bars[i].count));
        if (i % ((bars.size() + labels - 1) / labels) == 0)
            drawing += text_at(x, base + 18, "start", date);
    }
    constexpr std::string_view names[] = {"day", "week", "month", "year"};
    return frame(heading,
                 std::string(what) + " per " + std::string(names[static_cast<int>(size)]) +
                     (size == bucket::week ? ", by its Monday" : ""),
                 176, drawing);
}

std::string hours_plot(const activity &counted, const std::string &zone_name)
{
    constexpr std::string_view weekdays[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    constexpr double left = 40;
    constexpr double cell = 25;
    quint64 most = 0;
    for (const auto &day : counted.hours())
        most = qMax(most, std::ranges::max(day));
    if (most == 0)
        return {};
    std::string drawing;
    for (size_t hour = 0; hour < 24; hour += 3)
        drawing += text_at(left + cell * static_cast<double>(hour), 12, "start",
                           std::to_string(hour) + ":00");
    for (size_t day = 0; day < 7; ++day) {
        const double y = 18 + 20 * static_cast<double>(day);
        drawing += text_at(left - 6, y + 14, "end", weekdays[day]);
        for (size_t hour = 0; hour < 24; ++hour) {
            const quint64 count = counted.hours()[day][hour];
            const double share = static_cast<double>(count) / static_cast<double>(most);
            drawing += rectangle(
                left + cell * static_cast<double>(hour), y, cell - 1, 19,
                count == 0 ? "class=\"none\""
                           : "class=\"value\" fill-opacity=\"" + number(0.2 + 0.8 * share) + '"',
                std::string(weekdays[day]) + ' ' + std::to_string(hour) + ":00: " + grouped(count));
        }
    }
    return frame("Hour of the day by weekday",
                 "What somebody did, in " + zone_name + "; the darkest cell stands for " +
                     grouped(most),
                 162, drawing);
}

std::string sites_plot(const activity &counted)
{
    constexpr double left = 262;
    constexpr size_t longest_name = 30;
    const auto sites = counted.most_visited(12);
    if (sites.empty())
        return {};
    const auto most = static_cast<double>(sites.front().second);
    std::string drawing;
    for (size_t i = 0; i < sites.size(); ++i) {
        const auto &[site, count] = sites[i];
        const double y = 20 * static_cast<double>(i);
        const double length = (width - left - 80) * static_cast<double>(count) / most;
        std::string name;
        texts::append_visible(name, site);
        if (const std::string_view cut = texts::cut_to(name, longest_name);
            cut.size() < name.size())
            name = std::string(cut) + "…";
        drawing += text_at(left - 8, y + 14, "end", name, " class=\"name\"") +
                   rectangle(left, y + 2, qMax(length, 1.0), 15, "class=\"value\"", site) +
                   text_at(left + length + 6, y + 14, "start", grouped(count));
    }
    return frame("Most visited sites",
                 std::string("Visits by site") +
                     (counted.exact() ? "" : "; too many sites to count all: at least so many"),
                 static_cast<int>(20 * sites.size()) + 4, drawing);
}

} // namespace

std::string plots_of(const activity &counted, const std::string &zone_name)
{
    return bars_plot("Activity over time",
                     "What somebody did (visits, searches, downloads and more)", counted.days()) +
           hours_plot(counted, zone_name) + sites_plot(counted) +
           bars_plot("Downloads over time", "Downloads started", counted.download_days());
}
