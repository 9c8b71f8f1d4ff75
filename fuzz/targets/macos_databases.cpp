// Every SQLite file of a macOS profile. The first byte of the input chooses the file, the rest is
// its content.

#include "fuzz/fuzz_case.h"
#include "macos/opera_macos.h"

using namespace Qt::StringLiterals;

namespace
{

const std::vector<chosen_file> files = {
    {u"History"_s, {u"history"_s, u"downloads"_s, u"search_items"_s}},
    {u"Cookies"_s, {u"cookies"_s}},
    {u"Login Data"_s, {u"logins"_s}, [](opera_macos &reader) { reader.extract_login_data(); }},
    {u"Web Data"_s,
     {u"autofill"_s, u"autofill_profiles"_s, u"credits_cards"_s},
     [](opera_macos &reader) {
         reader.extract_keywords_11();
         reader.extract_webdata_credit_cards();
     }},
    {u"favorites.db"_s, {u"topsites"_s}},
    {u"Favicons"_s, {}, [](opera_macos &reader) { reader.extract_favicons_11(); }},
    {u"thumbnails.db"_s, {}, [](opera_macos &reader) { reader.extract_thumbnails(); }},
    {u"Sync Data/SyncData.sqlite3"_s,
     {},
     [](opera_macos &reader) { reader.extract_sync_data_11(); }},
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static fuzz_case run(u"macOS"_s);
    run.extract_from_chosen(files, fuzz_bytes(data, size));
    return 0;
}
