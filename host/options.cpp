#include "host/options.h"

#include "host/result_tables.h"

#include <QCommandLineParser>
#include <QDir>

#include <limits>

using namespace Qt::StringLiterals;

namespace
{

void describe_options(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        u"Reads the Opera browser's profile files of a mounted evidence source into one SQLite "
        "result database.\nThe source is only read. Ctrl-C stops; the rows read so far stay.\n"
        "--source, --os and --result are needed."_s);
    parser.addOptions({
        {{u"h"_s, u"help"_s}, u"Show this help."_s},
        {{u"v"_s, u"version"_s}, u"Show the version."_s},
        {u"source"_s, u"Root folder of the mounted evidence source."_s, u"DIR"_s},
        {u"os"_s, u"Operating system of the source: macOS, winOS or iOS_UID."_s, u"NAME"_s},
        {u"result"_s, u"Result folder, made when missing; never inside the source."_s, u"DIR"_s},
        {u"account"_s,
         u"Account to read, its folder name under Users; may be repeated. Default: every folder "
         "under Users that belongs to a user."_s,
         u"USER[:DOMAIN]"_s},
        {u"table"_s,
         u"Result table to fill; may be repeated or given as a list with commas. Default: all "
         "but exportfilelist."_s,
         u"NAME"_s},
        {u"clear"_s, u"Empty the selected tables first."_s},
        {u"append"_s, u"Add to the rows of an earlier run without a word about them."_s},
        {u"no-hashes"_s, u"Take no SHA-256 of the evidence files for the record of the run."_s},
        {u"verify"_s, u"Take them again at the end and tell whether anything changed."_s},
        {u"source-count"_s, u"Number of the source in its case. Default: 1."_s, u"N"_s},
        {u"source-type"_s, u"Kind of source, for example macOS_Home_Directory."_s, u"TYPE"_s},
        {u"os-display"_s, u"Operating system as the rows name it."_s, u"TEXT"_s},
        {u"engine"_s, u"Engine type 0, 1 or 2, as the plug-in is told it. Default: 0."_s, u"N"_s},
        {u"extended-attribute"_s,
         u"File metadata attribute to read (macOS sources); may be repeated."_s, u"NAME"_s},
        {u"log"_s, u"Append the plug-in's log to this file."_s, u"FILE"_s},
        {u"log-encrypted"_s, u"Encrypt the lines of the log file."_s},
        {u"verbose"_s, u"Show the plug-in's log on standard error."_s},
        {u"plugin"_s, u"Plug-in library to load."_s, u"FILE"_s},
        {u"json"_s, u"Print the outcome as one JSON object."_s},
        {u"quiet"_s, u"Print nothing but errors (and the JSON object when asked for)."_s},
        {u"decipher-log"_s, u"Print the lines of an encrypted log file and do nothing else."_s,
         u"FILE"_s},
    });
}

/// Takes the options' values over and keeps the first objection.
class option_reader
{
public:
    explicit option_reader(const QCommandLineParser &parser) : parser_(parser) {}

    const QString &objection() const { return objection_; }
    void object(const QString &text)
    {
        if (objection_.isEmpty())
            objection_ = text;
    }

    QString path(const QString &name)
    {
        QString value = parser_.value(name);
        // An empty path would quietly mean the current folder.
        if (value.isEmpty() && parser_.isSet(name))
            object(u"--" + name + u" is empty");
        return value.isEmpty() ? value : QDir::cleanPath(QDir::current().absoluteFilePath(value));
    }

    QString required_path(const QString &name)
    {
        if (!parser_.isSet(name))
            object(u"--" + name + u" is missing");
        return path(name);
    }

    int number(const QString &name, int standard, int greatest)
    {
        if (!parser_.isSet(name))
            return standard;
        bool is_number = false;
        const int value = parser_.value(name).toInt(&is_number);
        if (!is_number || value < 0 || value > greatest)
            object(u"--" + name + u" takes a number from 0 to " + QString::number(greatest) +
                   u", not \"" + parser_.value(name) + u'"');
        return value;
    }

    QString os_scheme()
    {
        const QString value = parser_.value(u"os"_s);
        if (!parser_.isSet(u"os"_s))
            object(u"--os is missing"_s);
        else if (value != "macOS"_L1 && value != "winOS"_L1 && value != "iOS_UID"_L1)
            object(u"--os takes macOS, winOS or iOS_UID, not \"" + value + u'"');
        return value;
    }

    QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> accounts()
    {
        QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> accounts;
        const QStringList values = parser_.values(u"account"_s);
        for (const QString &value : values) {
            const QString user = value.section(u':', 0, 0);
            const QString domain = value.section(u':', 1);
            if (user.isEmpty())
                object(u"--account \"" + value + u"\" names no user"_s);
            else if (!is_folder_name(user) || !is_folder_name(domain))
                object(u"--account \"" + value + u"\" is no name of a folder under Users"_s);
            accounts.append({user, domain});
        }
        return accounts;
    }

    QStringList tables()
    {
        const QStringList named = parser_.values(u"table"_s).join(u',').split(u',');
        if (!parser_.isSet(u"table"_s))
            return artifact_tables();
        for (const QString &name : named) {
            if (!all_result_tables().contains(name))
                object(u"there is no result table \"" + name + u'"');
        }
        QStringList selected = all_result_tables();
        selected.removeIf([&named](const QString &name) { return !named.contains(name); });
        return selected;
    }

private:
    /// Both names of an account may become part of a path below the source.
    static bool is_folder_name(const QString &name)
    {
        return !name.contains(u'/') && name != "."_L1 && name != ".."_L1;
    }

    const QCommandLineParser &parser_;
    QString objection_;
};

QString usual_display(const QString &os_scheme)
{
    if (os_scheme == "iOS_UID"_L1)
        return u"iOS"_s;
    return os_scheme == "winOS"_L1 ? u"Windows"_s : u"macOS"_s;
}

host_options read_options(const QCommandLineParser &parser, option_reader &reader)
{
    host_options options;
    options.source = reader.required_path(u"source"_s);
    options.os_scheme = reader.os_scheme();
    options.os_display = parser.isSet(u"os-display"_s) ? parser.value(u"os-display"_s)
                                                       : usual_display(options.os_scheme);
    options.source_type = parser.value(u"source-type"_s);
    options.result = reader.required_path(u"result"_s);
    options.accounts = reader.accounts();
    options.tables = reader.tables();
    options.extended_attributes = parser.values(u"extended-attribute"_s);
    options.plugin_file = reader.path(u"plugin"_s);
    options.log_file = reader.path(u"log"_s);
    options.source_count = reader.number(u"source-count"_s, 1, std::numeric_limits<int>::max());
    options.engine_type = reader.number(u"engine"_s, 0, 2);
    options.log_encrypted = parser.isSet(u"log-encrypted"_s);
    options.clear = parser.isSet(u"clear"_s);
    options.append = parser.isSet(u"append"_s);
    options.hashes = !parser.isSet(u"no-hashes"_s);
    options.verify = parser.isSet(u"verify"_s);
    options.verbose = parser.isSet(u"verbose"_s);
    options.json = parser.isSet(u"json"_s);
    options.quiet = parser.isSet(u"quiet"_s);

    if (options.log_encrypted && options.log_file.isEmpty())
        reader.object(u"--log-encrypted needs --log"_s);
    if (options.clear && options.append)
        reader.object(u"--clear and --append contradict each other"_s);
    if (options.verify && !options.hashes)
        reader.object(u"--no-hashes and --verify contradict each other"_s);
    if (options.quiet && options.verbose)
        reader.object(u"--quiet and --verbose contradict each other"_s);
    return options;
}

} // namespace

command_line read_command_line(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe_options(parser);
    const bool understood = parser.parse(arguments);

    if (parser.isSet(u"help"_s))
        return {command_line::action::show_help, {}, parser.helpText()};
    if (parser.isSet(u"version"_s))
        return {command_line::action::show_version, {}, {}};
    if (!understood) {
        const QString error = parser.errorText();
        return {command_line::action::refuse, {}, error.endsWith(u'.') ? error.chopped(1) : error};
    }
    if (!parser.positionalArguments().isEmpty())
        return {command_line::action::refuse,
                {},
                u"unexpected argument \"" + parser.positionalArguments().constFirst() + u'"'};

    option_reader reader(parser);
    if (parser.isSet(u"decipher-log"_s)) {
        const QString log = reader.path(u"decipher-log"_s);
        if (parser.optionNames().size() > 1)
            reader.object(u"--decipher-log goes with no other option"_s);
        if (reader.objection().isEmpty())
            return {command_line::action::decrypt_log, {}, log};
        return {command_line::action::refuse, {}, reader.objection()};
    }

    const host_options options = read_options(parser, reader);
    if (!reader.objection().isEmpty())
        return {command_line::action::refuse, {}, reader.objection()};
    return {command_line::action::extract, options, {}};
}
