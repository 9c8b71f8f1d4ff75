#pragma once

#include "report/result_folder.h"

#include <QHash>

#include <string>
#include <string_view>

class result_database;
struct stored_table;

/// The pictures that lie in a result: what rows point to with "./", and what the host exported.
/// Nothing outside the result's folder is read.
class pictures
{
public:
    /// `budget` counts the bytes that may still be shown, over all results.
    pictures(result_database &database, qint64 &budget);

    /// The picture as the value of a src attribute, "data:image/png;base64,..."; empty for a path
    /// that leads to no picture or elsewhere, for large ones, and when the budget is used up.
    std::string data_of(std::string_view path);

private:
    QString folder_;
    QHash<QString, QString> exported_; ///< paths inside the source and in the result
    qint64 &budget_;
};
