#pragma once

#include "common/extraction/database_reader.h"

#include <QStringList>

/// What is wrong with descriptors: an INSERT that does not fit the result schema, placeholders and
/// value rules that differ in number, a signature that is used twice. Empty when all is well.
/// `extra_tables` creates result tables that the plug-in itself does not create.
QStringList faults_of_readers(const std::vector<const database_reader *> &readers,
                              const QByteArray &extra_tables = {});
