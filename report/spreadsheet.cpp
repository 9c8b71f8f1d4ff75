#include "report/spreadsheet.h"

#include "report/result_database.h"
#include "report/table_rows.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <xlsxwriter.h>

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;

namespace
{

constexpr lxw_row_t most_rows = 1'048'576;
constexpr size_t most_columns = 16'384;
constexpr size_t most_units = 32'767;
constexpr std::string_view cut_mark = " […cut]";
constexpr size_t cut_mark_units = 7;
constexpr double day = 86'400'000'000.0;
/// Dates of a spreadsheet count days from here and begin in 1900.
constexpr qint64 first_day = -2'209'161'600'000'000;  // 1899-12-30
constexpr qint64 first_date = -2'203'891'200'000'000; // 1900-03-01: before it, day numbers differ
constexpr double column_width = 22;
constexpr double time_width = 19;

/// Whether a spreadsheet would read the beginning as the character of that number: "_x0041_".
bool is_escape(std::string_view text)
{
    return text.size() >= 7 && text.starts_with("_x") && text[6] == '_' &&
           text.substr(2, 4).find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

/// The text without what XML 1.0 has no place for, cut at a cell's limit.
std::string cell_text(std::string_view text)
{
    std::string shown;
    const bool cut = texts::cut_to_units(text, most_units).size() < text.size();
    if (cut)
        text = texts::cut_to_units(text, most_units - cut_mark_units);
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = texts::take_character(text);
        if (character == '\r' && text.starts_with('\n'))
            continue; // a sheet's line ends are line feeds
        if ((character < 0x20 && character != '\t' && character != '\n') ||
            (character & 0xfffe) == 0xfffe)
            shown += "\uFFFD";
        else if (is_escape(before))
            shown += "_x005F_";
        else
            shown += before.substr(0, before.size() - text.size());
    }
    return cut ? shown.append(cut_mark) : shown;
}

class workbook
{
public:
    explicit workbook(const QString &path)
        : scratch_(), folder_(QFile::encodeName(scratch_.path())), name_(QFile::encodeName(path))
    {
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = folder_.data();
        options.use_zip64 = LXW_TRUE;
        book_ = scratch_.isValid() ? workbook_new_opt(name_.constData(), &options) : nullptr;
        if (book_ == nullptr) {
            problem_ = u"no temporary folder can be made"_s;
            return;
        }
        header_ = workbook_add_format(book_);
        format_set_bold(header_);
        format_set_bg_color(header_, 0xE3EAF2);
        date_ = workbook_add_format(book_);
        format_set_num_format(date_, "yyyy-mm-dd hh:mm:ss");
    }
    ~workbook() { close(); }
    workbook(const workbook &) = delete;
    workbook &operator=(const workbook &) = delete;

    bool is_open() const { return book_ != nullptr; }
    lxw_format *header() const { return header_; }
    lxw_format *date() const { return date_; }

    lxw_worksheet *add_sheet(const std::string &name)
    {
        return workbook_add_worksheet(book_, free_name(name).c_str());
    }

    /// Whether all rows of the sheet so far lie in its temporary file: the library does not look.
    bool has_kept(lxw_worksheet *sheet)
    {
        FILE *const rows = sheet->optimize_tmpfile;
        if (rows == nullptr)
            return true;
        if (std::fflush(rows) != 0 || std::ferror(rows) != 0) {
            problem_ = u"no room in the temporary folder "_s + scratch_.path();
            return false;
        }
        largest_sheet_ = qMax(largest_sheet_, qint64{std::ftell(rows)});
        return true;
    }

    /// Writes the file. What went wrong, empty when nothing did.
    QString close()
    {
        lxw_workbook *const book = std::exchange(book_, nullptr);
        if (book == nullptr)
            return problem_;
        // The library makes a second copy of each sheet, in turn, and does not look at that either.
        constexpr qint64 reserve = qint64{1} << 20;
        if (QStorageInfo(scratch_.path()).bytesAvailable() < largest_sheet_ + reserve)
            problem_ = u"no room in the temporary folder "_s + scratch_.path();
        const lxw_error error = workbook_close(book);
        if (problem_.isEmpty() && error != LXW_NO_ERROR)
            problem_ = QString::fromUtf8(lxw_strerror(error));
        return problem_;
    }

private:
    /// At most 31 characters, none that sheets may not have, and not taken, whatever its case.
    std::string free_name(const std::string &wanted)
    {
        std::string plain;
        for (const char letter : wanted.substr(0, 24))
            plain +=
                isalnum(static_cast<unsigned char>(letter)) != 0 || letter == ' ' ? letter : '_';
        for (int number = 1;; ++number) {
            std::string name = number == 1 ? plain : plain + " (" + std::to_string(number) + ")";
            std::string key = name;
            std::ranges::transform(key, key.begin(),
                                   [](char letter) { return static_cast<char>(tolower(letter)); });
            if (!name.empty() && names_.insert(key).second)
                return name;
        }
    }

    QTemporaryDir scratch_;
    QByteArray folder_;
    QByteArray name_;
    lxw_workbook *book_ = nullptr;
    lxw_format *header_ = nullptr;
    lxw_format *date_ = nullptr;
    QString problem_;
    qint64 largest_sheet_ = 0;
    std::set<std::string> names_;
};

/// Writes one table into as many sheets as it needs.
class table_sheets
{
public:
    table_sheets(workbook &book, const surveyed_table &table, const instants::zone &zone)
        : book_(book), table_(table), columns_(filled_columns(table)), zone_(zone)
    {
    }

    const std::vector<surveyed_column> &columns() const { return columns_; }

    bool add(const std::string &case_name, row_cursor &row)
    {
        if ((sheet_ == nullptr || row_ == most_rows) && !begin_sheet())
            return false;
        column_ = 0;
        write_text(case_name);
        for (size_t i = 0; i < columns_.size(); ++i)
            write_value(row, i);
        constexpr lxw_row_t rows_between_looks = 4096;
        return ++row_ % rows_between_looks != 0 || book_.has_kept(sheet_);
    }

    /// False when rows were lost.
    bool end()
    {
        lxw_worksheet *const sheet = std::exchange(sheet_, nullptr);
        if (sheet == nullptr)
            return true;
        worksheet_autofilter(sheet, 0, 0, row_ - 1, static_cast<lxw_col_t>(column_ - 1));
        return book_.has_kept(sheet);
    }

private:
    bool begin_sheet()
    {
        if (!end())
            return false;
        sheet_ = book_.add_sheet(table_.label);
        if (sheet_ == nullptr)
            return false;
        worksheet_freeze_panes(sheet_, 1, 0);
        row_ = 0;
        column_ = 0;
        write_header("case", column_width);
        for (const surveyed_column &column : columns_) {
            const bool time = is_date(column);
            write_header(column.name + (time ? " (UTC)" : ""), time ? time_width : column_width);
            if (time && !zone_.is_utc())
                write_header(column.name + " (" + zone_.name() + ")", time_width);
        }
        ++row_;
        return true;
    }

    static bool is_date(const surveyed_column &column)
    {
        using enum instants::stored_form;
        return column.time != nullptr &&
               (column.time->form == unix_seconds || column.time->form == as_the_browser_had_it);
    }

    lxw_col_t next_column() { return static_cast<lxw_col_t>(qMin(column_++, most_columns - 1)); }

    void write_header(const std::string &text, double width)
    {
        const lxw_col_t column = next_column();
        worksheet_set_column(sheet_, column, column, width, nullptr);
        worksheet_write_string(sheet_, row_, column, cell_text(text).c_str(), book_.header());
    }

    void write_text(std::string_view text)
    {
        const lxw_col_t column = next_column();
        if (!text.empty())
            worksheet_write_string(sheet_, row_, column, cell_text(text).c_str(), nullptr);
    }

    void write_date(qint64 instant)
    {
        const double days = static_cast<double>(instant - first_day) / day;
        worksheet_write_number(sheet_, row_, next_column(), days, book_.date());
    }

    void write_value(row_cursor &row, size_t index)
    {
        if (!is_date(columns_[index])) {
            write_text(row.text(index));
            return;
        }
        const std::optional<qint64> number = row.whole_number(index);
        const std::optional<qint64> at =
            number ? instants::of(*number, columns_[index].time->form) : std::nullopt;
        if (at && *at >= first_date)
            write_date(*at);
        else
            write_text(row.text(index));
        if (zone_.is_utc())
            return;
        if (at && *at >= first_date + static_cast<qint64>(day))
            write_date(*at + zone_.offset(*at));
        else
            write_text({});
    }

    workbook &book_;
    const surveyed_table &table_;
    std::vector<surveyed_column> columns_;
    const instants::zone &zone_;
    lxw_worksheet *sheet_ = nullptr;
    lxw_row_t row_ = 0;
    size_t column_ = 0;
};

/// False, and told, where the workbook could not be written.
bool fill(const QString &path, const QString &shown_path, const std::vector<result_folder> &results,
          const result_survey &found, const instants::zone &zone)
{
    workbook book(path);
    bool made = book.is_open();
    bool empty = true;
    for (const surveyed_table &table : found.tables) {
        if (!made || table.rows == 0)
            continue;
        table_sheets sheets(book, table, zone);
        for_each_row(results, table, sheets.columns(), [&](size_t case_index, row_cursor &row) {
            empty = false;
            return made = sheets.add(results[case_index].name, row);
        });
        made = sheets.end() && made;
    }
    if (made && empty)
        made = book.add_sheet("No rows") != nullptr;
    const QString problem = book.close();
    if (made && problem.isEmpty())
        return !terminal::interrupted();
    terminal::print_error(u"cannot write " + shown_path + u": " + problem);
    return false;
}

} // namespace

void write_spreadsheet(const QString &path, const std::vector<result_folder> &results,
                       const result_survey &found, const instants::zone &zone)
{
    // Under its name only when it is complete.
    const QString unfinished = path + u".unfinished";
    if (!fill(unfinished, path, results, found, zone)) {
        QFile::remove(unfinished);
        return;
    }
    QFile::remove(path);
    if (!QFile::rename(unfinished, path))
        terminal::print_error(u"cannot write " + path);
}
