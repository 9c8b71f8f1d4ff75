#include "report/profiles.h"

#include <algorithm>

std::string_view profile_of(std::string_view source_file)
{
    constexpr std::string_view inner_folders[] = {"Extensions", "Sessions", "Sync Data", "Network"};
    size_t inner = std::string_view::npos; // the last of these folders
    size_t begin = 0;                      // of a part of the path
    for (size_t end = source_file.find('/'); end != std::string_view::npos;
         begin = end + 1, end = source_file.find('/', begin)) {
        const std::string_view part = source_file.substr(begin, end - begin);
        if (begin > 0 && std::ranges::find(inner_folders, part) != std::end(inner_folders))
            inner = begin - 1;
    }
    if (inner != std::string_view::npos)
        return source_file.substr(0, inner);
    return begin == 0 ? std::string_view() : source_file.substr(0, begin - 1);
}
