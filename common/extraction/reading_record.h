#pragma once

#include "common/evidence/source_file.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariantList>

/// How the readers of a run fared with the files they met: an entry for each file and reader. What
/// the log tells in lines, it tells to programs.
class reading_record
{
public:
    /// The worst comes last, and a file's worst is kept.
    enum class outcome {
        read,
        read_by_older, ///< by a form or a reader that only serves older browsers
        cancelled,
        unknown_schema,
        refused, ///< links lead out of the source
        unreadable,
        damaged, ///< what could be read of it was
        not_committed,
    };

    static constexpr qsizetype most_entries = 100'000; ///< further ones are counted

    void clear();

    /// A reader meets a file. The reader is told by its signature, the table by an INSERT's text.
    void begin(const char *insert, const QString &signature, const QString &path,
               const evidence_source &source);
    /// What happened to the file that is being read; of equals the first stays. Empty sentences are
    /// left out.
    void note(outcome what, const QString &sentence);
    /// A form of the reader fits; what was noted of the schema is void.
    void schema_is_known(bool older);
    void end(qint64 rows);

    qsizetype size() const { return entries_.size(); }
    /// The rows of all entries from the given one on are not in the result database.
    void not_committed_since(qsizetype first, const QString &sentence);

    /// Of the file that is being read, or was last.
    const QString &account() const { return current_.account; }

    /// As hosts get it, with what evidence_problems() holds; see docs/hosting.md.
    QVariantList as_list(const evidence_source &source) const;

private:
    struct entry {
        QString table = {};
        QString account = {};
        QString path = {}; ///< in the source
        QString reader = {};
        QString sentence = {};
        qint64 rows = 0;
        outcome what = outcome::read;
    };

    QList<entry> entries_;
    QHash<QString, QString> readers_; ///< the first of each table and file
    entry current_;
    qint64 left_out_ = 0;
};

class extraction_run;

/// Makes the entry of one reader and file: its rows are those that the run counts while this lives.
class recorded_reading
{
public:
    recorded_reading(extraction_run &run, const char *insert, const QString &signature,
                     const QString &path);
    ~recorded_reading();
    recorded_reading(const recorded_reading &) = delete;
    recorded_reading &operator=(const recorded_reading &) = delete;

private:
    extraction_run &run_;
    const qint64 records_before_;
};

/// Why the system does not let the file be read; empty when it does.
QString reason_not_readable(const QString &path);
