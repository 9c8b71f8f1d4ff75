#include "report/activity.h"

#include "report/catalogue.h"
#include "report/event_reader.h"
#include "report/profiles.h"
#include "report/texts.h"

#include <algorithm>

namespace
{

constexpr size_t most_sites = 100'000;
constexpr size_t most_profiles = 10'000;
constexpr size_t longest_shown = 4000;
constexpr qint64 hour = 3'600'000'000;
constexpr qint64 day = 24 * hour;

qint64 floor_divide(qint64 number, qint64 by)
{
    return number / by - (number % by < 0 ? 1 : 0);
}

} // namespace

activity::activity(const instants::zone &zone, size_t most_latest)
    : zone_(zone), most_latest_(most_latest), days_(day_count), download_days_(day_count)
{
}

void activity::add(const event &event)
{
    if (!is_activity(event))
        return;
    const qint64 local = event.where.at + zone_.offset(event.where.at);
    const qint64 day_number = floor_divide(local, day);
    const qint64 place = day_number - first_day;
    const std::string_view table = catalogue::tables()[event.where.table].name;
    if (place >= 0 && place < static_cast<qint64>(day_count)) {
        ++days_[static_cast<size_t>(place)];
        const auto weekday = static_cast<size_t>((day_number + 3) % 7); // 1970 began on a Thursday
        ++hours_[weekday][static_cast<size_t>(floor_divide(local, hour) - day_number * 24)];
        if (table == "downloads" && event.time == 0)
            ++download_days_[static_cast<size_t>(place)];
    }
    if (table == "history") {
        ++visits_;
        count_site(event.texts[event::url]);
    }
    widen_span(event);
    keep(event);
}

void activity::count_site(std::string_view url)
{
    std::string site = texts::site_of(url);
    if (site.empty())
        return;
    ++sites_[std::move(site)];
    if (sites_.size() <= most_sites)
        return;
    // Rare ones make room; those that matter come again.
    exact_ = false;
    std::vector<quint64> counts;
    for (const auto &[name, count] : sites_)
        counts.push_back(count);
    const auto middle = counts.begin() + static_cast<std::ptrdiff_t>(counts.size() / 2);
    std::ranges::nth_element(counts, middle);
    std::erase_if(sites_, [least = *middle](const auto &one) { return one.second <= least; });
}

void activity::widen_span(const event &event)
{
    profile_key key{event.where.case_index,
                    std::string(texts::cut_to(event.texts[event::account], 1000)),
                    std::string(texts::cut_to(profile_of(event.texts[event::source_file]), 4000))};
    if (spans_.size() >= most_profiles && !spans_.contains(key))
        return;
    const auto [place, is_new] = spans_.try_emplace(key, span{event.where.at, event.where.at});
    place->second.last = event.where.at; // they come in order of time
}

void activity::keep(const event &event)
{
    if (latest_.size() < most_latest_) {
        latest_.emplace_back();
    } else { // its memory serves again
        latest_.push_back(std::move(latest_.front()));
        latest_.pop_front();
    }
    kept_event &kept = latest_.back();
    kept.told = event;
    for (size_t i = 0; i < kept.texts.size(); ++i)
        kept.texts[i] = texts::cut_to(event.texts[i], longest_shown);
    kept.told.texts = {};
}

std::vector<std::pair<std::string, quint64>> activity::most_visited(size_t most) const
{
    std::vector<std::pair<std::string, quint64>> sites(sites_.begin(), sites_.end());
    std::ranges::sort(sites, [](const auto &one, const auto &other) {
        return one.second != other.second ? one.second > other.second : one.first < other.first;
    });
    sites.resize(qMin(sites.size(), most));
    return sites;
}
