#pragma once

#include "report/event.h"

#include <QByteArrayView>
#include <QTemporaryFile>

#include <functional>
#include <memory>
#include <vector>

/// Puts any number of events in order within bounded memory: sorted runs go to temporary files
/// (below TMPDIR), which are merged, and are gone when the process is.
class event_sorter
{
public:
    /// `memory` in bytes: what is held before it goes to a file.
    explicit event_sorter(size_t memory = size_t{64} << 20);
    ~event_sorter();
    event_sorter(const event_sorter &) = delete;
    event_sorter &operator=(const event_sorter &) = delete;

    /// False when a temporary file could not be written, which is told once.
    bool add(const event &event);

    /// Gives all events in order, once, until `take` says no. False when a temporary file failed.
    bool for_each(const std::function<bool(const event &)> &take);

    qint64 count() const { return count_; }

private:
    struct entry {
        event::place where;
        size_t offset;
    };
    using run = std::unique_ptr<QTemporaryFile>;

    void sort_entries();
    bool spill();
    bool merge_level(size_t level);
    bool merge(std::vector<run> &runs,
               const std::function<bool(const event &, QByteArrayView)> &take);
    bool failed(const QTemporaryFile &file);

    size_t memory_;
    std::vector<char> records_;
    std::vector<entry> entries_;
    std::vector<std::vector<run>> levels_{1}; ///< a run of a level holds many of the level before
    qint64 count_ = 0;
    bool failed_ = false;
};
