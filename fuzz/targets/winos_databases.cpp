// Every SQLite file of a Windows profile. The first byte of the input chooses the file, the rest is
// its content.

#include "fuzz/fuzz_case.h"

using namespace Qt::StringLiterals;

namespace
{

const std::vector<chosen_file> files = {
    {u"History"_s, {u"history"_s, u"downloads"_s, u"search_items"_s}},
    {u"Cookies"_s, {u"cookies"_s}},
    {u"Login Data"_s, {u"logins"_s}},
    {u"Web Data"_s, {u"autofill"_s, u"autofill_profiles"_s, u"credits_cards"_s}},
    {u"favorites.db"_s, {u"topsites"_s}},
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"winOS"_s);
    run.extract_from_chosen(files, fuzz_bytes(data, size));
    return 0;
}
