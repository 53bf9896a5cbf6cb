#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfobjectviewconfigtable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QtTest>

#include <limits>

class tst_TFHeaderFieldConfigData : public QObject
{
    Q_OBJECT

private slots:
    void readsEveryKey_data();
    void readsEveryKey();
    void otherFormIsNotRead();
    void visibility_data();
    void visibility();
    void truncation_data();
    void truncation();
    void badText_data();
    void badText();
    void secondReadReplaces();
    void mergeWith();
    void mergeWarnsForUnknownField();
    void mergeNeedsFieldNameInSettings();
    void mergeWithoutTable();
};

// One field with every key, in the form that the flag chooses.
static QJsonObject fullField(bool upper)
{
    auto k = [upper](const char* upperKey) {
        QString key = QString::fromLatin1(upperKey);
        if (!upper)
            key = key == "SN" ? "sn" : key.left(1).toLower() + key.mid(1);
        return key;
    };
    return QJsonObject {
        { k("ColumnType"), "BandedGridColumnWithUnit" },
        { k("OwnerBand"), "B_PRICE" },
        { k("FieldName"), "TRD_AMT" },
        { k("Url"), "view:?objvwid=2" },
        { k("ValueType"), "Decimal" },
        { k("UnboundExpression"), "[A]+[B]" },
        { k("UnitCategory"), 2 },
        { k("PrevUnitFactor"), 1 },
        { k("ShowUnitFactor"), 10000 },
        { k("ShowUnit"), "万元" },
        { k("CaptionShowType"), 3 },
        { k("Caption"), "成交额" },
        { k("Width"), 120 },
        { k("FormatString"), "n2" },
        { k("Visible"), true },
        { k("NoSort"), true },
        { k("CellStyleExpression"), "red" },
        { k("TextAlignment"), 3 },
        { k("ShowStatus"), 6 },
        { k("SN"), 12 },
        { k("Level"), 2 },
        { k("StatExpression"), "SUM" },
    };
}

void tst_TFHeaderFieldConfigData::readsEveryKey_data()
{
    QTest::addColumn<bool>("upper");
    QTest::newRow("upper-case keys") << true;
    QTest::newRow("lower-case keys") << false;
}

void tst_TFHeaderFieldConfigData::readsEveryKey()
{
    QFETCH(bool, upper);

    TFHeaderFieldConfigData table(nullptr, upper);
    table.initWith(jsonText(QJsonArray { fullField(upper) }));
    QCOMPARE(table.fields().size(), 1);
    const HeaderFieldInfo field = table.fields().first();
    QCOMPARE(field.id, 0);
    QCOMPARE(field.columnType, QString("BandedGridColumnWithUnit"));
    QCOMPARE(field.ownerBand, QString("B_PRICE"));
    QCOMPARE(field.fieldName, QString("TRD_AMT"));
    QCOMPARE(field.url, QString("view:?objvwid=2"));
    QCOMPARE(field.valueType, QString("Decimal"));
    QCOMPARE(field.unboundExpression, QString("[A]+[B]"));
    QCOMPARE(field.unitCategory, 2);
    QCOMPARE(field.prevUnitFactor, qint64(1));
    QCOMPARE(field.showUnitFactor, qint64(10000));
    QCOMPARE(field.showUnit, QString("万元"));
    QCOMPARE(field.captionShowType, 3);
    QCOMPARE(field.caption, QString("成交额"));
    QCOMPARE(field.width, 120);
    QCOMPARE(field.formatString, QString("n2"));
    QCOMPARE(field.visible, true);
    QCOMPARE(field.noSort, true);
    QCOMPARE(field.cellStyleExpression, QString("red"));
    QCOMPARE(field.textAlignment, 3);
    QCOMPARE(field.showStatus, 6);
    QCOMPARE(field.sn, 12);
    QCOMPARE(field.level, 2);
    QCOMPARE(field.statExpression, QString("SUM"));
}

void tst_TFHeaderFieldConfigData::otherFormIsNotRead()
{
    TFHeaderFieldConfigData upper(nullptr, true);
    upper.initWith(jsonText(QJsonArray { fullField(false) }));
    QCOMPARE(upper.fields().size(), 1);
    QCOMPARE(upper.fields().first().fieldName, QString());
    QCOMPARE(upper.fields().first().width, 0);

    TFHeaderFieldConfigData lower(nullptr, false);
    lower.initWith(jsonText(QJsonArray { fullField(true) }));
    QCOMPARE(lower.fields().size(), 1);
    QCOMPARE(lower.fields().first().fieldName, QString());
    QCOMPARE(lower.fields().first().sn, 0);
}

void tst_TFHeaderFieldConfigData::visibility_data()
{
    QTest::addColumn<bool>("upper");
    QTest::addColumn<QJsonValue>("visible");
    QTest::addColumn<QJsonValue>("showStatus");
    QTest::addColumn<bool>("expected");

    const QJsonValue absent(QJsonValue::Undefined);
    QTest::newRow("lower: status 2 hides a visible field") << false << QJsonValue(true) << QJsonValue(2) << false;
    QTest::newRow("lower: status 6 shows a hidden field") << false << QJsonValue(false) << QJsonValue(6) << true;
    QTest::newRow("lower: status 1 shows") << false << absent << QJsonValue(1) << true;
    QTest::newRow("lower: no status hides") << false << QJsonValue(true) << absent << false;
    QTest::newRow("lower: status as text hides") << false << QJsonValue(true) << QJsonValue("1") << false;
    QTest::newRow("upper: Visible false stands") << true << QJsonValue(false) << QJsonValue(1) << false;
    QTest::newRow("upper: Visible true stands") << true << QJsonValue(true) << QJsonValue(2) << true;
    QTest::newRow("upper: Visible absent") << true << absent << QJsonValue(6) << false;
    QTest::newRow("upper: Visible as text") << true << QJsonValue("true") << absent << false;
}

void tst_TFHeaderFieldConfigData::visibility()
{
    QFETCH(bool, upper);
    QFETCH(QJsonValue, visible);
    QFETCH(QJsonValue, showStatus);
    QFETCH(bool, expected);

    QJsonObject field { { upper ? "FieldName" : "fieldName", "F" } };
    if (!visible.isUndefined())
        field.insert(upper ? "Visible" : "visible", visible);
    if (!showStatus.isUndefined())
        field.insert(upper ? "ShowStatus" : "showStatus", showStatus);

    TFHeaderFieldConfigData table(nullptr, upper);
    table.initWith(jsonText(QJsonArray { field }));
    QCOMPARE(table.fields().size(), 1);
    QCOMPARE(table.fields().first().visible, expected);
}

void tst_TFHeaderFieldConfigData::truncation_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<qint64>("expected");

    const qint64 intMax = std::numeric_limits<int>::max();
    const qint64 intMin = std::numeric_limits<int>::min();
    QTest::newRow("Width 120.7") << "Width" << QJsonValue(120.7) << qint64(120);
    QTest::newRow("Width -120.7") << "Width" << QJsonValue(-120.7) << qint64(-120);
    QTest::newRow("Width -9") << "Width" << QJsonValue(-9) << qint64(-9);
    QTest::newRow("Width as text") << "Width" << QJsonValue("120") << qint64(0);
    QTest::newRow("Width beyond int") << "Width" << QJsonValue(1e12) << intMax;
    QTest::newRow("Width below int") << "Width" << QJsonValue(-1e12) << intMin;
    QTest::newRow("ShowUnitFactor 0.5") << "ShowUnitFactor" << QJsonValue(0.5) << qint64(0);
    QTest::newRow("ShowUnitFactor 1e8") << "ShowUnitFactor" << QJsonValue(1e8) << qint64(100000000);
    QTest::newRow("ShowUnitFactor 1e12") << "ShowUnitFactor" << QJsonValue(1e12) << qint64(1000000000000);
    QTest::newRow("ShowUnitFactor beyond int64") << "ShowUnitFactor" << QJsonValue(1e300)
                                                 << std::numeric_limits<qint64>::max();
    QTest::newRow("PrevUnitFactor 10000.9") << "PrevUnitFactor" << QJsonValue(10000.9) << qint64(10000);
    QTest::newRow("PrevUnitFactor below int64") << "PrevUnitFactor" << QJsonValue(-1e300)
                                                << std::numeric_limits<qint64>::min();
    // Other integers are read as JSON integers: a fraction gives 0.
    QTest::newRow("UnitCategory 2.5") << "UnitCategory" << QJsonValue(2.5) << qint64(0);
    QTest::newRow("TextAlignment 3") << "TextAlignment" << QJsonValue(3) << qint64(3);
}

void tst_TFHeaderFieldConfigData::truncation()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QFETCH(qint64, expected);

    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(jsonText(QJsonArray { QJsonObject { { key, value } } }));
    QCOMPARE(table.fields().size(), 1);
    const HeaderFieldInfo field = table.fields().first();
    qint64 actual = -1;
    if (key == "Width")
        actual = field.width;
    else if (key == "ShowUnitFactor")
        actual = field.showUnitFactor;
    else if (key == "PrevUnitFactor")
        actual = field.prevUnitFactor;
    else if (key == "UnitCategory")
        actual = field.unitCategory;
    else if (key == "TextAlignment")
        actual = field.textAlignment;
    QCOMPARE(actual, expected);
}

void tst_TFHeaderFieldConfigData::badText_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<int>("fieldCount");
    QTest::addColumn<bool>("parseError");

    QTest::newRow("empty array text") << QJsonValue("[]") << 0 << false;
    QTest::newRow("object text") << QJsonValue("{\"FieldName\":\"A\"}") << 0 << false;
    QTest::newRow("elements that are no objects") << QJsonValue("[1,\"A\",[],{\"FieldName\":\"A\"},null]") << 1 << false;
    QTest::newRow("empty text") << QJsonValue("") << 0 << true;
    QTest::newRow("broken text") << QJsonValue("[{\"FieldName\":") << 0 << true;
    QTest::newRow("scalar text") << QJsonValue("3") << 0 << true;
    QTest::newRow("array, not text") << QJsonValue(QJsonArray { QJsonObject { { "FieldName", "A" } } }) << 0 << true;
    QTest::newRow("null") << QJsonValue() << 0 << true;
}

void tst_TFHeaderFieldConfigData::badText()
{
    QFETCH(QJsonValue, value);
    QFETCH(int, fieldCount);
    QFETCH(bool, parseError);

    MessageLog log;
    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(value);
    QCOMPARE(table.fields().size(), fieldCount);

    const QStringList debug = log.messages(QtDebugMsg);
    QCOMPARE(log.count(), parseError ? 1 : 0);
    if (parseError) {
        QVERIFY2(QRegularExpression("^\\S.*TFHeaderFieldConfigData::initWith\\(.*\\) Json parse error: \\S")
                     .match(debug.first()).hasMatch(),
                 qPrintable(debug.first()));
    }
}

void tst_TFHeaderFieldConfigData::secondReadReplaces()
{
    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(jsonText(QJsonArray { QJsonObject { { "FieldName", "A" } }, QJsonObject { { "FieldName", "B" } } }));
    QCOMPARE(table.fields().size(), 2);
    table.initWith(jsonText(QJsonArray { QJsonObject { { "FieldName", "C" } } }));
    QCOMPARE(table.fields().size(), 1);
    QCOMPARE(table.fields().first().fieldName, QString("C"));
    MessageLog log;
    table.initWith("broken");
    QVERIFY(table.fields().isEmpty());
}

static QJsonObject fieldRecord(const QString& name, const QString& status, const QJsonObject& settings)
{
    return QJsonObject { { "obj_prop_name", name }, { "vw_sts", status }, { "ots_cfg", jsonText(settings) } };
}

void tst_TFHeaderFieldConfigData::mergeWith()
{
    QJsonObject bands = fullField(true);
    bands.insert("Visible", false);
    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(jsonText(QJsonArray { bands }));

    const QJsonObject settings {
        { "FieldName", "TRD_AMT" }, { "Caption", "另一个标题" }, { "ColumnType", "HyperLinkEdit" }, { "Url", "u" },
        { "Level", 9 }, { "SN", 99 }, { "ValueType", "String" }, { "Visible", false }, { "ShowUnit", "亿元" },
        { "FormatString", "n4" }, { "TextAlignment", 1 }, { "NoSort", false }, { "PrevUnitFactor", 100 },
        { "ShowUnitFactor", 100000000 }, { "CaptionShowType", 1 }, { "Width", 77.9 }, { "UnboundExpression", "" },
        { "UnitCategory", 5 }, { "CellStyleExpression", "blue" },
    };
    TFObjectViewConfigTable objectTable;
    objectTable.initWith(QJsonArray { fieldRecord("TRD_AMT", "1", settings) });

    MessageLog log;
    table.mergeWith(&objectTable);
    QCOMPARE(log.count(), 0);

    const HeaderFieldInfo field = table.fields().first();
    // Display settings come from the object table...
    QCOMPARE(field.cellStyleExpression, QString("blue"));
    QCOMPARE(field.columnType, QString("HyperLinkEdit"));
    QCOMPARE(field.formatString, QString("n4"));
    QCOMPARE(field.noSort, false);
    QCOMPARE(field.showUnit, QString("亿元"));
    QCOMPARE(field.showUnitFactor, qint64(100000000));
    QCOMPARE(field.prevUnitFactor, qint64(100));
    QCOMPARE(field.unitCategory, 5);
    QCOMPARE(field.textAlignment, 1);
    QCOMPARE(field.unboundExpression, QString());
    QCOMPARE(field.url, QString("u"));
    QCOMPARE(field.valueType, QString("String"));
    QCOMPARE(field.width, 77);
    QCOMPARE(field.captionShowType, 1);
    // ...which has no status or statistics of its own in its settings, so
    // those come across empty.
    QCOMPARE(field.showStatus, 0);
    QCOMPARE(field.statExpression, QString());
    // Visibility follows vw_sts, not the settings' Visible nor the band's.
    QCOMPARE(field.visible, true);
    // Identity and structure stay those of the band list.
    QCOMPARE(field.fieldName, QString("TRD_AMT"));
    QCOMPARE(field.caption, QString("成交额"));
    QCOMPARE(field.ownerBand, QString("B_PRICE"));
    QCOMPARE(field.level, 2);
    QCOMPARE(field.sn, 12);
}

void tst_TFHeaderFieldConfigData::mergeWarnsForUnknownField()
{
    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(jsonText(QJsonArray {
        QJsonObject { { "FieldName", "KNOWN" }, { "Visible", true }, { "Width", 50 } },
        QJsonObject { { "FieldName", "MISSING" }, { "Visible", true }, { "Width", 60 }, { "FormatString", "n1" } },
    }));
    TFObjectViewConfigTable objectTable;
    objectTable.initWith(QJsonArray { fieldRecord("KNOWN", "2", QJsonObject { { "FieldName", "KNOWN" }, { "Width", 40 } }) });

    MessageLog log;
    table.mergeWith(&objectTable);
    QCOMPARE(log.count(), 1);
    QCOMPARE(log.messages(QtWarningMsg), QStringList { "cant find field name: MISSING" });

    const QList<HeaderFieldInfo> fields = table.fields();
    QCOMPARE(fields.at(0).visible, false);   // vw_sts 2
    QCOMPARE(fields.at(0).width, 40);
    QCOMPARE(fields.at(1).visible, true);    // keeps its own
    QCOMPARE(fields.at(1).width, 60);
    QCOMPARE(fields.at(1).formatString, QString("n1"));
}

void tst_TFHeaderFieldConfigData::mergeNeedsFieldNameInSettings()
{
    // The record is found by obj_prop_name, but what counts as found is the
    // field name inside its display settings: without one the field keeps
    // its own settings.
    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(jsonText(QJsonArray { QJsonObject { { "FieldName", "A" }, { "Visible", true }, { "Width", 10 } } }));
    TFObjectViewConfigTable objectTable;
    objectTable.initWith(QJsonArray { fieldRecord("A", "2", QJsonObject { { "Width", 99 } }) });

    MessageLog log;
    table.mergeWith(&objectTable);
    QCOMPARE(log.messages(QtWarningMsg), QStringList { "cant find field name: A" });
    QCOMPARE(table.fields().first().width, 10);
    QCOMPARE(table.fields().first().visible, true);
}

void tst_TFHeaderFieldConfigData::mergeWithoutTable()
{
    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(jsonText(QJsonArray { QJsonObject { { "FieldName", "A" }, { "Visible", true } },
                                         QJsonObject { { "FieldName", "B" } } }));
    MessageLog log;
    table.mergeWith(nullptr);
    QCOMPARE(log.messages(QtWarningMsg), (QStringList { "cant find field name: A", "cant find field name: B" }));
    QCOMPARE(table.fields().first().visible, true);
}

QTEST_APPLESS_MAIN(tst_TFHeaderFieldConfigData)
#include "tst_tfheaderfieldconfigdata.moc"
