#include "jsonparser/tffilterjsontable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QtTest>

class tst_TFFilterJsonTable : public QObject
{
    Q_OBJECT

private slots:
    void readsEveryKey();
    void defaults();
    void numbersAsText_data();
    void numbersAsText();
    void integers_data();
    void integers();
    void textKeysTakeOnlyStrings();
    void badText_data();
    void badText();
    void documentOrderAndReplacement();
};

static TFTableModelData::FilterData readOne(const QJsonObject& object)
{
    TFFilterJsonTable table;
    table.initWith(jsonText(QJsonArray { object }));
    if (table.filters().size() != 1)
        qFatal("expected one filter");
    return table.filters().first();
}

void tst_TFFilterJsonTable::readsEveryKey()
{
    const TFTableModelData::FilterData filter = readOne(QJsonObject {
        { "DefualtValue", "date'2024-01-31'" }, { "FieldName", "END_DT" }, { "ShowValue", "sv" }, { "Width", 120 },
        { "ParameterCategory", 1 }, { "BeginGroup", true }, { "Filter", "A" }, { "DataSource", "SECU_TYP" },
        { "Operator", ">=" }, { "NameValues", "A股=1;B股=2" }, { "UnitCategory", 2 }, { "ValueType", "datetime" },
        { "FilterCntrl", "fc" }, { "ClassName", "TFDateEdit" }, { "Value", "v" }, { "ImageIndex", 4 },
        { "Caption", "截止日期" }, { "ControlParameters", "w=80" }, { "DataSourceFilter", "(TYP == :TYP)" },
        { "DataSourceFilterParams", "{\"TYP\":2}" }, { "DataSourceName", "unit_list" },
    });
    QCOMPARE(filter.DefualtValue, QString("date'2024-01-31'"));
    QCOMPARE(filter.FieldName, QString("END_DT"));
    QCOMPARE(filter.ShowValue, QString("sv"));
    QCOMPARE(filter.Width, 120);
    QCOMPARE(filter.ParameterCategory, QString("1"));
    QCOMPARE(filter.BeginGroup, true);
    QCOMPARE(filter.Filter, QString("A"));
    QCOMPARE(filter.DataSource, QString("SECU_TYP"));
    QCOMPARE(filter.Operator, QString(">="));
    QCOMPARE(filter.NameValues, QString("A股=1;B股=2"));
    QCOMPARE(filter.UnitCategory, 2);
    QCOMPARE(filter.ValueType, QString("datetime"));
    QCOMPARE(filter.FilterCntrl, QString("fc"));
    QCOMPARE(filter.ClassName, QString("TFDateEdit"));
    QCOMPARE(filter.Value, QString("v"));
    QCOMPARE(filter.ImageIndex, QString("4"));
    QCOMPARE(filter.Caption, QString("截止日期"));
    QCOMPARE(filter.ControlParameters, QString("w=80"));
    QCOMPARE(filter.DataSourceFilter, QString("(TYP == :TYP)"));
    QCOMPARE(filter.DataSourceFilterParams, QString("{\"TYP\":2}"));
    QCOMPARE(filter.DataSourceName, QString("unit_list"));
}

void tst_TFFilterJsonTable::defaults()
{
    // The correctly spelled key is not the one the service uses.
    const TFTableModelData::FilterData filter = readOne(QJsonObject { { "DefaultValue", "1" } });
    QCOMPARE(filter.DefualtValue, QString());
    QCOMPARE(filter.FieldName, QString());
    QCOMPARE(filter.Width, 0);
    QCOMPARE(filter.ParameterCategory, QString("0"));
    QCOMPARE(filter.BeginGroup, false);
    QCOMPARE(filter.UnitCategory, 0);
    QCOMPARE(filter.ImageIndex, QString("0"));
    QCOMPARE(filter.DataSourceName, QString());
}

void tst_TFFilterJsonTable::numbersAsText_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("1") << QJsonValue(1) << "1";
    QTest::newRow("0") << QJsonValue(0) << "0";
    QTest::newRow("1.5") << QJsonValue(1.5) << "1.5";
    QTest::newRow("-2") << QJsonValue(-2) << "-2";
    QTest::newRow("seven digits") << QJsonValue(1234567) << "1.23457e+06";
    QTest::newRow("six digits") << QJsonValue(123456) << "123456";
    QTest::newRow("string 1") << QJsonValue("1") << "0";
    QTest::newRow("true") << QJsonValue(true) << "0";
    QTest::newRow("null") << QJsonValue() << "0";
    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << "0";
}

void tst_TFFilterJsonTable::numbersAsText()
{
    QFETCH(QJsonValue, value);
    QFETCH(QString, text);

    QJsonObject object { { "FieldName", "F" } };
    if (!value.isUndefined()) {
        object.insert("ParameterCategory", value);
        object.insert("ImageIndex", value);
    }
    const TFTableModelData::FilterData filter = readOne(object);
    QCOMPARE(filter.ParameterCategory, text);
    QCOMPARE(filter.ImageIndex, text);
}

void tst_TFFilterJsonTable::integers_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<int>("expected");

    QTest::newRow("UnitCategory 2.9") << "UnitCategory" << QJsonValue(2.9) << 2;
    QTest::newRow("UnitCategory -2.9") << "UnitCategory" << QJsonValue(-2.9) << -2;
    QTest::newRow("UnitCategory text") << "UnitCategory" << QJsonValue("2") << 0;
    QTest::newRow("UnitCategory huge") << "UnitCategory" << QJsonValue(1e40) << std::numeric_limits<int>::max();
    QTest::newRow("Width 120") << "Width" << QJsonValue(120) << 120;
    QTest::newRow("Width 120.5") << "Width" << QJsonValue(120.5) << 0;
    QTest::newRow("Width text") << "Width" << QJsonValue("120") << 0;
}

void tst_TFFilterJsonTable::integers()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QFETCH(int, expected);

    const TFTableModelData::FilterData filter = readOne(QJsonObject { { key, value } });
    QCOMPARE(key == "Width" ? filter.Width : filter.UnitCategory, expected);
}

void tst_TFFilterJsonTable::textKeysTakeOnlyStrings()
{
    const TFTableModelData::FilterData filter = readOne(QJsonObject {
        { "FieldName", 5 }, { "DefualtValue", 20240131 }, { "Operator", true }, { "BeginGroup", "true" },
        { "DataSourceFilterParams", QJsonObject { { "TYP", 2 } } } });
    QCOMPARE(filter.FieldName, QString());
    QCOMPARE(filter.DefualtValue, QString());
    QCOMPARE(filter.Operator, QString());
    QCOMPARE(filter.BeginGroup, false);
    QCOMPARE(filter.DataSourceFilterParams, QString());
}

void tst_TFFilterJsonTable::badText_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QStringList>("fieldNames");
    QTest::addColumn<bool>("parseError");

    const QJsonArray one { QJsonObject { { "FieldName", "A" } } };
    QTest::newRow("empty array text") << QJsonValue("[]") << QStringList() << false;
    QTest::newRow("object text") << QJsonValue("{\"FieldName\":\"A\"}") << QStringList() << false;
    QTest::newRow("elements that are no objects") << QJsonValue("[1,{\"FieldName\":\"A\"},\"B\",{\"FieldName\":\"C\"}]")
                                                  << QStringList { "A", "C" } << false;
    QTest::newRow("array, not text") << QJsonValue(one) << QStringList() << true;
    QTest::newRow("object, not text") << QJsonValue(QJsonObject { { "FieldName", "A" } }) << QStringList() << true;
    QTest::newRow("broken text") << QJsonValue("[{\"FieldName\":\"A\"") << QStringList() << true;
    QTest::newRow("trailing garbage") << QJsonValue(jsonText(one) + "x") << QStringList() << true;
}

void tst_TFFilterJsonTable::badText()
{
    QFETCH(QJsonValue, value);
    QFETCH(QStringList, fieldNames);
    QFETCH(bool, parseError);

    MessageLog log;
    TFFilterJsonTable table;
    table.initWith(value);
    QStringList names;
    for (const TFTableModelData::FilterData& filter : table.filters())
        names.append(filter.FieldName);
    QCOMPARE(names, fieldNames);
    QCOMPARE(log.count(), parseError ? 1 : 0);
    if (parseError) {
        const QString line = log.messages(QtDebugMsg).value(0);
        QVERIFY2(line.contains(QRegularExpression("TFFilterJsonTable::initWith\\(.*\\) Json parse error: \\S")),
                 qPrintable(line));
    }
}

void tst_TFFilterJsonTable::documentOrderAndReplacement()
{
    TFFilterJsonTable table;
    table.initWith(jsonText(QJsonArray { QJsonObject { { "FieldName", "C" } }, QJsonObject { { "FieldName", "A" } },
                                         QJsonObject { { "FieldName", "B" } } }));
    QCOMPARE(table.filters().size(), 3);
    QCOMPARE(table.filters().at(0).FieldName, QString("C"));
    QCOMPARE(table.filters().at(2).FieldName, QString("B"));

    MessageLog log;
    table.initWith("not json");
    QVERIFY(table.filters().isEmpty());
}

QTEST_APPLESS_MAIN(tst_TFFilterJsonTable)
#include "tst_tffilterjsontable.moc"
