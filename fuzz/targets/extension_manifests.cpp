// Manifests and message files of extensions on Windows sources. The input is cut in two at its
// first line feed.

#include "fuzz/fuzz_case.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"winOS"_s);
    const QByteArray input = fuzz_bytes(data, size);
    const qsizetype cut = input.indexOf('\n');
    run.extract_from({{u"Extensions/x/1/manifest.json"_s, cut < 0 ? input : input.first(cut)},
                      {u"Extensions/x/1/_locales/en/messages.json"_s,
                       cut < 0 ? QByteArray() : input.sliced(cut + 1)}},
                     {u"extensions"_s});
    return 0;
}
