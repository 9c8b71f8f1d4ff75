#include "common/named_connection.h"

using namespace Qt::StringLiterals;

named_connection::named_connection(const QString &name, const QString &database_path, access mode,
                                   after_use end)
    : name_(name), end_(end)
{
    if (QSqlDatabase::contains(name))
        QSqlDatabase::removeDatabase(name);
    database_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
    database_.setDatabaseName(database_path);
    if (mode == access::read_only)
        database_.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
    // SQLite would make a database of its own of an empty path, which vanishes with the connection.
    if (!database_path.isEmpty())
        database_.open();
}

named_connection::~named_connection()
{
    database_.close();
    database_ = QSqlDatabase();
    if (end_ == after_use::removed)
        QSqlDatabase::removeDatabase(name_);
}
