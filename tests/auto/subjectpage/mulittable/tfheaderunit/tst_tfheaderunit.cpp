#include "mulittable/tfheaderunit.h"

#include <QtTest>

class tst_TFHeaderUnit : public QObject
{
    Q_OBJECT
private slots:
    void wholeList();
    void categories_data();
    void categories();
    void lookups_data();
    void lookups();
};

void tst_TFHeaderUnit::wholeList()
{
    const QList<TFHeaderUnit>& units = headerUnits();
    QCOMPARE(units.size(), 43);
    QCOMPARE(units.first().unitCode, 1000);
    QCOMPARE(units.last().unitCode, 22000);
    QCOMPARE(units.last().unitName, QStringLiteral("元/%"));
    // Codes are unique, and most are the category times 1000 plus the
    // exponent; the exceptions are exactly the listed ones.
    QSet<int> codes;
    QStringList exceptions;
    for (const TFHeaderUnit& unit : units) {
        QVERIFY(!codes.contains(unit.unitCode));
        codes.insert(unit.unitCode);
        if (unit.unitCode != unit.unitCategory * 1000 + unit.exponent)
            exceptions << unit.unitName;
    }
    QCOMPARE(exceptions, (QStringList{ "%", "‰", "BP" }));
    for (int missing : { 4, 5, 9, 11, 12, 17 })
        QVERIFY(unitsOfCategory(missing).isEmpty());
}

void tst_TFHeaderUnit::categories_data()
{
    QTest::addColumn<int>("category");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QList<int>>("exponents");

    QTest::newRow("yuan") << 1 << QStringList{ "元", "百元", "千元", "万元", "百万元", "亿元", "十亿元" }
                          << QList<int>{ 0, 2, 3, 4, 6, 8, 9 };
    QTest::newRow("shares") << 2 << QStringList{ "股", "百股", "千股", "万股", "百万股", "亿股", "十亿股" }
                            << QList<int>{ 0, 2, 3, 4, 6, 8, 9 };
    QTest::newRow("sheets") << 3 << QStringList{ "张", "手（十张）", "百张", "万张", "亿张" }
                            << QList<int>{ 0, 1, 2, 4, 8 };
    QTest::newRow("ratios, four in order") << 7 << QStringList{ "原始值", "%", "‰", "BP" }
                                           << QList<int>{ 2, 1, -1, -2 };
    QTest::newRow("households") << 8 << QStringList{ "户", "百户", "万户", "亿户" } << QList<int>{ 0, 2, 4, 8 };
    QTest::newRow("second yuan") << 18 << QStringList{ "元" } << QList<int>{ 0 };
    QTest::newRow("none") << 0 << QStringList{} << QList<int>{};
}

void tst_TFHeaderUnit::categories()
{
    QFETCH(int, category);
    QFETCH(QStringList, names);
    QFETCH(QList<int>, exponents);

    QStringList gotNames;
    QList<int> gotExponents;
    for (const TFHeaderUnit& unit : unitsOfCategory(category)) {
        QCOMPARE(unit.unitCategory, category);
        gotNames << unit.unitName;
        gotExponents << unit.exponent;
    }
    QCOMPARE(gotNames, names);
    QCOMPARE(gotExponents, exponents);
}

void tst_TFHeaderUnit::lookups_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("codeOfName");   // the code the name resolves to
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("exponent");     // of the code

    QTest::newRow("yuan") << "元" << 1000 << 1000 << 0;
    QTest::newRow("second yuan: the name resolves to the first") << "元" << 1000 << 18000 << 0;
    QTest::newRow("ten thousand yuan") << "万元" << 1004 << 1004 << 4;
    QTest::newRow("hundred million shares") << "亿股" << 2008 << 2008 << 8;
    QTest::newRow("lot") << "手（十张）" << 3001 << 3001 << 1;
    QTest::newRow("raw value") << "原始值" << 7002 << 7002 << 2;
    QTest::newRow("percent") << "%" << 7003 << 7003 << 1;
    QTest::newRow("per mille") << "‰" << 7004 << 7004 << -1;
    QTest::newRow("basis point") << "BP" << 7005 << 7005 << -2;
    QTest::newRow("yuan per percent") << "元/%" << 22000 << 22000 << 0;
    QTest::newRow("unknown") << "公斤" << -1 << 1005 << -100;
    QTest::newRow("empty") << "" << -1 << 0 << -100;
}

void tst_TFHeaderUnit::lookups()
{
    QFETCH(QString, name);
    QFETCH(int, codeOfName);
    QFETCH(int, code);
    QFETCH(int, exponent);
    QCOMPARE(unitCodeOfName(name), codeOfName);
    QCOMPARE(unitNameOfCode(code), codeOfName < 0 ? QString() : name);
    QCOMPARE(unitExponentOfCode(code), exponent);
}

QTEST_APPLESS_MAIN(tst_TFHeaderUnit)
#include "tst_tfheaderunit.moc"
