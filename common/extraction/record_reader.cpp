#include "common/extraction/record_reader.h"

#include "common/debug_log.h"

#include <QScopedValueRollback>

#include <utility>

namespace
{

/// False when the extractor is to return without its end line.
bool read_all(const record_reader &reader, const QString &signature, const QStringList &files,
              extraction_run &run, const file_reading_function &read_file)
{
    result_writer writer(signature, run, reader.destination_failed, reader.insert_failed);
    if (!writer.is_open()) {
        for (const QString &path : files) {
            const recorded_reading recorded(run, reader.insert.sql, signature, path);
            run.readings.note(reading_record::outcome::not_committed, writer.error_text());
        }
        return false;
    }
    for (const QString &path : files) {
        if (run.cancelled())
            return false;
        const recorded_reading recorded(run, reader.insert.sql, signature, path);
        if (!lies_in_source(path, signature, run))
            continue;
        const source_file file(path, run);
        failure_log failures(signature, file.path, file.system_user);
        const QScopedValueRollback current_failures(run.failures, &failures);
        record_sink sink(writer.begin_file(reader.insert, file), file, run);
        reading_end end = reading_end::next_file;
        read_within_memory(path, run, [&] { end = read_file(sink); });
        if (end == reading_end::at_once || run.cancelled())
            return false;
    }
    return true;
}

} // namespace

bool record_sink::write(QVariantList values)
{
    if (run_.cancelled())
        return false;
    record_row row(run_, file_, std::move(values));
    insert_.write(row);
    return true;
}

void read_records(const record_reader &reader, const QStringList &files, extraction_run &run,
                  const file_reading_function &read_file)
{
    const QString signature = QString::fromUtf8(reader.signature);
    debug_log(QString::fromUtf8(reader.starts), signature);
    if (run.idle_extractors_end_early && (run.cancelled() || files.isEmpty()))
        return;
    if (read_all(reader, signature, files, run, read_file))
        debug_log(QString::fromUtf8(reader.ends), signature);
}
