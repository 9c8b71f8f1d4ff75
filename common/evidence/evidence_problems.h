#pragma once

#include <QList>
#include <QString>

/// Something of the evidence that exists, or may exist, and could not be read.
struct evidence_problem {
    QString path;
    QString reason;

    bool operator==(const evidence_problem &) const = default;
};

/// Logs the path and the reason, and keeps them for the record of the run; what is known already is
/// neither logged nor kept again. "Is not there" is no problem.
void report_evidence_problem(const QString &path, const QString &reason);

/// What was reported since forget_evidence_problems(), in order; of very many the first ones.
QList<evidence_problem> evidence_problems();

/// A new run begins.
void forget_evidence_problems();

/// True when the path, links followed, leads to something. What is in the way (a folder that may
/// not be entered, a link that leads nowhere) is reported; that nothing is there is not.
bool exists_in_evidence(const QString &path);
