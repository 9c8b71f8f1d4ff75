#pragma once

#include "common/host_records.h"

#include <QList>
#include <QString>
#include <QStringList>

/// Why the folder cannot be read as an evidence source; empty when it can.
QString source_problem(const QString &source);

/// The accounts that have a folder of their own under the source's "Users", by name. Folders that
/// belong to nobody, hidden folders and links are no accounts.
QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account>
accounts_of_source(const QString &source);

/// What the examiner should know about the accounts that a run reads, a sentence each: names in the
/// source that are no text and therefore cannot be given to the plug-in, and accounts that have no
/// folder in the source, such as misspelt ones.
QStringList
notes_on_accounts(const QString &source,
                  const QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> &accounts);

/// Why a run over these accounts has found no profile, most likely, as a part of a sentence.
QString
cause_of_no_profile(const QString &source, const QString &os_scheme,
                    const QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> &accounts);

/// True when the path is the folder or lies in it, once links are resolved. Neither the path nor
/// its parents need exist.
bool lies_within(const QString &path, const QString &folder);
