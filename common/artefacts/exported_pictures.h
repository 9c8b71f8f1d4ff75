#pragma once

#include "common/extraction/extraction_run.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// Pictures that extractors put into "Images/" beside the result database.

/// A picture of the evidence that was copied to "Images/".
struct exported_picture {
    QString source_path = QStringLiteral(""); ///< inside the source, begins with "/"
    QString copy_path = QStringLiteral("");   ///< "./Images/NAME"; empty when nothing was copied
};

/// A file name of the parts, joined by "_", and the suffix. The parts may come from the evidence:
/// the name is empty when it could lead out of its folder or does not suit a file system
/// (separators, "..", control characters, over 200 bytes).
QString safe_picture_name(const QStringList &parts, const QString &suffix);

/// Writes the bytes to the path, in place of a file that is there; its folder is created when
/// missing. A symbolic link at the path is not followed. False, with the reason, when that fails.
bool write_picture(const QString &path, const QByteArray &bytes, QString *error);

/// Copies a file of the evidence into the folder, named by the parts (see safe_picture_name()),
/// with a number behind them where another picture has that name. What was copied for the account
/// already, under whatever path, is not copied again. The copy's name; empty when that fails.
QString copy_picture(const QString &source, const QString &folder, const QString &account,
                     const QStringList &parts, const QString &suffix, copied_pictures &copied);
