#pragma once

#include <QString>

struct host_options;

/// Where the plug-in of this name puts its database under the result folder.
QString database_path(const QString &result_directory, const QString &artifact_name);

/// The first place the run would write to that lies in the evidence, as a sentence; empty when
/// there is none. Writes nothing.
QString evidence_conflict(const host_options &options);
/// The same for the folders and the database that the plug-in makes under the result folder, where
/// links of an earlier day may lead elsewhere; and for evidence or a log among them.
QString evidence_conflict(const host_options &options, const QString &database);

/// Creates the result folder and tries to write there and to the log file. Says what failed; empty
/// when all is well.
QString make_writable(const host_options &options);

/// Tries to write to a database that is there, changing nothing in it. Waits some seconds for a
/// process that holds it. Says what failed; empty when all is well.
QString database_problem(const QString &database);
