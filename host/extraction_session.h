#pragma once

#include "host/summary.h"

class cancel_watch;
class opera;
struct host_options;

/// One run of the plug-in over the source of the options, in the documented calling order.
extraction_outcome run_extraction(opera &plugin, const host_options &options, cancel_watch &cancel);
