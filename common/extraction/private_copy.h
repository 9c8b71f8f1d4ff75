#pragma once

#include <QString>

class extraction_run;

/// The path of a private copy of a database and its companions, made by the run's helper; empty
/// when the run is cancelled. Copies stay while there is room; where it does not suffice, those
/// whose readers are done are removed and it is tried again. What then still does not fit is
/// reported and counted as a loss.
QString private_copy(const QString &source, extraction_run &run);
