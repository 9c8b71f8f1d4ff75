#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>

#include <optional>

// Forms of the time conversions for values that SQLite stored as whole numbers. They give what the
// text forms of plugin_static_function give, without formatting and parsing every number: a history
// has millions of them.

/// The number, when the value was stored as one.
inline std::optional<qint64> whole_number(const QVariant &value)
{
    if (value.typeId() != QMetaType::LongLong)
        return std::nullopt;
    return value.toLongLong();
}

/// convert_google_time_to_epoch(): Unix seconds as a number where that can be, else as its text.
QVariant unix_seconds_of(const QVariant &google_time);

/// convert_timestamp_to_human_readable_in_UTC() of whole Unix seconds.
QString utc_text(qint64 unix_seconds);
