// Where the results of a run lie, and the result tables.

#include "common/debug_log.h"
#include "common/evidence/file_paths.h"
#include "common/named_connection.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "common/result_schema.h"
#include "macos/opera_macos.h"
#include "plugin/opera.h"
#include "plugin/opera_ios_uid.h"
#include "winos/opera_winos.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

void opera::set_destination_location(const QString &result_directory)
{
    const QString signature = u"void opera::set_destination_location(QString)"_s;
    debug_log(u"[set_destination_location] starts"_s, signature);

    if (result_directory.isEmpty()) {
        // With a "/" added it would be the root of the examiner's file system.
        debug_log(u"[set_destination_location] result directory is empty ------FAILED-------"_s,
                  signature);
        plugin_result_directory_ = temporary_directory_ = images_directory_ = destination_db_path_ =
            QString();
    } else {
        const QString root =
            result_directory.endsWith(u'/') ? result_directory : result_directory + u'/';
        const QString name = pub_get_artifact_name().replace(u' ', u'_');
        plugin_result_directory_ = root + u"Artifacts_Result/" + name + u'/';
        temporary_directory_ = plugin_result_directory_ + u"tmp/";
        images_directory_ = plugin_result_directory_ + u"Images/";
        destination_db_path_ = plugin_result_directory_ + name + u".sqlite";
        remove_folder(temporary_directory_); // a killed run leaves its copies there
        for (const QString &directory :
             {plugin_result_directory_, temporary_directory_, images_directory_})
            QDir().mkpath(directory);
    }

    helper_->set_adhoc_parent_path(temporary_directory_);
    macos_extractor_->macos_set_destination_location(plugin_result_directory_, temporary_directory_,
                                                     destination_db_path_);
    ios_uid_extractor_->ios_uid_set_destination_location(
        plugin_result_directory_, temporary_directory_, destination_db_path_);
    winos_extractor_->winos_set_destination_location(plugin_result_directory_, temporary_directory_,
                                                     destination_db_path_);
    debug_log(u"[set_destination_location] ends"_s, signature);
}

void opera::create_destination_database()
{
    const QString signature = u"void opera::create_destination_database()"_s;
    debug_log(u"[create_destination_database] starts"_s, signature);
    create_db_tables();
    debug_log(u"[create_destination_database] ends"_s, signature);
}

void opera::create_db_tables()
{
    const QString signature = u"void opera::create_db_tables()"_s;
    debug_log(u"[create_db_tables_11] starts"_s, signature);

    named_connection destination(signature, destination_db_path_);
    if (!destination.is_open()) {
        debug_log(u"[create_db_tables_11]Destination Db opening -----FAILED------ "_s, signature);
        debug_log(destination.error_text(), signature);
        return;
    }
    for (const result_table &table : result_tables()) {
        if (!plugin_static_function::execute_db_command_by_dbreference(
                create_statement(table), destination.database(), signature))
            debug_log(u" table creation -----FAILED---- "_s + QLatin1StringView(table.name),
                      signature);
    }
}

void opera::clear_db_tables()
{
    const QString signature = u"void opera::clear_db_tables()"_s;
    if (!QFileInfo::exists(destination_db_path_)) {
        debug_log(u"[clear_db_tables]DB not exists and so returning..."_s, signature);
        return;
    }
    if (static_cast<unsigned>(engine_type_) > 2U)
        return;
    for (const QString &table : std::as_const(table_list_))
        plugin_static_function::execute_db_command_by_dbpath(u"delete from '"_s + table + u'\'',
                                                             destination_db_path_, signature);
}
