#include "tfobjectviewconfigtable.h"

#include "tfjsonread.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariantList>
#include <QVariantMap>

TFObjectViewConfigTable::TFObjectViewConfigTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFObjectViewConfigTable::~TFObjectViewConfigTable() = default;

void TFObjectViewConfigTable::initWith(const QJsonValue& value)
{
    m_records.clear();
    if (!value.isArray())
        return;

    // Every column is taken as a variant and turned to text, so a number the
    // service sends reads as its decimal text. An element that is no object
    // still gives a record, one without a field name.
    const QVariantList elements = value.toArray().toVariantList();
    for (const QVariant& element : elements) {
        const QVariantMap map = element.toMap();
        auto text = [&map](const char* key) { return map.value(QLatin1String(key)).toString(); };

        FieldRecord record;
        record.prop_typ = text("prop_typ");
        if (map.contains(QStringLiteral("obj_vw_id")))
            record.obj_vw_id = text("obj_vw_id");
        record.obj_prop_name = text("obj_prop_name");
        record.obj_prop_cap = text("obj_prop_cap");
        record.vw_sts = text("vw_sts");
        record.vw_fmt = text("vw_fmt");
        record.dft_val = text("dft_val");
        record.prop_sn = text("prop_sn");
        record.cnv_cfg = text("cnv_cfg");
        record.info = readDisplaySettings(map.value(QStringLiteral("ots_cfg")).toByteArray());
        m_records.append(record);
    }
}

HeaderFieldInfo TFObjectViewConfigTable::readDisplaySettings(const QByteArray& otsCfg)
{
    const QJsonObject object = QJsonDocument::fromJson(otsCfg).object();
    auto value = [&object](const char* key) { return object.value(QLatin1String(key)); };

    HeaderFieldInfo info;
    info.fieldName = value("FieldName").toString();
    info.caption = value("Caption").toString();
    info.columnType = value("ColumnType").toString();
    info.url = value("Url").toString();
    info.level = value("Level").toInt();
    info.sn = value("SN").toInt();
    info.valueType = value("ValueType").toString();
    info.visible = value("Visible").toBool();
    info.showUnit = value("ShowUnit").toString();
    info.formatString = value("FormatString").toString();
    info.textAlignment = value("TextAlignment").toInt();
    info.noSort = value("NoSort").toBool();
    info.prevUnitFactor = TFJsonRead::truncatedInt64(value("PrevUnitFactor"));
    info.showUnitFactor = TFJsonRead::truncatedInt64(value("ShowUnitFactor"));
    info.captionShowType = value("CaptionShowType").toInt();
    info.width = TFJsonRead::truncatedInt32(value("Width"));
    info.unboundExpression = value("UnboundExpression").toString();
    info.unitCategory = value("UnitCategory").toInt();
    info.cellStyleExpression = value("CellStyleExpression").toString();
    return info;
}

const TFObjectViewConfigTable::FieldRecord* TFObjectViewConfigTable::findRecord(const QString& fieldName) const
{
    for (const FieldRecord& record : m_records) {
        if (record.obj_prop_name == fieldName)
            return &record;
    }
    return nullptr;
}

HeaderFieldInfo TFObjectViewConfigTable::headerFieldInfo(const QString& fieldName) const
{
    const FieldRecord* record = findRecord(fieldName);
    return record ? record->info : HeaderFieldInfo();
}

bool TFObjectViewConfigTable::isFieldVisible(const QString& fieldName) const
{
    const FieldRecord* record = findRecord(fieldName);
    if (!record)
        return true;
    return record->vw_sts == QLatin1String("1") || record->vw_sts == QLatin1String("6");
}
