#pragma once

#include <QString>

/// Writes one line to the Qt debug stream and the debug file, as the process-wide log settings of
/// plugin_static_function say. Of the function info, a signature text, only the qualified name
/// appears; an empty one is replaced by a fixed text.
void debug_log(const QString &message, const QString &function_info);
