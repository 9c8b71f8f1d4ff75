#include "common/metadata/metadata_platform.h"

namespace
{

metadata_platform *chosen_platform = nullptr;

} // namespace

metadata_platform &metadata_platform::current()
{
    return chosen_platform != nullptr ? *chosen_platform : system_metadata_platform();
}

void metadata_platform::set_current(metadata_platform *platform)
{
    chosen_platform = platform;
}
