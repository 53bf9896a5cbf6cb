#include "tfjsonparser.h"

#include "tfbasejsontable.h"
#include "tfdatajsontable.h"
#include "tfjsontablefactory.h"
#include "tfjsontablenames.h"
#include "tfobjectviewconfigtable.h"
#include "tfobjectviewjsontable.h"
#include "tfsummaryjsontable.h"
#include "tfviewconfigtable.h"

#include "mulittable/tfheaderdatastruct.h"

#include <QJsonObject>

namespace TFSubject {

TFJsonParser::TFJsonParser(QObject* parent)
    : QObject(parent)
    , m_internalTree(new TFTreeStruct(QString()))
{
    TFTableModelData::registerRowDataType();
}

TFJsonParser::~TFJsonParser()
{
    deleteTables();
    delete m_internalTree;
}

void TFJsonParser::deleteTables()
{
    qDeleteAll(m_tables);
    m_tables.clear();
}

bool TFJsonParser::parseConfig(const QJsonValue& document, TFTreeStruct* header)
{
    if (document.isUndefined() || !header)
        return false;

    m_header = header;
    deleteTables();
    m_rows.clear();

    if (document.isObject()) {
        // Only these members are read, in this order; the rest of the
        // document is not looked at.
        static const char* const tableNames[] = {
            TFJsonTableName::Data,
            TFJsonTableName::ViewConfig,
            TFJsonTableName::ObjectViewConfig,
            TFJsonTableName::Summary,
            TFJsonTableName::ObjectView,
        };
        const QJsonObject object = document.toObject();
        for (const char* name : tableNames) {
            const QString tableName = QLatin1String(name);
            if (!object.contains(tableName))
                continue;
            const int id = TFJsonTableFactory::tableId(tableName);
            TFBaseJsonTable* table = TFJsonTableFactory::createTable(id);
            if (!table)
                continue;
            // Child views are announced while the view configuration is
            // read, so the owner can start fetching them at once.
            if (id == TFBaseJsonTable::ViewConfigTable)
                connect(table, &TFBaseJsonTable::sigJsonData, this, &TFJsonParser::signalSubTableJsonData);
            table->initWith(object.value(tableName));
            m_tables.insert(id, table);
        }
    }
    buildHeader();
    buildRows();
    return true;
}

TFViewConfigTable* TFJsonParser::viewConfigTable() const
{
    return static_cast<TFViewConfigTable*>(table(TFBaseJsonTable::ViewConfigTable));
}

TFObjectViewConfigTable* TFJsonParser::objectViewConfigTable() const
{
    return static_cast<TFObjectViewConfigTable*>(table(TFBaseJsonTable::ObjectViewConfigTable));
}

TFSummaryJsonTable* TFJsonParser::summaryTable() const
{
    return static_cast<TFSummaryJsonTable*>(table(TFBaseJsonTable::SummaryTable));
}

QList<QVariantMap> TFJsonParser::dataMaps() const
{
    const auto* data = static_cast<TFDataJsonTable*>(table(TFBaseJsonTable::DataTable));
    return data ? data->rows() : QList<QVariantMap>();
}

QString TFJsonParser::objectViewName() const
{
    const auto* view = static_cast<TFObjectViewJsonTable*>(table(TFBaseJsonTable::ObjectViewTable));
    return view ? view->name() : QString();
}

QList<TFTableModelData::FilterData> TFJsonParser::filterData() const
{
    const TFViewConfigTable* view = viewConfigTable();
    const TFFilterJsonTable* filters = view ? view->filterTable() : nullptr;
    return filters ? filters->filters() : QList<TFTableModelData::FilterData>();
}

QString TFJsonParser::childViewParams(qint64 objVwId) const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view ? view->childViewParams(objVwId) : QString();
}

bool TFJsonParser::isCross() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view && view->isCross();
}

bool TFJsonParser::isGroup() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view && view->isGroup();
}

bool TFJsonParser::isShowChild() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view && view->isShowChild();
}

bool TFJsonParser::hasVGridColHeaderField() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view && view->hasVGridColHeaderField();
}

int TFJsonParser::frozenCount() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view ? view->frozenCount() : 0;
}

QString TFJsonParser::vGridColHeaderField() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view ? view->vGridColHeaderField() : QString();
}

QPair<QString, QVariant> TFJsonParser::orderProperty() const
{
    const TFViewConfigTable* view = viewConfigTable();
    return view ? view->orderProperty() : qMakePair(QString(), QVariant());
}

int TFJsonParser::rowCount() const
{
    const TFSummaryJsonTable* summary = summaryTable();
    return summary ? summary->rowCount() : -1;
}

int TFJsonParser::pageIndex() const
{
    const TFSummaryJsonTable* summary = summaryTable();
    return summary ? summary->pageIndex() : -1;
}

int TFJsonParser::pageSize() const
{
    const TFSummaryJsonTable* summary = summaryTable();
    return summary ? summary->pageSize() : -1;
}

} // namespace TFSubject
