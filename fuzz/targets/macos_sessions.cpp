// Session files of macOS sources: the scan for URL markers.

#include "fuzz/fuzz_case.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"macOS"_s);
    run.extract_from({{u"Current Session"_s, fuzz_bytes(data, size)}}, {u"sessions"_s});
    return 0;
}
