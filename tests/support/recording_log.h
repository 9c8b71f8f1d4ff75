#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Records what app_debug writes while this object lives. One at a time.
class recording_log
{
public:
    struct line {
        QString engine;
        QString function;
        QString message;
    };

    recording_log();
    ~recording_log();
    recording_log(const recording_log &) = delete;
    recording_log &operator=(const recording_log &) = delete;

    /// Turns the log on; a run that resets the log settings must do so again.
    static void switch_on();
    const QList<line> &lines() const;
    QStringList messages() const;
    /// Messages of one function, "opera_macos::extract_history_11".
    QStringList messages_of(const QString &function) const;
    bool has(const QString &message) const { return messages().contains(message); }
    void clear();
};
