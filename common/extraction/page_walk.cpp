#include "common/extraction/page_walk.h"

#include "common/extraction/page_file.h"

#include <QHash>
#include <QSet>
#include <QtEndian>

#include <array>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

namespace
{

constexpr int greatest_depth = 20; // of a tree; SQLite refuses more
constexpr int first_free_page_at = 32;
constexpr int node_header_size = 12;
constexpr int leaf_header_size = 8;

/// Kinds of pages, by their first byte.
enum page_kind : uchar { index_node = 2, table_node = 5, index_leaf = 10, table_leaf = 13 };

bool is_node(page_kind kind)
{
    return kind == index_node || kind == table_node;
}

/// The bytes of a page, read within their bounds: beyond them lie zeros.
class page_bytes
{
public:
    explicit page_bytes(const QByteArray &bytes) : bytes_(bytes) {}

    quint32 byte(qint64 at) const
    {
        return at >= 0 && at < bytes_.size() ? static_cast<uchar>(bytes_.at(at)) : 0;
    }
    int number_16(qint64 at) const { return static_cast<int>(byte(at) << 8 | byte(at + 1)); }
    quint32 number_32(qint64 at) const
    {
        return byte(at) << 24 | byte(at + 1) << 16 | byte(at + 2) << 8 | byte(at + 3);
    }
    /// A number of one to nine bytes, seven bits in each but the ninth; moves behind it.
    quint64 variable(qint64 &at) const
    {
        quint64 number = 0;
        for (int i = 0; i < 8; ++i) {
            const quint32 next = byte(at++);
            number = number << 7 | (next & 0x7f);
            if (next < 0x80)
                return number;
        }
        return number << 8 | byte(at++);
    }

private:
    const QByteArray &bytes_;
};

struct cell {
    quint32 child = 0;
    quint64 payload_size = 0;
    qint64 payload_at = 0;
    qint64 local_size = 0;     ///< bytes of the payload inside the page
    quint32 overflow_page = 0; ///< where the rest of the payload begins
    qint64 size = 0;           ///< bytes of the cell inside the page
};

cell read_cell(const page_bytes &page, page_kind kind, qint64 at, int usable)
{
    const qint64 begin = at;
    cell found;
    if (is_node(kind)) {
        found.child = page.number_32(at);
        at += 4;
    }
    if (kind != table_node)
        found.payload_size = page.variable(at);
    if (kind == table_node || kind == table_leaf)
        page.variable(at); // row id
    found.payload_at = at;
    const qint64 most = kind == table_leaf ? usable - 35 : (usable - 12) * 64 / 255 - 23;
    if (found.payload_size <= static_cast<quint64>(most)) {
        found.local_size = static_cast<qint64>(found.payload_size);
    } else {
        const qint64 least = (usable - 12) * 32 / 255 - 23;
        const qint64 kept =
            least + static_cast<qint64>((found.payload_size - static_cast<quint64>(least)) %
                                        static_cast<quint64>(usable - 4));
        found.local_size = kept <= most ? kept : least;
        found.overflow_page = page.number_32(at + found.local_size);
        at += 4;
    }
    found.size = at + found.local_size - begin;
    return found;
}

/// Bytes of a value of this type in a record.
quint64 size_of_value(quint64 type)
{
    static constexpr std::array<quint64, 12> fixed = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0, 0, 0};
    return type < fixed.size() ? fixed.at(type) : (type - 12) / 2;
}

class page_walk
{
public:
    /// When cutting, what is repeated is taken out; else the walk ends where it would be.
    page_walk(page_file &file, bool cutting)
        : file_(file), cutting_(cutting), taken_by_(file.stored_pages() / block_pages + 1)
    {
    }

    /// The number of repeated references; without cutting at most 1.
    int walk()
    {
        // The schema's table begins on page 1 and tells where all others do.
        walk_tree(1);
        for (std::size_t i = 0; i < roots_.size() && goes_on(); ++i)
            walk_tree(roots_.at(i));
        if (goes_on() && has_repeated_free_page()) {
            ++repeated_;
            if (cutting_)
                forget_free_pages();
        }
        return repeated_;
    }

private:
    struct reference {
        quint32 page;
        int depth;
    };

    bool goes_on() const { return cutting_ || repeated_ == 0; }
    bool is_schema() const { return tree_ == 1; }

    void walk_tree(quint64 root)
    {
        if (!file_.holds(root) || roots_walked_.contains(root))
            return;
        roots_walked_.insert(root);
        ++tree_;
        refer_to(static_cast<quint32>(root), 0);
        // Level by level and from the left: what a damaged page takes wrongly stays with the pages
        // before it, whose rows come first.
        for (; !waiting_.empty(); waiting_.pop_front()) {
            if (goes_on())
                visit(waiting_.front());
        }
    }

    /// Notes that the tree has the page; returns which tree took it last.
    quint32 take(quint32 page)
    {
        const std::size_t number = page / block_pages;
        if (number >= taken_by_.size())
            return std::exchange(taken_in_log_[page], tree_);
        auto &block = taken_by_.at(number);
        if (!block)
            block = std::make_unique<tree_numbers>();
        return std::exchange(block->at(page % block_pages), tree_);
    }

    /// False for a page that the tree has already. What lies outside the file or too deep is left
    /// to SQLite, which refuses it.
    bool refer_to(quint32 page, int depth)
    {
        if (!file_.holds(page) || depth > greatest_depth)
            return true;
        if (take(page) == tree_)
            return false;
        waiting_.push_back({page, depth});
        return true;
    }

    void visit(const reference &place);
    bool take_overflow(const cell &one);
    quint64 root_in_schema_row(const QByteArray &page, const cell &row);
    void write_cells(quint32 number, QByteArray page, const std::vector<int> &kept,
                     quint32 right_child);
    bool has_repeated_free_page();
    void forget_free_pages();

    page_file &file_;
    const bool cutting_;
    int repeated_ = 0;
    quint32 tree_ = 0;
    // By page, the last tree that took it; 0: none. A file can be all holes, so that memory is
    // taken for pages that are met and not for its size.
    static constexpr quint32 block_pages = 1024;
    using tree_numbers = std::array<quint32, block_pages>;
    std::vector<std::unique_ptr<tree_numbers>> taken_by_;
    QHash<quint32, quint32> taken_in_log_; ///< the same of pages that the file does not have yet
    QSet<quint64> roots_walked_;
    std::vector<quint64> roots_;
    std::deque<reference> waiting_;
};

int header_of(quint32 page)
{
    return page == 1 ? page_file::header_size : 0;
}

void page_walk::visit(const reference &place)
{
    const QByteArray content = file_.page(place.page);
    const page_bytes page(content);
    const int header = header_of(place.page);
    const auto kind = static_cast<page_kind>(page.byte(header));
    const bool node = is_node(kind);
    if (!node && kind != index_leaf && kind != table_leaf)
        return;

    const int pointers = header + (node ? node_header_size : leaf_header_size);
    const int cells = qMin(page.number_16(header + 3), (file_.page_size() - pointers) / 2);
    std::vector<int> kept;
    qint64 used = 0;
    quint32 last_child = 0;
    for (int i = 0; i < cells; ++i) {
        const int at = page.number_16(pointers + 2 * i);
        const cell one = read_cell(page, kind, at, file_.usable_size());
        if (at + one.size <= file_.page_size()) // SQLite refuses others
            used += one.size;
        // Cells that lie over each other stand for more bytes than the page has. A damaged one or
        // two must not cost the others.
        if (used > 4 * file_.page_size() || !take_overflow(one) ||
            !refer_to(one.child, place.depth + 1))
            continue;
        if (is_schema() && kind == table_leaf)
            roots_.push_back(root_in_schema_row(content, one));
        kept.push_back(at);
        last_child = one.child;
    }
    int repeated = cells - static_cast<int>(kept.size());
    quint32 right_child = node ? page.number_32(header + 8) : 0;
    if (!refer_to(right_child, place.depth + 1)) {
        ++repeated;
        right_child = last_child; // whose cell separates it from nothing any more
        if (!kept.empty())
            kept.pop_back();
    }
    repeated_ += repeated;
    if (repeated > 0 && cutting_)
        write_cells(place.page, content, kept, right_child);
}

bool page_walk::take_overflow(const cell &one)
{
    quint64 left = one.payload_size - static_cast<quint64>(one.local_size);
    const auto held = static_cast<quint64>(file_.usable_size() - 4);
    for (quint32 page = one.overflow_page; left > 0 && file_.holds(page);
         page = page_bytes(file_.page(page)).number_32(0)) {
        if (take(page) == tree_)
            return false;
        left -= qMin(left, held);
    }
    return true;
}

/// The page where the row's table or index begins: the fourth value of the row.
quint64 page_walk::root_in_schema_row(const QByteArray &page, const cell &row)
{
    QByteArray record = page.mid(row.payload_at, row.local_size);
    for (quint32 next = row.overflow_page;
         static_cast<quint64>(record.size()) < row.payload_size && file_.holds(next);) {
        const QByteArray more = file_.page(next);
        record += more.mid(4, file_.usable_size() - 4);
        next = page_bytes(more).number_32(0);
    }
    const page_bytes bytes(record);
    qint64 type_at = 0;
    quint64 value_at = bytes.variable(type_at); // behind the types
    for (int column = 0; column < 3; ++column)
        value_at += size_of_value(bytes.variable(type_at));
    const quint64 size = size_of_value(bytes.variable(type_at));
    quint64 root = 0;
    for (quint64 i = 0; i < size && size <= sizeof root; ++i)
        root = root << 8 | bytes.byte(static_cast<qint64>(value_at + i));
    return root;
}

void page_walk::write_cells(quint32 number, QByteArray page, const std::vector<int> &kept,
                            quint32 right_child)
{
    char *header = page.data() + header_of(number);
    char *pointer = header + leaf_header_size;
    if (is_node(static_cast<page_kind>(static_cast<uchar>(*header)))) {
        qToBigEndian(right_child, header + 8);
        pointer = header + node_header_size;
    }
    qToBigEndian(static_cast<quint16>(kept.size()), header + 3);
    for (const int at : kept) {
        qToBigEndian(static_cast<quint16>(at), pointer);
        pointer += 2;
    }
    file_.write(number, page);
}

/// A page of a table among those that are free would be overwritten by an index that is added.
bool page_walk::has_repeated_free_page()
{
    ++tree_;
    // New pages that are free at once are in no log.
    const auto take_free = [this](quint32 page) { return !file_.holds(page) || take(page) == 0; };
    QByteArray content = file_.page(1);
    for (quint32 trunk = page_bytes(content).number_32(first_free_page_at); trunk != 0;) {
        if (!take_free(trunk))
            return true;
        content = file_.page(trunk);
        const page_bytes page(content);
        const quint32 leaves = page.number_32(4);
        for (quint32 i = 0; i < leaves && 8 + 4 * qint64(i) < content.size(); ++i) {
            if (!take_free(page.number_32(8 + 4 * qint64(i))))
                return true;
        }
        trunk = page.number_32(0);
    }
    return false;
}

void page_walk::forget_free_pages()
{
    QByteArray page = file_.page(1);
    page.replace(first_free_page_at, 8, QByteArray(8, '\0'));
    file_.write(1, page);
}

} // namespace

int remove_repeated_pages(const QString &copy)
{
    page_file file(copy);
    if (!file.open() || page_walk(file, false).walk() == 0)
        return 0;
    return file.take_over_log() ? page_walk(file, true).walk() : -1;
}
