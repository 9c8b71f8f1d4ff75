#pragma once

#include <QString>

/// Prints the lines of an encrypted log file on standard output, one per record, and one line on
/// standard error for every record that is damaged. Returns the exit status.
int decrypt_log(const QString &file);
