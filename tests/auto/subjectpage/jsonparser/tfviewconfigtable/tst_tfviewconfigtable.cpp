#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tfchildviewjsontable.h"
#include "jsonparser/tffilterjsontable.h"
#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfviewconfigtable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QSignalSpy>
#include <QtTest>

class tst_TFViewConfigTable : public QObject
{
    Q_OBJECT

private slots:
    void flags_data();
    void flags();
    void flagsSurviveAnotherRead();
    void viewId_data();
    void viewId();
    void entries();
    void extendTables_data();
    void extendTables();
    void extendWithoutText();
    void firstTableOfAKindWins();
    void childViewsPassThrough();
    void sectorNumbers_data();
    void sectorNumbers();
    void orderProperty_data();
    void orderProperty();
    void childViewParams();
};

static QJsonObject row(const QString& name, const QJsonValue& value)
{
    return QJsonObject { { "obj_vw_id", 7 }, { "prop_typ", "VIEW" }, { "prop_name", name }, { "prop_val", value } };
}

static QJsonObject extendRow(const QString& name, const QJsonValue& text)
{
    QJsonObject element { { "obj_vw_id", 7 }, { "prop_typ", "EXTEND" }, { "prop_name", name }, { "prop_val", "" } };
    if (!text.isUndefined())
        element.insert("ext_prop_val", text);
    return element;
}

static QVariant flag(const TFViewConfigTable& table, const QString& getter)
{
    if (getter == "isShowChild") return table.isShowChild();
    if (getter == "isOrder") return table.isOrder();
    if (getter == "isGetChartData") return table.isGetChartData();
    if (getter == "frozenCount") return table.frozenCount();
    if (getter == "isCross") return table.isCross();
    if (getter == "isTurnOver") return table.isTurnOver();
    if (getter == "isGroup") return table.isGroup();
    if (getter == "groupFields") return table.groupFields();
    if (getter == "groupFormatString") return table.groupFormatString();
    if (getter == "bandsLevel") return table.bandsLevel();
    if (getter == "vGridColHeaderField") return table.vGridColHeaderField();
    if (getter == "hasVGridColHeaderField") return table.hasVGridColHeaderField();
    if (getter == "isShowFilter") return table.isShowFilter();
    qFatal("no getter %s", qPrintable(getter));
    return QVariant();
}

void tst_TFViewConfigTable::flags_data()
{
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<QString>("getter");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("isShowChild") << QJsonArray { row("isShowChild", "1") } << "isShowChild" << QVariant(true);
    QTest::newRow("show child by containment")
        << QJsonArray { row("XISSHOWCHILDTAB", "1") } << "isShowChild" << QVariant(true);
    QTest::newRow("show child 2 is false") << QJsonArray { row("isShowChild", "2") } << "isShowChild" << QVariant(false);
    QTest::newRow("isorder anywhere, any case")
        << QJsonArray { row("MyIsOrDeRflag", "1") } << "isOrder" << QVariant(true);
    QTest::newRow("IsOrder as true text") << QJsonArray { row("IsOrder", "true") } << "isOrder" << QVariant(false);
    QTest::newRow("IsOrder as number") << QJsonArray { row("IsOrder", 1) } << "isOrder" << QVariant(false);
    QTest::newRow("IsGetChartData") << QJsonArray { row("IsGetChartData", "1") } << "isGetChartData" << QVariant(true);
    QTest::newRow("frozencount 3") << QJsonArray { row("frozencount", "3") } << "frozenCount" << QVariant(3);
    QTest::newRow("FrozenCount by containment")
        << QJsonArray { row("GridFrozenCountLeft", "2") } << "frozenCount" << QVariant(2);
    QTest::newRow("frozencount no number") << QJsonArray { row("FrozenCount", "three") } << "frozenCount" << QVariant(0);
    QTest::newRow("frozencount JSON number") << QJsonArray { row("FrozenCount", 3) } << "frozenCount" << QVariant(0);
    QTest::newRow("IsCross exact") << QJsonArray { row("IsCross", "1") } << "isCross" << QVariant(true);
    QTest::newRow("IsCross as 01") << QJsonArray { row("IsCross", "01") } << "isCross" << QVariant(true);
    QTest::newRow("iscross lower case") << QJsonArray { row("iscross", "1") } << "isCross" << QVariant(false);
    QTest::newRow("IsCross with suffix") << QJsonArray { row("IsCrossTab", "1") } << "isCross" << QVariant(false);
    QTest::newRow("IsTurnOver") << QJsonArray { row("IsTurnOver", "1") } << "isTurnOver" << QVariant(true);
    QTest::newRow("isturnover lower case") << QJsonArray { row("isturnover", "1") } << "isTurnOver" << QVariant(false);
    QTest::newRow("IsGroup") << QJsonArray { row("IsGroup", "1") } << "isGroup" << QVariant(true);
    QTest::newRow("GroupFields") << QJsonArray { row("GroupFields", "IND_NAME;AREA") } << "groupFields"
                                 << QVariant(QString("IND_NAME;AREA"));
    QTest::newRow("groupfields lower case") << QJsonArray { row("groupfields", "X") } << "groupFields"
                                            << QVariant(QString());
    QTest::newRow("GroupFormatString") << QJsonArray { row("GroupFormatString", "{0} ({1})") }
                                       << "groupFormatString" << QVariant(QString("{0} ({1})"));
    QJsonObject bandsLevel = row("BANDSLEVEL", "3");
    bandsLevel.insert("BandsLevel", 4);
    QTest::newRow("bands level from its own member") << QJsonArray { bandsLevel } << "bandsLevel" << QVariant(4);
    QTest::newRow("bands level without member") << QJsonArray { row("BandsLevel", "3") } << "bandsLevel" << QVariant(0);
    QTest::newRow("no bands level row") << QJsonArray { row("IsCross", "1") } << "bandsLevel" << QVariant(1);
    QTest::newRow("vgridcolheaderfield any case")
        << QJsonArray { row("VGRIDCOLHEADERFIELD", "RPT_YEAR") } << "vGridColHeaderField" << QVariant(QString("RPT_YEAR"));
    QTest::newRow("has vertical header field")
        << QJsonArray { row("VGridColHeaderField", "RPT_YEAR") } << "hasVGridColHeaderField" << QVariant(true);
    QTest::newRow("empty vertical header field")
        << QJsonArray { row("VGridColHeaderField", "") } << "hasVGridColHeaderField" << QVariant(false);
    QTest::newRow("isShowFilter string 1") << QJsonArray { row("isShowFilter", "1") } << "isShowFilter" << QVariant(false);
    QTest::newRow("isShowFilter JSON true") << QJsonArray { row("isShowFilter", true) } << "isShowFilter" << QVariant(true);
    QTest::newRow("IsShowFilter other case") << QJsonArray { row("IsShowFilter", true) } << "isShowFilter" << QVariant(false);
    QTest::newRow("first test that holds decides")
        << QJsonArray { row("isShowChildIsOrder", "1") } << "isOrder" << QVariant(false);
    QTest::newRow("order before frozen count")
        << QJsonArray { row("isorderfrozencount", "5") } << "frozenCount" << QVariant(0);
    QTest::newRow("later row overwrites")
        << QJsonArray { row("IsCross", "1"), row("IsCross", "0") } << "isCross" << QVariant(false);
    QTest::newRow("element that is no object is skipped")
        << QJsonArray { 1, "IsCross", row("IsCross", "1") } << "isCross" << QVariant(true);
}

void tst_TFViewConfigTable::flags()
{
    QFETCH(QJsonArray, rows);
    QFETCH(QString, getter);
    QFETCH(QVariant, expected);

    TFViewConfigTable table;
    table.initWith(rows);
    QCOMPARE(flag(table, getter), expected);
}

void tst_TFViewConfigTable::flagsSurviveAnotherRead()
{
    // A table is filled once; a second read replaces the entries but keeps
    // the flags of the first.
    TFViewConfigTable table;
    table.initWith(QJsonArray { row("IsCross", "1"), row("SectorNum", "11"),
                                extendRow("Bands", jsonText(QJsonArray { QJsonObject { { "FieldName", "A" } } })) });
    QVERIFY(table.headerTable());
    QCOMPARE(table.entries().size(), 3);

    table.initWith(QJsonArray());
    QVERIFY(table.isCross());
    QCOMPARE(table.viewId(), 7);
    QVERIFY(table.entries().isEmpty());
    QVERIFY(!table.headerTable());
    QCOMPARE(table.sectorNum(), QString());

    table.initWith(QJsonValue("not an array"));
    QVERIFY(table.isCross());
    QVERIFY(table.entries().isEmpty());
}

void tst_TFViewConfigTable::viewId_data()
{
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<int>("viewId");

    QTest::newRow("no rows") << QJsonArray() << -1;
    QTest::newRow("first row") << QJsonArray { QJsonObject { { "obj_vw_id", 1001 } }, QJsonObject { { "obj_vw_id", 5 } } }
                               << 1001;
    QTest::newRow("0 in the first row stays")
        << QJsonArray { QJsonObject { { "obj_vw_id", 0 } }, QJsonObject { { "obj_vw_id", 5 } } } << 0;
    QTest::newRow("first row without an id")
        << QJsonArray { QJsonObject { { "prop_name", "IsCross" } }, QJsonObject { { "obj_vw_id", 5 } } } << 0;
    QTest::newRow("first element no object")
        << QJsonArray { "x", QJsonArray { 1 }, QJsonObject { { "obj_vw_id", 42 } } } << 42;
    QTest::newRow("id as text") << QJsonArray { QJsonObject { { "obj_vw_id", "1001" } } } << 0;
    QTest::newRow("id with a fraction") << QJsonArray { QJsonObject { { "obj_vw_id", 10.5 } } } << 0;
}

void tst_TFViewConfigTable::viewId()
{
    QFETCH(QJsonArray, rows);
    QFETCH(int, viewId);

    TFViewConfigTable table;
    table.initWith(rows);
    QCOMPARE(table.viewId(), viewId);
}

void tst_TFViewConfigTable::entries()
{
    const QJsonArray rows {
        QJsonObject { { "obj_vw_id", 3 }, { "prop_typ", "VIEW" }, { "prop_name", "ObjViewType" }, { "prop_val", "Table" } },
        42,
        extendRow("relatedView", "[1,2]"),
        QJsonObject { { "obj_vw_id", 4 }, { "prop_typ", "VIEW" }, { "prop_name", "Bands" }, { "prop_val", "[]" },
                      { "ext_prop_val", "[]" } },
        QJsonObject { { "prop_val", 12 } },
    };
    TFViewConfigTable table;
    table.initWith(rows);

    const QList<TFViewConfigTable::Entry> entries = table.entries();
    QCOMPARE(entries.size(), 4);
    QCOMPARE(entries.at(0).obj_vw_id, 3);
    QCOMPARE(entries.at(0).prop_typ, QString("VIEW"));
    QCOMPARE(entries.at(0).prop_name, QString("ObjViewType"));
    QCOMPARE(entries.at(0).prop_val, QString("Table"));
    QVERIFY(!entries.at(0).table);
    // An EXTEND row of a name without a table stays, without one.
    QCOMPARE(entries.at(1).prop_name, QString("relatedView"));
    QVERIFY(!entries.at(1).table);
    // Only an EXTEND row carries a table, whatever its name.
    QCOMPARE(entries.at(2).prop_name, QString("Bands"));
    QVERIFY(!entries.at(2).table);
    QVERIFY(!table.headerTable());
    // prop_val is text: a number reads as empty.
    QCOMPARE(entries.at(3).obj_vw_id, 0);
    QCOMPARE(entries.at(3).prop_val, QString());
}

void tst_TFViewConfigTable::extendTables_data()
{
    QTest::addColumn<QString>("propTyp");
    QTest::addColumn<QString>("propName");
    QTest::addColumn<int>("tableType");

    QTest::newRow("Bands") << "EXTEND" << "Bands" << 8;
    QTest::newRow("BANDS") << "EXTEND" << "BANDS" << 8;
    QTest::newRow("extend in lower case") << "extend" << "bands" << 8;
    QTest::newRow("childView") << "EXTEND" << "childView" << 9;
    QTest::newRow("CHILDVIEW") << "Extend" << "CHILDVIEW" << 9;
    QTest::newRow("filters") << "EXTEND" << "filters" << 10;
    QTest::newRow("Filters") << "EXTEND" << "Filters" << 10;
    QTest::newRow("ChartViewConfig") << "EXTEND" << "ChartViewConfig" << 11;
    QTest::newRow("chartviewconfig") << "EXTEND" << "chartviewconfig" << 11;
    QTest::newRow("relatedView has none") << "EXTEND" << "relatedView" << 0;
    QTest::newRow("name with a suffix has none") << "EXTEND" << "BandsEx" << 0;
    QTest::newRow("EXTENDED is no extend") << "EXTENDED" << "Bands" << 0;
}

void tst_TFViewConfigTable::extendTables()
{
    QFETCH(QString, propTyp);
    QFETCH(QString, propName);
    QFETCH(int, tableType);

    QJsonObject element = extendRow(propName, "[]");
    element.insert("prop_typ", propTyp);
    TFViewConfigTable table;
    table.initWith(QJsonArray { element });

    QCOMPARE(table.entries().size(), 1);
    const TFBaseJsonTable* made = table.entries().first().table;
    QCOMPARE(made ? made->tableType() : 0, tableType);
    QCOMPARE(table.headerTable() != nullptr, tableType == 8);
    QCOMPARE(table.childTable() != nullptr, tableType == 9);
    QCOMPARE(table.filterTable() != nullptr, tableType == 10);
    QCOMPARE(table.chartTable() != nullptr, tableType == 11);
    if (made)
        QVERIFY(!made->parent());
}

void tst_TFViewConfigTable::extendWithoutText()
{
    MessageLog log;
    TFViewConfigTable table;
    // Without ext_prop_val the table exists and is never read: no parse
    // error. A value that is no string is read, and fails to parse.
    table.initWith(QJsonArray { extendRow("filters", QJsonValue(QJsonValue::Undefined)),
                                extendRow("Bands", QJsonArray { QJsonObject { { "FieldName", "A" } } }) });
    QVERIFY(table.filterTable());
    QVERIFY(table.filterTable()->filters().isEmpty());
    QVERIFY(table.headerTable());
    QVERIFY(table.headerTable()->fields().isEmpty());
    const QStringList debug = log.messages(QtDebugMsg);
    QCOMPARE(debug.size(), 1);
    QVERIFY2(debug.first().contains("TFHeaderFieldConfigData::initWith"), qPrintable(debug.first()));
    QVERIFY2(debug.first().contains("Json parse error: "), qPrintable(debug.first()));
}

void tst_TFViewConfigTable::firstTableOfAKindWins()
{
    const QJsonArray first { QJsonObject { { "FieldName", "FIRST" } } };
    const QJsonArray second { QJsonObject { { "FieldName", "SECOND" } }, QJsonObject { { "FieldName", "MORE" } } };
    TFViewConfigTable table;
    table.initWith(QJsonArray { extendRow("relatedView", "x"), extendRow("Bands", jsonText(first)),
                                extendRow("Bands", jsonText(second)) });

    QVERIFY(table.headerTable());
    QVERIFY(table.headerTable()->hasUpperCaseKeys());
    QCOMPARE(table.headerTable()->fields().size(), 1);
    QCOMPARE(table.headerTable()->fields().first().fieldName, QString("FIRST"));
    // Both tables were read and are kept with their entries.
    auto* secondTable = static_cast<TFHeaderFieldConfigData*>(table.entries().at(2).table);
    QCOMPARE(secondTable->fields().size(), 2);
}

void tst_TFViewConfigTable::childViewsPassThrough()
{
    const QJsonArray children {
        QJsonObject { { "Caption", "个股行情" }, { "Propertyparams", "SECU_ID=SECU_ID" }, { "ObjShowName", "1002" } },
        QJsonObject { { "Caption", "无编号" }, { "ObjShowName", "" } },
        QJsonObject { { "Caption", "公告" }, { "ObjShowName", "1003" } },
    };
    TFViewConfigTable table;
    QSignalSpy spy(&table, &TFBaseJsonTable::sigJsonData);
    int entriesAtFirstSignal = -1;
    connect(&table, &TFBaseJsonTable::sigJsonData, this, [&] {
        if (entriesAtFirstSignal < 0)
            entriesAtFirstSignal = table.entries().size();
    });
    table.initWith(QJsonArray { row("IsCross", "1"), extendRow("childView", jsonText(children)),
                                extendRow("childView", jsonText(QJsonArray { QJsonObject { { "ObjShowName", "9" } } })) });

    // Every child table passes its announcements on, the second one too.
    QCOMPARE(spy.count(), 3);
    QCOMPARE(spy.at(0).at(0).toLongLong(), 1002);
    QCOMPARE(spy.at(0).at(1).toString(), QString("个股行情"));
    QCOMPARE(spy.at(1).at(0).toLongLong(), 1003);
    QCOMPARE(spy.at(2).at(0).toLongLong(), 9);
    // Announced while the rows were still being read.
    QCOMPARE(entriesAtFirstSignal, 1);
}

void tst_TFViewConfigTable::sectorNumbers_data()
{
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<QString>("sectorNum");
    QTest::addColumn<QString>("rootSectorNum");

    QTest::newRow("none") << QJsonArray { row("IsCross", "1") } << QString() << QString();
    QTest::newRow("both") << QJsonArray { row("SectorNum", "1001001"), row("RootSectorNum", "1001") }
                          << "1001001" << "1001";
    QTest::newRow("sector number in any case") << QJsonArray { row("SECTORNUM", "7"), row("sectornum", "8") }
                                               << "7" << QString();
    QTest::newRow("root in another case") << QJsonArray { row("rootsectornum", "1") } << QString() << QString();
    QTest::newRow("names with more letters") << QJsonArray { row("SectorNumX", "1"), row("RootSectorNums", "2") }
                                             << QString() << QString();
    QTest::newRow("first row wins") << QJsonArray { row("RootSectorNum", "1"), row("RootSectorNum", "2") }
                                    << QString() << "1";
    QTest::newRow("number value reads empty") << QJsonArray { row("SectorNum", 1001) } << QString() << QString();
}

void tst_TFViewConfigTable::sectorNumbers()
{
    QFETCH(QJsonArray, rows);
    QFETCH(QString, sectorNum);
    QFETCH(QString, rootSectorNum);

    TFViewConfigTable table;
    table.initWith(rows);
    QCOMPARE(table.sectorNum(), sectorNum);
    QCOMPARE(table.rootSectorNum(), rootSectorNum);
}

void tst_TFViewConfigTable::orderProperty_data()
{
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");

    auto order = [](const QJsonObject& object) { return QVariant::fromValue(object); };

    QTest::newRow("no order row") << QJsonArray { row("IsCross", "1") } << QString() << QVariant();
    QTest::newRow("empty order") << QJsonArray { row("Order", "") } << QString() << QVariant();
    QTest::newRow("one descending") << QJsonArray { row("Order", "TRD_AMT desc") } << "order"
                                    << order({ { "TRD_AMT", -1 } });
    QTest::newRow("two terms") << QJsonArray { row("order", "A asc,B DESC") } << "order"
                               << order({ { "A", 1 }, { "B", -1 } });
    QTest::newRow("DESC in any case") << QJsonArray { row("ORDER", "A DeSc") } << "order" << order({ { "A", -1 } });
    QTest::newRow("anything else ascends") << QJsonArray { row("Order", "A down") } << "order" << order({ { "A", 1 } });
    QTest::newRow("empty parts dropped") << QJsonArray { row("Order", ",,A  desc,, B asc ,") } << "order"
                                         << order({ { "A", -1 }, { "B", 1 } });
    QTest::newRow("field alone does not count") << QJsonArray { row("Order", "A") } << "order" << order({});
    QTest::newRow("three parts do not count") << QJsonArray { row("Order", "A desc x,B desc") } << "order"
                                              << order({ { "B", -1 } });
    QTest::newRow("later term of a field wins") << QJsonArray { row("Order", "A desc,A asc") } << "order"
                                                << order({ { "A", 1 } });
    QTest::newRow("first order row wins") << QJsonArray { row("Order", "A desc"), row("order", "B asc") } << "order"
                                          << order({ { "A", -1 } });
    QTest::newRow("first order row empty") << QJsonArray { row("Order", ""), row("order", "B asc") } << QString()
                                           << QVariant();
    QTest::newRow("OrderBy is another row") << QJsonArray { row("OrderBy", "A desc") } << QString() << QVariant();
}

void tst_TFViewConfigTable::orderProperty()
{
    QFETCH(QJsonArray, rows);
    QFETCH(QString, name);
    QFETCH(QVariant, value);

    TFViewConfigTable table;
    table.initWith(rows);
    const QPair<QString, QVariant> property = table.orderProperty();
    QCOMPARE(property.first, name);
    QCOMPARE(property.second.isNull(), value.isNull());
    if (!value.isNull()) {
        QCOMPARE(property.second.userType(), qMetaTypeId<QJsonObject>());
        QCOMPARE(property.second.value<QJsonObject>(), value.value<QJsonObject>());
    }
}

void tst_TFViewConfigTable::childViewParams()
{
    TFViewConfigTable withoutChildren;
    withoutChildren.initWith(QJsonArray { row("IsCross", "1") });
    QCOMPARE(withoutChildren.childViewParams(1002), QString());

    const QJsonArray children {
        QJsonObject { { "Propertyparams", "A=B" }, { "ObjShowName", "1002" } },
        QJsonObject { { "Propertyparams", "C=D" }, { "ObjShowName", "1002" } },
    };
    TFViewConfigTable table;
    table.initWith(QJsonArray { extendRow("childView", jsonText(children)) });
    QCOMPARE(table.childViewParams(1002), QString("A=B"));
    QCOMPARE(table.childViewParams(1003), QString());
}

QTEST_APPLESS_MAIN(tst_TFViewConfigTable)
#include "tst_tfviewconfigtable.moc"
