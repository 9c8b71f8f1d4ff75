#pragma once

#include "common/named_connection.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

/// The names in the folders that a walk is in, each folder's in order, innermost folder first: in
/// memory as long as they are few, else in a scratch database.
class listed_names
{
public:
    explicit listed_names(const QString &scratch_path) : scratch_path_(scratch_path) {}
    ~listed_names();
    listed_names(const listed_names &) = delete;
    listed_names &operator=(const listed_names &) = delete;

    // The names of one more folder: begin(), add() each, end(). False when the scratch database
    // cannot be written.
    void begin() { folders_.emplace_back(); }
    bool add(const QByteArray &name);
    bool end();

    /// The next name of the innermost folder; null when there is no more.
    QByteArray take();
    /// Leaves the innermost folder.
    void leave();

private:
    struct folder {
        std::vector<QByteArray> names; ///< ordered from end(); of a stored folder the next ones
        std::size_t taken = 0;
        qint64 bytes = 0;
        bool stored = false;
    };

    bool store(folder &from);
    bool load_more(folder &into);
    QString table() const;

    QString scratch_path_;
    std::unique_ptr<named_connection> scratch_; ///< made when it is needed
    std::vector<folder> folders_;
    qint64 bytes_ = 0; ///< of names in memory
};
