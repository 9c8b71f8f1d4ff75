#include "host/terminal.h"

#include <QLoggingCategory>

#include <cerrno>
#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

bool messages_shown = false;
qsizetype status_length = 0;
int write_error = 0;

void print_on_standard_error(const QString &line)
{
    terminal::clear_status();
    std::fputs((line + u'\n').toLocal8Bit().constData(), stderr);
}

void handle_message(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
{
    if (messages_shown || type == QtCriticalMsg || type == QtFatalMsg)
        print_on_standard_error(terminal::one_line(message));
}

bool misleads(QChar character)
{
    switch (character.direction()) {
    case QChar::DirLRE:
    case QChar::DirLRO:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI:
        return true;
    default:
        break;
    }
    // The marks: left to right, right to left, Arabic letter.
    if (character == QChar(0x200e) || character == QChar(0x200f) || character == QChar(0x061c))
        return true;
    switch (character.category()) {
    case QChar::Other_Control:
        return character != u'\t';
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

bool keep_write_error(bool written)
{
    if (!written && write_error == 0)
        write_error = errno;
    return written;
}

} // namespace

namespace terminal
{

QString one_line(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar character : text) {
        if (misleads(character))
            line += u"\\u" + QString::number(character.unicode(), 16).rightJustified(4, u'0');
        else
            line += character;
    }
    return line;
}

QString cut(const QString &text, int columns)
{
    // Characters from here on may take two columns.
    constexpr char16_t first_wide = 0x1100;
    int taken = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        taken += !character.isLowSurrogate() && character.unicode() >= first_wide ? 2 : 1;
        if (taken > columns) {
            qsizetype kept = qMax(i - 2, qsizetype{0});
            if (kept > 0 && text.at(kept - 1).isHighSurrogate())
                --kept;
            return text.first(kept) + u'…';
        }
    }
    return text;
}

void print_error(const QString &text)
{
    print_on_standard_error(u"opera_extract: " + one_line(text));
}

bool print_result(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<size_t>(bytes.size());
    return keep_write_error(std::fwrite(bytes.constData(), 1, size, stdout) == size);
}

bool flush_results()
{
    if (keep_write_error(std::fflush(stdout) == 0) && write_error == 0)
        return true;
    if (write_error != EPIPE)
        print_error(u"cannot write to standard output: " + qt_error_string(write_error));
    return false;
}

void install_message_handler()
{
    qInstallMessageHandler(handle_message);
}

void show_messages(bool shown)
{
    messages_shown = shown;
    // Some systems switch debug messages off for every program.
    if (shown)
        QLoggingCategory::setFilterRules(u"default.debug=true"_s);
}

void show_status(const QString &line)
{
    // Blanks rather than an escape sequence: not every console understands one.
    const QString padded = line.leftJustified(status_length);
    std::fputs((u'\r' + padded).toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
    status_length = line.size();
}

void clear_status()
{
    if (status_length == 0)
        return;
    status_length += 2; // the terminal's own "^C"
    show_status(QString());
    std::fputs("\r", stderr);
}

bool is_interactive()
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace terminal
