// Binary property lists of extended attributes.

#include "common/metadata/property_list.h"
#include "common/plugin_static_function.h"
#include "fuzz/fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString description = property_list_description(fuzz_bytes(data, size));
    plugin_static_function::get_filtered_wherefrom_value(description);
    plugin_static_function::get_filtered_date_value(description);
    return 0;
}
