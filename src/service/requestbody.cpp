#include "requestbody.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <QJsonValue>

namespace SubjectService {

namespace {

// Identifiers and flags come as JSON numbers; a number in a string is taken too,
// as the terminal's integer conversions would.
bool readInteger(const QJsonValue &value, qint64 *out)
{
    if (value.isDouble()) {
        const double d = value.toDouble();
        if (d > 9.0e15 || d < -9.0e15 || d != double(qint64(d)))
            return false;
        *out = qint64(d);
        return true;
    }
    if (value.isString()) {
        bool ok = false;
        const qint64 v = value.toString().trimmed().toLongLong(&ok);
        if (ok)
            *out = v;
        return ok;
    }
    return false;
}

bool readOrder(const QJsonValue &value, QList<QPair<QString, int>> *order, QString *error)
{
    if (value.isNull() || value.isUndefined())
        return true;
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            qint64 direction = 0;
            if (!readInteger(it.value(), &direction) || (direction != 1 && direction != -1)) {
                *error = QStringLiteral("order of %1 must be 1 or -1").arg(it.key());
                return false;
            }
            order->append({it.key(), int(direction)});
        }
        return true;
    }
    if (value.isString()) {
        // The view's own form, "FIELD1 DESC,FIELD2 ASC".
        const QStringList terms = value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (const QString &term : terms) {
            const QStringList parts = term.split(QLatin1Char(' '), Qt::SkipEmptyParts);
            if (parts.size() != 2) {
                *error = QStringLiteral("order term does not parse: %1").arg(term);
                return false;
            }
            order->append({parts.at(0),
                           parts.at(1).compare(QLatin1String("DESC"), Qt::CaseInsensitive) == 0 ? -1 : 1});
        }
        return true;
    }
    *error = QStringLiteral("order must be an object of field to 1 or -1");
    return false;
}

} // namespace

bool RequestBody::read(const QByteArray &json, RequestBody *body, QString *error)
{
    *body = RequestBody();
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = QStringLiteral("body is not JSON: %1").arg(parseError.errorString());
        return false;
    }
    if (!document.isObject()) {
        *error = QStringLiteral("body is not a JSON object");
        return false;
    }
    const QJsonObject object = document.object();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        const QString &key = it.key();
        const QJsonValue value = it.value();
        if (key == QLatin1String("auth")) {
            if (!value.isObject() && !value.isNull()) {
                *error = QStringLiteral("auth must be an object");
                return false;
            }
        } else if (key == QLatin1String("flag")) {
            qint64 flag = -1;
            if (!readInteger(value, &flag) || flag < 0 || flag > 2) {
                *error = QStringLiteral("flag must be 0, 1 or 2");
                return false;
            }
            body->hasFlag = true;
            body->flag = int(flag);
        } else if (key == QLatin1String("obj_vw_id")) {
            if (!readInteger(value, &body->viewId)) {
                *error = QStringLiteral("obj_vw_id must be a number");
                return false;
            }
            body->hasViewId = true;
        } else if (key == QLatin1String("objId")) {
            if (!readInteger(value, &body->objId)) {
                *error = QStringLiteral("objId must be a number");
                return false;
            }
            body->hasObjId = true;
        } else if (key == QLatin1String("objName")) {
            if (!value.isString()) {
                *error = QStringLiteral("objName must be a text");
                return false;
            }
            body->objName = value.toString();
        } else if (key == QLatin1String("page") || key == QLatin1String("size")) {
            qint64 number = 0;
            if (!readInteger(value, &number) || number < 1 || number > 1000000) {
                *error = QStringLiteral("%1 must be a positive number").arg(key);
                return false;
            }
            body->hasPaging = true;
            if (key == QLatin1String("page"))
                body->page = int(number);
            else
                body->size = int(number);
        } else if (key == QLatin1String("filter")) {
            if (!value.isString() && !value.isNull()) {
                *error = QStringLiteral("filter must be a text");
                return false;
            }
            body->filter = value.toString();
        } else if (key == QLatin1String("filterParams")) {
            if (!value.isObject() && !value.isNull()) {
                *error = QStringLiteral("filterParams must be an object");
                return false;
            }
            body->filterParams = value.toObject();
        } else if (key == QLatin1String("order")) {
            if (!readOrder(value, &body->order, error))
                return false;
        } else {
            body->parameters.insert(key, value);
        }
    }
    if (body->hasPaging && body->size == 0) {
        *error = QStringLiteral("page without size");
        return false;
    }
    return true;
}

} // namespace SubjectService
