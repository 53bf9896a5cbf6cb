#include "tfviewconfigtable.h"

#include "filterwidget/tffilterfactory.h"

#include "tfchartviewjsontable.h"
#include "tfchildviewjsontable.h"
#include "tffilterjsontable.h"
#include "tfheaderfieldconfigdata.h"
#include "tfjsontablefactory.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

TFViewConfigTable::TFViewConfigTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFViewConfigTable::~TFViewConfigTable()
{
    clear();
}

void TFViewConfigTable::clear()
{
    for (const Entry& entry : qAsConst(m_entries))
        delete entry.table;
    m_entries.clear();
}

void TFViewConfigTable::initWith(const QJsonValue& value)
{
    clear();
    if (!value.isArray())
        return;

    const QJsonArray array = value.toArray();
    for (const QJsonValue& element : array) {
        if (element.isObject())
            readFlags(element.toObject());
    }
    for (const QJsonValue& element : array) {
        if (!element.isObject())
            continue;
        const Entry entry = readEntry(element.toObject());
        m_entries.append(entry);
    }
}

// The flags are matched the way the service has always named them: some by
// containment without regard to case, some exactly, two by their lower-cased
// name. The first test that holds decides.
void TFViewConfigTable::readFlags(const QJsonObject& element)
{
    const QString name = element.value(QLatin1String("prop_name")).toString();
    const QJsonValue propVal = element.value(QLatin1String("prop_val"));
    const bool flag = propVal.toString().toInt(nullptr, 10) == 1;

    if (name.contains(QLatin1String("isshowchild"), Qt::CaseInsensitive))
        m_showChild = flag;
    else if (name.contains(QLatin1String("isorder"), Qt::CaseInsensitive))
        m_order = flag;
    else if (name.contains(QLatin1String("isgetchartdata"), Qt::CaseInsensitive))
        m_getChartData = flag;
    else if (name.contains(QLatin1String("frozencount"), Qt::CaseInsensitive))
        m_frozenCount = propVal.toString().toInt();
    else if (name == QLatin1String("IsCross"))
        m_cross = flag;
    else if (name == QLatin1String("IsTurnOver"))
        m_turnOver = flag;
    else if (name == QLatin1String("IsGroup"))
        m_group = flag;
    else if (name == QLatin1String("GroupFields"))
        m_groupFields = propVal.toString();
    else if (name == QLatin1String("GroupFormatString"))
        m_groupFormat = propVal.toString();
    else if (name.toLower() == QLatin1String("bandslevel"))
        // The level sits in a member of its own, not in prop_val; a row
        // without it gives 0.
        m_bandsLevel = element.value(QLatin1String("BandsLevel")).toInt();
    else if (name.toLower() == QLatin1String("vgridcolheaderfield"))
        m_vGridColHeaderField = propVal.toString();
    else if (name == QLatin1String("isShowFilter"))
        // Read as a JSON boolean: the string "1" that every other flag
        // accepts gives false here.
        m_showFilter = propVal.toBool();
}

TFViewConfigTable::Entry TFViewConfigTable::readEntry(const QJsonObject& element)
{
    Entry entry;
    entry.obj_vw_id = element.value(QLatin1String("obj_vw_id")).toInt();
    entry.prop_typ = element.value(QLatin1String("prop_typ")).toString();
    entry.prop_name = element.value(QLatin1String("prop_name")).toString();
    entry.prop_val = element.value(QLatin1String("prop_val")).toString();

    if (m_viewId == -1)
        m_viewId = entry.obj_vw_id;

    if (entry.prop_typ.compare(QLatin1String("EXTEND"), Qt::CaseInsensitive) != 0)
        return entry;

    static const struct {
        const char* name;
        int tableId;
    } extendTables[] = {
        { "Bands", HeaderFieldTable },
        { "childView", ChildViewTable },
        { "filters", FilterTable },
        { "ChartViewConfig", ChartViewTable },
    };
    for (const auto& extend : extendTables) {
        if (entry.prop_name.compare(QLatin1String(extend.name), Qt::CaseInsensitive) != 0)
            continue;
        entry.table = TFJsonTableFactory::createTable(extend.tableId);
        break;
    }
    if (!entry.table)
        return entry;

    // Child views are announced while their table is read; passing the
    // signal on before the read lets them reach the parser's owner at once.
    if (entry.table->tableType() == ChildViewTable)
        connect(entry.table, &TFBaseJsonTable::sigJsonData, this, &TFBaseJsonTable::sigJsonData);

    const QJsonValue extValue = element.value(QLatin1String("ext_prop_val"));
    if (!extValue.isUndefined())
        entry.table->initWith(extValue);
    return entry;
}

TFBaseJsonTable* TFViewConfigTable::firstTable(int tableId) const
{
    for (const Entry& entry : m_entries) {
        if (entry.table && entry.table->tableType() == tableId)
            return entry.table;
    }
    return nullptr;
}

TFHeaderFieldConfigData* TFViewConfigTable::headerTable() const
{
    return static_cast<TFHeaderFieldConfigData*>(firstTable(HeaderFieldTable));
}

TFChartViewJsonTable* TFViewConfigTable::chartTable() const
{
    return static_cast<TFChartViewJsonTable*>(firstTable(ChartViewTable));
}

TFChildViewJsonTable* TFViewConfigTable::childTable() const
{
    return static_cast<TFChildViewJsonTable*>(firstTable(ChildViewTable));
}

TFFilterJsonTable* TFViewConfigTable::filterTable() const
{
    return static_cast<TFFilterJsonTable*>(firstTable(FilterTable));
}

QString TFViewConfigTable::sectorNum() const
{
    for (const Entry& entry : m_entries) {
        if (entry.prop_name.toLower() == QLatin1String("sectornum"))
            return entry.prop_val;
    }
    return QString();
}

QString TFViewConfigTable::rootSectorNum() const
{
    for (const Entry& entry : m_entries) {
        if (entry.prop_name == QLatin1String("RootSectorNum"))
            return entry.prop_val;
    }
    return QString();
}

QPair<QString, QVariant> TFViewConfigTable::orderProperty() const
{
    for (const Entry& entry : m_entries) {
        if (entry.prop_name.toLower() != QLatin1String("order"))
            continue;
        const FilterParam::DataSourceFilter order = TFFilterFactory::orderFilter(entry.prop_val);
        return qMakePair(order.key, order.value);
    }
    return qMakePair(QString(), QVariant());
}

QString TFViewConfigTable::childViewParams(qint64 objVwId) const
{
    const TFChildViewJsonTable* children = childTable();
    return children ? children->propertyParams(objVwId) : QString();
}
