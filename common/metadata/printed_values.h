#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

// The printed descriptions of metadata values, as the system that keeps them prints them; what
// printed_items.h reads back.

QString printed_string(const QString &text);
QString printed_number(qint64 number);
/// The shortest text that stands for the number; null for what is no finite number.
QString printed_number(double number);
QString printed_boolean(bool value);
/// In UTC, whole seconds; null outside of the years 1 to 9999.
QString printed_date(const QDateTime &date);
/// The bytes in hexadecimal digits.
QString printed_bytes(const QByteArray &bytes);

/// Items of lists: a text is quoted unless it is a plain word.
QString printed_item(const QString &text);
/// The items, each already printed, in brackets or braces. The lines of a list that stands inside
/// another are indented by its depth; the outermost has depth 0.
QString printed_list(const QStringList &items, int depth);
QString printed_dictionary(const QStringList &keys, const QStringList &values, int depth);
