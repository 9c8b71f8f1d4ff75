#include "report/timeline.h"

#include "report/event_reader.h"
#include "report/event_sorter.h"
#include "report/result_database.h"
#include "report/terminal.h"

#include <unordered_map>

using namespace Qt::StringLiterals;

namespace
{

/// Tells which events of one instant repeat others. They come with those that stand by themselves
/// first.
class repetition_filter
{
public:
    bool repeats(const event &event)
    {
        if (event.where.at != at_) {
            at_ = event.where.at;
            seen_.clear();
        }
        // An instant with a million events is no browser's; their repetitions stand.
        if (seen_.size() >= most_at_once && !seen_.contains(event.identity))
            return false;
        counts &seen = seen_[event.identity];
        switch (event.where.worth) {
        case event::rank::own:
            ++seen.own;
            return false;
        case event::rank::older_reader:
            return ++seen.older <= seen.own;
        case event::rank::derived:
            break;
        }
        return seen.own + seen.older + seen.derived++ > 0;
    }

private:
    static constexpr size_t most_at_once = 1'000'000;

    struct counts {
        quint32 own = 0;
        quint32 older = 0;
        quint32 derived = 0;
    };
    struct first_half {
        size_t operator()(const std::array<quint64, 2> &identity) const { return identity[0]; }
    };

    qint64 at_ = 0;
    std::unordered_map<std::array<quint64, 2>, counts, first_half> seen_;
};

} // namespace

timeline_counts read_timeline(const std::vector<result_folder> &results,
                              const std::function<bool(const event &)> &take)
{
    timeline_counts counts;
    event_sorter sorter;
    bool kept = true;
    for (size_t i = 0; i < results.size() && kept && !terminal::interrupted(); ++i) {
        result_database database(results[i]);
        if (!database.is_open())
            continue;
        const event_reading reading =
            read_events(database, static_cast<quint32>(i), [&](const event &event) {
                if (sorter.count() % 4096 == 0)
                    terminal::show_progress(u"collecting events"_s, sorter.count());
                return kept = sorter.add(event) && !terminal::interrupted();
            });
        counts.impossible_times += reading.impossible_times;
        counts.repeated += reading.repeated;
    }

    repetition_filter filter;
    bool taken = true;
    const bool sorted = kept && sorter.for_each([&](const event &event) {
        if (filter.repeats(event)) {
            ++counts.repeated;
            return true;
        }
        if (++counts.events % 4096 == 0)
            terminal::show_progress(u"writing events"_s, counts.events);
        taken = take(event);
        return taken && !terminal::interrupted();
    });
    counts.refused = !taken;
    counts.complete = sorted && taken && !terminal::interrupted();
    return counts;
}
