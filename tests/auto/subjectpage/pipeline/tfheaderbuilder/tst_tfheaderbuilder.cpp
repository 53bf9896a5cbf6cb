#include "documenttables.h"

#include "expression/expressionparse.h"
#include "jsonparser/tfheaderbuilder.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QJsonArray>
#include <QtTest>

namespace {

QStringList fieldNames(const QList<TFTreeStruct*>& nodes)
{
    QStringList names;
    for (const TFTreeStruct* node : nodes)
        names << node->info().fieldName;
    return names;
}

QJsonObject viewEntry(const QString& name, const QString& value)
{
    return QJsonObject{ { "obj_vw_id", 1 }, { "prop_typ", "VIEW" }, { "prop_name", name }, { "prop_val", value } };
}

QJsonObject extendEntry(const QString& name, const QJsonArray& content)
{
    return QJsonObject{ { "obj_vw_id", 1 }, { "prop_typ", "EXTEND" }, { "prop_name", name }, { "prop_val", "" },
                        { "ext_prop_val", QString::fromUtf8(QJsonDocument(content).toJson(QJsonDocument::Compact)) } };
}

} // namespace

class tst_TFHeaderBuilder : public QObject
{
    Q_OBJECT
private slots:
    void bandsPath();
    void crossPath();
    void crossWithoutColumnsTakesBands();
    void noHeader_data();
    void noHeader();
    void captions_data();
    void captions();
    void widths_data();
    void widths();

private:
    ExpressionParse m_parser;
    TFSubject::ExpressionParseSource parserSource() { return [this] { return &m_parser; }; }
};

void tst_TFHeaderBuilder::bandsPath()
{
    DocumentTables tables(DocumentTables::load("bands_view.json"));
    TFTreeStruct root(QString{});
    for (const char* band : { "B_ALL", "B_BASE", "B_FIN", "NOT_IN_OBJECT" })
        QTest::ignoreMessage(QtWarningMsg, qPrintable(QStringLiteral("cant find field name: %1").arg(band)));
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), parserSource());

    QCOMPARE(root.depth(), 4);
    QCOMPARE(fieldNames(root.leaves()),
             (QStringList{ "SECU_CODE", "SECU_SHT", "NET_PROFIT", "ROE_SUM", "RATIO", "END_DATE" }));
    QCOMPARE(root.leafCaptions(),
             (QStringList{ "证券代码", "简称", "净利润(万元)", "ROE合计", "比率", "报告期2020" }));
    QCOMPARE(fieldNames(root.nodesAtLevel(1)), (QStringList{ "B_ALL", "END_DATE" }));
    QCOMPARE(fieldNames(root.nodesAtLevel(2)), (QStringList{ "B_BASE", "B_FIN" }));

    // Settings come from the object's field table, structure from "Bands".
    const HeaderFieldInfo& code = root.findField("SECU_CODE")->info();
    QCOMPARE(code.textAlignment, 1);
    QCOMPARE(code.valueType, QStringLiteral("String"));
    QCOMPARE(code.url, QStringLiteral("view:?secu={SECU_ID}"));
    QCOMPARE(code.ownerBand, QStringLiteral("B_BASE"));
    const HeaderFieldInfo& profit = root.findField("NET_PROFIT")->info();
    QCOMPARE(profit.showUnitFactor, qint64(10000));
    QCOMPARE(profit.cellStyleExpression, QStringLiteral("$NET_PROFIT > 0 ? 'red' : 'green'"));
    QCOMPARE(root.firstUnit(), QStringLiteral("万元"));
    // The field hidden by its status and the one hidden in "Bands" have no node.
    QVERIFY(!root.findField("HIDDEN_COL"));
    QVERIFY(!root.findField("NOT_IN_OBJECT"));
}

void tst_TFHeaderBuilder::crossPath()
{
    DocumentTables tables(DocumentTables::load("cross_view.json"));
    QVERIFY(tables.view && tables.view->isCross());
    QVERIFY(tables.summary && tables.summary->columnTable());
    TFTreeStruct root(QString{});
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), parserSource());
    QCOMPARE(fieldNames(root.leaves()), (QStringList{ "ITEM", "2020__VAL", "2021__VAL", "ITEM" }));
    QCOMPARE(root.leafCaptions(), (QStringList{ "项目", "金额(亿元)", "2021金额2021", "ITEM" }));
    QCOMPARE(root.hiddenLeafIndexes(), QList<int>{ 3 });
    QCOMPARE(root.depth(), 3);
    QCOMPARE(root.findField("2020__VAL")->info().width, 90);
    QVERIFY(!root.findField("ONLY_IN_BANDS"));
    QVERIFY(!root.findField("HID"));
}

void tst_TFHeaderBuilder::crossWithoutColumnsTakesBands()
{
    QJsonObject document = DocumentTables::load("cross_view.json");
    document.insert("Summary", QJsonArray{ QJsonObject{ { "Item", "rcount" }, { "value", 2 } } });
    DocumentTables tables(document);
    TFTreeStruct root(QString{});
    QTest::ignoreMessage(QtWarningMsg, "cant find field name: ONLY_IN_BANDS");
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), parserSource());
    QCOMPARE(fieldNames(root.leaves()), (QStringList{ "ONLY_IN_BANDS", "ITEM" }));
}

void tst_TFHeaderBuilder::noHeader_data()
{
    QTest::addColumn<QJsonObject>("document");
    QTest::newRow("empty document") << QJsonObject();
    QTest::newRow("view without bands") << QJsonObject{ { "View_Config", QJsonArray{ viewEntry("IsGroup", "1") } } };
    QTest::newRow("empty bands") << QJsonObject{ { "View_Config", QJsonArray{ extendEntry("Bands", {}) } } };
    QTest::newRow("cross without summary, no bands")
        << QJsonObject{ { "View_Config", QJsonArray{ viewEntry("IsCross", "1") } } };
}

void tst_TFHeaderBuilder::noHeader()
{
    // The tree is left as it was: here, with one column of before.
    QFETCH(QJsonObject, document);
    DocumentTables tables(document);
    TFTreeStruct root(QString{});
    HeaderFieldInfo before;
    before.fieldName = QStringLiteral("BEFORE");
    before.visible = true;
    buildHeaderTree(&root, { before }, false, QString());
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), parserSource());
    QCOMPARE(fieldNames(root.leaves()), QStringList{ "BEFORE" });
}

void tst_TFHeaderBuilder::captions_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("expanded");

    QTest::newRow("no braces") << "收盘价" << "收盘价";
    QTest::newRow("filter value") << "{[年度]}年" << "2020年";
    QTest::newRow("arithmetic") << "前{[年度]-1}年" << "前2019年";
    // The capture runs from the first "{" to the last "}", which is no
    // formula; everything between is replaced by its empty result.
    QTest::newRow("two braces in one caption") << "a{[年度]}b{[N]}c" << "ac";
    QTest::newRow("faulty expression shows empty") << "x{[年度]/0}y" << "xy";
    QTest::newRow("unknown word shows empty") << "x{nothing}y" << "xy";
    QTest::newRow("empty braces") << "x{}y" << "xy";
    QTest::newRow("line break: test matches, replacement does not") << "x{[年度]\n}y" << "x{[年度]\n}y";
}

void tst_TFHeaderBuilder::captions()
{
    QFETCH(QString, caption);
    QFETCH(QString, expanded);
    const QMap<QString, QVariant> filters{ { "年度", "2020" }, { "N", "5" } };
    QCOMPARE(TFSubject::expandCaption(caption, filters, parserSource()), expanded);
}

void tst_TFHeaderBuilder::widths_data()
{
    QTest::addColumn<int>("bandsWidth");
    QTest::addColumn<int>("objectWidth");
    QTest::addColumn<bool>("inObject");
    QTest::addColumn<int>("width");

    QTest::newRow("object narrower") << 120 << 80 << true << 80;
    QTest::newRow("object wider: merge copied it first") << 80 << 120 << true << 120;
    QTest::newRow("not in object keeps its own after merge") << 80 << 0 << false << 0;
    QTest::newRow("measure the caption") << -9 << 80 << true << 80;
}

void tst_TFHeaderBuilder::widths()
{
    QFETCH(int, bandsWidth);
    QFETCH(int, objectWidth);
    QFETCH(bool, inObject);
    QFETCH(int, width);

    const QJsonArray bands{ QJsonObject{ { "FieldName", "F" }, { "Caption", "F" }, { "Visible", true },
                                         { "Width", bandsWidth } } };
    QJsonArray object;
    if (inObject) {
        object.append(QJsonObject{ { "obj_prop_name", "F" }, { "vw_sts", "1" },
                                   { "ots_cfg", QStringLiteral("{\"FieldName\":\"F\",\"Width\":%1}").arg(objectWidth) } });
    } else {
        QTest::ignoreMessage(QtWarningMsg, "cant find field name: F");
    }
    DocumentTables tables(QJsonObject{ { "View_Config", QJsonArray{ extendEntry("Bands", bands) } },
                                       { "Object_View_Config", object } });
    TFTreeStruct root(QString{});
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), parserSource());
    QCOMPARE(root.leaves().size(), 1);
    QCOMPARE(root.leaves().first()->info().width, width);
}

QTEST_MAIN(tst_TFHeaderBuilder)
#include "tst_tfheaderbuilder.moc"
