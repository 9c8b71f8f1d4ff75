#include "common/extraction/guarded_connection.h"

#include "common/debug_log.h"
#include "common/extraction/extraction_run.h"
#include "common/extraction/failure_log.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtSql/QSqlError>

#include <sqlite3.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace
{

qint64 size_with_companions(const QString &copy)
{
    return QFileInfo(copy).size() + QFileInfo(copy + u"-wal").size();
}

void tell_once_that_nothing_guards(const QString &signature)
{
    static std::atomic<bool> told = false;
    if (!told.exchange(true))
        debug_log(operation_tag(signature) +
                      u" SQLite of the database driver is not guarded -----FAILED-----",
                  signature);
}

} // namespace

guarded_connection::guarded_connection(const QString &name, const QString &copy,
                                       const extraction_run &run, const QString &signature,
                                       named_connection::access mode)
    : size_(size_with_companions(copy)), guard_(run.cancel_flag(), size_),
      connection_(name, copy, mode)
{
    if (!guard_.armed() && is_open())
        tell_once_that_nothing_guards(signature);
    if (!is_open())
        return;
    QSqlQuery settings(database());
    settings.exec(u"PRAGMA ignore_check_constraints = on"_s);
    // Tables of our own hold what the file holds, at most twice.
    constexpr qint64 page_size = 4096;
    const qint64 room = (16 << 20) + 4 * qMin(size_, 1LL << 40);
    settings.exec(u"PRAGMA temp.max_page_count = "_s + QString::number(room / page_size));
}

bool guarded_connection::schema_computes()
{
    // What a browser writes for its tables and indexes has no such word; computed columns have.
    static const QRegularExpression as(u"\\bas\\b"_s, QRegularExpression::CaseInsensitiveOption);
    guarded_query schema(*this, u"select sql from main.sqlite_master"_s);
    schema.execute();
    while (schema.next()) {
        if (schema.value(0).toString().contains(as))
            return true;
    }
    return false;
}

bool guarded_connection::page_count_is_possible()
{
    guarded_query pages(*this, u"PRAGMA page_count"_s);
    guarded_query page_size(*this, u"PRAGMA page_size"_s);
    if (!pages.execute() || !pages.next() || !page_size.execute() || !page_size.next())
        return true; // which the check then tells
    return pages.value(0).toLongLong() <= size_ / page_size.value(0).toLongLong();
}

QString guarded_connection::check_structure()
{
    // A write-ahead log can claim pages that nothing holds, and the check remembers each.
    if (!page_count_is_possible())
        return u"more pages are claimed than the file holds"_s;
    // For the check SQLite takes the columns of every table apart, and expressions that name each
    // other grow beyond all bounds before a step is counted.
    if (schema_computes())
        return u"not checked, the schema computes values"_s;
    // Pages that fail it are told, but their sound cells are read.
    QSqlQuery settings(database());
    settings.exec(u"PRAGMA cell_size_check = on"_s);
    guarded_query check(*this, u"PRAGMA quick_check(1)"_s);
    const bool answered = check.execute() && check.next();
    const QString answer = answered ? check.value(0).toString().simplified() : check.error_text();
    settings.exec(u"PRAGMA cell_size_check = off"_s);
    guard_.renew(); // a check that came to no end must not cost the rows
    return answer;
}

guarded_query::guarded_query(guarded_connection &connection, const QString &sql)
    : guard_(connection.guard()), sql_(sql), query_(connection.database())
{
    query_.setForwardOnly(true);
    prepare();
}

void guarded_query::prepare()
{
    guard_.resume();
    if (!query_.prepare(sql_))
        prepare_error_ = query_.lastError().text();
}

bool guarded_query::execute()
{
    if (!prepare_error_.isEmpty())
        return false;
    guard_.resume();
    if (query_.exec())
        return true;
    failed_ = true;
    return false;
}

void guarded_query::bind(int place, const QVariant &value)
{
    // SQLite reports an error once more when the statement is reset.
    if (std::exchange(failed_, false))
        prepare();
    query_.bindValue(place, value);
}

bool guarded_query::next()
{
    guard_.resume();
    if (query_.next())
        return true;
    failed_ = query_.lastError().isValid();
    return false;
}

QString guarded_query::error_text() const
{
    if (guard_.is_used_up())
        return sqlite_guard::error();
    if (!prepare_error_.isEmpty())
        return prepare_error_;
    return query_.lastError().isValid() ? query_.lastError().text() : QString();
}

sqlite_temporary_folder::sqlite_temporary_folder(const QString &folder)
    : before_(sqlite3_temp_directory)
{
    if (!folder.isEmpty())
        sqlite3_temp_directory = sqlite3_mprintf("%s", QFile::encodeName(folder).constData());
}

sqlite_temporary_folder::~sqlite_temporary_folder()
{
    if (sqlite3_temp_directory != before_)
        sqlite3_free(std::exchange(sqlite3_temp_directory, before_));
}
