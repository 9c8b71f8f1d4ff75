// A controller that obeys the documented interface without sharing its header: the virtual
// operations stand in slot order. Every call is written to the file FAKE_PLUGIN_CALLS; in the
// operation named by FAKE_PLUGIN_INTERRUPT Ctrl-C comes, once.

#include "common/host_records.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>
#include <QVariantMap>

#include <atomic>
#include <csignal>

using namespace Qt::StringLiterals;

class fake_controller : public QFrame
{
    Q_OBJECT

public:
    virtual void pub_set_engine_type(int type) { note("engine_type", QString::number(type)); }
    virtual QString pub_get_artifact_name() { return u"Fake Browser"_s; }
    virtual void pub_set_essentials()
    {
        note("essentials");
        cancelled_ = false;
    }
    virtual void pub_set_source_count(int count) { note("source_count", QString::number(count)); }
    virtual void pub_set_ios_uid_backup_pointer(void *parser)
    {
        note("ios_pointer", parser == nullptr ? u"null"_s : u"set"_s);
    }
    virtual void pub_set_desktop_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info)
    {
        note("desktop_info");
    }
    virtual void pub_set_general_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info info)
    {
        note("general_info", QString::number(info.debug_mode_status) +
                                 QString::number(info.debug_print_on_terminal) +
                                 QString::number(info.debug_print_in_file) +
                                 QString::number(info.debug_encryption_status) +
                                 info.debug_file_path.section(u'/', -1));
    }
    virtual void pub_set_source_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info info)
    {
        QStringList accounts;
        for (const auto &account : std::as_const(info.system_account_list))
            accounts << account.system_user + u'|' + account.domain_user;
        note("source_info", info.virtual_source_path.section(u'/', -2) + u' ' +
                                info.source_type_internal + u' ' + info.os_scheme_display + u' ' +
                                info.os_scheme_internal + u' ' + accounts.join(u','));
    }
    virtual void pub_set_essential_for_mirva_bench_extraction(QList<QString> tables,
                                                              QList<QString> ignored)
    {
        tables_ = tables;
        note("tables", (tables + ignored).join(u','));
    }
    virtual void pub_set_result_directory(QString directory)
    {
        note("result_directory", directory.section(u'/', -1));
        const QString folder = directory + u"/Artifacts_Result/Fake_Browser";
        QDir().mkpath(folder);
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
        database.setDatabaseName(folder + u"/Fake_Browser.sqlite");
        database.open();
    }
    virtual void pub_create_db_tables()
    {
        note("create_tables");
        for (const QString &table : std::as_const(tables_))
            QSqlQuery(u"CREATE TABLE IF NOT EXISTS " + table + u"(url)");
    }
    virtual void pub_set_clear_db(bool clear)
    {
        note("clear", QString::number(clear));
        for (const QString &table : std::as_const(tables_))
            QSqlQuery(u"DELETE FROM " + table);
    }
    virtual void pub_cancel_extraction() { cancelled_ = true; }
    virtual void pub_find_source_file()
    {
        note("find");
        if (told_.contains(u"found"_s))
            setProperty("found_files", told_[u"found"_s].toStringList());
    }
    virtual void pub_set_extended_attributes_list(QList<QString> names)
    {
        note("attributes", names.join(u','));
    }
    virtual void pub_extract_artifacts()
    {
        Q_EMIT signal_extracted_records_of_plugin_overall(0);
        QSqlQuery(u"INSERT INTO history VALUES (1), (2)"_s);
        note("extract");
        Q_EMIT signal_extracted_records_of_plugin_overall(2);
        Q_EMIT signal_tab_processed_of_plugin_overall(1);
        if (cancelled_)
            return;
        qDebug("reading\ncookies");
        QSqlQuery(u"INSERT INTO cookies VALUES (3)"_s);
        setProperty("reading_record", told_[u"record"_s]);
        Q_EMIT signal_extracted_records_of_plugin_overall(3);
    }
    virtual void pub_generate_chat_html_pages() { note("chat_pages"); }
    virtual void pub_remove_temporary_asthetics() { note("remove_temporary"); }

Q_SIGNALS:
    void signal_extracted_records_of_plugin_overall(qint64 records);
    void signal_tab_processed_of_plugin_overall(int tables);

private:
    void note(const char *operation, const QString &arguments = {})
    {
        QFile calls(qEnvironmentVariable("FAKE_PLUGIN_CALLS"));
        if (calls.open(QIODevice::Append))
            calls.write(QByteArray(operation + (' ' + arguments.toUtf8())).trimmed() + '\n');
        if (qgetenv("FAKE_PLUGIN_INTERRUPT") != operation)
            return;
        qunsetenv("FAKE_PLUGIN_INTERRUPT"); // a second Ctrl-C would kill the host
        std::raise(SIGINT);
        for (int waits = 0; waits < 100 && !cancelled_; ++waits)
            QThread::msleep(3);
    }

    /// What the properties are to say, as JSON.
    const QVariantMap told_ =
        QJsonDocument::fromJson(qgetenv("FAKE_PLUGIN_TELLS")).toVariant().toMap();
    QList<QString> tables_;
    std::atomic<bool> cancelled_ = false;
};

extern "C" Q_DECL_EXPORT QFrame *create_object()
{
    return new fake_controller;
}

#include "fake_plugin.moc"
