#include "report/terminal.h"

#include "report/texts.h"

#include <QElapsedTimer>
#include <QSet>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

bool failed = false;
bool quiet = false;
int write_error = 0;
qsizetype status_length = 0;
std::atomic<bool> stop_asked = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void handle_signal(int number)
{
    stop_asked = true;
    std::signal(number, SIG_DFL);
}

bool is_interactive()
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

void show_status(const QString &line)
{
    // Blanks rather than an escape sequence: not every console understands one.
    std::fputs((u'\r' + line.leftJustified(status_length)).toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
    status_length = line.size();
}

void print_line(const QString &text)
{
    constexpr qsizetype most_remembered = 10'000;
    static QSet<QString> printed;
    if (printed.contains(text))
        return;
    if (printed.size() < most_remembered)
        printed.insert(text);
    if (status_length > 0) {
        show_status(QString());
        std::fputs("\r", stderr);
    }
    const QByteArray utf8 = text.toUtf8();
    std::string line = "opera_report: ";
    texts::append_visible(line, {utf8.constData(), static_cast<size_t>(utf8.size())});
    std::fputs((line + '\n').c_str(), stderr);
}

bool keep_write_error(bool written)
{
    if (!written && write_error == 0) {
        write_error = errno;
        if (write_error != EPIPE)
            terminal::print_error(u"cannot write to standard output: " +
                                  qt_error_string(write_error));
        failed = true;
    }
    return write_error == 0;
}

} // namespace

namespace terminal
{

void print_error(const QString &text)
{
    failed = true;
    print_line(text);
}

void print_note(const QString &text)
{
    if (!quiet)
        print_line(text);
}

int exit_status()
{
    return failed ? 1 : 0;
}

bool print_result(QByteArrayView text)
{
    const auto size = static_cast<size_t>(text.size());
    return write_error == 0 && keep_write_error(std::fwrite(text.data(), 1, size, stdout) == size);
}

bool flush_results()
{
    const bool flushed = keep_write_error(std::fflush(stdout) == 0);
    if (status_length > 0) {
        show_status(QString());
        std::fputs("\r", stderr);
    }
    return flushed;
}

void set_quiet(bool wanted)
{
    quiet = wanted;
}

void show_progress(const QString &what, qint64 number)
{
    static const bool shown = is_interactive();
    static QElapsedTimer since_last;
    if (!shown || quiet || (since_last.isValid() && since_last.elapsed() < 100))
        return;
    since_last.start();
    show_status(what + u": " + QString::number(number));
}

void watch_interruption()
{
    std::signal(SIGINT, handle_signal);
    std::signal(SIGTERM, handle_signal);
}

bool interrupted()
{
    return stop_asked;
}

} // namespace terminal
