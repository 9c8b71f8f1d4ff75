#include "report/page_table.h"

#include "report/html.h"
#include "report/output_file.h"
#include "report/pictures.h"
#include "report/result_database.h"
#include "report/table_rows.h"

#include <algorithm>

namespace
{

constexpr size_t most_own_columns = 8;
constexpr size_t longest_cell = 600;
constexpr size_t longest_detail = 4000;
constexpr std::string_view picture_paths[] = {"icon_copy_path", "relative_path"};
constexpr std::string_view exported_paths[] = {"export_file_paths", "preview_file_path"};

/// Whose the row is, what is read first, then everything else.
std::vector<surveyed_column> arrange(const surveyed_table &table, size_t &own)
{
    std::vector<surveyed_column> columns = filled_columns(table);
    const auto is_own = [&table](const surveyed_column &column) {
        if (column.name == "system_user" || column.name == "account_name")
            return true;
        if (table.known == nullptr)
            return !catalogue::is_origin_column(column.name);
        return std::ranges::find(table.known->first_columns, column.name) !=
               table.known->first_columns.end();
    };
    const auto rest = std::stable_partition(columns.begin(), columns.end(), is_own);
    own = qMin(static_cast<size_t>(rest - columns.begin()), most_own_columns + 1);
    return columns;
}

std::string heading_of(const std::string &column)
{
    std::string heading = column == "system_user" ? "account" : column;
    std::ranges::replace(heading, '_', ' ');
    return heading;
}

std::vector<std::string> headings_of(const std::vector<surveyed_column> &columns, size_t own,
                                     bool many, bool with_pictures)
{
    std::vector<std::string> headings;
    if (with_pictures)
        headings.emplace_back("picture");
    if (many)
        headings.emplace_back("case");
    for (size_t i = 0; i < own; ++i)
        headings.push_back(heading_of(columns[i].name));
    headings.emplace_back("more");
    return headings;
}

/// Columns that may lead to pictures in the result; downloaded and cached files lie there only when
/// the host exported them.
std::vector<size_t> picture_columns_of(const page_contents &contents, const surveyed_table &table,
                                       const std::vector<surveyed_column> &columns)
{
    const surveyed_table *const exported = contents.found.table("exportfilelist");
    const bool has_exported = exported != nullptr && exported->rows > 0 &&
                              (table.name == "downloads" || table.name == "cached_files");
    std::vector<size_t> found;
    for (size_t i = 0; i < columns.size(); ++i) {
        const auto is = [&name = columns[i].name](std::string_view path) { return path == name; };
        if (std::ranges::any_of(picture_paths, is) ||
            (has_exported && std::ranges::any_of(exported_paths, is)))
            found.push_back(i);
    }
    return found;
}

} // namespace

page_table::page_table(std::string id, std::string label, std::vector<std::string> headings)
    : id_(std::move(id)), label_(std::move(label)), headings_(std::move(headings))
{
}

std::string page_table::style() const
{
    // Inside a style element: nothing but letters, digits and blanks of a name gets here.
    std::string rules = "@media (max-width:700px){";
    for (size_t i = 0; i < headings_.size(); ++i) {
        rules += '#' + id_ + " td:nth-child(" + std::to_string(i + 1) + ")::before{content:\"";
        for (const char letter : headings_[i])
            rules += isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : ' ';
        rules += "\"}";
    }
    return rules + '}';
}

std::string page_table::begin(std::string_view note) const
{
    std::string out = "<section id=\"" + id_ + "\"><div class=\"bar\"><h2>";
    html::append_text(out, label_);
    out += "</h2><input type=\"search\" aria-label=\"Filter ";
    html::append_attribute(out, label_);
    out += "\" placeholder=\"Filter\"><span class=\"count\" role=\"status\"></span></div><p "
           "class=\"soft\">";
    html::append_text(out, note);
    out += "</p><div class=\"frame\"><table class=\"data\"><thead><tr>";
    for (const std::string &heading : headings_) {
        out += "<th scope=\"col\"><button type=\"button\">";
        html::append_text(out, heading, 100);
        out += "</button></th>";
    }
    return out + "</tr></thead><tbody>\n";
}

void append_time_cell(std::string &out, qint64 instant, const instants::zone &zone)
{
    out += "<td class=\"t\" data-s=\"" + std::to_string(instant) + "\"><span>";
    instants::append_readable(out, instant);
    if (!zone.is_utc()) {
        out += "<small>";
        zone.append_readable(out, instant);
        out += "</small>";
    }
    out += "</span></td>";
}

void append_text_cell(std::string &out, std::string_view text, std::string_view style)
{
    out += "<td";
    if (!style.empty())
        ((out += " class=\"") += style) += '"';
    out += '>';
    if (!text.empty()) {
        out += "<div class=\"x\">";
        html::append_text(out, text, longest_cell);
        out += "</div>";
    }
    out += "</td>";
}

result_section::result_section(const page_contents &contents, const surveyed_table &table,
                               size_t number)
    : contents_(contents), surveyed_(table), columns_(arrange(table, own_)),
      picture_columns_(picture_columns_of(contents, table, columns_)),
      many_(contents.results.size() > 1),
      table_("t" + std::to_string(number), table.label,
             headings_of(columns_, own_, many_, !picture_columns_.empty()))
{
}

bool result_section::write(output_file &file, qint64 &picture_budget)
{
    std::string note;
    html::append_number(note, surveyed_.rows);
    note += surveyed_.rows == 1 ? " row" : " rows";
    if (surveyed_.rows > contents_.most_rows) {
        note += "; shown are the newest, at most ";
        html::append_number(note, contents_.most_rows);
        note += many_ ? " shared among the cases. All are in the spreadsheet (--xlsx) and in CSV "
                        "files (--csv)."
                      : ". All are in the spreadsheet (--xlsx) and in CSV files (--csv).";
    }
    file.write(table_.begin(note));

    const qint64 most_of_one =
        surveyed_.rows <= contents_.most_rows
            ? contents_.most_rows
            : qMax(contents_.most_rows / static_cast<qint64>(contents_.results.size()), qint64{1});
    qint64 left = contents_.most_rows;
    std::string line;
    for (size_t i = 0; i < contents_.results.size() && left > 0; ++i) {
        result_database database(contents_.results[i]);
        const stored_table *const stored = database.table(surveyed_.name);
        if (stored == nullptr)
            continue;
        std::vector<int> places;
        for (const surveyed_column &column : columns_)
            places.push_back(stored->column(column.name));
        std::vector<int> times;
        for (const surveyed_column &column : columns_) {
            const int place = stored->column(column.name);
            if (column.time != nullptr && place >= 0 &&
                column.time->form == instants::stored_form::unix_seconds)
                times.push_back(place);
        }
        pictures shown(database, picture_budget);
        auto rows = times.empty() ? database.rows(*stored, places)
                                  : database.latest_rows(*stored, places, times, most_of_one);
        for (qint64 of_one = 0; rows && left > 0 && of_one < most_of_one && rows->next();
             ++of_one) {
            line.clear();
            append_row(line, i, *rows, shown);
            if (!file.write(line))
                return false;
            --left;
        }
    }
    return file.write(page_table::end());
}

std::string_view result_section::style_of(const surveyed_column &column) const
{
    if (column.name == "system_user" || column.name == "account_name")
        return "a";
    return surveyed_.known != nullptr && column.name == surveyed_.known->url ? "w" : "";
}

void result_section::append_row(std::string &out, size_t case_index, row_cursor &row,
                                pictures &shown)
{
    out += "<tr>";
    if (!picture_columns_.empty()) {
        std::string data;
        for (size_t i = 0; i < picture_columns_.size() && data.empty(); ++i)
            data = shown.data_of(row.text(picture_columns_[i]));
        out += data.empty() ? "<td></td>" : "<td><img alt=\"picture\" src=\"" + data + "\"></td>";
    }
    if (many_)
        append_text_cell(out, contents_.results[case_index].name, "a");
    for (size_t i = 0; i < own_; ++i)
        append_cell(out, row, i);
    append_more(out, row);
    out += "</tr>\n";
}

void result_section::append_cell(std::string &out, row_cursor &row, size_t index)
{
    const catalogue::time_column *const time = columns_[index].time;
    const std::optional<qint64> number = time ? row.whole_number(index) : std::nullopt;
    if (const auto at = number ? instants::of(*number, time->form) : std::nullopt)
        append_time_cell(out, *at, contents_.zone);
    else
        append_text_cell(out, row.text(index), style_of(columns_[index]));
}

void result_section::append_more(std::string &out, row_cursor &row)
{
    out += "<td><details name=\"more\"><summary>more</summary><dl><dt>row</dt><dd>" +
           std::to_string(row.row_id()) + "</dd>";
    for (size_t i = own_; i < columns_.size(); ++i) {
        const std::string_view text = row.text(i);
        if (text.empty() || columns_[i].name == "INT")
            continue;
        out += "<dt>";
        html::append_text(out, heading_of(columns_[i].name), 100);
        out += "</dt><dd>";
        const catalogue::time_column *const time = columns_[i].time;
        const std::optional<qint64> number = time ? row.whole_number(i) : std::nullopt;
        if (const auto at = number ? instants::of(*number, time->form) : std::nullopt)
            instants::append_readable(out, *at);
        else
            html::append_text(out, text, longest_detail);
        out += "</dd>";
    }
    out += "</dl></details></td>";
}
