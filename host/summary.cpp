#include "host/summary.h"

#include "host/options.h"
#include "host/run_record.h"
#include "host/terminal.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

QString json_summary(const extraction_outcome &outcome)
{
    QJsonArray profiles;
    for (const profile_outcome &profile : outcome.profiles)
        profiles.append(profile_object(profile));
    const QJsonObject object = {{u"database"_s, outcome.database},
                                {u"records"_s, outcome.records},
                                {u"tables"_s, totals_object(outcome.rows)},
                                {u"profiles"_s, profiles},
                                {u"warnings"_s, warnings_array(outcome.warnings)},
                                {u"seconds"_s, outcome.seconds},
                                {u"cancelled"_s, outcome.cancelled}};
    // JSON spells characters as one_line() does.
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return terminal::one_line(QString::fromUtf8(json)) + u'\n';
}

QString profiles_text(const extraction_outcome &outcome)
{
    constexpr qsizetype name_width = 29; // that the rows end where those of the tables do
    QString text;
    for (const profile_outcome &profile : outcome.profiles) {
        qint64 rows = 0;
        for (const qint64 of_table : profile.rows)
            rows += of_table;
        const QString number = QString::number(rows);
        const QString name =
            terminal::one_line(profile.account + u", " +
                               (profile.channel.isEmpty() ? profile.folder : profile.channel));
        text += name + u' ' + number.rightJustified(name_width - 1 - name.size()) + u'\n';
    }
    return text.isEmpty() ? text : u'\n' + text;
}

QString warnings_text(const extraction_outcome &outcome)
{
    constexpr qsizetype most_shown = 10;
    QString text;
    for (const run_warning &warning :
         outcome.warnings.first(qMin(most_shown, outcome.warnings.size())))
        text += terminal::one_line(
                    warning.outcome + u": " + warning.path +
                    (warning.sentence.isEmpty() ? QString() : u": " + warning.sentence)) +
                u'\n';
    if (outcome.warnings.size() > most_shown)
        text += QString::number(outcome.warnings.size() - most_shown) + u" more in " +
                QFileInfo(run_record_path(outcome.database)).fileName() + u'\n';
    return text.isEmpty() ? text : u'\n' + text;
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
    text += line(u"total"_s, QString::number(total)) + profiles_text(outcome) +
            warnings_text(outcome) + u"\ndatabase  " + terminal::one_line(outcome.database) + u'\n';
    if (outcome.verified > 0)
        text +=
            u"verified  " + QString::number(outcome.verified) +
            u" files of the evidence hashed again, " +
            (std::ranges::any_of(outcome.warnings,
                                 [](const run_warning &one) { return one.outcome == "changed"_L1; })
                 ? u"SOME CHANGED\n"
                 : u"none changed\n");
    if (outcome.cancelled)
        text += u"cancelled; the rows above were kept\n";
    return text;
}

} // namespace

QJsonObject profile_object(const profile_outcome &profile)
{
    QJsonObject rows;
    for (auto table = profile.rows.begin(); table != profile.rows.end(); ++table)
        rows.insert(table.key(), table.value());
    return {{u"account"_s, profile.account},
            {u"channel"_s, profile.channel},
            {u"folder"_s, profile.folder},
            {u"rows"_s, rows}};
}

QJsonArray warnings_array(const QList<run_warning> &warnings)
{
    QJsonArray array;
    for (const run_warning &warning : warnings)
        array.append(QJsonObject{{u"outcome"_s, warning.outcome},
                                 {u"path"_s, warning.path},
                                 {u"sentence"_s, warning.sentence}});
    return array;
}

QJsonObject totals_object(const QList<table_rows> &rows)
{
    QJsonObject totals;
    for (const table_rows &counted : rows)
        totals.insert(counted.table, counted.rows);
    return totals;
}

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
