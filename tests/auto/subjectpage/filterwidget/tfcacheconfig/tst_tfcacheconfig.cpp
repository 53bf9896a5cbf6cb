#include "filterwidget/tfcacheconfig.h"

#include <QJsonDocument>
#include <QtTest>

class tst_TFCacheConfig : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { TFCacheConfig::instance()->clear(); }
    void query_data();
    void query();
};

void tst_TFCacheConfig::query_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("found");     // VALUE|NAME|TYPE|TYPE_DESC|FILTER1

    const QByteArray areas = R"([{"VALUE":"HD","NAME":"华东","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"CN"},
                                 {"VALUE":"HK1","NAME":"香港","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"HK"},
                                 {"VALUE":"HB","NAME":"华北","TYPE":"AREA","TYPE_DESC":"地区","FILTER1":"CN"},
                                 {"VALUE":"HSI","NAME":"恒生指数","TYPE":"CST_NUM","TYPE_DESC":"成份","FILTER1":"HK"}])";
    QTest::newRow("type and filter, in list order") << areas << "AREA" << "CN" << QStringList{"HD|华东|AREA|地区|CN", "HB|华北|AREA|地区|CN"};
    QTest::newRow("empty filter takes the whole type") << areas << "AREA" << ""
        << QStringList{"HD|华东|AREA|地区|CN", "HK1|香港|AREA|地区|HK", "HB|华北|AREA|地区|CN"};
    QTest::newRow("type compared exactly") << areas << "area" << "" << QStringList();
    QTest::newRow("numbers in general format, six digits")
        << QByteArray(R"([{"VALUE":1234567,"NAME":"n","TYPE":7,"TYPE_DESC":"d","FILTER1":0.5},
                          {"VALUE":10000,"NAME":"m","TYPE":7,"FILTER1":0.5}])")
        << "7" << "0.5" << QStringList{"1.23457e+06|n|7|d|0.5", "10000|m|7||0.5"};
    QTest::newRow("an object is no table") << QByteArray(R"({"VALUE":"HD","TYPE":"AREA"})") << "AREA" << "" << QStringList();
    QTest::newRow("empty array") << QByteArray("[]") << "AREA" << "" << QStringList();
}

void tst_TFCacheConfig::query()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, type);
    QFETCH(QString, filter);
    QFETCH(QStringList, found);

    // What a previous page left goes when the table is filled again.
    TFCacheConfig::instance()->initWith(QJsonDocument::fromJson(R"([{"VALUE":"X","TYPE":"AREA"}])").array());
    const QJsonDocument document = QJsonDocument::fromJson(data);
    TFCacheConfig::instance()->initWith(document.isArray() ? QJsonValue(document.array())
                                                           : QJsonValue(document.object()));
    QStringList texts;
    for (const TFCacheConfig::CodeRecord &r : TFCacheConfig::instance()->query(type, filter))
        texts.append(QStringList{r.VALUE, r.NAME, r.TYPE, r.TYPE_DESC, r.FILTER1}.join('|'));
    QCOMPARE(texts, found);
}

QTEST_APPLESS_MAIN(tst_TFCacheConfig)
#include "tst_tfcacheconfig.moc"
