// Session files of Windows sources: the scan for texts that begin with "http".

#include "fuzz/fuzz_case.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"winOS"_s);
    run.extract_from({{u"Last Session"_s, fuzz_bytes(data, size)}}, {u"sessions"_s});
    return 0;
}
