#include "report/profiles.h"

std::string_view profile_of(std::string_view source_file)
{
    constexpr std::string_view inner_folders[] = {"/Extensions/", "/Sessions/", "/Sync Data/",
                                                  "/Network/"};
    for (const std::string_view folder : inner_folders) {
        if (const size_t place = source_file.rfind(folder); place != std::string_view::npos)
            source_file = source_file.substr(0, place + 1);
    }
    const size_t end = source_file.rfind('/');
    return end == std::string_view::npos ? std::string_view() : source_file.substr(0, end);
}
