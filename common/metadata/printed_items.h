#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QStringView>

// Reading the printed descriptions of metadata values; printed_values.h makes them.

/// The items of a printed list, those of nested lists among them, quotes and escapes undone. A text
/// that is no list is its own only item.
QStringList printed_items(QStringView description);
/// The items of a printed array, joined with ";", or a plain text as it is.
QString joined_items(const QString &description);

/// The addresses of a printed where-from value, without double quotes, "<" and ">". Brackets,
/// commas and semicolons within an address stay.
QStringList printed_addresses(QStringView description);
/// The same, joined with ";".
QString joined_addresses(const QString &description);

/// The bare number of "<CFNumber ...>{value = +5, type = ...}", or of a plain number.
QString bare_number(const QString &description);
/// The text between "=" behind "]>{" and a closing brace at the end; empty without these marks.
QString bare_boolean(const QString &description);
/// The same, without double quotes.
QString bare_string(const QString &description);

/// A printed date to Unix seconds; empty when unreadable. Logs as the next one does.
QString printed_date_to_unix_seconds(const QString &description);
/// An ISO date text, "T" or a blank between date and time, in UTC unless an offset follows. The
/// result is in UTC without fractions of a second, invalid for any other text. Logs its start and
/// end.
QDateTime iso_text_to_date_time(const QString &text);
