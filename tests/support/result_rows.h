#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The rows of a query on a result database, every column as text; NULL reads "NULL". A database
/// or query that fails ends the test program.
QList<QStringList> result_rows(const QString &database, const QString &query);
