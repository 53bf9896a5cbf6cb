#include "tfchildviewjsontable.h"

#include "tfjsonread.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>

TFChildViewJsonTable::TFChildViewJsonTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFChildViewJsonTable::~TFChildViewJsonTable() = default;

void TFChildViewJsonTable::initWith(const QJsonValue& value)
{
    m_children.clear();

    QJsonParseError error;
    const QJsonDocument document = TFJsonRead::parseEmbeddedJson(value, &error);
    if (error.error != QJsonParseError::NoError) {
        qDebug().noquote() << Q_FUNC_INFO << TFJsonRead::parseErrorText(error);
        return;
    }
    if (!document.isArray() || document.array().isEmpty())
        return;

    const QJsonArray array = document.array();
    for (const QJsonValue& element : array) {
        if (!element.isObject())
            continue;
        const QJsonObject object = element.toObject();

        ChildView child;
        child.caption = object.value(QLatin1String("Caption")).toString();
        child.propertyParams = object.value(QLatin1String("Propertyparams")).toString();
        child.objVwId = object.value(QLatin1String("ObjShowName")).toString().toLongLong(nullptr, 10);
        m_children.append(child);

        // A child without a view identifier is kept but not announced.
        if (child.objVwId != 0)
            emit sigJsonData(child.objVwId, child.caption);
    }
}

QString TFChildViewJsonTable::propertyParams(qint64 objVwId) const
{
    for (const ChildView& child : m_children) {
        if (child.objVwId == objVwId)
            return child.propertyParams;
    }
    return QString();
}
