#include "tests/support/recording_log.h"

#include "common/plugin_static_function.h"

#include <QRegularExpression>

namespace
{

QList<recording_log::line> recorded;
QtMessageHandler previous_handler = nullptr;

void record(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\[\\d{4}-\\w{3}-\\d\\dT\\d\\d-\\d\\d-\\d\\d\\](.*)"
                       "\\[Artifacts Extraction\\]\\[(.*?)\\]:-- (.*)$"),
        QRegularExpression::DotMatchesEverythingOption);
    if (const auto match = form.match(text); match.hasMatch())
        recorded.append({match.captured(1), match.captured(2), match.captured(3)});
    else
        previous_handler(type, context, text);
}

} // namespace

recording_log::recording_log()
{
    recorded.clear();
    previous_handler = qInstallMessageHandler(record);
    switch_on();
}

recording_log::~recording_log()
{
    qInstallMessageHandler(previous_handler);
    plugin_static_function::debug_mode_status_bool = false;
}

void recording_log::switch_on()
{
    plugin_static_function::debug_mode_status_bool = true;
    plugin_static_function::debug_print_on_terminal_bool = true;
}

const QList<recording_log::line> &recording_log::lines() const
{
    return recorded;
}

QStringList recording_log::messages() const
{
    QStringList all;
    for (const line &one : std::as_const(recorded))
        all.append(one.message);
    return all;
}

QStringList recording_log::messages_of(const QString &function) const
{
    QStringList all;
    for (const line &one : std::as_const(recorded)) {
        if (one.function == function)
            all.append(one.message);
    }
    return all;
}

void recording_log::clear()
{
    recorded.clear();
}
