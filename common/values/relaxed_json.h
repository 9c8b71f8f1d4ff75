#pragma once

#include <QByteArray>
#include <QJsonObject>

/// The object of a JSON text as extensions write it: with a byte-order mark in front and comments
/// ("//" to the end of the line, "/*" to "*/") where JSON allows none. Empty when the text is no
/// object even so.
QJsonObject relaxed_json_object(const QByteArray &text);
