#include "common/plugin_helper_functions.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/file_paths.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

plugin_helper_functions::plugin_helper_functions(QWidget *parent) : QWidget(parent)
{
    initialize_image_extension_list();
    initialize_audio_extension_list();
    initialize_video_extension_list();
}

void plugin_helper_functions::set_essentials()
{
    cancelled_ = false;
}

void plugin_helper_functions::set_cancel_extraction(bool cancel)
{
    cancelled_ = cancel;
}

void plugin_helper_functions::set_adhoc_parent_path(const QString &path)
{
    adhoc_parent_path_ = path;
}

QString plugin_helper_functions::get_adhoc_path_for_database(const QString &source_path)
{
    return adhoc_copy(source_path, {u"-shm"_s, u"-wal"_s},
                      u"QString plugin_helper_functions::get_adhoc_path_for_database(QString)"_s);
}

QString plugin_helper_functions::get_adhoc_path_for_regular_file(const QString &source_path)
{
    return adhoc_copy(
        source_path, {},
        u"QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString)"_s);
}

QString plugin_helper_functions::adhoc_copy(const QString &source_path,
                                            const QStringList &companion_suffixes,
                                            const QString &signature) const
{
    const QString source = source_path.trimmed();
    if (source.isEmpty())
        return {};

    const QString name = free_file_name(adhoc_parent_path_, source);
    if (name.isEmpty()) // cancelled
        return {};
    const QString copy = adhoc_parent_path_ + name;
    QFile::remove(copy);
    copy_evidence_file(source, copy);
    for (const QString &suffix : companion_suffixes) {
        // SQLite makes companions as plain files beside the database. A link there was put by
        // somebody else, and could lead to a file outside the evidence.
        QFile::remove(copy + suffix);
        if (!copy_evidence_file(source + suffix, copy + suffix, evidence_file::links::refused) &&
            (QFileInfo::exists(source + suffix) || QFileInfo(source + suffix).isSymLink()))
            // Without a line, nobody would know that the latest rows are missing.
            debug_log(u" companion file is not copied, its rows are missing -----FAILED----- "_s +
                          source + suffix,
                      signature);
    }
    return copy;
}
