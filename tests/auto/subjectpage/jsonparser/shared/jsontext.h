#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

// Several tables carry their content as JSON text inside a string; these
// write a test's arrays and objects that way.
inline QString jsonText(const QJsonArray& array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

inline QString jsonText(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// A JSON value written in a test's data table as text: "[1,2]", "{}",
// "\"text\"", "3.5", "true", "null". An empty text is an undefined value.
inline QJsonValue jsonValue(const QString& text)
{
    if (text.isEmpty())
        return QJsonValue(QJsonValue::Undefined);
    const QJsonArray wrapped = QJsonDocument::fromJson("[" + text.toUtf8() + "]").array();
    if (wrapped.size() != 1)
        qFatal("not one JSON value: %s", qPrintable(text));
    return wrapped.first();
}
