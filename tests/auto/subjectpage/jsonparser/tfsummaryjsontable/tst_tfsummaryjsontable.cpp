#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfsummaryjsontable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QtTest>

class tst_TFSummaryJsonTable : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void figures_data();
    void figures();
    void items();
    void figuresLastAcrossReads();
    void columnList_data();
    void columnList();
    void lastColumnListWins();
    void badColumnList();
    void headerFieldInfo();
};

static QJsonObject item(const QString& name, const QJsonValue& value)
{
    return QJsonObject { { "Item", name }, { "value", value } };
}

static QString columns(const QStringList& fieldNames)
{
    QJsonArray array;
    for (const QString& name : fieldNames)
        array.append(QJsonObject { { "fieldName", name }, { "showStatus", 1 } });
    return jsonText(array);
}

void tst_TFSummaryJsonTable::defaults()
{
    TFSummaryJsonTable table;
    QCOMPARE(table.tableType(), 7);
    QCOMPARE(table.rowCount(), 0);
    QCOMPARE(table.pageIndex(), 0);
    QCOMPARE(table.pageSize(), 200);
    QVERIFY(!table.columnTable());
}

void tst_TFSummaryJsonTable::figures_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<int>("pageIndex");
    QTest::addColumn<int>("pageSize");

    QTest::newRow("all three") << QJsonValue(QJsonArray { item("rcount", 1234), item("pindex", 3), item("psize", 50) })
                               << 1234 << 3 << 50;
    QTest::newRow("no psize keeps 200") << QJsonValue(QJsonArray { item("rcount", 5) }) << 5 << 0 << 200;
    QTest::newRow("rcount as text") << QJsonValue(QJsonArray { item("rcount", "12") }) << 0 << 0 << 200;
    QTest::newRow("psize as text gives 0") << QJsonValue(QJsonArray { item("psize", "100") }) << 0 << 0 << 0;
    QTest::newRow("fraction gives 0") << QJsonValue(QJsonArray { item("rcount", 12.5) }) << 0 << 0 << 200;
    QTest::newRow("names are exact") << QJsonValue(QJsonArray { item("RCount", 5), item("psize ", 9) }) << 0 << 0 << 200;
    QTest::newRow("later item wins") << QJsonValue(QJsonArray { item("rcount", 5), item("rcount", 6) }) << 6 << 0 << 200;
    QTest::newRow("second element a number ends the list")
        << QJsonValue(QJsonArray { item("rcount", 5), 3, item("psize", 10) }) << 5 << 0 << 200;
    QTest::newRow("first element no object") << QJsonValue(QJsonArray { "x", item("rcount", 5) }) << 0 << 0 << 200;
    QTest::newRow("not an array") << QJsonValue(QJsonObject { { "rcount", 5 } }) << 0 << 0 << 200;
}

void tst_TFSummaryJsonTable::figures()
{
    QFETCH(QJsonValue, value);
    QFETCH(int, rowCount);
    QFETCH(int, pageIndex);
    QFETCH(int, pageSize);

    TFSummaryJsonTable table;
    table.initWith(value);
    QCOMPARE(table.rowCount(), rowCount);
    QCOMPARE(table.pageIndex(), pageIndex);
    QCOMPARE(table.pageSize(), pageSize);
}

void tst_TFSummaryJsonTable::items()
{
    TFSummaryJsonTable table;
    table.initWith(QJsonArray { item("rcount", 5), item("GridColumns", columns({ "A" })), item("other", "x"),
                                QJsonObject { { "value", 3 } }, 7, item("psize", 9) });
    const QList<TFSummaryJsonTable::SummaryItem> items = table.items();
    QCOMPARE(items.size(), 4);
    QCOMPARE(items.at(0).item, QString("rcount"));
    QCOMPARE(items.at(0).value, QVariant(5));
    QCOMPARE(items.at(1).item, QString("GridColumns"));
    QVERIFY(items.at(1).value.isNull());
    QCOMPARE(items.at(2).value, QVariant(0));
    QCOMPARE(items.at(3).item, QString());
    QCOMPARE(items.at(3).value, QVariant(3));
}

void tst_TFSummaryJsonTable::figuresLastAcrossReads()
{
    // A later page fills the same summary again: what it does not say stays.
    TFSummaryJsonTable table;
    table.initWith(QJsonArray { item("rcount", 500), item("psize", 50), item("GridColumns", columns({ "A" })) });
    TFHeaderFieldConfigData* columnTable = table.columnTable();
    QVERIFY(columnTable);

    table.initWith(QJsonArray { item("pindex", 2) });
    QCOMPARE(table.items().size(), 1);
    QCOMPARE(table.rowCount(), 500);
    QCOMPARE(table.pageIndex(), 2);
    QCOMPARE(table.pageSize(), 50);
    QCOMPARE(table.columnTable(), columnTable);

    table.initWith(QJsonValue("not an array"));
    QVERIFY(table.items().isEmpty());
    QCOMPARE(table.rowCount(), 500);
}

void tst_TFSummaryJsonTable::columnList_data()
{
    QTest::addColumn<QString>("itemName");
    QTest::addColumn<bool>("isColumnList");

    QTest::newRow("GridColumns") << "GridColumns" << true;
    QTest::newRow("letters around") << "CrossGridColumnsList" << true;
    QTest::newRow("lower case") << "gridcolumns" << false;
    QTest::newRow("upper case") << "GRIDCOLUMNS" << false;
    QTest::newRow("part of the name") << "GridColumn" << false;
}

void tst_TFSummaryJsonTable::columnList()
{
    QFETCH(QString, itemName);
    QFETCH(bool, isColumnList);

    TFSummaryJsonTable table;
    table.initWith(QJsonArray { item(itemName, columns({ "A", "B" })) });
    QCOMPARE(table.columnTable() != nullptr, isColumnList);
    if (isColumnList) {
        TFHeaderFieldConfigData* columnTable = table.columnTable();
        QCOMPARE(columnTable->parent(), &table);
        QVERIFY(!columnTable->hasUpperCaseKeys());
        QCOMPARE(columnTable->fields().size(), 2);
        QCOMPARE(columnTable->fields().at(1).fieldName, QString("B"));
        QCOMPARE(columnTable->fields().at(1).visible, true);
    }
}

void tst_TFSummaryJsonTable::lastColumnListWins()
{
    TFSummaryJsonTable table;
    QPointer<TFHeaderFieldConfigData> first;
    table.initWith(QJsonArray { item("GridColumns", columns({ "A" })) });
    first = table.columnTable();
    table.initWith(QJsonArray { item("GridColumns", columns({ "B" })), item("rcount", 1),
                                item("MoreGridColumns", columns({ "C", "D" })) });
    QVERIFY(first.isNull());   // the old column table is deleted
    QCOMPARE(table.columnTable()->fields().size(), 2);
    QCOMPARE(table.columnTable()->fields().first().fieldName, QString("C"));
    QCOMPARE(table.children().size(), 1);
}

void tst_TFSummaryJsonTable::badColumnList()
{
    MessageLog log;
    TFSummaryJsonTable table;
    table.initWith(QJsonArray { item("GridColumns", QJsonArray { QJsonObject { { "fieldName", "A" } } }) });
    QVERIFY(table.columnTable());
    QVERIFY(table.columnTable()->fields().isEmpty());
    const QStringList debug = log.messages(QtDebugMsg);
    QCOMPARE(debug.size(), 1);
    QVERIFY2(debug.first().contains(QRegularExpression("TFHeaderFieldConfigData::initWith\\(.*\\) Json parse error: \\S")),
             qPrintable(debug.first()));
}

void tst_TFSummaryJsonTable::headerFieldInfo()
{
    TFSummaryJsonTable table;
    QCOMPARE(table.headerFieldInfo("A").fieldName, QString());

    const QJsonArray list {
        QJsonObject { { "fieldName", "2023__NET_PRF" }, { "caption", "2023年" }, { "width", 90.5 } },
        QJsonObject { { "fieldName", "2023__NET_PRF" }, { "caption", "again" } },
    };
    table.initWith(QJsonArray { item("GridColumns", jsonText(list)) });
    const HeaderFieldInfo info = table.headerFieldInfo("2023__NET_PRF");
    QCOMPARE(info.caption, QString("2023年"));
    QCOMPARE(info.width, 90);
    QCOMPARE(table.headerFieldInfo("2024__NET_PRF").fieldName, QString());
}

QTEST_APPLESS_MAIN(tst_TFSummaryJsonTable)
#include "tst_tfsummaryjsontable.moc"
