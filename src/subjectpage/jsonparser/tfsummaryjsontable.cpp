#include "tfsummaryjsontable.h"

#include "tfheaderfieldconfigdata.h"

#include <QJsonArray>
#include <QJsonObject>

TFSummaryJsonTable::TFSummaryJsonTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFSummaryJsonTable::~TFSummaryJsonTable() = default;

void TFSummaryJsonTable::initWith(const QJsonValue& value)
{
    m_items.clear();
    if (!value.isArray())
        return;

    const QJsonArray array = value.toArray();
    for (const QJsonValue& element : array) {
        // The items are a flat list of objects; anything else ends it.
        if (!element.isObject())
            break;
        const QJsonObject object = element.toObject();

        SummaryItem item;
        item.item = object.value(QLatin1String("Item")).toString();
        if (item.item.contains(QLatin1String("GridColumns"))) {
            delete m_columnTable;
            m_columnTable = new TFHeaderFieldConfigData(this, false);
            m_columnTable->initWith(object.value(QLatin1String("value")));
        } else {
            const int number = object.value(QLatin1String("value")).toInt(0);
            item.value = number;
            if (item.item == QLatin1String("rcount"))
                m_rowCount = number;
            else if (item.item == QLatin1String("pindex"))
                m_pageIndex = number;
            else if (item.item == QLatin1String("psize"))
                m_pageSize = number;
        }
        m_items.append(item);
    }
}

HeaderFieldInfo TFSummaryJsonTable::headerFieldInfo(const QString& fieldName) const
{
    if (m_columnTable) {
        const QList<HeaderFieldInfo> fields = m_columnTable->fields();
        for (const HeaderFieldInfo& field : fields) {
            if (field.fieldName == fieldName)
                return field;
        }
    }
    return HeaderFieldInfo();
}
