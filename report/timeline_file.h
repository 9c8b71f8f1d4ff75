#pragma once

#include "report/event.h"
#include "report/instants.h"
#include "report/output_file.h"
#include "report/result_folder.h"

#include <vector>

/// The timeline as a file: one event a line, as CSV or as JSON (JSONL).
class timeline_file
{
public:
    enum class format { csv, jsonl };

    timeline_file(const QString &path, format form, const std::vector<result_folder> &results,
                  const instants::zone &zone);

    bool write(const event &event);
    bool commit() { return file_.commit(); }

private:
    void append(std::string_view text);

    output_file file_;
    format format_;
    const std::vector<result_folder> &results_;
    const instants::zone &zone_;
    std::string line_;
    std::string time_;
    size_t column_ = 0;
};
