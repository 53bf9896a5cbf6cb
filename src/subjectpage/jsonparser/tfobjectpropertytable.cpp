#include "tfobjectpropertytable.h"

#include "tfjsontablenames.h"

#include <QJsonArray>
#include <QJsonObject>

TFObjectPropertyTable::TFObjectPropertyTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFObjectPropertyTable::~TFObjectPropertyTable() = default;

void TFObjectPropertyTable::initWith(const QJsonValue& value)
{
    m_properties.clear();
    const QJsonValue data = value.toObject().value(QLatin1String(TFJsonTableName::DataUpper));
    if (!data.isArray())
        return;

    const QJsonArray array = data.toArray();
    for (const QJsonValue& element : array) {
        if (!element.isObject())
            continue;
        const QJsonObject object = element.toObject();

        // A key is recognised in any case, but its value is fetched by the
        // upper-case name: a key written in another case is seen and reads
        // as its default.
        ObjectProperty property;
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            const QString key = it.key().toUpper();
            const QJsonValue keyed = object.value(key);
            if (key == QLatin1String("OBJ_ID"))
                property.OBJ_ID = keyed.toDouble();
            else if (key == QLatin1String("REF_RELA"))
                property.REF_RELA = keyed.toString();
            else if (key == QLatin1String("PROP_SOUR"))
                property.PROP_SOUR = keyed.toString();
            else if (key == QLatin1String("PROP_TYP"))
                property.PROP_TYP = keyed.toString();
            else if (key == QLatin1String("PROP_NAME"))
                property.PROP_NAME = keyed.toString();
            else if (key == QLatin1String("PROP_CAP"))
                property.PROP_CAP = keyed.toString();
        }
        m_properties.append(property);
    }
}
