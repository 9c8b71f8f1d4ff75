#include "sample/options.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace
{

enum exit_status { done = 0, failed = 1, wrong_usage = 2 };

int refuse(const QString &problem, exit_status status)
{
    const QByteArray line = (u"sample_evidence: " + problem + u'\n').toLocal8Bit();
    std::fputs(line.constData(), stderr);
    return status;
}

int print(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    if (std::fputs(bytes.constData(), stdout) < 0 || std::fflush(stdout) != 0)
        return refuse(u"cannot write to standard output"_s, failed);
    return done;
}

int write(const sample::evidence_request &request)
{
    const QString problem = sample::write_evidence(request);
    return problem.isEmpty() ? int{done} : refuse(problem, failed);
}

} // namespace

int main(int argument_count, char **arguments)
{
    const QCoreApplication application(argument_count, arguments);
    const sample::command_line command = sample::read_command_line(QCoreApplication::arguments());
    switch (command.what) {
    case sample::command_line::action::write:
        return write(command.request);
    case sample::command_line::action::describe:
        return print(sample::describe_evidence(command.request));
    case sample::command_line::action::print:
        return print(command.text);
    case sample::command_line::action::refuse:
        break;
    }
    return refuse(command.text + u"; sample_evidence --help shows the usage", wrong_usage);
}
