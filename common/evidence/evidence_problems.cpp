#include "common/evidence/evidence_problems.h"

#include "common/plugin_static_function.h"

#include <QSet>

#include <mutex>

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
    plugin_static_function::app_debug(u"[evidence] reading ---------FAILED----------"_s + line,
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
