#include "jsonparser/tfobjectpropertytable.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfobjectviewjsontable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QtTest>

class tst_TFObjectViewConfigTable : public QObject
{
    Q_OBJECT

private slots:
    void records();
    void notAnArray();
    void displaySettings();
    void displaySettingsQuietOnBadText_data();
    void displaySettingsQuietOnBadText();
    void headerFieldInfo();
    void isFieldVisible_data();
    void isFieldVisible();

    void objectViewName_data();
    void objectViewName();
    void objectViewNameKeptByEmptyArray();

    void objectProperties();
};

void tst_TFObjectViewConfigTable::records()
{
    const QJsonArray fields {
        QJsonObject { { "prop_typ", "FIELD" }, { "obj_vw_id", 1001 }, { "obj_prop_name", "SECU_CODE" },
                      { "obj_prop_cap", "代码" }, { "vw_sts", 1 }, { "vw_fmt", "F" }, { "dft_val", 2.5 },
                      { "prop_sn", 3 }, { "cnv_cfg", true }, { "unknown", "x" } },
        QJsonObject { { "obj_prop_name", "B" } },
        "no object",
        QJsonObject { { "obj_vw_id", QJsonValue() }, { "obj_prop_name", QJsonArray { 1 } } },
    };
    TFObjectViewConfigTable table;
    table.initWith(fields);

    const QList<TFObjectViewConfigTable::FieldRecord> records = table.records();
    QCOMPARE(records.size(), 4);
    // Every column is taken as text, numbers included.
    QCOMPARE(records.at(0).prop_typ, QString("FIELD"));
    QCOMPARE(records.at(0).obj_vw_id, QString("1001"));
    QCOMPARE(records.at(0).obj_prop_name, QString("SECU_CODE"));
    QCOMPARE(records.at(0).obj_prop_cap, QString("代码"));
    QCOMPARE(records.at(0).vw_sts, QString("1"));
    QCOMPARE(records.at(0).vw_fmt, QString("F"));
    QCOMPARE(records.at(0).dft_val, QString("2.5"));
    QCOMPARE(records.at(0).prop_sn, QString("3"));
    QCOMPARE(records.at(0).cnv_cfg, QString("true"));
    // A missing view id reads "-1"; other missing columns are empty.
    QCOMPARE(records.at(1).obj_vw_id, QString("-1"));
    QCOMPARE(records.at(1).vw_sts, QString());
    // An element that is no object still gives a record.
    QCOMPARE(records.at(2).obj_prop_name, QString());
    QCOMPARE(records.at(2).obj_vw_id, QString("-1"));
    // A present null is not missing.
    QCOMPARE(records.at(3).obj_vw_id, QString());
    QCOMPARE(records.at(3).obj_prop_name, QString());

    table.initWith(QJsonArray { QJsonObject { { "obj_prop_name", "C" } } });
    QCOMPARE(table.records().size(), 1);
}

void tst_TFObjectViewConfigTable::notAnArray()
{
    TFObjectViewConfigTable table;
    table.initWith(QJsonArray { QJsonObject { { "obj_prop_name", "A" }, { "vw_sts", "2" } } });
    QCOMPARE(table.records().size(), 1);
    table.initWith(QJsonObject { { "obj_prop_name", "A" } });
    QVERIFY(table.records().isEmpty());
    QVERIFY(table.isFieldVisible("A"));
}

void tst_TFObjectViewConfigTable::displaySettings()
{
    const QJsonObject settings {
        { "FieldName", "TRD_AMT" }, { "Caption", "成交额" }, { "ColumnType", "BandedGridColumnWithUnit" },
        { "Url", "view:?x" }, { "Level", 2 }, { "SN", 7 }, { "ValueType", "Decimal" }, { "Visible", true },
        { "ShowUnit", "万元" }, { "FormatString", "n2" }, { "TextAlignment", 3 }, { "NoSort", true },
        { "PrevUnitFactor", 1.9 }, { "ShowUnitFactor", 10000.5 }, { "CaptionShowType", 1 }, { "Width", 120.7 },
        { "UnboundExpression", "[A]*2" }, { "UnitCategory", 2 }, { "CellStyleExpression", "red" },
        // The column list's own keys are not part of the display settings.
        { "OwnerBand", "B" }, { "ShowStatus", 6 }, { "StatExpression", "SUM" },
    };
    TFObjectViewConfigTable table;
    table.initWith(QJsonArray { QJsonObject { { "obj_prop_name", "TRD_AMT" }, { "ots_cfg", jsonText(settings) } } });

    const HeaderFieldInfo info = table.headerFieldInfo("TRD_AMT");
    QCOMPARE(info.fieldName, QString("TRD_AMT"));
    QCOMPARE(info.caption, QString("成交额"));
    QCOMPARE(info.columnType, QString("BandedGridColumnWithUnit"));
    QCOMPARE(info.url, QString("view:?x"));
    QCOMPARE(info.level, 2);
    QCOMPARE(info.sn, 7);
    QCOMPARE(info.valueType, QString("Decimal"));
    QCOMPARE(info.visible, true);
    QCOMPARE(info.showUnit, QString("万元"));
    QCOMPARE(info.formatString, QString("n2"));
    QCOMPARE(info.textAlignment, 3);
    QCOMPARE(info.noSort, true);
    QCOMPARE(info.prevUnitFactor, qint64(1));
    QCOMPARE(info.showUnitFactor, qint64(10000));
    QCOMPARE(info.captionShowType, 1);
    QCOMPARE(info.width, 120);
    QCOMPARE(info.unboundExpression, QString("[A]*2"));
    QCOMPARE(info.unitCategory, 2);
    QCOMPARE(info.cellStyleExpression, QString("red"));
    QCOMPARE(info.ownerBand, QString());
    QCOMPARE(info.showStatus, 0);
    QCOMPARE(info.statExpression, QString());
}

void tst_TFObjectViewConfigTable::displaySettingsQuietOnBadText_data()
{
    QTest::addColumn<QJsonValue>("otsCfg");

    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("broken text") << QJsonValue("{\"FieldName\":");
    QTest::newRow("array text") << QJsonValue("[{\"FieldName\":\"A\"}]");
    QTest::newRow("object, not text") << QJsonValue(QJsonObject { { "FieldName", "A" } });
    QTest::newRow("number") << QJsonValue(5);
}

void tst_TFObjectViewConfigTable::displaySettingsQuietOnBadText()
{
    QFETCH(QJsonValue, otsCfg);

    QJsonObject field { { "obj_prop_name", "A" }, { "vw_sts", "1" } };
    if (!otsCfg.isUndefined())
        field.insert("ots_cfg", otsCfg);

    MessageLog log;
    TFObjectViewConfigTable table;
    table.initWith(QJsonArray { field });
    QCOMPARE(log.count(), 0);
    QCOMPARE(table.records().size(), 1);
    const HeaderFieldInfo info = table.headerFieldInfo("A");
    QCOMPARE(info.fieldName, QString());
    QCOMPARE(info.visible, false);
    QCOMPARE(info.width, 0);
}

void tst_TFObjectViewConfigTable::headerFieldInfo()
{
    TFObjectViewConfigTable table;
    table.initWith(QJsonArray {
        QJsonObject { { "obj_prop_name", "A" }, { "ots_cfg", jsonText(QJsonObject { { "FieldName", "A1" } }) } },
        QJsonObject { { "obj_prop_name", "A" }, { "ots_cfg", jsonText(QJsonObject { { "FieldName", "A2" } }) } },
        // The look-up is by obj_prop_name, not by the settings' own name.
        QJsonObject { { "obj_prop_name", "B" }, { "ots_cfg", jsonText(QJsonObject { { "FieldName", "C" } }) } },
    });
    QCOMPARE(table.headerFieldInfo("A").fieldName, QString("A1"));
    QCOMPARE(table.headerFieldInfo("B").fieldName, QString("C"));
    QCOMPARE(table.headerFieldInfo("C").fieldName, QString());
    QCOMPARE(table.headerFieldInfo("a").fieldName, QString());
}

void tst_TFObjectViewConfigTable::isFieldVisible_data()
{
    QTest::addColumn<QJsonArray>("fields");
    QTest::addColumn<QString>("fieldName");
    QTest::addColumn<bool>("visible");

    auto field = [](const QString& name, const QJsonValue& status) {
        QJsonObject object { { "obj_prop_name", name } };
        if (!status.isUndefined())
            object.insert("vw_sts", status);
        return object;
    };
    QTest::newRow("empty table") << QJsonArray() << "A" << true;
    QTest::newRow("unknown field") << QJsonArray { field("B", "2") } << "A" << true;
    QTest::newRow("status 1") << QJsonArray { field("A", "1") } << "A" << true;
    QTest::newRow("status 6") << QJsonArray { field("A", "6") } << "A" << true;
    QTest::newRow("status 2") << QJsonArray { field("A", "2") } << "A" << false;
    QTest::newRow("status 0") << QJsonArray { field("A", "0") } << "A" << false;
    QTest::newRow("no status") << QJsonArray { field("A", QJsonValue(QJsonValue::Undefined)) } << "A" << false;
    QTest::newRow("status as number 6") << QJsonArray { field("A", 6) } << "A" << true;
    QTest::newRow("status 01") << QJsonArray { field("A", "01") } << "A" << false;
    QTest::newRow("first record decides") << QJsonArray { field("A", "2"), field("A", "1") } << "A" << false;
    // The settings' own Visible has no say.
    QJsonObject hidden = field("A", "1");
    hidden.insert("ots_cfg", jsonText(QJsonObject { { "FieldName", "A" }, { "Visible", false } }));
    QTest::newRow("settings hidden, status 1") << QJsonArray { hidden } << "A" << true;
}

void tst_TFObjectViewConfigTable::isFieldVisible()
{
    QFETCH(QJsonArray, fields);
    QFETCH(QString, fieldName);
    QFETCH(bool, visible);

    TFObjectViewConfigTable table;
    table.initWith(fields);
    QCOMPARE(table.isFieldVisible(fieldName), visible);
}

void tst_TFObjectViewConfigTable::objectViewName_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("name");

    QTest::newRow("first element") << QJsonValue(QJsonArray { QJsonObject { { "obj_vw_name", "A股行情" } },
                                                            QJsonObject { { "obj_vw_name", "second" } } })
                                   << "A股行情";
    QTest::newRow("first element without name") << QJsonValue(QJsonArray { QJsonObject { { "obj_vw_id", 1 } },
                                                                          QJsonObject { { "obj_vw_name", "x" } } })
                                                << QString();
    QTest::newRow("first element no object") << QJsonValue(QJsonArray { 1, QJsonObject { { "obj_vw_name", "x" } } })
                                             << QString();
    QTest::newRow("name as number") << QJsonValue(QJsonArray { QJsonObject { { "obj_vw_name", 5 } } }) << QString();
}

void tst_TFObjectViewConfigTable::objectViewName()
{
    QFETCH(QJsonValue, value);
    QFETCH(QString, name);

    TFObjectViewJsonTable table;
    table.initWith(QJsonArray { QJsonObject { { "obj_vw_name", "old" } } });
    table.initWith(value);
    QCOMPARE(table.name(), name);
}

void tst_TFObjectViewConfigTable::objectViewNameKeptByEmptyArray()
{
    TFObjectViewJsonTable table;
    table.initWith(QJsonArray { QJsonObject { { "obj_vw_name", "净利润" } } });
    table.initWith(QJsonArray());
    QCOMPARE(table.name(), QString("净利润"));
    table.initWith(QJsonObject { { "obj_vw_name", "x" } });
    QCOMPARE(table.name(), QString("净利润"));
}

void tst_TFObjectViewConfigTable::objectProperties()
{
    const QJsonObject value { { "DATA", QJsonArray {
        QJsonObject { { "OBJ_ID", 38 }, { "REF_RELA", "r" }, { "PROP_SOUR", "s" }, { "PROP_TYP", "t" },
                      { "PROP_NAME", "SECU_ID" }, { "PROP_CAP", "证券" } },
        7,
        // Keys are recognised in any case, but the value is taken by the
        // upper-case name, so these read as defaults.
        QJsonObject { { "obj_id", 5 }, { "prop_name", "lower" }, { "Prop_Cap", "mixed" } },
    } } };
    TFObjectPropertyTable table;
    table.initWith(value);
    const QList<TFObjectPropertyTable::ObjectProperty> properties = table.properties();
    QCOMPARE(properties.size(), 2);
    QCOMPARE(properties.at(0).OBJ_ID, 38.0);
    QCOMPARE(properties.at(0).REF_RELA, QString("r"));
    QCOMPARE(properties.at(0).PROP_SOUR, QString("s"));
    QCOMPARE(properties.at(0).PROP_TYP, QString("t"));
    QCOMPARE(properties.at(0).PROP_NAME, QString("SECU_ID"));
    QCOMPARE(properties.at(0).PROP_CAP, QString("证券"));
    QCOMPARE(properties.at(1).OBJ_ID, 0.0);
    QCOMPARE(properties.at(1).PROP_NAME, QString());
    QCOMPARE(properties.at(1).PROP_CAP, QString());

    // The rows sit under "DATA" exactly; anything else reads nothing.
    table.initWith(QJsonObject { { "Data", value.value("DATA") } });
    QVERIFY(table.properties().isEmpty());
    table.initWith(value.value("DATA"));
    QVERIFY(table.properties().isEmpty());
}

QTEST_APPLESS_MAIN(tst_TFObjectViewConfigTable)
#include "tst_tfobjectviewconfigtable.moc"
