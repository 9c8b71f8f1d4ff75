// Printed descriptions of metadata values.

#include "common/metadata/printed_items.h"
#include "common/plugin_static_function.h"
#include "fuzz/fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using common = plugin_static_function;
    const QString text = QString::fromUtf8(fuzz_bytes(data, size));
    common::get_filtered_number_value(text);
    common::get_filtered_boolean_value(text);
    common::get_filtered_cfstring_value(text);
    common::get_filtered_wherefrom_value(text);
    common::get_filtered_string_value(text);
    common::get_filtered_date_value(text);
    printed_items(text);
    printed_addresses(text);
    return 0;
}
