#include "host/readings.h"

#include <QObject>
#include <QSet>
#include <QVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

/// Worst first; all else needs no warning.
constexpr QLatin1StringView worth_a_warning[] = {
    "changed"_L1,    "not committed"_L1,  "damaged"_L1,    "refused"_L1,
    "unreadable"_L1, "unknown schema"_L1, "not hashed"_L1,
};

std::ptrdiff_t rank(const QString &outcome)
{
    return std::ranges::find(worth_a_warning, outcome) - std::begin(worth_a_warning);
}

bool is_warning(const QString &outcome)
{
    return rank(outcome) < std::ssize(worth_a_warning);
}

struct profile_place {
    QString account;
    QString channel;
    QString folder;
};

/// com.operasoftware.OperaNext: Opera Next.
QString macos_channel(const QString &bundle)
{
    const QString name = bundle.section(u'.', -1);
    if (!name.startsWith("Opera"_L1))
        return name;
    return u"Opera "_s + (name.size() > 5 ? name.sliced(5) : u"Stable"_s);
}

profile_place place_of(const QString &path)
{
    const QStringList parts = path.split(u'/');
    profile_place place{parts.value(1) == "Users"_L1 ? parts.value(2) : QString(), {}, {}};
    for (qsizetype i = 3; i < parts.size(); ++i) {
        const bool macos = parts.at(i).startsWith("com.operasoftware."_L1);
        if (!macos && parts.at(i - 1) != "Opera Software"_L1)
            continue;
        place.channel = macos ? macos_channel(parts.at(i)) : parts.at(i);
        place.folder = parts.first(i + 1).join(u'/');
        return place;
    }
    place.folder = path.section(u'/', 0, -2);
    return place;
}

} // namespace

QList<file_reading> readings_of(const QObject &plugin)
{
    QList<file_reading> readings;
    const QVariantList entries = plugin.property("reading_record").toList();
    for (const QVariant &one : entries) {
        const QVariantMap entry = one.toMap();
        if (entry.contains(u"path"_s))
            readings.append({entry[u"table"_s].toString(), entry[u"path"_s].toString(),
                             entry[u"reader"_s].toString(), entry[u"outcome"_s].toString(),
                             entry[u"sentence"_s].toString(), entry[u"rows"_s].toLongLong()});
    }
    return readings;
}

QList<profile_outcome> profiles_of(const QList<file_reading> &readings, const QStringList &files)
{
    QMap<std::pair<QString, QString>, profile_outcome> profiles;
    const auto profile_with = [&profiles](const QString &path) -> profile_outcome & {
        const profile_place place = place_of(path);
        profile_outcome &profile = profiles[{place.account, place.channel}];
        profile.account = place.account;
        profile.channel = place.channel;
        // A profile's cache has a folder of its own, which is not what names it.
        if (profile.folder.isEmpty() || profile.folder.contains("/Library/Caches/"_L1))
            profile.folder = place.folder;
        return profile;
    };
    for (const QString &path : files)
        profile_with(path).files[path];
    for (const file_reading &reading : readings) {
        if (reading.table.isEmpty())
            continue;
        profile_outcome &profile = profile_with(reading.path);
        profile.files[reading.path].append(reading);
        profile.rows[reading.table] += reading.rows;
    }
    return profiles.values();
}

QList<run_warning> warnings_of(const QList<file_reading> &readings)
{
    QSet<std::pair<QString, QString>> understood;
    for (const file_reading &reading : readings) {
        if (reading.outcome != "unknown schema"_L1)
            understood.insert({reading.table, reading.path});
    }
    QSet<QString> known;
    QList<run_warning> warnings;
    for (const file_reading &reading : readings) {
        if (!is_warning(reading.outcome) || (reading.outcome == "unknown schema"_L1 &&
                                             understood.contains({reading.table, reading.path})))
            continue;
        // A file of four tables is damaged once.
        const qsizetype before = known.size();
        known.insert(reading.outcome + u'\n' + reading.path + u'\n' + reading.sentence);
        if (known.size() > before)
            warnings.append({reading.outcome, reading.path, reading.sentence});
    }
    sort_warnings(warnings);
    return warnings;
}

void sort_warnings(QList<run_warning> &warnings)
{
    std::ranges::stable_sort(warnings, {},
                             [](const run_warning &one) { return rank(one.outcome); });
}
