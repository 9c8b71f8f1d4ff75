// Texts that stand for times, durations, sizes, paths and escaped characters.

#include "common/plugin_static_function.h"
#include "common/values/text_values.h"
#include "fuzz/fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using common = plugin_static_function;
    const QString text = QString::fromUtf8(fuzz_bytes(data, size));
    for (const auto conversion :
         {common::convert_google_time_to_epoch, common::convert_timestamp_to_human_readable_in_UTC,
          common::convert_human_readable_to_epoch_1, common::convert_human_readable_to_epoch_2,
          common::convert_human_readable_to_epoch_3, common::get_human_readable_time,
          common::convert_apple_time_to_epoch, common::convert_T_Z_time_to_epoch,
          common::human_readable_size, common::get_source_os_scan_version,
          common::convert_string_to_unicode, common::mining_suffix})
        conversion(text);
    common::convert_timezone_to_seconds(text);
    decode_percent(text);
    return 0;
}
