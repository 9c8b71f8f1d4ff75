#pragma once

#include "common/extraction/extraction_run.h"

#include <QString>
#include <QVariant>
#include <QVariantList>

#include <functional>

class QSqlQuery;

/// How a look-up ended.
enum class found_rows {
    all,
    cut,  ///< the file's size does not allow to repeat all rows, or whole values
    none, ///< it cannot be run
};

/// One row of a source, whatever the source is, as the value rules see it.
class source_row
{
public:
    source_row(extraction_run &run, const source_file &file) : run_(run), file_(file) {}
    virtual ~source_row() = default;
    source_row(const source_row &) = delete;
    source_row &operator=(const source_row &) = delete;

    /// A column as the source holds it; NULL and a column that does not exist give an invalid
    /// value.
    virtual QVariant stored(int column) const = 0;
    QString text(int column) const { return stored(column).toString(); }

    /// Calls `each` on every row that the reader's look-up of that number finds for the key. A
    /// failure is logged. A cancelled run stops it early and marks the row as interrupted.
    virtual found_rows look_up(int number, const QVariant &key,
                               const std::function<void(const QSqlQuery &)> &each);

    /// True once a look-up of this row was stopped by a cancelled run: the row is not written.
    bool interrupted() const { return interrupted_; }

    extraction_run &run() const { return run_; }
    const source_file &file() const { return file_; }

    /// Values that a reader worked out for several columns at once; the rule derived() reads them.
    QVariantList derived;

protected:
    bool interrupted_ = false;

private:
    extraction_run &run_;
    const source_file &file_;
};

/// A row that holds its columns itself: the rows of sources that are no databases.
class record_row : public source_row
{
public:
    record_row(extraction_run &run, const source_file &file, QVariantList values)
        : source_row(run, file), values_(std::move(values))
    {
    }
    QVariant stored(int column) const override { return values_.value(column); }

private:
    QVariantList values_;
};

/// How the value of one placeholder of an INSERT is made. Exactly one of the functions is set: a
/// value of the file is the same for all its rows and is bound once.
struct value_rule {
    QVariant (*of_file)(const extraction_run &, const source_file &) = nullptr;
    QVariant (*of_row)(source_row &, int column) = nullptr;
    int column = -1;
    bool is_text = false; ///< never bytes: SQLite is spared the conversion to UTF-8
};

// ---- Values that all rows of a file share -------------------------------------------------------

/// The text "0" of the bookmark column: not marked by the examiner.
extern const value_rule untagged;
/// The integer 0, which some extractors bind instead.
extern const value_rule untagged_number;
extern const value_rule system_user;
extern const value_rule domain_user;
extern const value_rule source_file_path;
extern const value_rule relation_source_file;
extern const value_rule os_scheme_display;
extern const value_rule source_count_name;
/// An empty text, for a column that this source does not have.
extern const value_rule empty_value;

// ---- Values of one column -----------------------------------------------------------------------
// NULL stays NULL where a value is copied; everything computed is text, empty when there is
// nothing.

value_rule as_stored(int column);
value_rule trimmed(int column);
/// Microseconds since 1601-01-01 UTC to Unix seconds; 0 and NULL give an empty text.
value_rule unix_seconds(int column);
/// The same, but "0" and an empty text stay as they are.
value_rule unix_seconds_keeping_zero(int column);
/// YES for exactly "1", NO for everything else.
value_rule yes_when_one(int column);
/// The same for the text without surrounding blanks.
value_rule yes_when_trimmed_one(int column);
/// Every "%" and two hexadecimal digits replaced by the byte they name, read as UTF-8.
value_rule percent_decoded(int column);
/// One of the values the reader put into source_row::derived.
value_rule derived(int index);
/// The same value, of a rule that gives no bytes.
value_rule text_of(value_rule rule);
/// A value that needs more than one column.
value_rule from_row(QVariant (*function)(source_row &, int column), int column = -1);
