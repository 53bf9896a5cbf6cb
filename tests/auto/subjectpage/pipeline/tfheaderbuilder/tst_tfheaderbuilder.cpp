#include "documenttables.h"

#include "expression/expressionparse.h"
#include "jsonparser/tfheaderbuilder.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QJsonArray>
#include <QtTest>

namespace {

// A tree as "BAND[...]" for a band, "NAME:caption" for a leaf.
QString nodes(const QList<TFTreeStruct*>& list)
{
    QStringList texts;
    for (const TFTreeStruct* node : list) {
        texts << (node->hasChildren() ? node->info().fieldName + '[' + nodes(node->children()) + ']'
                                      : node->info().fieldName + ':' + node->displayCaption());
    }
    return texts.join(' ');
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
    void trees_data();
    void trees();
    void captions_data();
    void captions();
    void widths_data();
    void widths();

private:
    ExpressionParse m_parser;
    TFSubject::ExpressionParseSource parserSource() { return [this] { return &m_parser; }; }
};

void tst_TFHeaderBuilder::trees_data()
{
    QTest::addColumn<QJsonObject>("document");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QString>("tree");   // depth; leaves with captions; hidden leaf indexes

    QStringList bandsWarnings;
    for (const char* band : { "B_ALL", "B_BASE", "B_FIN", "NOT_IN_OBJECT" })
        bandsWarnings << QStringLiteral("cant find field name: %1").arg(band);
    // Structure from "Bands", settings from the object's field table; the
    // field hidden by its status and the one hidden in "Bands" have no node.
    QTest::newRow("bands view") << DocumentTables::load("bands_view.json") << bandsWarnings
        << "4; B_ALL[B_BASE[SECU_CODE:证券代码 SECU_SHT:简称] B_FIN[NET_PROFIT:净利润(万元) ROE_SUM:ROE合计 RATIO:比率]] "
           "END_DATE:报告期2020; ";
    QTest::newRow("cross view: the summary's columns and the group leaf") << DocumentTables::load("cross_view.json")
        << QStringList() << "3; ITEM:项目 B_2020[2020__VAL:金额(亿元)] 2021__VAL:2021金额2021 ITEM:ITEM; 3";
    QJsonObject crossWithoutColumns = DocumentTables::load("cross_view.json");
    crossWithoutColumns.insert("Summary", QJsonArray{ QJsonObject{ { "Item", "rcount" }, { "value", 2 } } });
    QTest::newRow("cross view without columns takes the bands") << crossWithoutColumns
        << QStringList{ "cant find field name: ONLY_IN_BANDS" } << "2; ONLY_IN_BANDS:不该出现 ITEM:ITEM; 1";
    // Without a header the tree is left as it was: with one column of before.
    const QString before = "2; BEFORE:BEFORE; ";
    QTest::newRow("empty document") << QJsonObject() << QStringList() << before;
    QTest::newRow("view without bands")
        << QJsonObject{ { "View_Config", QJsonArray{ viewEntry("IsGroup", "1") } } } << QStringList() << before;
    QTest::newRow("empty bands")
        << QJsonObject{ { "View_Config", QJsonArray{ extendEntry("Bands", {}) } } } << QStringList() << before;
    QTest::newRow("cross without summary, no bands")
        << QJsonObject{ { "View_Config", QJsonArray{ viewEntry("IsCross", "1") } } } << QStringList() << before;
}

void tst_TFHeaderBuilder::trees()
{
    QFETCH(QJsonObject, document);
    QFETCH(QStringList, warnings);
    QFETCH(QString, tree);

    DocumentTables tables(document);
    TFTreeStruct root(QString{});
    HeaderFieldInfo before;
    before.fieldName = before.caption = QStringLiteral("BEFORE");
    before.visible = true;
    buildHeaderTree(&root, { before }, false, QString());
    for (const QString& warning : warnings)
        QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), parserSource());
    QStringList hidden;
    for (int index : root.hiddenLeafIndexes())
        hidden << QString::number(index);
    QCOMPARE(QStringLiteral("%1; %2; %3").arg(root.depth()).arg(nodes(root.children()), hidden.join(',')), tree);
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
