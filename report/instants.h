#pragma once

#include <QTimeZone>

#include <optional>
#include <string>
#include <string_view>

/// Times as microseconds since 1970-01-01 UTC, between the years 1 and 9999.
namespace instants
{

/// How a column keeps its times.
enum class stored_form {
    unix_seconds,
    as_the_browser_had_it, ///< seconds, milliseconds or microseconds since 1970, microseconds since
                           ///< 1601
    seconds_joined,        ///< several Unix seconds, joined by ";++::++;"
    visits,                ///< the text of all visits of a page
};

/// The instant of a stored number. Nothing for 0, which stands for "not recorded", and for what no
/// calendar year from 1 to 9999 holds.
std::optional<qint64> of(qint64 stored, stored_form form);
/// The same of a text; nothing where it is no whole number.
std::optional<qint64> of(std::string_view stored, stored_form form);

/// "27-Feb-2023 23:40:00", in English, UTC.
std::optional<qint64> of_visit(std::string_view text);

/// Appends "2023-02-27T23:40:00.000000+00:00".
void append_iso(std::string &out, qint64 instant);
/// Appends "2023-02-27 23:40:00", and the fraction when there is one.
void append_readable(std::string &out, qint64 instant);

/// A time zone that remembers the last offset, since neighbours in a sorted list share it.
class zone
{
public:
    /// An invalid name gives UTC and valid() false.
    explicit zone(const QByteArray &name);

    bool valid() const { return zone_.isValid(); }
    bool is_utc() const { return utc_; }
    const std::string &name() const { return name_; }
    /// Microseconds to add to the instant for the clock on the wall.
    qint64 offset(qint64 instant) const;
    /// Appends "2023-02-28T00:40:00.000000+01:00".
    void append_iso(std::string &out, qint64 instant) const;
    /// Appends "2023-02-28 00:40:00 +01:00".
    void append_readable(std::string &out, qint64 instant) const;

private:
    QTimeZone zone_;
    std::string name_;
    bool utc_;
    mutable qint64 block_ = 0;
    mutable qint64 offset_ = 0;
    mutable bool known_ = false;
};

} // namespace instants
