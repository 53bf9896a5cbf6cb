#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>
#include <QString>
#include <QVector>

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

// The objects of an array held as JSON text in a string value, in order;
// elements that are no objects are passed over. Text that does not parse is
// logged under the caller's name and, like any other shape, gives none.
QVector<QJsonObject> embeddedObjects(const QJsonValue& value, const char* caller);

} // namespace TFJsonRead
