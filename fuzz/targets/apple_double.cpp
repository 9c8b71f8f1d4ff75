// AppleDouble companions.

#include "common/metadata/apple_double.h"
#include "fuzz/fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    apple_double_attributes(fuzz_bytes(data, size));
    return 0;
}
