#include "documenttables.h"

#include "expression/expressionparse.h"
#include "jsonparser/tfheaderbuilder.h"
#include "jsonparser/tfrowbuilder.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "mulittable/tfunboundexpression.h"

#include "subjectservice.h"

#include "../../shared/viewconfigurationrequest.h"

#include <QDir>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

using TFTableModelData::tagCellValue;

namespace {

// One catalogue view read the way the table widget reads it: header, rows
// with derived cells, and the model over them.
struct ViewTable
{
    explicit ViewTable(const QJsonObject& document) : tables(document)
    {
        const TFSubject::ExpressionParseSource source = [this] { return &parser; };
        TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), source);
        const bool cross = TFSubject::usesCrossColumns(tables.view.get(), tables.summary.get());
        unbound.reset(new TFUnboundExpression(source));
        TFSubject::TFRowBuilder builder(root.leaves(), unbound.get(), [&](const QString& name) {
            return TFSubject::referenceField(name, cross, tables.summary.get(), tables.objectView.get()).valueType;
        });
        raw = tables.data.rows();
        rows = builder.build(raw);
        model.setHeader(&root);
        model.setRows(rows);
    }

    int column(const QString& field) const
    {
        const QList<TFTreeStruct*> leaves = root.leaves();
        for (int c = 0; c < leaves.size(); ++c) {
            if (leaves.at(c)->info().fieldName == field)
                return c;
        }
        return -1;
    }

    DocumentTables tables;
    TFTreeStruct root { QString() };
    ExpressionParse parser;
    std::unique_ptr<TFUnboundExpression> unbound;
    QList<QVariantMap> raw;
    QList<RowData> rows;
    TFSubjectTableModel model;
};

} // namespace

class tst_CatalogueRows : public QObject
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
};

void tst_CatalogueRows::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    QVERIFY(m_databaseDir.isValid());
    SubjectService::Options options;
    options.dbPath = m_databaseDir.filePath("catalogue.sqlite");
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
}

void tst_CatalogueRows::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

void tst_CatalogueRows::view_data()
{
    QTest::addColumn<qint64>("viewId");
    const QDir dir(QStringLiteral(CATALOGUE_VIEWS_DIR));
    const QStringList names = dir.entryList({ "*.json" }, QDir::Files, QDir::Name);
    QVERIFY(!names.isEmpty());
    for (const QString& name : names)
        QTest::newRow(qPrintable(name)) << QFileInfo(name).baseName().toLongLong();
}

void tst_CatalogueRows::view()
{
    QFETCH(qint64, viewId);
    const QJsonObject reply = fetchViewConfiguration(m_server->baseUrl(), viewId);
    QCOMPARE(reply.value("state").toInt(), 1);
    const QJsonObject document = reply.value("data").toObject();
    QVERIFY(document.contains("Data"));

    ViewTable table(document);
    const QList<RowData>& rows = table.rows;
    const QList<QVariantMap>& raw = table.raw;
    QCOMPARE(rows.size(), raw.size());
    TFSubjectTableModel& model = table.model;
    const QList<TFTreeStruct*> leaves = table.root.leaves();
    QCOMPARE(model.columnCount(), leaves.size());

    // A second parser for the derived cells, so that nothing kept by the
    // first decides the expected value.
    ExpressionParse checkParser;
    TFUnboundExpression checkUnbound([&checkParser] { return &checkParser; });
    int computed = 0;
    int colored = 0;
    for (int r = 0; r < rows.size(); ++r) {
        const RowData& row = rows.at(r);
        const QVariantMap& source = raw.at(r);
        QStringList further;
        for (auto it = source.constBegin(); it != source.constEnd(); ++it) {
            bool isLeaf = false;
            for (const TFTreeStruct* leaf : leaves)
                isLeaf = isLeaf || leaf->info().fieldName == it.key();
            if (!isLeaf)
                further << it.key();
        }
        QCOMPARE(row.size(), leaves.size() + further.size());
        for (int c = 0; c < row.size(); ++c) {
            const tagCellValue& cell = row.at(c);
            const QString where = QStringLiteral("row %1 cell %2 (%3)").arg(r).arg(c).arg(cell.fieldName);
            QCOMPARE(cell.secuId, c < leaves.size() ? source.value("SECU_ID").toDouble() : 0.0);
            if (c >= leaves.size()) {
                QVERIFY2(cell.fieldName == further.at(c - leaves.size()), qPrintable(where));
                QVERIFY2(cell.value == source.value(cell.fieldName), qPrintable(where));
                continue;
            }
            const HeaderFieldInfo& record = leaves.at(c)->info();
            QVERIFY2(cell.fieldName == record.fieldName && cell.valueType == record.valueType
                         && cell.formatString == record.formatString && cell.url == record.url
                         && cell.columnType == record.columnType && cell.textAlignment == record.textAlignment
                         && cell.prevUnitFactor == record.prevUnitFactor
                         && cell.showUnitFactor == record.showUnitFactor
                         && cell.unitCategory == record.unitCategory,
                     qPrintable(where));
            QVariant value = source.value(record.fieldName);
            if (record.valueType.toLower() == QLatin1String("decimal") && !record.unboundExpression.isEmpty()) {
                value = checkUnbound.evaluate(record.unboundExpression, source);
                ++computed;
            }
            QVERIFY2(cell.value == value, qPrintable(where + ": " + cell.value.toString() + " != " + value.toString()));

            const QModelIndex index = model.index(r, c);
            QCOMPARE(index.data(TFSubjectTableModel::RawValueRole), cell.value);
            if (!record.cellStyleExpression.isEmpty()) {
                // Asked twice: the kept colour must be the fresh one.
                const QVariant fresh = index.data(Qt::ForegroundRole);
                QVERIFY2(index.data(Qt::ForegroundRole) == fresh, qPrintable(where));
                ++colored;
            }
        }
    }
    qDebug() << "view" << viewId << rows.size() << "rows," << leaves.size() << "columns," << computed
             << "derived cells," << colored << "coloured cells";
}

// What the screen shows for a few cells of the demo data, which a fixed
// seed makes the same on every machine: number formats with group
// separators, unit factors, date formats, derived cells and the colours of
// style expressions. An empty colour is the grid's own.
void tst_CatalogueRows::shownText_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("color");

    QTest::newRow("text kept as it is") << qint64(260) << 0 << "SECU_CODE" << "000001" << "";
    QTest::newRow("link text") << qint64(260) << 1 << "SECU_SHT" << "海医药" << "";
    QTest::newRow("n2, falling: green") << qint64(260) << 0 << "CLOSE_PRICE" << "29.57" << "#1aa34a";
    QTest::newRow("n2, rising: red") << qint64(260) << 1 << "CHG_PCT" << "4.08" << "#e83e3e";
    QTest::newRow("derived cell") << qint64(260) << 0 << "AMPLITUDE" << "7.41" << "";
    QTest::newRow("n0 in 10,000s, grouped") << qint64(260) << 1 << "VOLUME" << "1,525" << "";
    QTest::newRow("n2 in 100 millions") << qint64(260) << 0 << "AMOUNT" << "2.82" << "";
    QTest::newRow("date") << qint64(260) << 1 << "LIST_DATE" << "2020-10-15" << "";
    QTest::newRow("date in its own format") << qint64(264) << 0 << "END_DATE" << "2019年03月31日" << "";
    QTest::newRow("negative in 100 millions") << qint64(261) << 1 << "NET_PROFIT" << "-0.55" << "";
    QTest::newRow("n2 in 10,000s, grouped") << qint64(263) << 1 << "HOLD_SHARES" << "212,324.52" << "";
    QTest::newRow("n1 in 100 millions") << qint64(1590) << 1 << "TOTAL_NET_PROFIT" << "4,222.6" << "";
    QTest::newRow("unit factor 1, colour") << qint64(47820) << 0 << "CHG_BP" << "-44" << "#1aa34a";
    QTest::newRow("rising in green where red means falling") << qint64(48370) << 0 << "CHG_PCT" << "3.17"
                                                             << "#1aa34a";
}

void tst_CatalogueRows::shownText()
{
    QFETCH(qint64, viewId);
    QFETCH(int, row);
    QFETCH(QString, field);
    QFETCH(QString, text);
    QFETCH(QString, color);

    const QJsonObject reply = fetchViewConfiguration(m_server->baseUrl(), viewId);
    QCOMPARE(reply.value("state").toInt(), 1);
    ViewTable table(reply.value("data").toObject());
    const int column = table.column(field);
    QVERIFY2(column >= 0, qPrintable(field));
    const QModelIndex index = table.model.index(row, column);
    QCOMPARE(index.data(Qt::DisplayRole).toString(), text);
    const QVariant foreground = index.data(Qt::ForegroundRole);
    QCOMPARE(foreground.isValid() ? foreground.value<QColor>().name() : QString(), color);
}

QTEST_MAIN(tst_CatalogueRows)
#include "tst_cataloguerows.moc"
