#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

/// Takes the plug-in's two progress signals and shows how far the run is. The plug-in keeps the
/// thread busy, so nothing moves between two signals.
class progress_display : public QObject
{
    Q_OBJECT

public:
    /// The tables in reading order; the time starts to run.
    progress_display(const QStringList &tables, bool shown);

    /// The plug-in's last count.
    qint64 records() const { return records_; }

public Q_SLOTS:
    void show_records(qint64 records);
    void show_tables_done(int tables);

private:
    void refresh();

    QStringList tables_;
    bool shown_;
    QElapsedTimer since_start_;
    qint64 records_ = 0;
    int tables_done_ = 0;
};
