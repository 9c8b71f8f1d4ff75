#include "common/evidence/evidence_problems.h"

#include "common/debug_log.h"
#include "common/evidence/native_path.h"

#include <QFileInfo>
#include <QSet>

#include <mutex>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <sys/stat.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype most_kept = 10'000; ///< those behind are logged, and may be logged twice

struct known_problems {
    std::mutex in_use;
    QList<evidence_problem> in_order;
    QSet<QString> lines;
};

known_problems &known()
{
    static known_problems problems;
    return problems;
}

#ifdef Q_OS_UNIX

/// Reports the first part of the path that leads no further, unless it simply is not there.
void report_obstacle(const QString &path)
{
    QString before;
    for (qsizetype end = path.indexOf(u'/', 1); before != path; end = path.indexOf(u'/', end + 1)) {
        const QString part = end < 0 ? path : path.first(end);
        struct stat status = {};
        if (::lstat(native_path(part).constData(), &status) != 0) {
            if (errno == EACCES || errno == ENOTDIR)
                report_evidence_problem(before, error_text_of(errno));
            else if (errno != ENOENT)
                report_evidence_problem(part, error_text_of(errno));
            return;
        }
        if (S_ISLNK(status.st_mode) && ::stat(native_path(part).constData(), &status) != 0) {
            report_evidence_problem(part, errno == ENOENT ? u"the link leads nowhere"_s
                                                          : error_text_of(errno));
            return;
        }
        before = part;
    }
}

#endif

} // namespace

void report_evidence_problem(const QString &path, const QString &reason)
{
    const QString line = path + u": " + reason;
    {
        const std::lock_guard lock(known().in_use);
        if (known().lines.contains(line))
            return;
        if (known().in_order.size() < most_kept) {
            known().in_order.append({path, reason});
            known().lines.insert(line);
        }
    }
    debug_log(u"[evidence] reading ---------FAILED----------"_s + line,
              u"void report_evidence_problem(QString, QString)"_s);
}

QList<evidence_problem> evidence_problems()
{
    const std::lock_guard lock(known().in_use);
    return known().in_order;
}

void forget_evidence_problems()
{
    const std::lock_guard lock(known().in_use);
    known().in_order.clear();
    known().lines.clear();
}

bool exists_in_evidence(const QString &path)
{
#ifdef Q_OS_UNIX
    struct stat status = {};
    if (::stat(native_path(path).constData(), &status) == 0)
        return true;
    report_obstacle(path);
    return false;
#else
    return QFileInfo::exists(path);
#endif
}
