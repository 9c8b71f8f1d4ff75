#include "common/extraction/private_copy.h"

#include "common/evidence/evidence_file.h"
#include "common/evidence/evidence_problems.h"
#include "common/extraction/extraction_run.h"
#include "common/plugin_helper_functions.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

constexpr std::array companions = {"", "-wal"};

/// False when something of the evidence that can be read is not in the copy as a whole.
bool is_whole(const QString &source, const QString &copy)
{
    return std::ranges::all_of(companions, [&](const char *name) {
        const QString suffix = QString::fromUtf8(name);
        const QFileInfo made(copy + suffix);
        evidence_file wanted(source + suffix);
        const auto links =
            suffix.isEmpty() ? evidence_file::links::followed : evidence_file::links::refused;
        return !wanted.open_for_reading(links) || (made.exists() && made.size() == wanted.size());
    });
}

void remove_copy(const QString &copy)
{
    for (const QLatin1StringView suffix : {""_L1, "-wal"_L1, "-shm"_L1, "-journal"_L1})
        QFile::remove(copy + suffix);
}

} // namespace

QString private_copy(const QString &source, extraction_run &run)
{
    QString copy = run.helper->get_adhoc_path_for_database(source);
    if (copy.isEmpty() || is_whole(source.trimmed(), copy))
        return copy;
    if (!run.finished_copies.isEmpty()) {
        const QStringList finished_copies = std::exchange(run.finished_copies, {});
        for (const QString &finished : finished_copies)
            remove_copy(finished);
        remove_copy(copy);
        copy = run.helper->get_adhoc_path_for_database(source);
        if (copy.isEmpty() || is_whole(source.trimmed(), copy))
            return copy;
    }
    report_evidence_problem(source, u"there is no room for a private copy; rows are missing"_s);
    run.count_lost(1);
    return copy;
}
