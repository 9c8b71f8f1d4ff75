#include "common/artefacts/extension_manifest.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/extraction/failure_log.h"
#include "common/run_state.h"
#include "common/values/json_values.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

static constexpr qint64 largest_picture = 16 << 20; // bytes

QString manifest_picture(const QJsonObject &manifest)
{
    const QJsonObject icons = manifest.value("icons"_L1).toObject();
    int largest = -1;
    QString picture;
    for (auto icon = icons.begin(); icon != icons.end(); ++icon) {
        const int size = icon.key().toInt();
        if (size > largest && icon.value().isString()) {
            largest = size;
            picture = icon.value().toString();
        }
    }
    if (!picture.isEmpty())
        return picture;
    return manifest.value("theme"_L1)
        .toObject()
        .value("images"_L1)
        .toObject()
        .value("theme_ntp_background"_L1)
        .toString();
}

exported_picture export_extension_picture(const QString &folder, const QString &id,
                                          const QJsonObject &manifest, const source_file &file,
                                          extraction_run &run, const QString &signature)
{
    const QString picture = manifest_picture(manifest);
    if (picture.isEmpty() || folder.isEmpty())
        return {};
    const QString source = folder + u'/' + picture;
    if (!is_inside_folder(folder, run.source_root) || !is_inside_folder(source, folder) ||
        !QFileInfo(source).isFile())
        return {};

    const QFileInfo resolved(QFileInfo(source).canonicalFilePath());
    const QString root = QFileInfo(run.source_root).canonicalFilePath();
    exported_picture exported;
    exported.source_path = resolved.filePath().mid(root == "/"_L1 ? 0 : root.size());
    const QString name =
        resolved.size() > largest_picture
            ? QString()
            : copy_picture(source, run.result_directory + u"Images/", file.system_user,
                           {numbered_source_name(), file.system_user, id,
                            json_text(manifest.value("version"_L1)), resolved.completeBaseName()},
                           resolved.suffix().isEmpty() ? QString() : u'.' + resolved.suffix(),
                           run.pictures);
    if (!name.isEmpty())
        exported.copy_path = u"./Images/"_s + name;
    else
        debug_log(operation_tag(signature) + u" picture is not copied ---------FAILED----------" +
                      resolved.filePath(),
                  signature);
    return exported;
}
