#include "common/debug_log.h"

#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"

#include <QDebug>

using namespace Qt::StringLiterals;

QString plugin_static_function::debug_file_path_QString;
QFile plugin_static_function::debug_file_regular_QFile;
int plugin_static_function::type_engine_int = -1;
bool plugin_static_function::debug_mode_status_bool = false;
bool plugin_static_function::debug_print_in_file_bool = false;
bool plugin_static_function::debug_print_on_terminal_bool = false;
bool plugin_static_function::debug_encryption_status_bool = false;

namespace
{

/// "virtual void opera::f(int)" to "opera::f": no arguments, no return type or qualifiers.
QString qualified_name(const QString &function_info)
{
    QString name = function_info.trimmed();
    if (name.isEmpty())
        return u"FUNCTION INFO IS EMPTY ---FAILED--- debug!!!"_s;

    if (const qsizetype arguments = name.indexOf(u'('); arguments >= 0)
        name.truncate(arguments);
    name = name.trimmed();
    name.remove(0, name.lastIndexOf(u' ') + 1);
    return name.trimmed();
}

/// Names of the evidence may hold line breaks: none may look like a line of the log.
QString one_line(const QString &message)
{
    QString line;
    line.reserve(message.size());
    for (const QChar c : message) {
        const bool breaks = (c.category() == QChar::Other_Control && c != u'\t') ||
                            c.category() == QChar::Separator_Line ||
                            c.category() == QChar::Separator_Paragraph;
        if (breaks)
            line += u"\\u" + QString::number(c.unicode(), 16).rightJustified(4, u'0');
        else
            line += c;
    }
    return line;
}

QString engine_part(int engine_type)
{
    switch (engine_type) {
    case 0:
        return u"][MIRVA_BENCH"_s;
    case 1:
        return u"][MIRVA_SCOUT"_s;
    case 2:
        return u"][MIRVA_PROBE"_s;
    default:
        return u"][ -----FAILED----- to find Engine Type ]["_s + QString::number(engine_type);
    }
}

} // namespace

void debug_log(const QString &message, const QString &function_info)
{
    using settings = plugin_static_function;
    if (!settings::debug_mode_status_bool)
        return;

    const QString line = u'[' + QDateTime::currentDateTime().toString(u"yyyy-MMM-ddThh-mm-ss"_s) +
                         engine_part(settings::type_engine_int) + u"][Artifacts Extraction][" +
                         qualified_name(function_info) + u"]:-- " + one_line(message);

    if (settings::debug_print_on_terminal_bool)
        qDebug().noquote() << line;

    QFile &file = settings::debug_file_regular_QFile;
    if (settings::debug_print_in_file_bool && file.isOpen()) {
        if (settings::debug_encryption_status_bool) {
            const QString cipher_text = settings::encrypt_string(
                line, u"static void plugin_static_function::app_debug(QString, QString)"_s);
            file.write(cipher_text.toLocal8Bit());
            file.write("<[{()}]>");
        } else {
            file.write(line.toLocal8Bit());
            file.write("\n");
        }
        file.flush();
    }
}

void plugin_static_function::set_general_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &general_info)
{
    debug_file_path_QString = general_info.debug_file_path;
    debug_mode_status_bool = general_info.debug_mode_status;
    debug_print_on_terminal_bool = general_info.debug_print_on_terminal;
    debug_print_in_file_bool = general_info.debug_print_in_file;
    debug_encryption_status_bool = general_info.debug_encryption_status;
    open_debug_file();
}

void plugin_static_function::open_debug_file()
{
    if (!debug_mode_status_bool || !debug_print_in_file_bool)
        return;

    // A file left open by an earlier run would keep receiving this run's lines.
    close_debug_file();
    debug_file_regular_QFile.setFileName(debug_file_path_QString);
    debug_file_regular_QFile.open(QIODevice::WriteOnly | QIODevice::Append);
}

void plugin_static_function::close_debug_file()
{
    if (!debug_file_regular_QFile.isOpen())
        return;
    debug_file_regular_QFile.flush();
    debug_file_regular_QFile.close();
}

QString plugin_static_function::encrypt_string(const QString &text, const QString & /*caller*/)
{
    if (text.isEmpty())
        return u""_s;
    return encryptor_string().encryptToString(text);
}
