#include "host/result_location.h"

#include "host/evidence_source.h"
#include "host/options.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
    for (const QString &path :
         {folder, QString(folder + u"/tmp"), QString(folder + u"/Images"), database}) {
        if (lies_within(path, options.source))
            return path + u" leads into the evidence source " + options.source;
    }
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
