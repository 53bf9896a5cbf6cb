// The parser's data side: the band header and the cell rows built at the end
// of parseConfig, a later page, and the export's plain values.

#include "tfjsonparser.h"

#include "tfdatajsontable.h"
#include "tfheaderbuilder.h"
#include "tfrowbuilder.h"
#include "tfsummaryjsontable.h"
#include "tfviewconfigtable.h"

#include "expression/expressionparse.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfunboundexpression.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

#include <memory>

namespace TFSubject {

ExpressionParse* TFJsonParser::expressionParse()
{
    if (!m_expressionParse)
        m_expressionParse = new ExpressionParse(this);
    return m_expressionParse;
}

void TFJsonParser::buildHeader()
{
    TFSubject::buildHeader(m_header, viewConfigTable(), objectViewConfigTable(), summaryTable(),
                           [this] { return expressionParse(); });
}

void TFJsonParser::buildRows()
{
    const auto* data = static_cast<TFDataJsonTable*>(table(TFBaseJsonTable::DataTable));
    const QList<QVariantMap> raw = data ? data->rows() : QList<QVariantMap>();
    const bool cross = usesCrossColumns(viewConfigTable(), summaryTable());
    const TFSummaryJsonTable* summary = summaryTable();
    const TFObjectViewConfigTable* objectView = objectViewConfigTable();

    TFUnboundExpression unbound([this] { return expressionParse(); });
    TFRowBuilder builder(m_header ? m_header->leaves() : QList<TFTreeStruct*>(), &unbound,
                         [=](const QString& fieldName) {
                             return referenceField(fieldName, cross, summary, objectView).valueType;
                         });
    m_rows = builder.build(raw);
}

bool TFJsonParser::parseData(const QJsonValue& payload)
{
    if (!table(TFBaseJsonTable::DataTable))
        m_tables.insert(TFBaseJsonTable::DataTable, new TFDataJsonTable);
    const QJsonObject object = payload.toObject();
    if (object.isEmpty())
        return false;
    if (object.contains(QLatin1String("Data")))
        table(TFBaseJsonTable::DataTable)->initWith(object.value(QLatin1String("Data")));
    if (object.contains(QLatin1String("Summary"))) {
        // A later page replaces the summary and with it a cross view's
        // column list, but the header tree stays that of the first page.
        if (TFSummaryJsonTable* summary = summaryTable()) {
            summary->initWith(object.value(QLatin1String("Summary")));
        } else {
            summary = new TFSummaryJsonTable;
            summary->initWith(object.value(QLatin1String("Summary")));
            m_tables.insert(TFBaseJsonTable::SummaryTable, summary);
        }
    }
    m_rows.clear();
    buildRows();
    return true;
}

bool TFJsonParser::parseData(const QByteArray& json, QList<QList<QVariant>>* out, TFTreeStruct* header)
{
    if (json.isEmpty()) {
        qDebug() << "json is Empty";
        return false;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        qDebug() << Q_FUNC_INFO << "read json file failed..." << error.errorString();
        return false;
    }
    const QJsonObject reply = document.object();
    if (reply.isEmpty())
        return false;
    if (reply.value(QLatin1String("state")).toInt() != 1) {
        qDebug() << reply.value(QLatin1String("msg")).toString();
        return false;
    }
    const QJsonObject data = reply.value(QLatin1String("data")).toObject();
    if (data.isEmpty())
        return false;

    // The export runs its own request: its rows go into a table of their
    // own, and the parser's tables are not touched.
    TFDataJsonTable rows;
    if (data.contains(QLatin1String("Data")))
        rows.initWith(data.value(QLatin1String("Data")));

    const QList<TFTreeStruct*> leaves = header ? header->leaves() : QList<TFTreeStruct*>();
    for (const TFTreeStruct* leaf : leaves)
        qDebug() << "header: " << leaf->displayCaption() << leaf->info().columnType << leaf->info().visible;

    // The export evaluates each derived cell with a parser made for that
    // one call, never the parser's own: nothing that one formula leaves in
    // a script engine reaches the next.
    std::unique_ptr<ExpressionParse> local;
    TFUnboundExpression unbound([&local] {
        local.reset(new ExpressionParse);
        return local.get();
    });
    const bool cross = usesCrossColumns(viewConfigTable(), summaryTable());
    const TFSummaryJsonTable* summary = summaryTable();
    const TFObjectViewConfigTable* objectView = objectViewConfigTable();
    TFRowBuilder builder(leaves, &unbound, [=](const QString& fieldName) {
        return referenceField(fieldName, cross, summary, objectView).valueType;
    });
    builder.setTypeLetterForFurtherCells(true);
    const QStringList fields = builder.leafFieldNames();

    const QList<QVariantMap> raw = rows.rows();
    for (const QVariantMap& row : raw) {
        const RowData cells = builder.build(row);
        qDebug() << "visible fields in head: " << fields;
        const int n = qMin(leaves.size(), cells.size());
        QList<QVariant> values;
        values.reserve(n);
        for (int i = 0; i < n; ++i)
            values.append(cellToPlainValue(cells.at(i)));
        if (out)
            out->append(values);
    }
    return true;
}

} // namespace TFSubject
