#pragma once

#include "common/extraction/extraction_run.h"
#include "common/extraction/failure_log.h"
#include "common/extraction/result_writer.h"

#include <QStringList>
#include <QVariantList>

#include <functional>

/// An extractor whose sources are no databases: all that tells it from the others but the reading
/// itself. The rules of the INSERT read the values of each record by number, as_stored(0) and so
/// on.
struct record_reader {
    const char *signature; ///< function info of its log lines and name of its result connection
    const char *starts;
    failure_lines destination_failed;
    failure_lines insert_failed;
    const char *ends;
    insertion insert;
};

/// Takes the records of one file.
class record_sink
{
public:
    record_sink(row_insertion &insert, const source_file &file, extraction_run &run)
        : insert_(insert), file_(file), run_(run)
    {
    }

    /// Writes one record. False when the run is cancelled: the reading then ends at once.
    bool write(QVariantList values);

    /// For the record of the run: why nothing could be read, or not all. To be logged besides.
    void unreadable(const QString &why) { note(reading_record::outcome::unreadable, why); }
    void damaged(const QString &why) { note(reading_record::outcome::damaged, why); }

    const source_file &file() const { return file_; }
    extraction_run &run() const { return run_; }
    row_insertion &insert() const { return insert_; }

private:
    void note(reading_record::outcome what, const QString &why) { run_.readings.note(what, why); }

    row_insertion &insert_;
    const source_file &file_;
    extraction_run &run_;
};

/// How the reading of one file (or folder) of the evidence ended.
enum class reading_end {
    next_file, ///< also when the file could not be read, which the reading has logged
    at_once,   ///< the extractor returns without its end line
};

using file_reading_function = std::function<reading_end(record_sink &sink)>;

/// Lets the function read every file, in order, and writes its records into the result database in
/// one transaction. A cancelled run keeps the records so far and writes no end line.
void read_records(const record_reader &reader, const QStringList &files, extraction_run &run,
                  const file_reading_function &read_file);
