#pragma once

#include "report/event.h"
#include "report/instants.h"
#include "report/survey.h"

#include <array>
#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

/// An event that outlives the list it came from, its texts cut for showing.
struct kept_event {
    event told;
    std::array<std::string, event::text_count> texts;
};

/// What a page shows of the events of a timeline: counts by day, hour and site, and the latest
/// ones. Its memory does not grow with their number.
class activity
{
public:
    /// Days of the plots are counted from here: 1990-01-01; later ones than 2100 count nowhere.
    static constexpr qint64 first_day = 7305;
    static constexpr size_t day_count = 40'542;

    struct span {
        qint64 first;
        qint64 last;
    };

    activity(const instants::zone &zone, size_t most_latest);

    void add(const event &event);

    const std::vector<quint32> &days() const { return days_; }
    const std::vector<quint32> &download_days() const { return download_days_; }
    /// By weekday from Monday, and hour, in the zone.
    const std::array<std::array<quint64, 24>, 7> &hours() const { return hours_; }
    /// Sites by visits, most first. Counts may be too low where exact() is false.
    std::vector<std::pair<std::string, quint64>> most_visited(size_t most) const;
    bool exact() const { return exact_; }
    const std::deque<kept_event> &latest() const { return latest_; }
    /// Of what somebody did; nothing for a profile without.
    const std::map<profile_key, span> &spans() const { return spans_; }
    qint64 visits() const { return visits_; }

private:
    void count_site(std::string_view url);
    void keep(const event &event);
    void widen_span(const event &event);

    const instants::zone &zone_;
    size_t most_latest_;
    std::vector<quint32> days_;
    std::vector<quint32> download_days_;
    std::array<std::array<quint64, 24>, 7> hours_{};
    std::unordered_map<std::string, quint64> sites_;
    std::deque<kept_event> latest_;
    std::map<profile_key, span> spans_;
    qint64 visits_ = 0;
    bool exact_ = true;
};
