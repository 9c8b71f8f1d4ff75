#pragma once

#include "report/event.h"

#include <functional>

class result_database;

/// Gives every event of the database's known tables to `take`, table by table, until that says no
/// or the run is interrupted. Times that no calendar holds are counted.
struct event_reading {
    qint64 impossible_times = 0;
    qint64 repeated = 0; ///< left out because the same row told of them otherwise
};
event_reading read_events(result_database &database, quint32 case_index,
                          const std::function<bool(const event &)> &take);

/// The name of the event, for `timestamp_desc`.
std::string_view description_of(const event &event);
/// Whether somebody used the browser then.
bool is_activity(const event &event);
