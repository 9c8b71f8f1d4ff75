#pragma once

#include <QString>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>

/// One QSQLITE connection under a fixed name, for as long as this object lives. An older connection
/// of that name is removed first. Declare it before every query on it, so that no query outlives
/// it.
class named_connection
{
public:
    enum class access {
        read_write, ///< creates the database when missing
        read_only,  ///< a missing database fails to open
    };
    enum class after_use {
        removed,
        kept_registered, ///< closed, but known under its name until the next one takes it
    };

    named_connection(const QString &name, const QString &database_path,
                     access mode = access::read_write, after_use end = after_use::removed);
    ~named_connection();
    named_connection(const named_connection &) = delete;
    named_connection &operator=(const named_connection &) = delete;

    bool is_open() const { return database_.isOpen(); }
    QSqlDatabase &database() { return database_; }
    /// The driver's text of the last error on the connection itself.
    QString error_text() const { return database_.lastError().text(); }

private:
    QString name_;
    after_use end_;
    QSqlDatabase database_;
};
