#include "host/result_location.h"

#include "host/evidence_source.h"
#include "host/options.h"
#include "host/run_record.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

QString database_path(const QString &result_directory, const QString &artifact_name)
{
    QString name = artifact_name;
    name.replace(u' ', u'_');
    return result_directory + u"/Artifacts_Result/" + name + u'/' + name + u".sqlite";
}

QString evidence_conflict(const host_options &options)
{
    if (lies_within(options.result, options.source))
        return u"the result folder " + options.result + u" lies in the evidence source " +
               options.source;
    if (!options.log_file.isEmpty() && lies_within(options.log_file, options.source))
        return u"the log file " + options.log_file + u" lies in the evidence source " +
               options.source;
    return {};
}

QString evidence_conflict(const host_options &options, const QString &database)
{
    const QString folder = QFileInfo(database).path();
    for (const QString &path : {folder, QString(folder + u"/tmp"), QString(folder + u"/Images"),
                                database, run_record_path(database)}) {
        if (lies_within(path, options.source))
            return path + u" leads into the evidence source " + options.source;
    }
    // Whatever lies in the plug-in's folder is its own to write or, as temporary, to remove.
    if (lies_within(options.source, folder))
        return u"the evidence source " + options.source + u" lies in the plug-in's folder " +
               folder;
    if (!options.log_file.isEmpty() && lies_within(options.log_file, folder))
        return u"the log file " + options.log_file + u" lies in the plug-in's folder " + folder;
    return {};
}

QString make_writable(const host_options &options)
{
    // mkpath() and permissions do not tell of a read-only medium; only a file does.
    QTemporaryFile trial(options.result + u"/opera_extract_XXXXXX");
    if (!QDir().mkpath(options.result) || !trial.open())
        return u"cannot write to the result folder " + options.result;

    if (!options.log_file.isEmpty()) {
        QFile log(options.log_file);
        if (!log.open(QIODevice::WriteOnly | QIODevice::Append))
            return u"cannot write the log file " + options.log_file + u": " + log.errorString();
    }
    return {};
}

QString database_problem(const QString &database)
{
    const QString connection = u"opera_extract_trial"_s;
    QString error;
    {
        QSqlDatabase result = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection);
        result.setDatabaseName(database);
        if (result.open()) {
            // Reading works, and a transaction begins, where nothing can be written: only the
            // commit of a change tells. The number that hosts may keep stays what it is.
            QSqlQuery query(result);
            if (!query.exec(u"BEGIN IMMEDIATE"_s) || !query.exec(u"PRAGMA user_version"_s) ||
                !query.next() ||
                !query.exec(u"PRAGMA user_version = " + query.value(0).toString()) ||
                !query.exec(u"COMMIT"_s))
                error = query.lastError().text();
        } else {
            error = result.lastError().text();
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return error.isEmpty() ? QString()
                           : u"cannot write to the result database " + database + u": " + error;
}
