#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QtGlobal>

#include <limits>

/// A made-up file can yield rows without end, or the same text in each of them. What is read from a
/// file, and what look-ups find for all its rows together, stays below what a file of its size can
/// hold.
class reading_budget
{
public:
    /// Without bounds.
    reading_budget() = default;
    /// The size is in bytes.
    explicit reading_budget(qint64 file_size)
        : rows_left_(file_size),
          characters_left_(characters_per_byte * file_size + spare_characters)
    {
    }

    void use_row() { --rows_left_; }
    void use_text(const QVariant &value)
    {
        if (value.typeId() == QMetaType::QString)
            characters_left_ -= value.toString().size();
        else if (value.typeId() == QMetaType::QByteArray)
            characters_left_ -= value.toByteArray().size();
    }
    bool is_used_up() const { return rows_left_ < 0 || characters_left_ < 0; }
    /// What is logged as the error then.
    static QString error() { return QStringLiteral("more rows than a file of this size can hold"); }

private:
    // A column may be read more than once, and its default value is stored once for all rows.
    static constexpr qint64 characters_per_byte = 16;
    static constexpr qint64 spare_characters = 1 << 20;

    qint64 rows_left_ = std::numeric_limits<qint64>::max();
    qint64 characters_left_ = std::numeric_limits<qint64>::max();
};
