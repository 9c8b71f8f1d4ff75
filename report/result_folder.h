#pragma once

#include <QStringList>

#include <string>
#include <vector>

/// One result of an extraction, on disk.
struct result_folder {
    QString database; ///< absolute path of its Opera.sqlite
    QString home;     ///< folder that holds the database
    std::string name; ///< the case, as reports name it
};

/// The results that the arguments mean, each once, those of one argument by path: a database file,
/// the folder that holds it, the folder given to the extraction, or any folder above such ones. An
/// argument without any is told. A case is named by its result folder, several by the paths from
/// where they part. Links to folders are not followed.
std::vector<result_folder> find_results(const QStringList &arguments);
