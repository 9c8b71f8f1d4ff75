// "Bookmarks" of Windows sources, line by line.

#include "fuzz/fuzz_case.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"winOS"_s);
    run.extract_from({{u"Bookmarks"_s, fuzz_bytes(data, size)}}, {u"bookmarks"_s});
    return 0;
}
