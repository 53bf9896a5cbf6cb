#include "tfjsontablefactory.h"

#include "tfchartviewjsontable.h"
#include "tfchildviewjsontable.h"
#include "tfdatajsontable.h"
#include "tffilterjsontable.h"
#include "tfheaderfieldconfigdata.h"
#include "tfjsontablenames.h"
#include "tfobjectpropertytable.h"
#include "tfobjectviewconfigtable.h"
#include "tfobjectviewjsontable.h"
#include "tfsummaryjsontable.h"
#include "tfviewconfigtable.h"

#include <QMap>

namespace TFJsonTableFactory {

static QMap<QString, int> buildNameMap()
{
    // Insertion order matters: the second "Object" replaces the first, so
    // the name ends at 5, for which there is no class.
    QMap<QString, int> map;
    map.insert(QLatin1String(TFJsonTableName::Data), 1);
    map.insert(QLatin1String(TFJsonTableName::Object), 2);
    map.insert(QLatin1String(TFJsonTableName::ObjectView), 3);
    map.insert(QLatin1String(TFJsonTableName::ViewConfig), 4);
    map.insert(QLatin1String(TFJsonTableName::Object), 5);
    map.insert(QLatin1String(TFJsonTableName::ObjectViewConfig), 12);
    map.insert(QLatin1String(TFJsonTableName::Summary), 7);
    return map;
}

int tableId(const QString& tableName)
{
    static const QMap<QString, int> nameMap = buildNameMap();
    return nameMap.value(tableName, 0);
}

TFBaseJsonTable* createTable(int tableId)
{
    switch (tableId) {
    case TFBaseJsonTable::DataTable:
        return new TFDataJsonTable;
    case TFBaseJsonTable::ObjectPropertyTable:
        return new TFObjectPropertyTable;
    case TFBaseJsonTable::ObjectViewTable:
        return new TFObjectViewJsonTable;
    case TFBaseJsonTable::ViewConfigTable:
        return new TFViewConfigTable;
    case TFBaseJsonTable::SummaryTable:
        return new TFSummaryJsonTable;
    case TFBaseJsonTable::HeaderFieldTable:
        return new TFHeaderFieldConfigData(nullptr, true);
    case TFBaseJsonTable::ChildViewTable:
        return new TFChildViewJsonTable;
    case TFBaseJsonTable::FilterTable:
        return new TFFilterJsonTable;
    case TFBaseJsonTable::ChartViewTable:
        return new TFChartViewJsonTable;
    case TFBaseJsonTable::ObjectViewConfigTable:
        return new TFObjectViewConfigTable;
    default:
        return nullptr;
    }
}

} // namespace TFJsonTableFactory
