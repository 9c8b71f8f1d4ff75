#include "report/timeline_file.h"

#include "report/catalogue.h"
#include "report/cells.h"
#include "report/event_reader.h"
#include "report/profiles.h"
#include "report/texts.h"

namespace
{

constexpr std::string_view columns[] = {
    "datetime",    "timestamp", "timestamp_desc", "message",       "account",
    "profile",     "url",       "title",          "detail",        "case",
    "source_file", "table",     "row_id",         "local_datetime"};

} // namespace

timeline_file::timeline_file(const QString &path, format form,
                             const std::vector<result_folder> &results, const instants::zone &zone)
    : file_(path), format_(form), results_(results), zone_(zone)
{
    if (format_ == format::jsonl)
        return;
    for (const std::string_view column : columns) {
        if (column != std::end(columns)[-1])
            (line_ += line_.empty() ? "" : ",") += column;
        else if (!zone_.is_utc())
            (line_ += ',') += column;
    }
    file_.write(line_ + "\r\n");
}

void timeline_file::append(std::string_view text)
{
    if (format_ == format::csv) {
        if (column_ > 0)
            line_ += ',';
        cells::append_csv(line_, text);
    } else {
        line_ += column_ == 0 ? "{\"" : ",\"";
        line_ += columns[column_];
        line_ += "\":";
        cells::append_json(line_, text);
    }
    ++column_;
}

bool timeline_file::write(const event &event)
{
    const auto number = [this](qint64 value) {
        // Without quotes, as JSON numbers.
        line_ += column_ == 0 ? "" : ",";
        if (format_ == format::jsonl)
            ((line_ += '"') += columns[column_]) += "\":";
        line_ += std::to_string(value);
        ++column_;
    };
    line_.clear();
    column_ = 0;
    time_.clear();
    instants::append_iso(time_, event.where.at);
    append(time_);
    number(event.where.at);
    append(description_of(event));
    append(event.texts[event::message]);
    append(event.texts[event::account]);
    append(profile_of(event.texts[event::source_file]));
    append(event.texts[event::url]);
    append(event.texts[event::title]);
    append(event.texts[event::detail]);
    append(results_[event.where.case_index].name);
    append(event.texts[event::source_file]);
    append(catalogue::tables()[event.where.table].name);
    number(event.where.row);
    if (!zone_.is_utc()) {
        time_.clear();
        zone_.append_iso(time_, event.where.at);
        append(time_);
    }
    line_ += format_ == format::csv ? "\r\n" : "}\n";
    return file_.write(line_);
}
