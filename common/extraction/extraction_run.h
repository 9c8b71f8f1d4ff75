#pragma once

#include "common/evidence/folder_sizes.h"
#include "common/evidence/source_file.h"
#include "common/extraction/reading_record.h"
#include "common/extraction/writing_allowance.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <QHash>

#include <atomic>
#include <functional>
#include <map>
#include <utility>

class failure_log;
class plugin_helper_functions;

/// Pictures of the source that were copied to "Images/".
struct copied_pictures {
    using identity = std::pair<quint64, quint64>;          ///< device and inode
    std::map<std::pair<QString, identity>, QString> names; ///< each account has its own
    QHash<QString, int> numbers; ///< the last that was added to a name, in lower case
};

/// What all extractors of one operating system share during a run: where the evidence lies, where
/// rows go, whether the host has cancelled, and how many rows have been written.
class extraction_run : public evidence_source
{
public:
    using record_signal = std::function<void(qint64 records)>;
    using clock = std::function<qint64()>; ///< milliseconds that never go back

    /// The signal is called with the running count, at most once a second while rows are written.
    /// Tests pass a clock of their own; without one the system's steady clock is used.
    explicit extraction_run(record_signal signal, clock now = {});

    QString os_scheme_display;   ///< value of every os_scheme_display column
    QString result_directory;    ///< ends in "/"; exported pictures go into its "Images/"
    QString temporary_directory; ///< ends in "/"; removed after the run
    QString destination_path;    ///< the result database
    plugin_helper_functions *helper = nullptr; ///< makes private copies; not owned
    /// An extractor with nothing to do (cancelled, or no files) ends after its start line, without
    /// opening the result database.
    bool idle_extractors_end_early = true;
    /// Of the file that is being read; null between files.
    failure_log *failures = nullptr;
    class folder_sizes folder_sizes; ///< of the source
    reading_record readings;
    QStringList found_files = {}; ///< of the evidence, as found; a reader may share one with others
    copied_pictures pictures;
    QStringList finished_copies;                          ///< private copies whose readers are done
    qint64 spare_bytes = writing_allowance::spare_of_run; ///< that values may still take beyond
                                                          ///< what their files are granted

    /// May be called from any thread.
    void set_cancelled(bool cancelled) { cancelled_ = cancelled; }
    bool cancelled() const { return cancelled_; }
    const std::atomic<bool> &cancel_flag() const { return cancelled_; }

    qint64 records() const { return records_; }
    void set_records(qint64 records) { records_ = records; }

    /// Starts the second after which the next written row is signalled.
    void restart_progress();
    /// Counts one written row and signals the count when the last signal is over 1000 ms old.
    void count_record();
    /// Counts rows that were read and are not in the result database.
    void count_lost(qint64 records) { lost_records_ += records; }
    qint64 lost_records() const { return lost_records_; }
    /// Signals the count now; the second goes on as it was.
    void signal_records() const { signal_(records_); }

private:
    record_signal signal_;
    clock now_;
    qint64 last_signal_ = 0;
    qint64 records_ = 0;
    qint64 lost_records_ = 0;
    std::atomic<bool> cancelled_ = false;
};

/// False, logged under the signature and noted as refused, for a path that links of the evidence
/// lead out of the source: such a file is not touched. True for one that is not there (any more):
/// that its reader cannot open it says so.
bool lies_in_source(const QString &path, const QString &signature, extraction_run &run);

/// Reads one file of the evidence. When memory runs out meanwhile, that is reported, counted as a
/// loss, and the run goes on: false.
bool read_within_memory(const QString &path, extraction_run &run,
                        const std::function<void()> &read);

/// Size of a file or folder of the source in bytes. However many rows name folders that lie in each
/// other, each is walked about once.
QString size_in_source(const QString &path, extraction_run &run);
