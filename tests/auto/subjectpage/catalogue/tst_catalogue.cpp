#include "../jsonparser/shared/messagelog.h"

#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tfchildviewjsontable.h"
#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfjsonparser.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"

#include "subjectservice.h"

#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <tuple>

namespace {

// One view as the page reads it: the parser builds the header into a tree
// of its own and the cell rows, and the model shows them.
struct ShownView
{
    bool open(const QJsonObject& document)
    {
        const bool parsed = parser.parseConfig(document, &header);
        model.setHeader(&header);
        model.setRows(parser.rows());
        return parsed;
    }

    TFTreeStruct header { QString() };
    TFSubject::TFJsonParser parser;
    TFSubjectTableModel model;
};

// What differs between a column of a view file and the field read from the
// wire; empty when nothing does.
QString compareColumn(const QJsonObject& column, const HeaderFieldInfo& field, const QString& ownerBand)
{
    static const QMap<QString, QString> kinds { { "unit", "BandedGridColumnWithUnit" }, { "link", "HyperLinkEdit" },
                                                { "memo", "MemoExEdit" }, { "rating", "BandedGridColumnWithRating" } };
    const bool isBand = column.contains("band");
    const QJsonObject unit = column.value("unit").toObject();
    const QString kind = isBand ? QString("Band") : kinds.value(column.value("kind").toString(), column.value("kind").toString());
    // (file key, expected, actual): a key the file leaves out is not checked.
    const QList<std::tuple<bool, QVariant, QVariant>> checks {
        { true, column.value(isBand ? "band" : "field").toString(), field.fieldName },
        { true, ownerBand, field.ownerBand == "0" ? QString() : field.ownerBand },
        { column.contains("caption"), column.value("caption").toString(), field.caption },
        { isBand || column.contains("kind"), kind, field.columnType },
        { column.contains("type"), column.value("type").toString(), field.valueType },
        { column.contains("width"), int(column.value("width").toDouble()), field.width },
        { column.contains("format"), column.value("format").toString(), field.formatString },
        { column.contains("align"), column.value("align").toInt(), field.textAlignment },
        { column.contains("url"), column.value("url").toString(), field.url },
        { column.contains("expression"), column.value("expression").toString(), field.unboundExpression },
        { column.contains("style"), column.value("style").toString(), field.cellStyleExpression },
        { column.contains("noSort"), column.value("noSort").toBool(), field.noSort },
        { column.contains("stat"), column.value("stat").toString(), field.statExpression },
        { unit.contains("category"), unit.value("category").toInt(), field.unitCategory },
        { unit.contains("show"), unit.value("show").toString(), field.showUnit },
        { unit.contains("factor"), qint64(unit.value("factor").toDouble()), field.showUnitFactor },
        { unit.contains("prev"), qint64(unit.value("prev").toDouble()), field.prevUnitFactor },
        { unit.contains("captionShow"), unit.value("captionShow").toInt(), field.captionShowType },
    };
    QStringList differences;
    for (const auto& check : checks) {
        if (std::get<0>(check) && std::get<1>(check) != std::get<2>(check))
            differences << std::get<1>(check).toString() + " != " + std::get<2>(check).toString();
    }
    return differences.join("; ");
}

// The columns of a file in the order of the wire's list: each band before
// its own columns, with the band it belongs to.
void flattenColumns(const QJsonArray& columns, const QString& ownerBand, QList<QPair<QJsonObject, QString>>* out)
{
    for (const QJsonValue& value : columns) {
        out->append(qMakePair(value.toObject(), ownerBand));
        if (value.toObject().contains("band"))
            flattenColumns(value.toObject().value("columns").toArray(), value.toObject().value("band").toString(), out);
    }
}

// What differs between the columns of a file, flattened, and the fields
// read from the wire, with visibility when asked.
QString compareColumns(const QList<QPair<QJsonObject, QString>>& columns, const QList<HeaderFieldInfo>& fields,
                       bool visibility)
{
    if (columns.size() != fields.size())
        return QStringLiteral("%1 columns in the file, %2 on the wire").arg(columns.size()).arg(fields.size());
    for (int i = 0; i < columns.size(); ++i) {
        const QString differences = compareColumn(columns.at(i).first, fields.at(i), columns.at(i).second);
        if (!differences.isEmpty() || (visibility && fields.at(i).visible == columns.at(i).first.value("hidden").toBool()))
            return fields.at(i).fieldName + ": " + (differences.isEmpty() ? QStringLiteral("visibility") : differences);
    }
    return QString();
}

bool isFlagOn(const QJsonValue& value)
{
    return value.isDouble() ? value.toDouble() == 1 : value.toString().toInt() == 1;
}

} // namespace

// Every view of the reference service's catalogue, asked for over loopback
// as the page asks for it, read by the parser and compared with its authored
// view file, then turned into cells as the analyst sees them.
class tst_Catalogue : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void view_data();
    void view();
    void shownText_data();
    void shownText();

private:
    QTemporaryDir m_databaseDir;
    std::unique_ptr<SubjectService::Server> m_server;
    QNetworkAccessManager m_network;
    QList<QJsonObject> m_files;
    QHash<qint64, QJsonObject> m_documents;
};

void tst_Catalogue::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    QVERIFY(m_databaseDir.isValid());
    SubjectService::Options options;
    options.dbPath = m_databaseDir.filePath("catalogue.sqlite");
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));

    // The views as the service was built with them, each asked for once.
    const QDir dir(QStringLiteral(":/catalogue/views"));
    for (const QString& name : dir.entryList({ "*.json" }, QDir::Files, QDir::Name)) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        m_files.append(QJsonDocument::fromJson(file.readAll()).object());
        const qint64 viewId = qint64(m_files.last().value("id").toDouble());
        QUrl url = m_server->baseUrl();
        url.setPath("/bas/subject/data");
        QNetworkRequest request(url);
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        const QJsonObject body { { "auth", QJsonObject { { "userId", "demo" }, { "prodId", "subject" } } },
                                 { "obj_vw_id", double(viewId) }, { "flag", 0 } };
        std::unique_ptr<QNetworkReply> reply(m_network.post(request, QJsonDocument(body).toJson()));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        QVERIFY(finished.wait(30000));
        const QJsonObject envelope = QJsonDocument::fromJson(reply->readAll()).object();
        QVERIFY2(envelope.value("state").toInt() == 1, qPrintable(name));
        m_documents.insert(viewId, envelope.value("data").toObject());
    }
    QCOMPARE(m_documents.size(), 33);
}

void tst_Catalogue::cleanupTestCase()
{
    QLocale::setDefault(QLocale::c());
    if (m_server)
        m_server->stop();
}

void tst_Catalogue::view_data()
{
    QTest::addColumn<QJsonObject>("file");
    for (const QJsonObject& view : qAsConst(m_files))
        QTest::newRow(qPrintable(QString::number(view.value("id").toDouble()) + " " + view.value("name").toString())) << view;
}

void tst_Catalogue::view()
{
    QFETCH(QJsonObject, file);
    const qint64 viewId = qint64(file.value("id").toDouble());
    const QJsonObject properties = file.value("properties").toObject();
    const QJsonObject document = m_documents.value(viewId);

    ShownView shown;
    QSignalSpy announced(&shown.parser, &TFSubject::TFJsonParser::signalSubTableJsonData);
    MessageLog log;
    QVERIFY(shown.open(document));
    // Every JSON text inside the document parses; a band that hands its unit
    // factors down says so, which is no error.
    QCOMPARE(log.messages(QtDebugMsg).filter(QRegularExpression("^(?!unit test:)")), QStringList());
    const TFSubject::TFJsonParser& parser = shown.parser;
    QCOMPARE(parser.objectViewName(), file.value("name").toString());
    TFViewConfigTable* view = parser.viewConfigTable();
    QVERIFY(view);
    QCOMPARE(qint64(view->viewId()), viewId);

    // Properties the view acts on, and the first page.
    const bool cross = file.contains("cross");
    const QJsonArray children = file.value("children").toArray();
    const bool showChild = properties.contains("isShowChild") ? isFlagOn(properties.value("isShowChild")) : !children.isEmpty();
    QCOMPARE((QVariantList { parser.isCross(), parser.isShowChild(), view->isShowFilter(), view->isGetChartData(),
                             view->isOrder(), parser.isGroup(), parser.frozenCount(), parser.vGridColHeaderField(),
                             view->groupFields(), view->groupFormatString(), view->sectorNum(), view->rootSectorNum() }),
             (QVariantList { cross, showChild, properties.value("isShowFilter").toBool(),
                             isFlagOn(properties.value("IsGetChartData")), isFlagOn(properties.value("IsOrder")),
                             isFlagOn(properties.value("IsGroup")), properties.value("FrozenCount").toInt(),
                             properties.value("VGridColHeaderField").toString(), properties.value("GroupFields").toString(),
                             properties.value("GroupFormatString").toString(), properties.value("SectorNum").toString(),
                             properties.value("RootSectorNum").toString() }));
    QJsonObject order;
    for (const QString& term : properties.value("order").toString().split(',', Qt::SkipEmptyParts)) {
        const QStringList parts = term.split(' ', Qt::SkipEmptyParts);
        order.insert(parts.at(0), parts.at(1).compare("desc", Qt::CaseInsensitive) == 0 ? -1 : 1);
    }
    QCOMPARE(parser.orderProperty().second.value<QJsonObject>(), order);
    QCOMPARE(parser.pageSize(), properties.contains("pageSize") ? properties.value("pageSize").toInt() : 200);
    QCOMPARE(parser.pageIndex(), 1);
    QVERIFY(parser.dataMaps().size() <= parser.pageSize());

    // Filters, children and chart as the file writes them.
    const QJsonArray filters = file.value("filters").toArray();
    QCOMPARE(parser.filterData().size(), filters.size());
    for (int i = 0; i < filters.size(); ++i) {
        const QJsonObject expected = filters.at(i).toObject();
        const TFTableModelData::FilterData& actual = parser.filterData().at(i);
        QStringList wanted;
        for (const char* key : { "ClassName", "Caption", "FieldName", "DefualtValue", "Operator", "ValueType", "NameValues",
                                 "ControlParameters", "DataSourceName", "DataSourceFilter", "DataSourceFilterParams" })
            wanted << expected.value(key).toString();
        wanted << QString::number(expected.value("Width").toInt()) << QString::number(expected.value("UnitCategory").toDouble())
               << QString::number(expected.value("ParameterCategory").toDouble(), 'g', 6);
        QCOMPARE((QStringList { actual.ClassName, actual.Caption, actual.FieldName, actual.DefualtValue, actual.Operator,
                                actual.ValueType, actual.NameValues, actual.ControlParameters, actual.DataSourceName,
                                actual.DataSourceFilter, actual.DataSourceFilterParams, QString::number(actual.Width),
                                QString::number(actual.UnitCategory), actual.ParameterCategory }), wanted);
    }
    QCOMPARE(view->childTable() != nullptr, !children.isEmpty());
    QCOMPARE(announced.count(), children.size());   // announced while the document was read
    for (int i = 0; i < children.size(); ++i) {
        const QJsonObject expected = children.at(i).toObject();
        const TFChildViewJsonTable::ChildView actual = view->childTable()->children().at(i);
        QCOMPARE(actual.objVwId, qint64(expected.value("view").toDouble()));
        QCOMPARE(actual.caption, expected.value("caption").toString());
        QCOMPARE(actual.propertyParams, expected.value("link").toString());
        QCOMPARE(announced.at(i).at(0).value<qint64>(), actual.objVwId);
    }
    const QJsonObject chart = file.value("chart").toObject();
    QCOMPARE(view->chartTable() != nullptr, !chart.isEmpty());
    if (!chart.isEmpty()) {
        const ChartViewConfig config = view->chartTable()->config();
        QStringList wanted { chart.value("Title").toString(), chart.value("ChartType").toString(), chart.value("XFieldName").toString() };
        for (const QJsonValue& series : chart.value("ChartDataConfigs").toArray())
            wanted << series.toObject().value("FieldName").toString();
        QStringList shown { config.Title, config.ChartType, config.XFieldName };
        for (const ChartDataConfig& series : config.ChartDataConfigs)
            shown << series.FieldName;
        QCOMPARE(shown, wanted);
    }

    // Columns: the bands list of a table view in file order, and the field
    // table with each column's settings and visibility.
    QList<QPair<QJsonObject, QString>> columns;
    flattenColumns(file.value("columns").toArray(), QString(), &columns);
    QCOMPARE(view->headerTable() != nullptr, !columns.isEmpty());
    const QString differences = compareColumns(columns, view->headerTable() ? view->headerTable()->fields() : QList<HeaderFieldInfo>(), true);
    QVERIFY2(differences.isEmpty(), qPrintable(differences));
    for (const auto& column : qAsConst(columns)) {
        const QString name = column.first.value("field").toString();
        const HeaderFieldInfo settings = parser.objectViewConfigTable()->headerFieldInfo(name);
        const QString own = settings.ownerBand == "0" ? QString() : settings.ownerBand;
        QVERIFY2(column.first.contains("band") || compareColumn(column.first, settings, own).isEmpty(), qPrintable(name));
        const QString status = column.first.value("status").toString("1");
        QVERIFY2(column.first.contains("band") || parser.objectViewConfigTable()->isFieldVisible(name)
                     == (!column.first.value("hidden").toBool() && (status == "1" || status == "6")), qPrintable(name));
    }

    // A cross view takes its columns from the summary: the row fields, a
    // band per value across with the value fields, then the totals.
    TFSummaryJsonTable* summary = parser.summaryTable();
    QCOMPARE(summary->columnTable() != nullptr, cross && !parser.dataMaps().isEmpty());
    if (summary->columnTable()) {
        const QJsonObject crossView = file.value("cross").toObject();
        const QJsonArray values = crossView.value("values").toArray();
        const QJsonArray totals = crossView.value("totals").toArray();
        const QList<HeaderFieldInfo> crossFields = summary->columnTable()->fields();
        QJsonArray expected = crossView.value("rows").toArray();
        const int first = expected.size();
        for (int at = first; at < crossFields.size() - totals.size(); at += 1 + values.size()) {
            const QString across = crossFields.at(at).fieldName.mid(2);
            QJsonArray inBand;
            for (const QJsonValue& value : values) {
                QJsonObject column = value.toObject();
                column.insert("field", across + "__" + column.value("field").toString());
                inBand.append(column);
            }
            expected.append(QJsonObject { { "band", "B_" + across }, { "caption", crossView.value("bandCaption").toString("%1").arg(across) },
                                          { "columns", inBand } });
        }
        QVERIFY(expected.size() > first);
        for (const QJsonValue& total : totals)
            expected.append(total);
        QList<QPair<QJsonObject, QString>> crossColumns;
        flattenColumns(expected, QString(), &crossColumns);
        const QString crossDifferences = compareColumns(crossColumns, crossFields, false);
        QVERIFY2(crossDifferences.isEmpty(), qPrintable(crossDifferences));
        for (const HeaderFieldInfo& field : crossFields)
            QCOMPARE(summary->headerFieldInfo(field.fieldName).caption, field.caption);
    }

    // Rows and model as the grid reads them: a column without an expression
    // holds the wire's value in every row.
    const QList<TFTreeStruct*> leaves = shown.header.leaves();
    const QList<QVariantMap> raw = parser.dataMaps();
    QCOMPARE(shown.model.rowCount(), raw.size());
    QCOMPARE(shown.model.columnCount(), leaves.size());
    for (int c = 0; c < leaves.size(); ++c) {
        const QString field = leaves.at(c)->info().fieldName;
        for (int r = 0; r < raw.size() && leaves.at(c)->info().unboundExpression.isEmpty(); ++r) {
            QVERIFY2(shown.model.index(r, c).data(TFSubjectTableModel::RawValueRole) == raw.at(r).value(field),
                     qPrintable(QStringLiteral("row %1 %2").arg(r).arg(field)));
        }
    }
}

// What the screen shows for a few cells of the demo data, which a fixed
// seed makes the same on every machine. An empty colour is the grid's own.
void tst_Catalogue::shownText_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("color");

    QTest::newRow("text kept as it is") << qint64(260) << 0 << "SECU_CODE" << "000001" << "";
    QTest::newRow("n2, falling: green") << qint64(260) << 0 << "CLOSE_PRICE" << "29.57" << "#1aa34a";
    QTest::newRow("n2, rising: red") << qint64(260) << 1 << "CHG_PCT" << "4.08" << "#e83e3e";
    QTest::newRow("derived cell") << qint64(260) << 0 << "AMPLITUDE" << "7.41" << "";
    QTest::newRow("n0 in 10,000s, grouped") << qint64(260) << 1 << "VOLUME" << "1,525" << "";
    QTest::newRow("n2 in 100 millions") << qint64(260) << 0 << "AMOUNT" << "2.82" << "";
    QTest::newRow("date in its own format") << qint64(264) << 0 << "END_DATE" << "2019年03月31日" << "";
    QTest::newRow("negative in 100 millions") << qint64(261) << 1 << "NET_PROFIT" << "-0.55" << "";
    QTest::newRow("n2 in 10,000s, grouped") << qint64(263) << 1 << "HOLD_SHARES" << "212,324.52" << "";
    QTest::newRow("cross cell, n1 in 100 millions") << qint64(1590) << 1 << "TOTAL_NET_PROFIT" << "4,222.6" << "";
    QTest::newRow("unit factor 1, colour") << qint64(47820) << 0 << "CHG_BP" << "-44" << "#1aa34a";
    QTest::newRow("rising in green where red means falling") << qint64(48370) << 0 << "CHG_PCT" << "3.17" << "#1aa34a";
}

void tst_Catalogue::shownText()
{
    QFETCH(qint64, viewId);
    QFETCH(int, row);
    QFETCH(QString, field);
    QFETCH(QString, text);
    QFETCH(QString, color);
    ShownView table;
    QVERIFY(table.open(m_documents.value(viewId)));
    int column = 0;
    const QList<TFTreeStruct*> leaves = table.header.leaves();
    while (column < leaves.size() && leaves.at(column)->info().fieldName != field)
        ++column;
    QVERIFY2(column < leaves.size(), qPrintable(field));
    const QModelIndex index = table.model.index(row, column);
    QCOMPARE(index.data(Qt::DisplayRole).toString(), text);
    const QVariant foreground = index.data(Qt::ForegroundRole);
    QCOMPARE(foreground.isValid() ? foreground.value<QColor>().name() : QString(), color);
}

QTEST_MAIN(tst_Catalogue)
#include "tst_catalogue.moc"
