#include "mulittable/tfunboundexpression.h"

#include "expression/expressionparse.h"

#include <QtTest>

class tst_TFUnboundExpression : public QObject
{
    Q_OBJECT
private slots:
    void aggregates_data();
    void aggregates();
    void parserOnlyWhenNeeded();
};

void tst_TFUnboundExpression::aggregates_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QVariantMap>("row");
    QTest::addColumn<QVariant>("expected");

    const QVariantMap roe{ { "2019__ROE", 1.5 }, { "2020__ROE", 2 }, { "NAME", "abc" } };
    QTest::newRow("sum counts every key, text as 0") << "SUM([ROE])" << roe << QVariant(3.5);
    QTest::newRow("sum leaves out the bare suffix")
        << "SUM([ROE])" << QVariantMap{ { "ROE", 10 }, { "2019__ROE", 5 } } << QVariant(5.0);
    QTest::newRow("bare suffix in another case is left out")
        << "SUM([ROE])" << QVariantMap{ { "roe", 10 }, { "2019__ROE", 5 } } << QVariant(5.0);
    QTest::newRow("numeric text counts as its number")
        << "SUM([X])" << QVariantMap{ { "a", "2.5" }, { "b", 1 } } << QVariant(3.5);
    QTest::newRow("lower-case name matches") << "sum([ROE])" << roe << QVariant(3.5);
    QTest::newRow("without parentheses") << "SUM[ROE]" << roe << QVariant(3.5);
    QTest::newRow("text around the call") << "1+SUM([ROE])*2" << roe << QVariant(3.5);
    QTest::newRow("sum of nothing") << "SUM([ROE])" << QVariantMap{ { "ROE", 4 } } << QVariant(0.0);
    QTest::newRow("max keeps a negative first value")
        << "MAX([V])" << QVariantMap{ { "a__V", -5 }, { "b__V", -7 } } << QVariant(-5.0);
    QTest::newRow("max finds the largest")
        << "Max([V])" << QVariantMap{ { "a__V", -5 }, { "b__V", 7 }, { "c", 3 } } << QVariant(7.0);
    QTest::newRow("max of nothing is null") << "MAX([V])" << QVariantMap{ { "V", 1 } } << QVariant();
    QTest::newRow("geomean is the power of the count")
        << "GEOMEAN([G])" << QVariantMap{ { "x__G", 2 }, { "y__G", 3 } } << QVariant(36.0);
    QTest::newRow("geomean of nothing is null") << "GEOMEAN([G])" << QVariantMap{} << QVariant();
    QTest::newRow("average gives an empty cell")
        << "AVERAGE([ROE])" << roe << QVariant();
    QTest::newRow("avgerage goes to the parser whole") << "AVGERAGE([ROE])" << roe << QVariant();
    QTest::newRow("empty suffix is null") << "SUM([])" << roe << QVariant();
}

void tst_TFUnboundExpression::aggregates()
{
    QFETCH(QString, expression);
    QFETCH(QVariantMap, row);
    QFETCH(QVariant, expected);

    ExpressionParse parser;
    TFUnboundExpression unbound([&parser] { return &parser; });
    const QVariant result = unbound.evaluate(expression, row);
    QCOMPARE(result.isValid(), expected.isValid());
    if (expected.isValid())
        QCOMPARE(result.toDouble(), expected.toDouble());
}

void tst_TFUnboundExpression::parserOnlyWhenNeeded()
{
    int asked = 0;
    ExpressionParse parser;
    TFUnboundExpression unbound([&] { ++asked; return &parser; });
    const QVariantMap row{ { "a__V", 2 }, { "A", "4" } };
    QCOMPARE(unbound.evaluate("SUM([V])", row).toDouble(), 6.0);
    QCOMPARE(asked, 0);
    QCOMPARE(unbound.evaluate("[A]*2", row).toDouble(), 8.0);
    QCOMPARE(asked, 1);
    // The match is kept per formula; rows of other keys still count afresh.
    QCOMPARE(unbound.evaluate("SUM([V])", { { "a__V", 1 }, { "b__V", 2 } }).toDouble(), 3.0);
    QCOMPARE(unbound.evaluate("SUM([V])", { { "V", 1 } }).toDouble(), 0.0);

    TFUnboundExpression withoutParser([] { return static_cast<ExpressionParse*>(nullptr); });
    QVERIFY(!withoutParser.evaluate("[A]*2", row).isValid());
}

QTEST_MAIN(tst_TFUnboundExpression)
#include "tst_tfunboundexpression.moc"
