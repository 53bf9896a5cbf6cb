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

    const QVector<QJsonObject> objects = TFJsonRead::embeddedObjects(value, Q_FUNC_INFO);
    for (const QJsonObject& object : objects) {

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
