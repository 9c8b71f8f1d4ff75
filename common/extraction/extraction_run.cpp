#include "common/extraction/extraction_run.h"

#include "common/extraction/extractor_state.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/evidence_problems.h"
#include "common/evidence/file_paths.h"
#include "common/evidence/native_path.h"
#include "common/extraction/failure_log.h"

#include <QFileInfo>

#include <chrono>
#include <new>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 signal_interval_ms = 1000;

qint64 steady_milliseconds()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

extraction_run::extraction_run(record_signal signal, clock now)
    : signal_(std::move(signal)), now_(now ? std::move(now) : clock(steady_milliseconds))
{
    restart_progress();
}

void extraction_run::restart_progress()
{
    last_signal_ = now_();
}

void extraction_run::count_record()
{
    ++records_;
    if (now_() - last_signal_ <= signal_interval_ms)
        return;
    signal_records();
    restart_progress();
}

bool lies_in_source(const QString &path, const QString &signature, extraction_run &run)
{
    if (is_inside_folder(path, run.source_root) || !leads_anywhere(path))
        return true;
    debug_log(operation_tag(signature) +
                  u" file does not lie in the source ---------FAILED----------" + path,
              signature);
    run.readings.note(reading_record::outcome::refused, u"links lead out of the source"_s);
    return false;
}

bool read_within_memory(const QString &path, extraction_run &run, const std::function<void()> &read)
{
    try {
        read();
        return true;
    } catch (const std::bad_alloc &) {
        report_evidence_problem(path, u"memory does not suffice; the rest is not read"_s);
        run.count_lost(1);
        return false;
    }
}

QString size_in_source(const QString &path, extraction_run &run)
{
    const QString place = canonical_path(path);
    if (QFileInfo(place).isDir()) {
        const std::optional<quint64> size = run.folder_sizes.size_of(
            place, run.temporary_directory, [&run] { return run.cancelled(); });
        if (size)
            return QString::number(*size);
    }
    return size_in_bytes(place);
}

void tidy_account_names(QStringList &names)
{
    names.removeDuplicates();
    names.removeAll(QString());
}
