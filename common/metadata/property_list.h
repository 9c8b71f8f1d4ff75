#pragma once

#include <QByteArray>
#include <QString>

/// The printed description of the value in a binary property list. Null when the bytes are none,
/// are damaged or pass the bounds below, and when the library that decodes them is not built in.
QString property_list_description(const QByteArray &bytes);

/// True for binary property lists that may be handed to a decoder which trusts its input: all
/// offsets lie inside, no value holds itself, and the whole stays within what metadata can need:
/// 1 MiB, eight levels, 20000 values and 4 MiB of contents, those that several lists share counted
/// as often as they are referred to. Of values it admits texts, numbers of up to 64 bits, booleans,
/// dates of the years 1933 to 2069, bytes, lists and dictionaries.
bool is_harmless_property_list(const QByteArray &bytes);
