#pragma once

#include <QString>
#include <QStringList>

/// The fifteen tables of a result database, in the order of its schema.
const QStringList &all_result_tables();

/// All but exportfilelist, which belongs to the host's own exports.
QStringList artifact_tables();

/// The selected tables in the order in which the plug-in reads them for the OS scheme; tables that
/// it does not read there are left out.
QStringList reading_order(const QString &os_scheme, const QStringList &selected);
