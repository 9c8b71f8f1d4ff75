#include "common/evidence/listed_names.h"

#include <QFile>
#include <QtSql/QSqlQuery>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 most_bytes = 4 << 20; ///< of all names in memory
constexpr qint64 bytes_beside_name = 64;
constexpr int names_at_once = 1000;

} // namespace

listed_names::~listed_names()
{
    if (scratch_) {
        scratch_.reset();
        QFile::remove(scratch_path_);
    }
}

QString listed_names::table() const
{
    return u"folder_"_s + QString::number(folders_.size());
}

bool listed_names::add(const QByteArray &name)
{
    folder &into = folders_.back();
    into.names.push_back(name);
    into.bytes += name.size() + bytes_beside_name;
    bytes_ += name.size() + bytes_beside_name;
    return bytes_ <= most_bytes || store(into);
}

bool listed_names::end()
{
    folder &ended = folders_.back();
    if (!ended.stored) {
        std::ranges::sort(ended.names);
        return true;
    }
    if (!store(ended))
        return false;
    QSqlQuery query(scratch_->database());
    return query.exec(u"CREATE INDEX %1_names ON %1(name)"_s.arg(table())) && load_more(ended);
}

bool listed_names::store(folder &from)
{
    if (!scratch_) {
        QFile::remove(scratch_path_);
        scratch_ = std::make_unique<named_connection>(u"for_each_file"_s, scratch_path_);
        QSqlQuery query(scratch_->database());
        if (!query.exec(u"PRAGMA synchronous = OFF"_s) ||
            !query.exec(u"PRAGMA journal_mode = OFF"_s))
            return false;
    }
    QSqlQuery query(scratch_->database());
    if (!from.stored && !query.exec(u"CREATE TABLE %1(name BLOB)"_s.arg(table())))
        return false;
    from.stored = true;
    if (!scratch_->database().transaction() ||
        !query.prepare(u"INSERT INTO %1 VALUES(?)"_s.arg(table())))
        return false;
    for (const QByteArray &name : from.names) {
        query.bindValue(0, name);
        if (!query.exec())
            return false;
    }
    bytes_ -= from.bytes;
    from.bytes = 0;
    from.names.clear();
    return scratch_->database().commit();
}

bool listed_names::load_more(folder &into)
{
    const QByteArray last = into.names.empty() ? QByteArray("") : into.names.back();
    into.names.clear();
    into.taken = 0;
    QSqlQuery query(scratch_->database());
    query.setForwardOnly(true);
    query.prepare(u"SELECT name FROM %1 WHERE name > ? ORDER BY name LIMIT ?"_s.arg(table()));
    query.bindValue(0, last);
    query.bindValue(1, names_at_once);
    if (!query.exec())
        return false;
    while (query.next())
        into.names.push_back(query.value(0).toByteArray());
    return true;
}

QByteArray listed_names::take()
{
    folder &from = folders_.back();
    if (from.taken == from.names.size() && from.stored)
        load_more(from);
    return from.taken < from.names.size() ? from.names[from.taken++] : QByteArray();
}

void listed_names::leave()
{
    if (folders_.back().stored)
        QSqlQuery(scratch_->database()).exec(u"DROP TABLE "_s + table());
    bytes_ -= folders_.back().bytes;
    folders_.pop_back();
}
