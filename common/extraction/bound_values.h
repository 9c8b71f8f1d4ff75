#pragma once

#include <QList>
#include <QVariant>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlResult>

#include <concepts>

/// The values bound to a prepared query, to be replaced one by one. QSqlQuery::bindValue() formats
/// the name of a placeholder at every call, which takes a quarter of the time of a row; writing
/// into Qt's own list does not. Where a version of Qt gives no access to it, bindValue() is used.
class bound_values
{
public:
    /// Binds NULL to all placeholders. The query must outlive this object.
    bound_values(QSqlQuery &query, int placeholders) : query_(query)
    {
        for (int position = 0; position < placeholders; ++position)
            query_.bindValue(position, QVariant());
        values_ = values_of(query_.result());
    }

    void replace(int position, const QVariant &value)
    {
        if (values_ != nullptr && position < values_->size())
            (*values_)[position] = value;
        else
            query_.bindValue(position, value);
    }

private:
    /// Opens what QSqlResult keeps for its subclasses.
    struct opened_result : QSqlResult {
        using QSqlResult::boundValues;
    };

    template <typename result_type> static QList<QVariant> *values_of(const result_type *result)
    {
        using accessor = QList<QVariant> &(QSqlResult::*)() const;
        if constexpr (requires { static_cast<accessor>(&opened_result::boundValues); })
            return &(result->*static_cast<accessor>(&opened_result::boundValues))();
        else
            return nullptr;
    }

    QSqlQuery &query_;
    QList<QVariant> *values_ = nullptr;
};
