#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>

#include <optional>

// Numbers come and go as decimal text. Bad input never fails; it gives the stated text. The forms
// for values that SQLite stored as whole numbers give what the text forms give, without formatting
// and parsing every number: a history has millions of them.

/// The number, when the value was stored as one.
inline std::optional<qint64> whole_number(const QVariant &value)
{
    if (value.typeId() != QMetaType::LongLong)
        return std::nullopt;
    return value.toLongLong();
}

/// From microseconds since 1601-01-01 UTC, truncated toward zero. Empty and "0" give an empty text;
/// exactly ten characters are Unix seconds already and come back unchanged; any other text that is
/// no number counts as 0 and gives -11644473600.
QString microseconds_since_1601_to_unix_seconds(const QString &microseconds);
/// As a number where that can be, else as its text.
QVariant microseconds_since_1601_to_unix_seconds(const QVariant &microseconds);
/// From seconds since 2001-01-01 UTC (a fraction is dropped); empty for "" and "0".
QString seconds_since_2001_to_unix_seconds(const QString &seconds);

/// To "dd-MMM-yyyy hh:mm:ss" UTC with English month names; a fraction is dropped. Zero, no number
/// and values beyond 32 bits give an empty text.
QString unix_seconds_to_utc_text(const QString &unix_seconds);
QString unix_seconds_to_utc_text(qint64 unix_seconds);
/// To "hh:mm:ss Hrs", or "mm:ss Min" below an hour; empty for a negative value.
QString seconds_to_duration_text(const QString &seconds);
QString seconds_to_duration_text(int seconds);
/// "hhmm" to seconds; parts that are no numbers count as 0.
quint64 hhmm_to_seconds(const QString &zone);

/// From "MMM d, yyyy, h:mm:ss AM|PM ZONE", local time unless the zone is UTC. As in the next two,
/// "" and "0" give an empty text, a text that cannot be read gives "0".
QString english_date_to_unix_seconds(const QString &text);
/// From "yyyy-MM-dd hh:mm:ss+hhmm" (or -hhmm, or no offset for UTC).
QString sql_date_to_unix_seconds(const QString &text);
/// From "ddd, dd MMM yyyy hh:mm:ss ZONE", read as UTC whatever the zone.
QString http_date_to_unix_seconds(const QString &text);
/// From a compact or ISO date with "T" and "Z" separators; empty when unreadable.
QString iso_date_to_unix_seconds(const QString &text);
/// From a date text read with the given Qt format as UTC; empty when unreadable.
QString utc_date_to_unix_seconds(const QString &text, const QString &format);
