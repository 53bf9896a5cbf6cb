// Feeds one input to the view configuration parser three ways: as a whole
// document through parseConfig, as the text that the JSON-in-string tables
// (bands, column lists, filters, child views, chart, field display settings)
// read, and, when it is an array, as the value of each top-level table.
// After each read every question the tables answer is asked.

#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tfchildviewjsontable.h"
#include "jsonparser/tfdatajsontable.h"
#include "jsonparser/tffilterjsontable.h"
#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfjsonparser.h"
#include "jsonparser/tfjsontablefactory.h"
#include "jsonparser/tfobjectpropertytable.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfobjectviewjsontable.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <memory>

// Qt 5.15's QJsonDocument::fromJson leaks the earlier value of a key that an
// object repeats when that value is an object or an array
// ({"a":{},"a":{}}). That memory is lost inside Qt before any of our code
// sees the document, so leaks allocated within QtCore are not reported;
// a leak of an object that our code allocates still is.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core.so\n";
}

static void dropMessage(QtMsgType, const QMessageLogContext&, const QString&)
{
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // Caption expressions and derived cells of the header and rows that
    // parseConfig builds run in the script engine, which wants an
    // application.
    static QCoreApplication* app = new QCoreApplication(*argc, *argv);
    Q_UNUSED(app);
    // The tables log every bad embedded text; writing them out would only
    // slow the run down.
    qInstallMessageHandler(dropMessage);
    return 0;
}

static void askHeaderTable(TFHeaderFieldConfigData* header, const TFObjectViewConfigTable* fields)
{
    if (!header)
        return;
    header->mergeWith(fields);
    for (const HeaderFieldInfo& field : header->fields()) {
        if (fields) {
            fields->headerFieldInfo(field.fieldName);
            fields->isFieldVisible(field.fieldName);
        }
    }
}

static void askViewTable(const TFViewConfigTable* view, const TFObjectViewConfigTable* fields)
{
    if (!view)
        return;
    view->sectorNum();
    view->rootSectorNum();
    view->orderProperty();
    askHeaderTable(view->headerTable(), fields);
    if (const TFFilterJsonTable* filters = view->filterTable())
        filters->filters();
    if (const TFChartViewJsonTable* chart = view->chartTable())
        chart->config();
    if (const TFChildViewJsonTable* children = view->childTable()) {
        for (const TFChildViewJsonTable::ChildView& child : children->children())
            view->childViewParams(child.objVwId);
    }
}

static void askParser(const TFSubject::TFJsonParser& parser)
{
    parser.dataMaps();
    parser.objectViewName();
    parser.filterData();
    parser.childViewParams(0);
    parser.isCross();
    parser.isGroup();
    parser.isShowChild();
    parser.hasVGridColHeaderField();
    parser.frozenCount();
    parser.vGridColHeaderField();
    parser.orderProperty();
    parser.rowCount();
    parser.pageIndex();
    parser.pageSize();

    askViewTable(parser.viewConfigTable(), parser.objectViewConfigTable());
    if (const TFSummaryJsonTable* summary = parser.summaryTable()) {
        if (const TFHeaderFieldConfigData* columns = summary->columnTable()) {
            for (const HeaderFieldInfo& field : columns->fields())
                summary->headerFieldInfo(field.fieldName);
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > (1u << 20))
        return 0;
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);

    // parseConfig builds the band header and the rows into this tree.
    static TFTreeStruct bandTree { QString() };
    auto* header = &bandTree;

    TFSubject::TFJsonParser parser;
    QJsonValue whole;
    if (document.isObject())
        whole = document.object();
    else if (document.isArray())
        whole = document.array();
    parser.parseConfig(whole, header);
    askParser(parser);
    // A second read replaces every table of the first.
    parser.parseConfig(whole, header);
    askParser(parser);

    const QJsonValue text(QString::fromUtf8(bytes));
    TFHeaderFieldConfigData bands(nullptr, true);
    bands.initWith(text);
    TFHeaderFieldConfigData gridColumns(nullptr, false);
    gridColumns.initWith(text);
    TFFilterJsonTable filters;
    filters.initWith(text);
    filters.filters();
    TFChildViewJsonTable children;
    children.initWith(text);
    for (const TFChildViewJsonTable::ChildView& child : children.children())
        children.propertyParams(child.objVwId);
    TFChartViewJsonTable chart;
    chart.initWith(text);
    chart.config();
    TFObjectViewConfigTable::readDisplaySettings(bytes);

    if (document.isArray() || document.isObject()) {
        for (int id = 0; id <= 13; ++id) {
            std::unique_ptr<TFBaseJsonTable> table(TFJsonTableFactory::createTable(id));
            if (!table)
                continue;
            table->initWith(whole);
            if (id == TFBaseJsonTable::ViewConfigTable)
                askViewTable(static_cast<TFViewConfigTable*>(table.get()), nullptr);
            if (id == TFBaseJsonTable::ObjectViewConfigTable) {
                auto* fields = static_cast<TFObjectViewConfigTable*>(table.get());
                for (const TFObjectViewConfigTable::FieldRecord& record : fields->records())
                    fields->isFieldVisible(record.obj_prop_name);
                askHeaderTable(&bands, fields);
                askHeaderTable(&gridColumns, fields);
            }
        }
    }
    return 0;
}
