#include "host/run_record.h"

#include "host/options.h"
#include "host/summary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

constexpr int format_version = 1;

QString sqlite_version()
{
    const QString connection = u"opera_extract_version"_s;
    QString version;
    {
        QSqlDatabase memory = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection);
        memory.setDatabaseName(u":memory:"_s);
        if (memory.open()) {
            QSqlQuery query(u"SELECT sqlite_version()"_s, memory);
            version = query.next() ? query.value(0).toString() : QString();
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return version;
}

QString time_text(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QJsonObject options_object(const host_options &options)
{
    QJsonArray accounts;
    for (const auto &account : options.accounts)
        accounts.append(account.domain_user.isEmpty()
                            ? account.system_user
                            : account.system_user + u':' + account.domain_user);
    return {{u"os_display"_s, options.os_display},
            {u"source_type"_s, options.source_type},
            {u"source_count"_s, options.source_count},
            {u"engine"_s, options.engine_type},
            {u"accounts"_s, accounts},
            {u"tables"_s, QJsonArray::fromStringList(options.tables)},
            {u"extended_attributes"_s, QJsonArray::fromStringList(options.extended_attributes)},
            {u"result"_s, options.result},
            {u"plugin"_s, options.plugin_file},
            {u"log"_s, options.log_file},
            {u"log_encrypted"_s, options.log_encrypted},
            {u"clear"_s, options.clear},
            {u"append"_s, options.append},
            {u"hashes"_s, options.hashes},
            {u"verify"_s, options.verify}};
}

QJsonObject file_object(const QString &path, const QList<file_reading> &readings,
                        const evidence_print &print)
{
    QJsonArray told;
    for (const file_reading &reading : readings)
        told.append(QJsonObject{{u"table"_s, reading.table},
                                {u"reader"_s, reading.reader},
                                {u"outcome"_s, reading.outcome},
                                {u"sentence"_s, reading.sentence},
                                {u"rows"_s, reading.rows}});
    QJsonObject file = {{u"path"_s, path}, {u"readings"_s, told}};
    if (print.size >= 0) { // no folder
        file.insert(u"size"_s, print.size);
        file.insert(u"modified"_s, time_text(print.modified));
    }
    if (!print.sha256.isEmpty())
        file.insert(u"sha256"_s, QString::fromLatin1(print.sha256));
    return file;
}

QJsonArray profiles_array(const extraction_outcome &outcome)
{
    QHash<QString, evidence_print> prints;
    for (const evidence_print &print : outcome.prints)
        prints.insert(print.path, print);
    QJsonArray profiles;
    for (const profile_outcome &profile : outcome.profiles) {
        QJsonArray files;
        for (auto file = profile.files.begin(); file != profile.files.end(); ++file)
            files.append(file_object(file.key(), file.value(), prints.value(file.key())));
        QJsonObject object = profile_object(profile);
        object.insert(u"files"_s, files);
        profiles.append(object);
    }
    return profiles;
}

QJsonObject run_object(const extraction_outcome &outcome, const host_options &options)
{
    return {{u"tool"_s, QJsonObject{{u"name"_s, u"opera_extract"_s},
                                    {u"version"_s, QStringLiteral(OPERA_EXTRACT_VERSION)},
                                    {u"qt"_s, QString::fromLatin1(qVersion())},
                                    {u"sqlite"_s, sqlite_version()}}},
            {u"options"_s, options_object(options)},
            {u"source"_s, options.source},
            {u"os"_s, options.os_scheme},
            {u"started"_s, time_text(outcome.started)},
            {u"ended"_s, time_text(outcome.ended)},
            {u"cancelled"_s, outcome.cancelled},
            {u"profiles"_s, profiles_array(outcome)},
            {u"warnings"_s, warnings_array(outcome.warnings)},
            {u"totals"_s, totals_object(outcome.rows)}};
}

/// The runs of the record that is there; moves one that cannot be understood out of the way.
QJsonArray earlier_runs(const QString &path, QString &note, QString &problem)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (file.open(QIODevice::ReadOnly)) {
        const QJsonObject record = QJsonDocument::fromJson(file.readAll()).object();
        if (record.value("format"_L1) == "opera_run"_L1 &&
            record.value("version"_L1) == format_version && record.value("runs"_L1).isArray())
            return record.value("runs"_L1).toArray();
    }
    file.close();
    for (int number = 1; problem.isEmpty(); ++number) {
        const QString aside = path.chopped(5) + u"_unreadable_"_s + QString::number(number) +
                              u".json"; // in place of its ".json"
        if (QFileInfo::exists(aside))
            continue;
        if (file.rename(aside))
            note = u"the record " + path + u" could not be understood and is now " + aside;
        else
            problem = u"cannot keep the record " + path + u": " + file.errorString();
        break;
    }
    return {};
}

} // namespace

QString run_record_path(const QString &database)
{
    const QFileInfo file(database);
    return file.path() + u'/' + file.completeBaseName() + u"_run.json";
}

QString write_run_record(const extraction_outcome &outcome, const host_options &options,
                         QString &note)
{
    const QString path = run_record_path(outcome.database);
    QString problem;
    QJsonArray runs = earlier_runs(path, note, problem);
    if (!problem.isEmpty())
        return problem;
    runs.append(run_object(outcome, options));
    const QJsonObject record = {
        {u"format"_s, u"opera_run"_s}, {u"version"_s, format_version}, {u"runs"_s, runs}};
    QSaveFile file(path);
    const QByteArray text = QJsonDocument(record).toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        return u"cannot write the record " + path + u": " + file.errorString();
    return {};
}
