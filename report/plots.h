#pragma once

#include "report/activity.h"

#include <string>

/// Drawings of a page, as SVG with a heading: what was done by day, by hour of the weekday, on
/// which sites, and the downloads. Empty where there is nothing to draw.
std::string plots_of(const activity &counted, const std::string &zone_name);
