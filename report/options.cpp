#include "report/options.h"

#include "report/instants.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace
{

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        u"Reads result databases of opera_extract and hands over what was found. None of them is "
        "written.\nWithout an option that names an output, it prints what the results hold.\n"
        "Exit status: 0 done, 1 something could not be read or written, 2 wrong usage, 130 "
        "interrupted."_s);
    parser.addOptions({
        {{u"h"_s, u"help"_s}, u"Show this help."_s},
        {{u"v"_s, u"version"_s}, u"Show the version."_s},
        {u"html"_s, u"Write a report as one page that opens offline."_s, u"FILE"_s},
        {u"html-rows"_s,
         u"Rows of each table in the page, the newest, over all results. Default: 1000."_s, u"N"_s},
        {u"xlsx"_s, u"Write a spreadsheet, one sheet per table."_s, u"FILE"_s},
        {u"csv"_s, u"Write one CSV file per table into this folder, made when missing."_s,
         u"DIR"_s},
        {u"timeline"_s, u"Write every event of every table by time; FILE ends in .csv or .jsonl."_s,
         u"FILE"_s},
        {u"search"_s,
         u"Print every value that holds the word, whatever its case; may be repeated."_s,
         u"WORD"_s},
        {u"search-csv"_s, u"Print what was found as CSV."_s},
        {u"zone"_s, u"Show times in this zone as well, for example Europe/Berlin."_s, u"ZONE"_s},
        {u"quiet"_s, u"Print no progress and no notes."_s},
    });
    parser.addPositionalArgument(
        u"RESULT"_s,
        u"Folder given to opera_extract --result, a folder above several of them, or an "
        "Opera.sqlite."_s,
        u"RESULT..."_s);
}

QString objection_to(const QCommandLineParser &parser, const report_options &options)
{
    for (const QString &name : {u"html"_s, u"xlsx"_s, u"csv"_s, u"timeline"_s, u"search"_s}) {
        if (parser.isSet(name) && parser.values(name).contains(QString()))
            return u"--" + name + u" is empty";
    }
    if (!options.timeline.isEmpty() && !options.timeline.endsWith(".csv"_L1) &&
        !options.timeline.endsWith(".jsonl"_L1))
        return u"--timeline takes a file that ends in .csv or .jsonl, not \"" + options.timeline +
               u'"';
    if (!instants::zone(options.zone).valid())
        return u"there is no time zone \"" + QString::fromUtf8(options.zone) + u'"';
    if (options.html_rows < 1 || options.html_rows > 1'000'000)
        return u"--html-rows takes a number from 1 to 1000000, not \"" +
               parser.value(u"html-rows"_s) + u'"';
    if (options.search_as_csv && options.words.isEmpty())
        return u"--search-csv needs --search"_s;
    if (options.results.isEmpty())
        return u"no RESULT is given"_s;
    return {};
}

} // namespace

command_line read_command_line(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe(parser);
    const bool understood = parser.parse(arguments);
    if (parser.isSet(u"help"_s))
        return {command_line::action::show_help, {}, parser.helpText()};
    if (parser.isSet(u"version"_s))
        return {command_line::action::show_version, {}, {}};
    if (!understood) {
        const QString error = parser.errorText();
        return {command_line::action::refuse, {}, error.endsWith(u'.') ? error.chopped(1) : error};
    }

    report_options options;
    options.results = parser.positionalArguments();
    options.html = parser.value(u"html"_s);
    options.xlsx = parser.value(u"xlsx"_s);
    options.csv_folder = parser.value(u"csv"_s);
    options.timeline = parser.value(u"timeline"_s);
    options.words = parser.values(u"search"_s);
    options.search_as_csv = parser.isSet(u"search-csv"_s);
    options.quiet = parser.isSet(u"quiet"_s);
    if (parser.isSet(u"zone"_s))
        options.zone = parser.value(u"zone"_s).toUtf8();
    if (parser.isSet(u"html-rows"_s))
        options.html_rows = parser.value(u"html-rows"_s).toLongLong();
    const QString objection = objection_to(parser, options);
    if (!objection.isEmpty())
        return {command_line::action::refuse, {}, objection};
    return {command_line::action::report, options, {}};
}
