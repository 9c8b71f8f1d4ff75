#pragma once

#include <QString>

/// Prints the lines of an enciphered log file on standard output, one per record, and one line on
/// standard error for every record that is damaged. Returns the exit status.
int decipher_log(const QString &file);
