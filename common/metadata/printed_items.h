#pragma once

#include <QStringList>
#include <QStringView>

/// The items of a printed list, those of nested lists among them, quotes and escapes undone. A text
/// that is no list is its own only item.
QStringList printed_items(QStringView description);

/// The addresses of a printed where-from value.
QStringList printed_addresses(QStringView description);
