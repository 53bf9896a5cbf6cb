#include "tftoolsfunc.h"

#include <QtTest>

#include <limits>

// QVariant's operator== converts between types, so that 0 and "0" compare
// equal; a request body tells them apart, and so must these tests: the debug
// text names the type of every value, inside lists too.
static QString describe(const QVariant &value)
{
    QString text;
    QDebug(&text) << value;
    return text;
}

class tst_TFToolsFunc : public QObject
{
    Q_OBJECT
private slots:
    void fromText_data();
    void fromText();
    void fromVariant_data();
    void fromVariant();
};

static QVariant ints(std::initializer_list<qlonglong> values)
{
    QVariantList list;
    for (qlonglong v : values)
        list << QVariant(v);
    return list;
}

void tst_TFToolsFunc::fromText_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("datetime in brackets") << "2024-03-01" << "datetime" << QVariant(QStringLiteral("[2024-03-01]"));
    QTest::newRow("DATETIME has no case") << "20240301" << "DATETIME" << QVariant(QStringLiteral("[20240301]"));
    QTest::newRow("datetime empty") << "" << "DateTime" << QVariant(QStringLiteral("[]"));
    QTest::newRow("datetime is matched whole") << "x" << "datetime2" << QVariant(QStringLiteral("x"));
    QTest::newRow("date is not datetime") << "2024-03-01" << "date" << QVariant(QStringLiteral("2024-03-01"));

    QTest::newRow("decimal integer") << "123" << "decimal" << QVariant(qlonglong(123));
    QTest::newRow("decimal negative") << "-42" << "Decimal" << QVariant(qlonglong(-42));
    QTest::newRow("decimal 1.5 gives 0") << "1.5" << "decimal" << QVariant(qlonglong(0));
    QTest::newRow("decimal empty gives 0") << "" << "decimal" << QVariant(qlonglong(0));
    QTest::newRow("decimal base 10 only") << "0x10" << "decimal" << QVariant(qlonglong(0));
    QTest::newRow("decimal leading zero") << "010" << "decimal" << QVariant(qlonglong(10));
    QTest::newRow("decimal beyond 32 bits") << "5000000000" << "decimal" << QVariant(qlonglong(5000000000LL));
    QTest::newRow("decimal largest") << "9223372036854775807" << "decimal"
                                     << QVariant(std::numeric_limits<qlonglong>::max());
    QTest::newRow("decimal overflow gives 0") << "9223372036854775808" << "decimal" << QVariant(qlonglong(0));

    QTest::newRow("STRING") << "a,b" << "STRING" << QVariant(QStringLiteral("a,b"));

    QTest::newRow("intlist by commas") << "1,2,3" << "intlist" << ints({1, 2, 3});
    QTest::newRow("intlist two commas keep a 0") << "1,,3" << "intlist" << ints({1, 0, 3});
    QTest::newRow("intlist trailing comma") << "4," << "IntList" << ints({4, 0});
    QTest::newRow("intlist two semicolons keep a 0") << "7;;8" << "intlist" << ints({7, 0, 8});
    QTest::newRow("intlist comma wins over semicolon") << "1,2;3,4" << "intlist" << ints({1, 0, 4});
    QTest::newRow("intlist one element") << "9" << "intlist" << ints({9});
    QTest::newRow("intlist empty is one 0") << "" << "intlist" << ints({0});
    QTest::newRow("intlist unreadable part") << "a,5,1.5" << "intlist" << ints({0, 5, 0});
    QTest::newRow("intlist wide value") << "5000000000" << "intlist" << ints({5000000000LL});

    QTest::newRow("stringlist from text stays text") << "a,b" << "stringlist" << QVariant(QStringLiteral("a,b"));
    QTest::newRow("unknown type") << "x" << "money" << QVariant(QStringLiteral("x"));
    QTest::newRow("empty type") << "12" << "" << QVariant(QStringLiteral("12"));
}

void tst_TFToolsFunc::fromText()
{
    QFETCH(QString, source);
    QFETCH(QString, type);
    QFETCH(QVariant, expected);
    QCOMPARE(describe(TFToolsFunc::valueTrans(source, type)), describe(expected));
}

void tst_TFToolsFunc::fromVariant_data()
{
    QTest::addColumn<QVariant>("source");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("expected");

    const QVariant texts = QVariantList{QStringLiteral("1"), QStringLiteral("x")};
    const QVariant stringList = QStringList{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("intlist passes a list unchanged") << texts << "intlist" << texts;
    QTest::newRow("INTLIST passes text unsplit") << QVariant(QStringLiteral("3,4")) << "INTLIST"
                                                  << QVariant(QStringLiteral("3,4"));
    QTest::newRow("stringlist passes unchanged") << stringList << "stringlist" << stringList;
    QTest::newRow("StringList has no case") << QVariant(qlonglong(5)) << "StringList" << QVariant(qlonglong(5));

    QTest::newRow("int to decimal") << QVariant(5) << "decimal" << QVariant(qlonglong(5));
    QTest::newRow("double to decimal gives 0") << QVariant(1.5) << "decimal" << QVariant(qlonglong(0));
    QTest::newRow("invalid to decimal gives 0") << QVariant() << "decimal" << QVariant(qlonglong(0));
    QTest::newRow("date to datetime") << QVariant(QDate(2024, 3, 1)) << "datetime"
                                      << QVariant(QStringLiteral("[2024-03-01]"));
    QTest::newRow("number to string") << QVariant(qlonglong(600000)) << "string" << QVariant(QStringLiteral("600000"));
    QTest::newRow("unknown type gives text") << QVariant(true) << "bool" << QVariant(QStringLiteral("true"));
}

void tst_TFToolsFunc::fromVariant()
{
    QFETCH(QVariant, source);
    QFETCH(QString, type);
    QFETCH(QVariant, expected);
    QCOMPARE(describe(TFToolsFunc::valueTrans(source, type)), describe(expected));
}

QTEST_APPLESS_MAIN(tst_TFToolsFunc)
#include "tst_tftoolsfunc.moc"
