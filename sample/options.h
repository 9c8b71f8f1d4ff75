#pragma once

#include "sample/sample_evidence.h"

namespace sample
{

/// What the command line asks for.
struct command_line {
    enum class action { write, describe, print, refuse };

    action what = action::refuse;
    evidence_request request; ///< for write and describe
    QString text;             ///< for print; for refuse the objection, without a full stop
};

command_line read_command_line(const QStringList &arguments);

} // namespace sample
