// "Bookmarks" of macOS sources: the walk over its JSON, and the reader that goes line by line.

#include "fuzz/fuzz_case.h"
#include "macos/opera_macos.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"macOS"_s);
    run.extract_from({{u"Bookmarks"_s, fuzz_bytes(data, size)}}, {u"bookmarks"_s, u"speeddials"_s},
                     [](opera_macos &extractor) { extractor.extract_bookmark(); });
    return 0;
}
