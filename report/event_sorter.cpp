#include "report/event_sorter.h"

#include "report/output_file.h"
#include "report/terminal.h"

#include <QDir>

#include <algorithm>
#include <cstring>
#include <optional>
#include <queue>

using namespace Qt::StringLiterals;

namespace
{

constexpr size_t most_runs = 64;
constexpr size_t buffer_size = 256 * 1024;

/// What stands in front of an event's texts in a run.
struct header {
    event::place where;
    std::array<quint64, 2> identity;
    std::array<quint32, event::text_count> lengths;
    quint8 time;
    bool typed;
};
static_assert(std::is_trivially_copyable_v<header>);

header header_of(const event &event)
{
    header head;
    std::memset(static_cast<void *>(&head), 0, sizeof head); // no memory of ours into files
    head.where = event.where;
    head.identity = event.identity;
    head.time = event.time;
    head.typed = event.typed;
    for (size_t i = 0; i < head.lengths.size(); ++i)
        head.lengths[i] = static_cast<quint32>(event.texts[i].size());
    return head;
}

size_t text_size(const header &head)
{
    size_t size = 0;
    for (const quint32 length : head.lengths)
        size += length;
    return size;
}

event event_of(const char *record)
{
    header head;
    std::memcpy(static_cast<void *>(&head), record, sizeof head);
    event found{head.where, head.identity, head.time, head.typed, {}};
    const char *text = record + sizeof head;
    for (size_t i = 0; i < head.lengths.size(); ++i) {
        found.texts[i] = {text, head.lengths[i]};
        text += head.lengths[i];
    }
    return found;
}

/// Gives the records of a file one after another.
class run_reader
{
public:
    explicit run_reader(QTemporaryFile &file) : file_(file) { file_.seek(0); }

    /// False at the end.
    bool next()
    {
        begin_ += size_;
        size_ = 0;
        if (!hold(sizeof(header)))
            return false;
        header head;
        std::memcpy(static_cast<void *>(&head), buffer_.data() + begin_, sizeof head);
        const size_t size = sizeof head + text_size(head);
        if (!hold(size))
            return false;
        size_ = size;
        where_ = head.where;
        return true;
    }

    const event::place &where() const { return where_; }
    QByteArrayView record() const
    {
        return {buffer_.data() + begin_, static_cast<qsizetype>(size_)};
    }

private:
    bool hold(size_t size)
    {
        if (end_ - begin_ >= size)
            return true;
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
        if (buffer_.size() < qMax(size, buffer_size))
            buffer_.resize(qMax(size, buffer_size));
        while (end_ < size) {
            const qint64 got =
                file_.read(buffer_.data() + end_, static_cast<qint64>(buffer_.size() - end_));
            if (got <= 0)
                return false;
            end_ += static_cast<size_t>(got);
        }
        return true;
    }

    QTemporaryFile &file_;
    std::vector<char> buffer_ = std::vector<char>(buffer_size);
    size_t begin_ = 0;
    size_t end_ = 0;
    size_t size_ = 0;
    event::place where_;
};

std::unique_ptr<QTemporaryFile> new_run()
{
    auto file = std::make_unique<QTemporaryFile>(QDir::tempPath() + u"/opera_report.XXXXXX");
    file->open();
    return file;
}

/// Collects small writes.
class run_writer
{
public:
    explicit run_writer(QTemporaryFile &file) : file_(file) { buffer_.reserve(buffer_size); }
    bool write(QByteArrayView record)
    {
        if (buffer_.size() + static_cast<size_t>(record.size()) > buffer_size && !flush())
            return false;
        buffer_.insert(buffer_.end(), record.begin(), record.end());
        return true;
    }
    bool flush()
    {
        const bool written =
            file_.isOpen() && write_all(file_, buffer_.data(), buffer_.size()) && file_.flush();
        buffer_.clear();
        return written;
    }

private:
    QTemporaryFile &file_;
    std::vector<char> buffer_;
};

} // namespace

event_sorter::event_sorter(size_t memory) : memory_(memory) {}

event_sorter::~event_sorter() = default;

bool event_sorter::failed(const QTemporaryFile &file)
{
    if (!failed_)
        terminal::print_error(u"cannot keep events in the temporary folder " + QDir::tempPath() +
                              u": " + file.errorString());
    failed_ = true;
    return false;
}

bool event_sorter::add(const event &event)
{
    const header head = header_of(event);
    const size_t size = sizeof head + text_size(head);
    if (!records_.empty() &&
        records_.size() + size + (entries_.size() + 1) * sizeof(entry) > memory_ && !spill())
        return false;
    if (records_.capacity() == 0)
        records_.reserve(memory_); // address space; pages come when they are written
    entries_.push_back({event.where, records_.size()});
    const char *bytes = reinterpret_cast<const char *>(&head);
    records_.insert(records_.end(), bytes, bytes + sizeof head);
    for (const std::string_view text : event.texts)
        records_.insert(records_.end(), text.begin(), text.end());
    ++count_;
    return !failed_;
}

void event_sorter::sort_entries()
{
    std::sort(entries_.begin(), entries_.end(),
              [](const entry &one, const entry &other) { return one.where < other.where; });
}

bool event_sorter::spill()
{
    sort_entries();
    run file = new_run();
    run_writer writer(*file);
    for (const entry &one : entries_) {
        header head;
        std::memcpy(static_cast<void *>(&head), records_.data() + one.offset, sizeof head);
        if (!writer.write({records_.data() + one.offset,
                           static_cast<qsizetype>(sizeof head + text_size(head))}))
            return failed(*file);
    }
    if (!writer.flush())
        return failed(*file);
    records_.clear();
    entries_.clear();
    levels_[0].push_back(std::move(file));
    for (size_t level = 0; level < levels_.size() && levels_[level].size() == most_runs; ++level) {
        if (!merge_level(level))
            return false;
    }
    return true;
}

bool event_sorter::merge_level(size_t level)
{
    run merged = new_run();
    run_writer writer(*merged);
    bool written = true;
    const bool read = merge(levels_[level], [&](const event &, QByteArrayView record) {
        written = writer.write(record) && !terminal::interrupted();
        return written;
    });
    if (!read || !written || !writer.flush())
        return failed(*merged);
    levels_[level].clear();
    if (levels_.size() == level + 1)
        levels_.resize(level + 2);
    levels_[level + 1].push_back(std::move(merged));
    return true;
}

bool event_sorter::merge(std::vector<run> &runs,
                         const std::function<bool(const event &, QByteArrayView)> &take)
{
    std::vector<std::unique_ptr<run_reader>> readers;
    const auto later = [](const run_reader *one, const run_reader *other) {
        return other->where() < one->where();
    };
    std::priority_queue<run_reader *, std::vector<run_reader *>, decltype(later)> next(later);
    for (const run &file : runs) {
        readers.push_back(std::make_unique<run_reader>(*file));
        if (readers.back()->next())
            next.push(readers.back().get());
    }
    while (!next.empty()) {
        run_reader *const first = next.top();
        next.pop();
        const QByteArrayView record = first->record();
        if (!take(event_of(record.data()), record))
            break;
        if (first->next())
            next.push(first);
    }
    for (const run &file : runs) {
        if (file->error() != QFileDevice::NoError)
            return failed(*file);
    }
    return true;
}

bool event_sorter::for_each(const std::function<bool(const event &)> &take)
{
    if (failed_)
        return false;
    if (levels_.size() == 1 && levels_[0].empty()) {
        sort_entries();
        for (const entry &one : entries_) {
            if (!take(event_of(records_.data() + one.offset)))
                break;
        }
        return true;
    }
    if (!entries_.empty() && !spill())
        return false;
    records_ = {};
    entries_ = {};
    std::vector<run> runs;
    for (std::vector<run> &level : levels_)
        std::ranges::move(level, std::back_inserter(runs));
    return merge(runs, [&take](const event &event, QByteArrayView) { return take(event); });
}
