#include "report/page.h"

#include "report/event_reader.h"
#include "report/html.h"
#include "report/output_file.h"
#include "report/page_table.h"
#include "report/plots.h"
#include "report/run_record.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 most_picture_bytes = qint64{8} << 20;
constexpr size_t most_problems = 500;

QByteArray resource(const QString &name)
{
    QFile file(u":/page/"_s + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::string hash_of(const QByteArray &content)
{
    return "'sha256-" +
           QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64().toStdString() +
           '\'';
}

std::string head_of(const QByteArray &style, const QByteArray &script)
{
    // Nothing is loaded, nothing runs but the script with this hash, and not even that makes markup
    // from texts.
    const std::string policy = "default-src 'none'; script-src " + hash_of(script) +
                               "; style-src " + hash_of(style) +
                               "; img-src data:; base-uri 'none'; form-action 'none'; "
                               "require-trusted-types-for 'script'; trusted-types 'none'";
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
           policy +
           "\"><meta name=\"referrer\" content=\"no-referrer\">"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
           "<title>Opera report</title><style>" +
           style.toStdString() + "</style></head>\n<body>";
}

class page
{
public:
    page(const QString &path, const page_contents &contents)
        : contents_(contents), file_(path),
          overview_("overview", "Accounts and profiles", overview_headings()),
          latest_("latest", "Latest activity", latest_headings())
    {
        for (size_t i = 0; i < contents.found.tables.size(); ++i) {
            if (contents.found.tables[i].rows > 0)
                sections_.emplace_back(contents, contents.found.tables[i], i);
        }
    }

    void write()
    {
        QByteArray style = resource(u"page.css"_s);
        for (const page_table *table : {&overview_, &latest_})
            style += QByteArray::fromStdString(table->style());
        for (const result_section &section : sections_)
            style += QByteArray::fromStdString(section.table().style());
        const QByteArray script = resource(u"page.js"_s);

        file_.write(head_of(style, script));
        write_header();
        write_overview();
        write_problems();
        write_plots();
        write_latest();
        qint64 budget = most_picture_bytes;
        for (result_section &section : sections_) {
            if (!section.write(file_, budget))
                break;
        }
        file_.write("</main><footer>Made by opera_report " OPERA_REPORT_VERSION
                    ". Texts of the evidence are shown as texts; characters that would hide or "
                    "reorder others are shown by their code.</footer><script>" +
                    script.toStdString() + "</script></body></html>\n");
        file_.commit();
    }

private:
    bool many() const { return contents_.results.size() > 1; }

    std::vector<std::string> overview_headings() const
    {
        std::vector<std::string> headings = {"account",       "profile",        "rows",
                                             "rows by table", "first activity", "last activity"};
        if (many())
            headings.insert(headings.begin(), "case");
        return headings;
    }

    std::vector<std::string> latest_headings() const
    {
        std::vector<std::string> headings = {"time", "what", "message", "account", "detail"};
        if (many())
            headings.insert(headings.begin() + 1, "case");
        return headings;
    }

    void write_header()
    {
        std::string out = "<header><h1>Opera report</h1><p class=\"soft\">";
        out += many() ? std::to_string(contents_.results.size()) + " results" : "Result ";
        if (!many() && !contents_.results.empty())
            html::append_text(out, contents_.results.front().name);
        out += " · made " +
               QDateTime::currentDateTimeUtc().toString(u"yyyy-MM-dd hh:mm"_s).toStdString() +
               " UTC · times are UTC";
        if (!contents_.zone.is_utc()) {
            out += ", below them those of ";
            html::append_text(out, contents_.zone.name());
        }
        out += "</p></header>\n<nav aria-label=\"Sections\">"
               "<input type=\"search\" id=\"everywhere\" aria-label=\"Filter all tables\" "
               "placeholder=\"Filter all tables\"><a href=\"#overview\">Accounts</a>"
               "<a href=\"#plots\">Activity</a><a href=\"#latest\">Latest</a>";
        for (const result_section &section : sections_) {
            out += "<a href=\"#" + section.table().id() + "\">";
            html::append_text(out, section.table().label(), 60);
            out += "</a>";
        }
        out +=
            "<span class=\"soft keys\">Keys: / filter, arrows rows, Enter all of a row, Esc back</span></nav>\n"
            "<main>";
        file_.write(out);
    }

    void write_overview()
    {
        const auto &found = contents_.found;
        std::string out = overview_.begin(
            found.profiles_complete
                ? "Whose rows the results hold, and when somebody used the profile"
                : "There are too many accounts or profiles to list; the first are shown");
        for (const auto &[key, rows] : found.profiles) {
            out += "<tr>";
            if (many())
                append_text_cell(out, contents_.results[key.case_index].name, "a");
            append_text_cell(out, key.account, "a");
            append_text_cell(out, key.profile, "w");
            qint64 all = 0;
            std::string by_table;
            for (const surveyed_table &table : found.tables) {
                const auto place = rows.rows.find(table.name);
                if (place == rows.rows.end())
                    continue;
                all += place->second;
                by_table += (by_table.empty() ? "" : " · ") + table.label + ' ';
                html::append_number(by_table, place->second);
            }
            out += "<td class=\"n\" data-s=\"" + std::to_string(all) + "\">";
            html::append_number(out, all);
            out += "</td>";
            out += "<td class=\"w\">";
            html::append_text(out, by_table);
            out += "</td>";
            const auto span = contents_.counted.spans().find(key);
            if (span == contents_.counted.spans().end()) {
                out += "<td></td><td></td>";
            } else {
                append_time_cell(out, span->second.first, contents_.zone);
                append_time_cell(out, span->second.last, contents_.zone);
            }
            out += "</tr>\n";
        }
        file_.write(out.append(page_table::end()));
    }

    /// What the records of the runs tell of damage and refusals.
    void write_problems()
    {
        std::string list;
        size_t count = 0;
        size_t records = 0;
        for (const result_folder &result : contents_.results) {
            const run_record record = read_run_record(result.home);
            records += record.runs.empty() ? 0 : 1;
            for (const run_record::run &run : record.runs) {
                if (run.cancelled)
                    append_problem(list, ++count, result,
                                   {u"cancelled"_s, run.source,
                                    u"the run was cancelled; rows read before stayed"_s});
            }
            for (const run_record::problem &problem : record.problems)
                append_problem(list, ++count, result, problem);
        }
        if (records == 0)
            file_.write("<section id=\"problems\"><h2>Damage and refusals</h2><p>No result has a "
                        "record of its run (Opera_run.json): see the log of the extraction.</p>"
                        "</section>\n");
        else if (count == 0)
            file_.write("<section id=\"problems\"><h2>Damage and refusals</h2><p>The records of "
                        "the runs tell of none.</p></section>\n");
        else
            file_.write("<section id=\"problems\"><h2>Damage and refusals</h2><div "
                        "class=\"warn\"><p>" +
                        std::to_string(count) + " told by the records of the runs" +
                        (count > most_problems ? "; the first are shown" : "") + ":</p><ul>" +
                        list + "</ul></div></section>\n");
    }

    void append_problem(std::string &out, size_t number, const result_folder &result,
                        const run_record::problem &problem) const
    {
        if (number > most_problems)
            return;
        out += "<li>";
        if (many()) {
            html::append_text(out, result.name);
            out += ": ";
        }
        out += "<b>";
        html::append_text(out, problem.outcome.toStdString(), 100);
        out += "</b> ";
        html::append_text(out, problem.path.toStdString());
        out += problem.sentence.isEmpty() ? "" : " – ";
        html::append_text(out, problem.sentence.toStdString());
        out += "</li>";
    }

    void write_plots()
    {
        const std::string plots = plots_of(contents_.counted, contents_.zone.name());
        file_.write("<section id=\"plots\"><h2>Activity</h2>" +
                    (plots.empty() ? "<p>No table tells when somebody used the browser.</p>"
                                   : "<div class=\"plots\">" + plots + "</div>") +
                    "</section>\n");
    }

    void write_latest()
    {
        const auto &latest = contents_.counted.latest();
        if (latest.empty()) {
            file_.write("<section id=\"latest\"><h2>Latest activity</h2><p>There is none.</p>"
                        "</section>\n");
            return;
        }
        std::string out = latest_.begin("The last " + std::to_string(latest.size()) +
                                        " events of what somebody did; --timeline writes all "
                                        "events of all tables.");
        for (auto kept = latest.rbegin(); kept != latest.rend(); ++kept) {
            out += "<tr>";
            append_time_cell(out, kept->told.where.at, contents_.zone);
            if (many())
                append_text_cell(out, contents_.results[kept->told.where.case_index].name, "a");
            append_text_cell(out, description_of(kept->told));
            append_text_cell(out, kept->texts[event::message], "w");
            append_text_cell(out, kept->texts[event::account], "a");
            append_text_cell(out, kept->texts[event::detail]);
            out += "</tr>\n";
        }
        file_.write(out.append(page_table::end()));
    }

    const page_contents &contents_;
    output_file file_;
    page_table overview_;
    page_table latest_;
    std::vector<result_section> sections_;
};

} // namespace

void write_page(const QString &path, const page_contents &contents)
{
    page(path, contents).write();
}
