#include "host/result_tables.h"

using namespace Qt::StringLiterals;

const QStringList &all_result_tables()
{
    static const QStringList names = {
        u"history"_s,           u"bookmarks"_s,     u"speeddials"_s,     u"downloads"_s,
        u"search_items"_s,      u"cookies"_s,       u"logins"_s,         u"autofill"_s,
        u"autofill_profiles"_s, u"credits_cards"_s, u"extensions"_s,     u"sessions"_s,
        u"cached_files"_s,      u"topsites"_s,      u"exportfilelist"_s,
    };
    return names;
}

QStringList artifact_tables()
{
    QStringList names = all_result_tables();
    names.removeLast();
    return names;
}

QStringList reading_order(const QString &os_scheme, const QStringList &selected)
{
    QStringList order;
    if (os_scheme == "macOS"_L1)
        order = artifact_tables();
    else if (os_scheme == "winOS"_L1)
        order = {u"history"_s,       u"downloads"_s,    u"bookmarks"_s,  u"topsites"_s,
                 u"cookies"_s,       u"logins"_s,       u"autofill"_s,   u"autofill_profiles"_s,
                 u"credits_cards"_s, u"search_items"_s, u"extensions"_s, u"sessions"_s};
    order.removeIf([&selected](const QString &name) { return !selected.contains(name); });
    return order;
}
