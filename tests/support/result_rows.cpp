#include "tests/support/result_rows.h"

#include <sqlite3.h>

QList<QStringList> result_rows(const QString &database, const QString &query)
{
    sqlite3 *connection = nullptr;
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_open_v2(database.toUtf8().constData(), &connection, SQLITE_OPEN_READONLY,
                        nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(connection, query.toUtf8().constData(), -1, &statement, nullptr) !=
            SQLITE_OK)
        qFatal("result_rows: %s", sqlite3_errmsg(connection));

    QList<QStringList> rows;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        QStringList row;
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            if (sqlite3_column_type(statement, column) == SQLITE_NULL)
                row.append(QStringLiteral("NULL"));
            else
                row.append(QString::fromUtf8(
                    reinterpret_cast<const char *>(sqlite3_column_text(statement, column)),
                    sqlite3_column_bytes(statement, column)));
        }
        rows.append(row);
    }
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    return rows;
}
