#include "tests/support/check_readers.h"

#include "common/result_schema.h"

#include <QSet>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

QStringList faults_of_readers(const std::vector<const database_reader *> &readers,
                              const QByteArray &extra_tables)
{
    sqlite3 *schema = nullptr;
    sqlite3_open(":memory:", &schema);
    for (const result_table &table : result_tables())
        sqlite3_exec(schema, create_statement(table).toUtf8().constData(), nullptr, nullptr,
                     nullptr);
    sqlite3_exec(schema, extra_tables.constData(), nullptr, nullptr, nullptr);

    QStringList faults;
    QSet<QString> signatures;
    for (const database_reader *reader : readers) {
        const QString name = QString::fromUtf8(reader->signature);
        if (signatures.contains(name))
            faults << name + u": signature used twice"_s;
        signatures.insert(name);
        for (const source_reading &way : reader->readings) {
            sqlite3_stmt *insert = nullptr;
            if (sqlite3_prepare_v2(schema, way.insert.sql, -1, &insert, nullptr) != SQLITE_OK)
                faults << name + u": "_s + QString::fromUtf8(sqlite3_errmsg(schema));
            else if (static_cast<std::size_t>(sqlite3_bind_parameter_count(insert)) !=
                     way.insert.values.size())
                faults << name + u": placeholders and values differ in number"_s;
            sqlite3_finalize(insert);
        }
    }
    sqlite3_close(schema);
    return faults;
}
