#include "common/extraction/own_table.h"

#include "common/extraction/guarded_connection.h"

#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype long_default = 1'000; ///< characters

/// Copies rows one by one, past what cannot be read.
class row_copy
{
public:
    /// The columns may be expressions; no other commas stand in them.
    row_copy(guarded_connection &connection, const QString &name, const QString &columns)
        : connection_(connection), name_(name),
          rows_(connection, u"select rowid, "_s + columns + u" from main." + name_ +
                                u" not indexed where rowid >= ? order by rowid"_s),
          insert_(connection, u"insert or ignore into temp."_s + name_ + u" values(?" +
                                  u",?"_s.repeated(columns.count(u',')) + u')'),
          columns_(static_cast<int>(columns.count(u',')) + 1)
    {
    }

    /// Returns what kept it from copying all rows; empty when nothing did.
    QString copy_all()
    {
        QString first_error;
        std::optional<qint64> from = std::numeric_limits<qint64>::min();
        while (from) {
            const QString error = copy_from(*from);
            if (error.isEmpty())
                break;
            if (first_error.isEmpty())
                first_error = error;
            from = full_ ? std::nullopt : next_readable();
        }
        return first_error;
    }

private:
    QString copy_from(qint64 first)
    {
        last_ = first;
        rows_.bind(0, first);
        if (!rows_.execute())
            return rows_.error_text();
        while (rows_.next()) {
            last_ = rows_.value(0).toLongLong();
            for (int column = 0; column < columns_; ++column)
                insert_.bind(column, rows_.value(column + 1));
            if (!insert_.execute()) {
                full_ = true;
                return insert_.error_text();
            }
        }
        return rows_.error_text();
    }

    bool can_read_from(qint64 row_id)
    {
        guarded_query probe(connection_,
                            u"select rowid from main."_s + name_ +
                                u" not indexed where rowid >= ? order by rowid limit 1");
        probe.bind(0, row_id);
        return probe.execute() && (probe.next() || probe.error_text().isEmpty());
    }

    /// The first row id behind the last one from which rows can be read: pages hold ranges of ids.
    std::optional<qint64> next_readable()
    {
        if (connection_.guard().is_used_up())
            return std::nullopt;
        // Nothing was read before the first unreadable page: browsers count from 1.
        last_ = std::max(last_, 0LL);
        qint64 unreadable = last_;
        qint64 step = 1;
        constexpr qint64 last_step = 1LL << 60;
        while (step < last_step && last_ < std::numeric_limits<qint64>::max() - step &&
               !can_read_from(last_ + step)) {
            unreadable = last_ + step;
            step *= 2;
        }
        if (step >= last_step || last_ >= std::numeric_limits<qint64>::max() - step)
            return std::nullopt;
        qint64 readable = last_ + step;
        while (readable - unreadable > 1) {
            const qint64 middle = unreadable + (readable - unreadable) / 2;
            (can_read_from(middle) ? readable : unreadable) = middle;
        }
        return readable;
    }

    guarded_connection &connection_;
    QString name_;
    guarded_query rows_;
    guarded_query insert_;
    int columns_;
    qint64 last_ = 0;
    bool full_ = false;
};

/// Makes the table, with as many of the wanted columns as the evidence must have, and an index.
/// Returns its columns; empty when that fails.
QString create(guarded_connection &connection, const own_table &table)
{
    const QString name = QString::fromUtf8(table.name);
    const QString key = QString::fromUtf8(table.key);
    const QString others = QString::fromUtf8(table.columns);
    const QLatin1StringView type =
        table.type == own_table::key_type::number ? "INTEGER"_L1 : "TEXT"_L1;
    QStringList orders = {QString()};
    if (table.order)
        orders.prepend(u", "_s + QString::fromUtf8(table.order));
    for (const QString &order : orders) {
        const QString columns = key + order + u", " + others;
        guarded_query fits(connection, u"select "_s + columns + u" from main." + name);
        if (!fits.error_text().isEmpty())
            continue;
        QStringList statements = {u"create temp table "_s + name + u'(' + key + u' ' + type +
                                  order + u", " + others + u')'};
        if (table.indexed)
            statements.append((table.first_of_key ? u"create unique"_s : u"create"_s) +
                              u" index temp.own_" + name + u" on " + name + u'(' + key + order +
                              u')');
        for (const QString &statement : std::as_const(statements)) {
            if (!guarded_query(connection, statement).execute())
                return {};
        }
        return columns;
    }
    return {};
}

} // namespace

QString cut_columns(const QString &columns)
{
    QStringList names = columns.split(u',');
    for (QString &name : names) {
        name = name.trimmed();
        name = u"case when typeof("_s + name + u") in ('text', 'blob') then substr(" + name +
               u", 1, 1000) else " + name + u" end as " + name;
    }
    return names.join(u", "_s);
}

column_kind kind_of(guarded_connection &connection, const QString &table, const QString &columns)
{
    QStringList names = columns.split(u',');
    for (QString &name : names)
        name = name.section(u'.', -1).trimmed();
    guarded_query described(connection, u"PRAGMA main.table_xinfo("_s + table + u')');
    auto worst = column_kind::stored;
    for (described.execute(); described.next();) {
        enum { name = 1, default_value = 4, hidden = 6 };
        if (!names.contains(described.value(name).toString(), Qt::CaseInsensitive))
            continue;
        if (described.value(hidden).toInt() != 0)
            return column_kind::computed;
        if (described.value(default_value).toString().size() > long_default)
            worst = column_kind::amplified;
    }
    return worst;
}

bool holds_numbers(guarded_connection &connection, const QString &table, const QString &column)
{
    guarded_query described(connection, u"PRAGMA main.table_xinfo("_s + table + u')');
    for (described.execute(); described.next();) {
        enum { name = 1, type = 2 };
        if (described.value(name).toString().compare(column, Qt::CaseInsensitive) == 0)
            return described.value(type).toString().contains("INT"_L1, Qt::CaseInsensitive);
    }
    return false;
}

QString make_own_table(guarded_connection &connection, const own_table &table)
{
    const QString name = QString::fromUtf8(table.name);
    const QString wanted = QString::fromUtf8(table.key) + u", " + QString::fromUtf8(table.columns);
    const column_kind kind = kind_of(connection, name, wanted);
    if (kind == column_kind::computed)
        return computed_columns_error();
    const QString columns = create(connection, table);
    if (columns.isEmpty())
        return {};
    const QString taken = kind == column_kind::stored ? columns : cut_columns(columns);
    QString fill = u"insert or ignore into temp."_s + name + u" select " + taken + u" from main." +
                   name + u" not indexed";
    if (table.filter)
        fill += u" where "_s + QString::fromUtf8(table.filter);
    if (guarded_query(connection, fill).execute())
        return {};
    return row_copy(connection, name, taken).copy_all();
}
