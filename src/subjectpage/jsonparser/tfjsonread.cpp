#include "tfjsonread.h"

#include <QDebug>
#include <QJsonArray>


#include <cmath>
#include <limits>

namespace TFJsonRead {

template<typename Int>
static Int truncatedTo(double number)
{
    if (std::isnan(number))
        return 0;
    // Compare in double before casting: a cast of a value out of range is
    // undefined. The upper limit of qint64 is not exact in double, so the
    // test is on the first value that no longer fits.
    constexpr double lowest = double(std::numeric_limits<Int>::min());
    constexpr double beyondMax = -lowest;
    if (number <= lowest)
        return std::numeric_limits<Int>::min();
    if (number >= beyondMax)
        return std::numeric_limits<Int>::max();
    return static_cast<Int>(number);
}

qint64 truncatedInt64(const QJsonValue& value)
{
    return truncatedTo<qint64>(value.toDouble());
}

int truncatedInt32(const QJsonValue& value)
{
    return truncatedTo<int>(value.toDouble());
}

QJsonDocument parseEmbeddedJson(const QJsonValue& value, QJsonParseError* error)
{
    return QJsonDocument::fromJson(value.toString().toUtf8(), error);
}

QString parseErrorText(const QJsonParseError& error)
{
    return QStringLiteral("Json parse error: ") + error.errorString();
}

QVector<QJsonObject> embeddedObjects(const QJsonValue& value, const char* caller)
{
    QJsonParseError error;
    const QJsonDocument document = parseEmbeddedJson(value, &error);
    if (error.error != QJsonParseError::NoError) {
        qDebug().noquote() << caller << parseErrorText(error);
        return {};
    }
    QVector<QJsonObject> objects;
    const QJsonArray array = document.array();
    objects.reserve(array.size());
    for (const QJsonValue& element : array) {
        if (element.isObject())
            objects.append(element.toObject());
    }
    return objects;
}

} // namespace TFJsonRead
