#pragma once

#include "common/artefacts/exported_pictures.h"
#include "common/extraction/extraction_run.h"

#include <QJsonObject>
#include <QString>

// What the extension readers of all systems take from an extension's manifest.

/// The picture that stands for the extension, relative to its folder: the largest of its icons, or
/// a theme's background. Empty when there is none.
QString manifest_picture(const QJsonObject &manifest);

/// Copies an extension's picture to "Images/" when it lies in the extension's own folder and that
/// in the source; the paths are empty otherwise. The copy is named after the source, the
/// account, the extension, its version and the picture; see copy_picture(). A copy that fails, or
/// would be larger than any such picture (16 MiB), is logged.
exported_picture export_extension_picture(const QString &folder, const QString &id,
                                          const QJsonObject &manifest, const source_file &file,
                                          extraction_run &run, const QString &signature);
