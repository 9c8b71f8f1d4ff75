#pragma once

#include "common/extraction/sqlite_guard.h"
#include "common/named_connection.h"

#include <QString>
#include <QtSql/QSqlQuery>

class extraction_run;

/// A private copy of a database of the evidence, opened for reading under SQLite's own safeguards;
/// see sqlite_guard. What is asked of it goes through guarded_query. Tables of our own can be made
/// in its temporary database: names there come before those of the evidence.
class guarded_connection
{
public:
    /// The first connection of the process that cannot be guarded is logged.
    guarded_connection(const QString &name, const QString &copy, const extraction_run &run,
                       const QString &signature,
                       named_connection::access mode = named_connection::access::read_only);
    guarded_connection(const guarded_connection &) = delete;
    guarded_connection &operator=(const guarded_connection &) = delete;

    bool is_open() const { return connection_.is_open(); }
    QString error_text() const { return connection_.error_text(); }
    QSqlDatabase &database() { return connection_.database(); }
    sqlite_guard &guard() { return guard_; }
    /// Bytes of the copy and its companions.
    qint64 size() const { return size_; }

    // One read transaction serves all statements in between: without it, each asks the file system
    // whether the copy has changed.
    void begin_reading() { database().transaction(); }
    void end_reading() { database().commit(); }

    /// What SQLite says of the copy's structure: "ok", or the first fault.
    QString check_structure();

private:
    bool page_count_is_possible();
    bool schema_computes();

    const qint64 size_;
    sqlite_guard guard_;
    named_connection connection_;
};

/// A forward-only query on a guarded connection. An error of its preparation is kept, because
/// executing would replace it.
class guarded_query
{
public:
    guarded_query(guarded_connection &connection, const QString &sql);

    bool execute();
    bool next();
    /// Why the query does not run, or ended; empty after its last row.
    QString error_text() const;
    QSqlQuery &query() { return query_; }
    const QSqlQuery &query() const { return query_; }
    QVariant value(int column) const { return query_.value(column); }
    /// Before execute(); a query that failed can so be run again.
    void bind(int place, const QVariant &value);

private:
    void prepare();

    sqlite_guard &guard_;
    QString sql_;
    QSqlQuery query_;
    QString prepare_error_;
    bool failed_ = false;
};

/// SQLite's temporary files (sorted rows, tables of our own) hold evidence: while this lives they
/// lie in the folder, if it exists, and not in the system's. The setting is the process's.
class sqlite_temporary_folder
{
public:
    explicit sqlite_temporary_folder(const QString &folder);
    ~sqlite_temporary_folder();
    sqlite_temporary_folder(const sqlite_temporary_folder &) = delete;
    sqlite_temporary_folder &operator=(const sqlite_temporary_folder &) = delete;

private:
    char *before_;
};
