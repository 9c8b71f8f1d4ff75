#pragma once

#include "macos/setting_walk.h"

#include <span>

/// The settings that are read from "Preferences", in the order of their rows.
std::span<const setting> preference_settings();
