#include "common/extraction/reading_record.h"

#include "common/evidence/evidence_file.h"
#include "common/evidence/evidence_problems.h"
#include "common/extraction/extraction_run.h"
#include "common/extraction/failure_log.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace
{

QString name_of(reading_record::outcome what)
{
    using outcome = reading_record::outcome;
    switch (what) {
    case outcome::read:
        break;
    case outcome::read_by_older:
        return u"read by an older reader"_s;
    case outcome::cancelled:
        return u"cancelled"_s;
    case outcome::unknown_schema:
        return u"unknown schema"_s;
    case outcome::refused:
        return u"refused"_s;
    case outcome::unreadable:
        return u"unreadable"_s;
    case outcome::damaged:
        return u"damaged"_s;
    case outcome::not_committed:
        return u"not committed"_s;
    }
    return u"read"_s;
}

/// The table of "insert into TABLE(columns) ...".
QString table_of(const char *insert)
{
    const QString sql = QString::fromUtf8(insert);
    const QString behind = sql.mid(sql.indexOf("into "_L1, 0, Qt::CaseInsensitive) + 5);
    return behind.section(u'(', 0, 0).trimmed();
}

/// Drivers put line breaks into their sentences.
QString in_one_line(const QString &sentence)
{
    return sentence.simplified();
}

} // namespace

void reading_record::clear()
{
    *this = {};
}

void reading_record::begin(const char *insert, const QString &signature, const QString &path,
                           const evidence_source &source)
{
    const source_file file(path, source);
    const QString tag = operation_tag(signature);
    current_ = {.table = table_of(insert),
                .account = file.system_user,
                .path = path_inside_source(path, source),
                .reader = tag.mid(1, tag.size() - 2)};
}

void reading_record::note(outcome what, const QString &sentence)
{
    if (what <= current_.what)
        return;
    current_.what = what;
    current_.sentence = in_one_line(sentence);
}

void reading_record::schema_is_known(bool older)
{
    if (current_.what > outcome::unknown_schema)
        return;
    current_.what = older ? outcome::read_by_older : outcome::read;
    current_.sentence.clear();
}

void reading_record::end(qint64 rows)
{
    current_.rows = rows;
    if (entries_.size() >= most_entries) {
        ++left_out_;
        return;
    }
    // A driver that lets a second reader go over a file has the current one go first.
    QString &first = readers_[current_.table + u'\n' + current_.path];
    if (first.isEmpty())
        first = current_.reader;
    else if (first != current_.reader)
        note(outcome::read_by_older, {});
    entries_.append(current_);
}

void reading_record::not_committed_since(qsizetype first, const QString &sentence)
{
    for (qsizetype i = first; i < entries_.size(); ++i) {
        entry &lost = entries_[i];
        lost.rows = 0;
        lost.what = outcome::not_committed;
        lost.sentence = in_one_line(sentence);
    }
}

QVariantList reading_record::as_list(const evidence_source &source) const
{
    QVariantList list;
    const auto append = [&list](const entry &one) {
        list.append(QVariantMap{{u"table"_s, one.table},
                                {u"account"_s, one.account},
                                {u"path"_s, one.path},
                                {u"reader"_s, one.reader},
                                {u"rows"_s, one.rows},
                                {u"outcome"_s, name_of(one.what)},
                                {u"sentence"_s, one.sentence}});
    };
    for (const entry &one : entries_)
        append(one);
    const QList<evidence_problem> problems = evidence_problems();
    for (const evidence_problem &problem : problems)
        append({.account = source_file(problem.path, source).system_user,
                .path = path_inside_source(problem.path, source),
                .sentence = problem.reason,
                .what = outcome::unreadable});
    if (left_out_ > 0)
        list.append(QVariantMap{{u"left_out"_s, left_out_}});
    return list;
}

recorded_reading::recorded_reading(extraction_run &run, const char *insert,
                                   const QString &signature, const QString &path)
    : run_(run), records_before_(run.records())
{
    run_.readings.begin(insert, signature, path, run_);
}

recorded_reading::~recorded_reading()
{
    if (run_.cancelled())
        run_.readings.note(reading_record::outcome::cancelled, {});
    run_.readings.end(run_.records() - records_before_);
}

QString reason_not_readable(const QString &path)
{
    evidence_file file(path);
    return file.open_for_reading() ? QString() : file.errorString();
}
