#include "host/progress_display.h"

#include "host/terminal.h"

#include <QVariant>

using namespace Qt::StringLiterals;

progress_display::progress_display(const QStringList &tables, bool shown)
    : tables_(tables), shown_(shown)
{
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
    const QString account =
        plugin_ != nullptr ? plugin_->property("reading_account").toString() : QString();
    const QString line = number + u'/' + QString::number(tables_.size()) + u' ' +
                         tables_.value(tables_done_, u"finishing"_s) + u", " +
                         QString::number(records_) + u" rows" +
                         (account.isEmpty() ? QString() : u", " + account);
    // A line that wraps could not be taken off again; the last column makes some terminals wrap.
    constexpr int columns = 39;
    terminal::show_status(terminal::cut(terminal::one_line(line), columns));
}
