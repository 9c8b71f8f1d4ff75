#include "host/progress_display.h"

#include "host/terminal.h"

using namespace Qt::StringLiterals;

progress_display::progress_display(const QStringList &tables, bool shown)
    : tables_(tables), shown_(shown)
{
    since_start_.start();
}

void progress_display::show_records(qint64 records)
{
    records_ = records;
    refresh();
}

void progress_display::show_tables_done(int tables)
{
    tables_done_ = tables;
    refresh();
}

void progress_display::refresh()
{
    if (!shown_)
        return;

    const QString number = QString::number(qMin(qsizetype{tables_done_} + 1, tables_.size()));
    const QString table = tables_done_ < tables_.size() ? u"reading " + tables_.value(tables_done_)
                                                        : QString(u"finishing"_s);
    const qint64 per_second = records_ * 1000 / qMax(since_start_.elapsed(), qint64{1});
    terminal::show_status(table + u" (" + number + u" of " + QString::number(tables_.size()) +
                          u"), " + QString::number(records_) + u" records, " +
                          QString::number(per_second) + u" per second");
}
