#pragma once

#include <QJsonDocument>
#include <QJsonParseError>
#include <QJsonValue>
#include <QString>

// Small readers shared by the configuration tables.
namespace TFJsonRead {

// A JSON number read as a double and truncated towards zero. Numbers beyond
// the range of the type saturate at its limits instead of overflowing.
qint64 truncatedInt64(const QJsonValue& value);
int truncatedInt32(const QJsonValue& value);

// Several tables carry their content as JSON text inside a JSON string: the
// string is encoded as UTF-8 and parsed. A value that is no string reads as
// an empty text and so fails to parse.
QJsonDocument parseEmbeddedJson(const QJsonValue& value, QJsonParseError* error);

// The debug line of a table whose embedded text failed to parse.
QString parseErrorText(const QJsonParseError& error);

} // namespace TFJsonRead
