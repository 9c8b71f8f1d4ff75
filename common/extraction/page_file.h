#pragma once

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QString>

/// The pages of a database file as SQLite sees them: those that transactions in the write-ahead log
/// have changed come from there. Pages count from 1.
class page_file
{
public:
    /// Length of the header before the first page's own.
    static constexpr int header_size = 100;

    explicit page_file(const QString &path);

    /// False for what is no database.
    bool open();
    /// Pages of the file itself. The log can have further ones.
    quint32 stored_pages() const { return stored_pages_; }
    /// True when the page can be read.
    bool holds(quint64 number) const
    {
        return number > 0 && number <= page_count_ &&
               (number <= stored_pages_ || logged_.contains(static_cast<quint32>(number)));
    }
    int page_size() const { return page_size_; }
    /// Bytes of a page that SQLite itself uses.
    int usable_size() const { return usable_size_; }

    /// The page; empty when it cannot be read.
    QByteArray page(quint32 number);
    /// Puts the write-ahead log into the file and removes it; pages can be written then. Refused
    /// for a log that would make the file much larger than both are.
    bool take_over_log();
    bool write(quint32 number, const QByteArray &page);

private:
    void read_log();

    QFile file_;
    QFile log_;
    QHash<quint32, qint64> logged_; ///< where in the log the last version of a page begins
    quint32 page_count_ = 0;        ///< of the database, as its last transaction left it
    quint32 stored_pages_ = 0;
    int page_size_ = 0;
    int usable_size_ = 0;
};
