#pragma once

#include <QObject>
#include <QStringList>

/// Takes the plug-in's two progress signals and shows how far the run is. The plug-in keeps the
/// thread busy, so nothing moves between two signals.
class progress_display : public QObject
{
    Q_OBJECT

public:
    /// The tables in reading order.
    progress_display(const QStringList &tables, bool shown);

    /// Whose files are being read, where the plug-in tells.
    void watch(const QObject &plugin) { plugin_ = &plugin; }

    /// The plug-in's last count.
    qint64 records() const { return records_; }

public Q_SLOTS:
    void show_records(qint64 records);
    void show_tables_done(int tables);

private:
    void refresh();

    QStringList tables_;
    const QObject *plugin_ = nullptr;
    bool shown_;
    qint64 records_ = 0;
    int tables_done_ = 0;
};
