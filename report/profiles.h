#pragma once

#include <string_view>

/// The profile folder of a file that a row names: the folder that holds it, or the one above where
/// the browser keeps the file in a folder of the profile (extensions, sessions, sync data). Part of
/// `source_file`.
std::string_view profile_of(std::string_view source_file);
