#include "tfheaderfieldconfigdata.h"

#include "tfjsonread.h"
#include "tfobjectviewconfigtable.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>

TFHeaderFieldConfigData::TFHeaderFieldConfigData(QObject* parent, bool upperCaseKeys)
    : TFBaseJsonTable(parent)
    , m_upperCaseKeys(upperCaseKeys)
{
}

TFHeaderFieldConfigData::~TFHeaderFieldConfigData() = default;

void TFHeaderFieldConfigData::initWith(const QJsonValue& value)
{
    m_fields.clear();

    const QVector<QJsonObject> objects = TFJsonRead::embeddedObjects(value, Q_FUNC_INFO);
    for (const QJsonObject& object : objects) {
        m_fields.append(readField(object));
    }
}

HeaderFieldInfo TFHeaderFieldConfigData::readField(const QJsonObject& object) const
{
    // Both forms name the same keys; the summary's form only lowers the first
    // letter, and "SN" as a whole.
    const bool upper = m_upperCaseKeys;
    auto key = [upper](const char* upperKey, const char* lowerKey) {
        return QLatin1String(upper ? upperKey : lowerKey);
    };

    HeaderFieldInfo info;
    info.columnType = object.value(key("ColumnType", "columnType")).toString();
    info.ownerBand = object.value(key("OwnerBand", "ownerBand")).toString();
    info.fieldName = object.value(key("FieldName", "fieldName")).toString();
    info.url = object.value(key("Url", "url")).toString();
    info.valueType = object.value(key("ValueType", "valueType")).toString();
    info.unboundExpression = object.value(key("UnboundExpression", "unboundExpression")).toString();
    info.unitCategory = object.value(key("UnitCategory", "unitCategory")).toInt();
    info.prevUnitFactor = TFJsonRead::truncatedInt64(object.value(key("PrevUnitFactor", "prevUnitFactor")));
    info.showUnitFactor = TFJsonRead::truncatedInt64(object.value(key("ShowUnitFactor", "showUnitFactor")));
    info.showUnit = object.value(key("ShowUnit", "showUnit")).toString();
    info.captionShowType = object.value(key("CaptionShowType", "captionShowType")).toInt();
    info.caption = object.value(key("Caption", "caption")).toString();
    info.width = TFJsonRead::truncatedInt32(object.value(key("Width", "width")));
    info.formatString = object.value(key("FormatString", "formatString")).toString();
    info.visible = object.value(key("Visible", "visible")).toBool();
    info.noSort = object.value(key("NoSort", "noSort")).toBool();
    info.cellStyleExpression = object.value(key("CellStyleExpression", "cellStyleExpression")).toString();
    info.textAlignment = object.value(key("TextAlignment", "textAlignment")).toInt();
    info.showStatus = object.value(key("ShowStatus", "showStatus")).toInt();
    info.sn = object.value(key("SN", "sn")).toInt();
    info.level = object.value(key("Level", "level")).toInt();
    info.statExpression = object.value(key("StatExpression", "statExpression")).toString();

    // A cross table's column list says what is shown through its status
    // alone; the "Bands" list keeps its own flag.
    if (!upper)
        info.visible = info.showStatus == 1 || info.showStatus == 6;
    return info;
}

void TFHeaderFieldConfigData::mergeWith(const TFObjectViewConfigTable* table)
{
    // A view without a field table is merged as one whose table is empty:
    // every field keeps its own settings, with a warning.
    for (HeaderFieldInfo& field : m_fields) {
        const HeaderFieldInfo settings = table ? table->headerFieldInfo(field.fieldName)
                                               : HeaderFieldInfo();
        if (settings.fieldName.isEmpty()) {
            qWarning().noquote() << "cant find field name:" << field.fieldName;
            continue;
        }
        field.cellStyleExpression = settings.cellStyleExpression;
        field.columnType = settings.columnType;
        field.formatString = settings.formatString;
        field.noSort = settings.noSort;
        field.showStatus = settings.showStatus;
        field.showUnit = settings.showUnit;
        field.showUnitFactor = settings.showUnitFactor;
        field.prevUnitFactor = settings.prevUnitFactor;
        field.unitCategory = settings.unitCategory;
        field.statExpression = settings.statExpression;
        field.textAlignment = settings.textAlignment;
        field.unboundExpression = settings.unboundExpression;
        field.url = settings.url;
        field.valueType = settings.valueType;
        field.width = settings.width;
        field.captionShowType = settings.captionShowType;
        // Visibility follows the field's status in the object table, not
        // the flag inside its display settings.
        field.visible = table->isFieldVisible(field.fieldName);
    }
}
