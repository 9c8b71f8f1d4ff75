#pragma once

#include <QtGlobal>

namespace sample
{

/// Seconds from 1601-01-01 to 1970-01-01, both 00:00:00 UTC.
inline constexpr qint64 seconds_1601_to_1970 = 11644473600;

/// No sample lies later than this: 2023-03-01 09:00:00 UTC, in Unix seconds.
inline constexpr qint64 latest_instant = 1677661200;

/// One day in seconds.
inline constexpr qint64 day = 86400;

/// The way the browser writes most of its times: microseconds since 1601-01-01 00:00:00 UTC.
constexpr qint64 browser_time(qint64 unix_seconds, qint64 microseconds = 0)
{
    return (unix_seconds + seconds_1601_to_1970) * 1000000 + microseconds;
}

constexpr qint64 minutes_ago(qint64 minutes)
{
    return latest_instant - minutes * 60;
}

constexpr qint64 days_ago(qint64 days)
{
    return latest_instant - days * day;
}

} // namespace sample
