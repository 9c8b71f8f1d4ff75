// "Preferences" and "Local State": extension records, settings and website exceptions.

#include "fuzz/fuzz_case.h"
#include "macos/opera_macos.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"macOS"_s);
    const QByteArray content = fuzz_bytes(data, size);
    const QString preferences = run.evidence.path(macos_profile(u"a"_s)) + u"Preferences"_s;
    const QString local_state = run.evidence.path(macos_profile(u"a"_s)) + u"Local State"_s;
    run.extract_from({{u"Preferences"_s, content}, {u"Local State"_s, content}}, {u"extensions"_s},
                     [&](opera_macos &extractor) {
                         extractor.extract_preferences(preferences);
                         extractor.extract_local_preferences(local_state);
                         extractor.extract_website_exceptions(preferences);
                     });
    return 0;
}
