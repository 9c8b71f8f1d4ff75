#pragma once

#include <QByteArray>
#include <QHash>

/// The extended attributes of one file by name.
using attribute_values = QHash<QByteArray, QByteArray>;

/// The name under which the Finder's own 32 bytes are listed among the attributes.
inline constexpr char finder_info_name[] = "com.apple.FinderInfo";

/// An attribute value that is longer is not read.
inline constexpr qsizetype longest_attribute = 1024 * 1024;

/// The attributes in an AppleDouble file, the companion "._NAME" that carries what a file system
/// cannot keep with NAME. Attributes that reach past the end are left out; where attributes overlap
/// each other or their own table, nothing in that table can be trusted and none is returned.
attribute_values apple_double_attributes(const QByteArray &bytes);
