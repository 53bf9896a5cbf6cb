#include "filterwidget/tffilterfactory.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class tst_TFFilterFactory : public QObject
{
    Q_OBJECT

private slots:
    void links_data();
    void links();
    void orderText_data();
    void orderText();
};

void tst_TFFilterFactory::links_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QString>("links");     // target<sourceField, "*" when from the data source

    QTest::newRow("pieces cut behind the first dot") << "A.SECU_ID=数据源.SECU_ID;A.COM_ID=B.COMPANY" << QStringList()
        << "SECU_ID<SECU_ID* COMPANY<COM_ID";
    QTest::newRow("left piece named by a field stays whole") << "A.ID=数据源.X.Y" << QStringList{"A.ID"} << "X.Y<A.ID*";
    QTest::newRow("no dot and no field keeps the piece") << "SECU_ID=SECU" << QStringList{"OTHER"} << "SECU<SECU_ID";
    QTest::newRow("data source word inside the piece") << "a=X数据源.F" << QStringList() << "F<a*";
    QTest::newRow("pairs of other than two pieces are skipped") << "A=B=C;;=X;Y=;A.F=B.G" << QStringList() << "G<F";
    QTest::newRow("nothing behind the dot is skipped") << "A.=B.G;A.F=B." << QStringList() << "";
    QTest::newRow("repeated target: the first wins") << "A.F=B.T;A.G=B.T" << QStringList() << "T<F T<G";
    QTest::newRow("empty text") << "" << QStringList() << "";
}

void tst_TFFilterFactory::links()
{
    QFETCH(QString, text);
    QFETCH(QStringList, fields);
    QFETCH(QString, links);

    TFFilterFactory factory;
    factory.parse(QStringLiteral("OLD=OLD"), QStringList());
    factory.parse(text, fields);
    QStringList found;
    for (const TFFilterFactory::Link &link : factory.links())
        found.append(link.targetField + QLatin1Char('<') + link.sourceField + (link.isDataSource ? "*" : ""));
    QCOMPARE(found.join(QLatin1Char(' ')), links);
    QVERIFY(factory.target(QStringLiteral("OLD")).isNull());
    if (!factory.links().isEmpty())
        QCOMPARE(factory.target(factory.links().first().targetField), factory.links().first().sourceField);

    // The cells of a row name the fields just as well.
    RowData row;
    for (const QString &field : fields) {
        TFTableModelData::tagCellValue cell;
        cell.fieldName = field;
        row.append(cell);
    }
    TFFilterFactory fromRow;
    fromRow.parse(text, row);
    QCOMPARE(fromRow.links().size(), factory.links().size());
}

void tst_TFFilterFactory::orderText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("order");

    QTest::newRow("empty") << "" << "" << "";
    QTest::newRow("two terms") << "F1 DESC,F2 ASC" << "order" << R"({"F1":-1,"F2":1})";
    QTest::newRow("direction without case") << "F1 desc" << "order" << R"({"F1":-1})";
    QTest::newRow("anything but DESC ascends") << "F1 down" << "order" << R"({"F1":1})";
    QTest::newRow("terms of one or three words skipped") << "F1,F2 ASC X, ,F3  DESC" << "order" << R"({"F3":-1})";
    QTest::newRow("nothing usable is an empty order") << "," << "order" << "{}";
}

void tst_TFFilterFactory::orderText()
{
    QFETCH(QString, text);
    QFETCH(QString, key);
    QFETCH(QString, order);

    const FilterParam::DataSourceFilter filter = TFFilterFactory::orderFilter(text);
    QCOMPARE(filter.key, key);
    const QString json = filter.value.isValid()
        ? QString::fromUtf8(QJsonDocument(filter.value.toJsonObject()).toJson(QJsonDocument::Compact))
        : QString();
    QCOMPARE(json, order);
}

QTEST_MAIN(tst_TFFilterFactory)
#include "tst_tffilterfactory.moc"
