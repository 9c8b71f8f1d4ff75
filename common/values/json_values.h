#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/// The object of a JSON text as extensions write it: with a byte-order mark in front and comments
/// ("//" to the end of the line, "/*" to "*/") where JSON allows none. Empty when the text is no
/// object even so.
QJsonObject relaxed_json_object(const QByteArray &text);

/// Bytes of memory that the parsed form of a JSON text takes at most, whatever the text holds.
qint64 parsed_json_bytes(const QByteArray &text);

/// Strings as they are, numbers in decimal, anything else empty.
QString json_text(const QJsonValue &value);

/// YES or NO of a boolean; NO when the record does not say, as the browser takes it.
QString json_flag(const QJsonValue &value);
