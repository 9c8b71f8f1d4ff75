#include "report/search.h"

#include "report/catalogue.h"
#include "report/cells.h"
#include "report/result_database.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <numeric>

using namespace Qt::StringLiterals;

namespace
{

/// What stands around a match on a line, in UTF-16 units.
constexpr qsizetype context = 60;

class search
{
public:
    search(const QStringList &words, bool as_csv) : words_(words), as_csv_(as_csv)
    {
        if (as_csv_)
            terminal::print_result(
                "case,account,table,row_id,column,datetime,text,source_file\r\n");
    }

    /// False when the reader of the output went away.
    bool read(result_database &database, const stored_table &table)
    {
        std::vector<int> places(table.columns.size());
        std::iota(places.begin(), places.end(), 0);
        std::optional<row_cursor> rows = database.rows(table, places);
        const catalogue::known_table *const known = catalogue::find(table.name);
        while (rows && rows->next()) {
            if (++count_ % 1024 == 0)
                terminal::show_progress(u"searching rows"_s, count_);
            for (size_t i = 0; i < places.size(); ++i) {
                if (rows->is_null(i) || rows->is_bytes(i) || !holds_word(rows->text(i)))
                    continue;
                if (!print(database.folder().name, table, known, *rows, i))
                    return false;
            }
        }
        return !terminal::interrupted();
    }

private:
    /// Leaves the text in text_, decoded when only that matches, and the place of the match.
    bool holds_word(std::string_view value)
    {
        text_ = texts::to_qstring(value);
        if (find())
            return true;
        if (value.find('%') == std::string_view::npos)
            return false;
        text_ = QString::fromUtf8(QByteArray::fromPercentEncoding(
            QByteArray::fromRawData(value.data(), static_cast<qsizetype>(value.size()))));
        return find();
    }

    bool find()
    {
        for (const QString &word : words_) {
            match_ = text_.indexOf(word, 0, Qt::CaseInsensitive);
            if (match_ >= 0)
                return true;
        }
        return false;
    }

    /// The first time of the row, in the order of the catalogue.
    static std::string time_of(const stored_table &table, const catalogue::known_table *known,
                               row_cursor &row)
    {
        std::string text;
        for (size_t i = 0; known != nullptr && text.empty() && i < known->times.size(); ++i) {
            const int column = table.column(known->times[i].column);
            if (column < 0)
                continue;
            if (const auto number = row.whole_number(static_cast<size_t>(column))) {
                if (const auto at = instants::of(*number, known->times[i].form))
                    instants::append_iso(text, *at);
            }
        }
        return text;
    }

    bool print(const std::string &case_name, const stored_table &table,
               const catalogue::known_table *known, row_cursor &row, size_t column)
    {
        const auto named = [&](std::string_view name) {
            const int place = table.column(name);
            return place < 0 ? std::string_view() : row.text(static_cast<size_t>(place));
        };
        const std::string time = time_of(table, known, row);
        const std::string id = std::to_string(row.row_id());
        const std::string_view account = named("system_user");
        line_.clear();
        if (as_csv_) {
            const std::string whole = text_.toStdString();
            bool first = true;
            for (const std::string_view cell :
                 {std::string_view(case_name), account, std::string_view(table.name),
                  std::string_view(id), std::string_view(table.columns[column]),
                  std::string_view(time), std::string_view(whole), named("source_file")}) {
                line_ += first ? "" : ",";
                first = false;
                cells::append_csv(line_, cell);
            }
            line_ += "\r\n";
        } else {
            const qsizetype begin = qMax(match_ - context, qsizetype{0});
            const QString around = (begin > 0 ? u"…"_s : QString()) +
                                   text_.mid(begin, 3 * context) +
                                   (begin + 3 * context < text_.size() ? u"…"_s : QString());
            texts::append_visible(line_, case_name + "  " + std::string(account) + "  " +
                                             table.name + '.' + table.columns[column] + " row " +
                                             id + (time.empty() ? "" : "  " + time.substr(0, 19)) +
                                             "  " + around.toStdString() + "  [" +
                                             std::string(named("source_file")) + ']');
            line_ += '\n';
        }
        return terminal::print_result(
            QByteArrayView(line_.data(), static_cast<qsizetype>(line_.size())));
    }

    const QStringList &words_;
    bool as_csv_;
    QString text_;
    qsizetype match_ = -1;
    std::string line_;
    qint64 count_ = 0;
};

} // namespace

void search_results(const std::vector<result_folder> &results, const QStringList &words,
                    bool as_csv)
{
    search searching(words, as_csv);
    for (const result_folder &result : results) {
        result_database database(result);
        for (const stored_table &table : database.tables()) {
            if (!searching.read(database, table))
                return;
        }
    }
}
