#pragma once

#include <span>
#include <string_view>

/// File extensions by media type: lower case, with the leading dot, in ascending order of their
/// characters, no entry twice.
std::span<const std::string_view> known_image_extensions();
std::span<const std::string_view> known_audio_extensions();
std::span<const std::string_view> known_video_extensions();
