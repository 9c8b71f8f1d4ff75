#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace sample
{

/// Operating system whose folder layout the evidence has.
enum class os_scheme { macos, windows };

/// Age of the browser that wrote an account's profile; decides the columns of its tables.
enum class browser_generation {
    current, ///< the columns a present reader of these files asks for
    older,   ///< before them: shorter tables, other names
    newest,  ///< after them: columns renamed, moved or gone
};

/// How the generations are shared out among the accounts.
enum class generation_choice { in_turn, current, older, newest };

/// What to write.
struct evidence_request {
    os_scheme system = os_scheme::macos;
    QString folder; ///< becomes the root of the source; made when missing
    int accounts = 2;
    /// 1: a sample to look at. N from 2 on: N times the row counts that `describe_evidence` names.
    qint64 scale = 1;
    quint64 seed = 1; ///< equal requests give equal files, byte for byte
    generation_choice generation = generation_choice::in_turn;
    QStringList only; ///< parts to write; empty for all of them
};

/// Names and contents of the parts a request may be restricted to, in the order of writing.
struct part_description {
    QString name;
    QString contents;
};
QList<part_description> evidence_parts();

/// The folder names of the accounts under "Users", in order.
QStringList account_names(int count);

/// The generation of the account with this place (from 0) in `account_names`.
browser_generation generation_of(const evidence_request &request, int account);

/// Writes the evidence source. Returns an empty text, or one line that tells what went wrong; what
/// was written up to then stays.
///
/// A folder that holds anything is refused, unless this function filled it: then the earlier
/// evidence is removed first. Never touches anything but what it wrote itself, below `folder`.
QString write_evidence(const evidence_request &request);

/// What `write_evidence` would write, in words: accounts, files and numbers of ordinary rows.
QString describe_evidence(const evidence_request &request);

} // namespace sample
