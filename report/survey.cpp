#include "report/survey.h"

#include "report/profiles.h"
#include "report/result_database.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace
{

constexpr size_t most_profiles = 10'000;

surveyed_table &table_named(result_survey &found, const std::string &name)
{
    const auto place = std::ranges::find(found.tables, name, &surveyed_table::name);
    if (place != found.tables.end())
        return *place;
    surveyed_table &table = found.tables.emplace_back();
    table.name = name;
    table.known = catalogue::find(name);
    table.label = table.known != nullptr ? std::string(table.known->label) : name;
    return table;
}

surveyed_column &column_named(surveyed_table &table, const std::string &name)
{
    const auto place = std::ranges::find(table.columns, name, &surveyed_column::name);
    if (place != table.columns.end())
        return *place;
    return table.columns.emplace_back(
        surveyed_column{name, false, catalogue::find_time(table.known, name)});
}

/// Whether the value says something: the examiner's mark is 0 where nothing was marked.
bool says_something(row_cursor &row, size_t column, bool is_mark)
{
    if (row.is_null(column))
        return false;
    const std::string_view text = row.text(column);
    return !text.empty() && !(is_mark && text == "0");
}

class profile_counter
{
public:
    profile_counter(result_survey &found, size_t case_index, const std::string &table)
        : found_(found), case_index_(case_index), table_(table)
    {
    }
    ~profile_counter() { end_group(); }
    profile_counter(const profile_counter &) = delete;
    profile_counter &operator=(const profile_counter &) = delete;

    void count(std::string_view account, std::string_view source_file)
    {
        const std::string_view profile = profile_of(source_file);
        if (rows_ == 0 || account != account_ || profile != profile_) {
            end_group();
            account_ = texts::cut_to(account, 1000);
            profile_ = texts::cut_to(profile, 4000);
        }
        ++rows_;
    }

private:
    void end_group()
    {
        if (rows_ == 0)
            return;
        const profile_key key{case_index_, account_, profile_};
        if (found_.profiles.size() < most_profiles || found_.profiles.contains(key))
            found_.profiles[key].rows[table_] += rows_;
        else
            found_.profiles_complete = false;
        rows_ = 0;
    }

    result_survey &found_;
    size_t case_index_;
    const std::string &table_;
    std::string account_;
    std::string profile_;
    qint64 rows_ = 0;
};

void survey_table(result_database &database, const stored_table &stored, size_t case_index,
                  result_survey &found)
{
    surveyed_table &table = table_named(found, stored.name);
    std::vector<surveyed_column *> columns;
    for (const std::string &name : stored.columns)
        column_named(table, name); // which may move the others
    for (const std::string &name : stored.columns)
        columns.push_back(&column_named(table, name));

    std::vector<int> places(stored.columns.size());
    std::iota(places.begin(), places.end(), 0);
    std::optional<row_cursor> rows = database.rows(stored, places);
    const int user = stored.column("system_user");
    const int account = user >= 0 ? user : stored.column("account_name");
    const int source = stored.column("source_file");
    profile_counter counter(found, case_index, table.name);
    const auto text = [&rows](int column) {
        return column < 0 ? std::string_view() : rows->text(static_cast<size_t>(column));
    };
    while (rows && rows->next()) {
        if (++table.rows % 1024 == 0)
            terminal::show_progress(u"counting rows of "_s + texts::to_qstring(table.name),
                                    table.rows);
        for (size_t i = 0; i < columns.size(); ++i) {
            if (!columns[i]->filled)
                columns[i]->filled = says_something(*rows, i, columns[i]->name == "bookmark");
        }
        if (account >= 0 || source >= 0)
            counter.count(text(account), text(source));
    }
}

/// 0 for whose row it is, then the order of reading, then the rest, then where it is from.
size_t reading_order(const surveyed_table &table, std::string_view column)
{
    constexpr size_t behind_known = 1000;
    if (column == "system_user" || column == "domain_user" || column == "account_name")
        return 0;
    if (catalogue::is_origin_column(column))
        return behind_known + 1;
    if (table.known == nullptr)
        return behind_known;
    const auto &first = table.known->first_columns;
    const auto place = std::ranges::find(first, column);
    return place == first.end() ? behind_known
                                : 1 + static_cast<size_t>(std::distance(first.begin(), place));
}

} // namespace

const surveyed_table *result_survey::table(std::string_view name) const
{
    const auto place = std::ranges::find(tables, name, &surveyed_table::name);
    return place == tables.end() ? nullptr : &*place;
}

result_survey survey(const std::vector<result_folder> &results)
{
    result_survey found;
    for (const catalogue::known_table &known : catalogue::tables())
        table_named(found, std::string(known.name));
    for (size_t i = 0; i < results.size() && !terminal::interrupted(); ++i) {
        result_database database(results[i]);
        for (const stored_table &stored : database.tables())
            survey_table(database, stored, i, found);
    }
    for (surveyed_table &table : found.tables) {
        std::ranges::stable_sort(table.columns, {}, [&table](const surveyed_column &column) {
            return reading_order(table, column.name);
        });
    }
    return found;
}
