#include "sample/options.h"

#include <QCommandLineParser>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

constexpr int most_accounts = 1000;
constexpr qint64 greatest_scale = 1000000;

QString help_on_parts()
{
    QString text = u"\nParts (for --only):\n"_s;
    const QList<part_description> parts = evidence_parts();
    for (const part_description &part : parts)
        text += u"  " + part.name.leftJustified(16) + part.contents + u'\n';
    return text;
}

void describe_options(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        u"Writes an invented evidence source: accounts with profiles of the Opera browser, as a "
        "mounted volume shows them.\nEqual options give equal files. The accounts' browsers are in "
        "turn of the current, an older and the newest generation."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {u"os"_s, u"Operating system of the source: macOS or winOS."_s, u"NAME"_s},
        {u"out"_s,
         u"Folder to write to: new, empty, or made by an earlier run, whose evidence is replaced."_s,
         u"DIR"_s},
        {u"accounts"_s, u"Number of accounts with a profile. Default: 2."_s, u"N"_s, u"2"_s},
        {u"scale"_s,
         u"1 (default): small tables, to look at. From 2 on N times as much as these: 40 pages "
         "with 100 visits, 100 cookies, bookmarks and cached files, 10 downloads and so on; "
         "--describe tells all numbers."_s,
         u"N"_s, u"1"_s},
        {u"seed"_s, u"Another number gives other ordinary rows. Default: 1."_s, u"N"_s, u"1"_s},
        {u"generation"_s, u"One browser generation for all accounts: current, older or newest."_s,
         u"NAME"_s},
        {u"only"_s, u"Parts to write, separated by commas. Default: all."_s, u"PARTS"_s},
        {u"describe"_s, u"Print what would be written, and write nothing."_s},
    });
}

/// Takes the options' values over and keeps the first objection.
class option_reader
{
public:
    explicit option_reader(const QCommandLineParser &parser) : parser_(parser) {}

    const QString &objection() const { return objection_; }

    os_scheme system()
    {
        const QString value = parser_.value(u"os"_s);
        if (!parser_.isSet(u"os"_s))
            object(u"--os is missing"_s);
        else if (value != "macOS"_L1 && value != "winOS"_L1)
            object(u"--os takes macOS or winOS, not \"" + value + u'"');
        return value == "winOS"_L1 ? os_scheme::windows : os_scheme::macos;
    }

    QString folder()
    {
        QString value = parser_.value(u"out"_s);
        if (!parser_.isSet(u"out"_s) && !parser_.isSet(u"describe"_s))
            object(u"--out is missing"_s);
        else if (parser_.isSet(u"out"_s) && value.isEmpty())
            object(u"--out is empty"_s);
        return value;
    }

    quint64 number(const QString &name, quint64 least, quint64 greatest)
    {
        bool is_number = false;
        const quint64 value = parser_.value(name).toULongLong(&is_number);
        if (!is_number || value < least || value > greatest)
            object(u"--" + name + u" takes a number from " + QString::number(least) + u" to " +
                   QString::number(greatest) + u", not \"" + parser_.value(name) + u'"');
        return value;
    }

    generation_choice generation()
    {
        const QString value = parser_.value(u"generation"_s);
        if (!parser_.isSet(u"generation"_s))
            return generation_choice::in_turn;
        if (value == "current"_L1)
            return generation_choice::current;
        if (value == "older"_L1)
            return generation_choice::older;
        if (value != "newest"_L1)
            object(u"--generation takes current, older or newest, not \"" + value + u'"');
        return generation_choice::newest;
    }

    QStringList parts()
    {
        if (!parser_.isSet(u"only"_s))
            return {};
        QStringList known;
        for (const part_description &part : evidence_parts())
            known.append(part.name);
        QStringList named = parser_.values(u"only"_s).join(u',').split(u',');
        for (const QString &name : std::as_const(named)) {
            if (!known.contains(name))
                object(u"there is no part \"" + name + u'"');
        }
        return named;
    }

private:
    void object(const QString &text)
    {
        if (objection_.isEmpty())
            objection_ = text;
    }

    const QCommandLineParser &parser_;
    QString objection_;
};

} // namespace

command_line read_command_line(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe_options(parser);
    const bool understood = parser.parse(arguments);

    if (parser.isSet(u"help"_s))
        return {command_line::action::print, {}, parser.helpText() + help_on_parts()};
    if (parser.isSet(u"version"_s))
        return {command_line::action::print, {}, u"sample_evidence " SAMPLE_VERSION "\n"_s};
    if (!understood) {
        QString objection = parser.errorText();
        if (objection.endsWith(u'.'))
            objection.chop(1);
        return {command_line::action::refuse, {}, objection};
    }
    if (!parser.positionalArguments().isEmpty())
        return {command_line::action::refuse,
                {},
                u"unexpected argument \"" + parser.positionalArguments().constFirst() + u'"'};

    option_reader reader(parser);
    evidence_request request;
    request.system = reader.system();
    request.folder = reader.folder();
    request.accounts = static_cast<int>(reader.number(u"accounts"_s, 0, most_accounts));
    request.scale = static_cast<qint64>(reader.number(u"scale"_s, 1, greatest_scale));
    request.seed = reader.number(u"seed"_s, 0, std::numeric_limits<quint64>::max());
    request.generation = reader.generation();
    request.only = reader.parts();
    if (!reader.objection().isEmpty())
        return {command_line::action::refuse, {}, reader.objection()};
    const bool describe = parser.isSet(u"describe"_s);
    return {describe ? command_line::action::describe : command_line::action::write, request, {}};
}

} // namespace sample
