#include "jsonparser/tfchildviewjsontable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QSignalSpy>
#include <QtTest>

class tst_TFChildViewJsonTable : public QObject
{
    Q_OBJECT

private slots:
    void announcements_data();
    void announcements();
    void announcedWhileReading();
    void propertyParams();
    void badText_data();
    void badText();
};

void tst_TFChildViewJsonTable::announcements_data()
{
    QTest::addColumn<QJsonValue>("objShowName");
    QTest::addColumn<qint64>("objVwId");

    QTest::newRow("text of a number") << QJsonValue("1002") << qint64(1002);
    QTest::newRow("beyond 32 bits") << QJsonValue("9007199254740993") << qint64(9007199254740993LL);
    QTest::newRow("negative") << QJsonValue("-5") << qint64(-5);
    QTest::newRow("text 0") << QJsonValue("0") << qint64(0);
    QTest::newRow("no number") << QJsonValue("个股") << qint64(0);
    QTest::newRow("number with letters") << QJsonValue("12ab") << qint64(0);
    QTest::newRow("hexadecimal") << QJsonValue("0x10") << qint64(0);
    QTest::newRow("empty") << QJsonValue("") << qint64(0);
    // The key is read as a string first: a JSON number is no view.
    QTest::newRow("JSON number") << QJsonValue(1002) << qint64(0);
    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << qint64(0);
}

void tst_TFChildViewJsonTable::announcements()
{
    QFETCH(QJsonValue, objShowName);
    QFETCH(qint64, objVwId);

    QJsonObject child { { "Caption", "公司公告" }, { "Propertyparams", "SECU_ID=SECU_ID" } };
    if (!objShowName.isUndefined())
        child.insert("ObjShowName", objShowName);

    TFChildViewJsonTable table;
    QSignalSpy spy(&table, &TFBaseJsonTable::sigJsonData);
    table.initWith(jsonText(QJsonArray { child }));

    // Every child is kept; only one with a view is announced.
    QCOMPARE(table.children().size(), 1);
    const TFChildViewJsonTable::ChildView read = table.children().first();
    QCOMPARE(read.objVwId, objVwId);
    QCOMPARE(read.caption, QString("公司公告"));
    QCOMPARE(read.propertyParams, QString("SECU_ID=SECU_ID"));
    QCOMPARE(spy.count(), objVwId != 0 ? 1 : 0);
    if (objVwId != 0) {
        QCOMPARE(spy.first().at(0).value<qint64>(), objVwId);
        QCOMPARE(spy.first().at(1).toString(), QString("公司公告"));
    }
}

void tst_TFChildViewJsonTable::announcedWhileReading()
{
    const QJsonArray children {
        QJsonObject { { "Caption", "A" }, { "ObjShowName", "1" } },
        "not a child",
        QJsonObject { { "Caption", "none" } },
        QJsonObject { { "Caption", "B" }, { "ObjShowName", "2" } },
    };
    TFChildViewJsonTable table;
    QList<int> childrenAtSignal;
    connect(&table, &TFBaseJsonTable::sigJsonData, this,
            [&] { childrenAtSignal.append(table.children().size()); });
    table.initWith(jsonText(children));

    // Each announcement comes as its child is read, not after the list.
    QCOMPARE(childrenAtSignal, (QList<int> { 1, 3 }));
    QCOMPARE(table.children().size(), 3);
}

void tst_TFChildViewJsonTable::propertyParams()
{
    TFChildViewJsonTable table;
    table.initWith(jsonText(QJsonArray {
        QJsonObject { { "Propertyparams", "first" }, { "ObjShowName", "7" } },
        QJsonObject { { "Propertyparams", "second" }, { "ObjShowName", "7" } },
        QJsonObject { { "Propertyparams", "none" } },
        QJsonObject { { "PropertyParams", "wrong case" }, { "ObjShowName", "8" } },
    }));
    QCOMPARE(table.propertyParams(7), QString("first"));
    QCOMPARE(table.propertyParams(0), QString("none"));
    QCOMPARE(table.propertyParams(8), QString());
    QCOMPARE(table.propertyParams(9), QString());
}

void tst_TFChildViewJsonTable::badText_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<bool>("parseError");

    QTest::newRow("empty array text") << QJsonValue("[]") << false;
    QTest::newRow("object text") << QJsonValue("{\"ObjShowName\":\"1\"}") << false;
    QTest::newRow("array, not text") << QJsonValue(QJsonArray { QJsonObject { { "ObjShowName", "1" } } }) << true;
    QTest::newRow("broken text") << QJsonValue("[{\"ObjShowName\":\"1\"}") << true;
}

void tst_TFChildViewJsonTable::badText()
{
    QFETCH(QJsonValue, value);
    QFETCH(bool, parseError);

    TFChildViewJsonTable table;
    table.initWith(jsonText(QJsonArray { QJsonObject { { "ObjShowName", "5" } } }));
    QCOMPARE(table.children().size(), 1);

    MessageLog log;
    QSignalSpy spy(&table, &TFBaseJsonTable::sigJsonData);
    table.initWith(value);
    QVERIFY(table.children().isEmpty());
    QCOMPARE(spy.count(), 0);
    QCOMPARE(log.count(), parseError ? 1 : 0);
    if (parseError) {
        const QString line = log.messages(QtDebugMsg).value(0);
        QVERIFY2(line.contains(QRegularExpression("TFChildViewJsonTable::initWith\\(.*\\) Json parse error: \\S")),
                 qPrintable(line));
    }
}

QTEST_APPLESS_MAIN(tst_TFChildViewJsonTable)
#include "tst_tfchildviewjsontable.moc"
