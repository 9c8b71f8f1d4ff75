#pragma once

#include "report/page.h"

#include <string>
#include <vector>

class output_file;
class row_cursor;
class pictures;

/// A table of the page that can be filtered and sorted.
class page_table
{
public:
    /// `id` names the section; both are ours or made of plain letters.
    page_table(std::string id, std::string label, std::vector<std::string> headings);

    /// Style rules that name the columns where the table is shown as cards.
    std::string style() const;
    /// Heading, note, filter and column names.
    std::string begin(std::string_view note) const;
    static std::string_view end() { return "</tbody></table></div></section>\n"; }

    const std::string &id() const { return id_; }
    const std::string &label() const { return label_; }

private:
    std::string id_;
    std::string label_;
    std::vector<std::string> headings_;
};

/// Appends a cell with the time in UTC and, when it is another, in the zone.
void append_time_cell(std::string &out, qint64 instant, const instants::zone &zone);
/// `style`: "" or one of the page's classes, "a" for accounts, "w" for what needs room.
void append_text_cell(std::string &out, std::string_view text, std::string_view style = "");

/// The section of one result table.
class result_section
{
public:
    result_section(const page_contents &contents, const surveyed_table &table, size_t number);

    const page_table &table() const { return table_; }
    /// False when the file cannot be written.
    bool write(output_file &file, qint64 &picture_budget);

private:
    void append_row(std::string &out, size_t case_index, row_cursor &row, pictures &shown);
    void append_cell(std::string &out, row_cursor &row, size_t index);
    void append_more(std::string &out, row_cursor &row);
    std::string_view style_of(const surveyed_column &column) const;

    const page_contents &contents_;
    const surveyed_table &surveyed_;
    size_t own_ = 0; ///< how many of the columns stand for themselves; the rest is behind "more"
    std::vector<surveyed_column> columns_;
    std::vector<size_t> picture_columns_;
    bool many_;
    page_table table_;
};
