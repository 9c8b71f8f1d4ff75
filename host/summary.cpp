#include "host/summary.h"

#include "host/options.h"
#include "host/terminal.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

QString json_summary(const extraction_outcome &outcome)
{
    QJsonObject tables;
    for (const table_rows &counted : outcome.rows)
        tables.insert(counted.table, counted.rows);
    const QJsonObject object = {{u"database"_s, outcome.database},
                                {u"records"_s, outcome.records},
                                {u"tables"_s, tables},
                                {u"seconds"_s, outcome.seconds},
                                {u"cancelled"_s, outcome.cancelled}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n';
}

QString table_text(const extraction_outcome &outcome)
{
    constexpr qsizetype name_width = 17; // autofill_profiles
    constexpr qsizetype rows_width = 12;
    const auto line = [](const QString &name, const QString &rows) {
        return QString(name.leftJustified(name_width) + rows.rightJustified(rows_width) + u'\n');
    };

    QString text = line(u"table"_s, u"rows"_s);
    qint64 total = 0;
    for (const table_rows &counted : outcome.rows) {
        text += line(counted.table, QString::number(counted.rows));
        total += counted.rows;
    }
    text += line(u"total"_s, QString::number(total)) + u"\ndatabase  " +
            terminal::one_line(outcome.database) + u'\n';
    if (outcome.cancelled)
        text += u"cancelled; the rows above were kept\n";
    return text;
}

} // namespace

QList<table_rows> count_rows(const QString &database, const QStringList &tables)
{
    const QString connection = u"opera_extract"_s;
    QList<table_rows> counted;
    {
        QSqlDatabase result = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection);
        result.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
        result.setDatabaseName(database);
        if (result.open()) {
            QSqlQuery query(result);
            for (const QString &table : tables) {
                if (!query.exec(u"SELECT count(*) FROM \"" + table + u'"') || !query.next()) {
                    counted.clear();
                    break;
                }
                counted.append({table, query.value(0).toLongLong()});
            }
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return counted;
}

QString summary_text(const extraction_outcome &outcome, const host_options &options)
{
    if (options.json)
        return json_summary(outcome);
    return options.quiet ? QString() : table_text(outcome);
}
