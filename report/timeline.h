#pragma once

#include "report/event.h"
#include "report/result_folder.h"

#include <functional>
#include <vector>

/// All events of all results, in order of time.
struct timeline_counts {
    qint64 events = 0;
    qint64 repeated = 0; ///< left out because another row told of the same
    qint64 impossible_times = 0;
    bool complete = false; ///< false where temporary files failed or the run was interrupted
    bool refused = false;  ///< `take` wanted no more
};

/// Opens the results one after another and gives their events to `take` in order of time. What two
/// readers told stands once: of the events of one instant and identity, those of the reader for
/// older files stand as far as they are more than the current reader's, and derived ones (a page's
/// last visit) once, where no other stands.
timeline_counts read_timeline(const std::vector<result_folder> &results,
                              const std::function<bool(const event &)> &take);
