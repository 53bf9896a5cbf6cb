#include <QJSEngine>
#include <QtTest>

#include "expression/expressionparse.h"
#include "expression/scriptwatchdog.h"
#include "expression/tfcustommath.h"

using Row = QMap<QString, QVariant>;
Q_DECLARE_METATYPE(Row)

// "A=1;B=2.5": the fields of a row, as the service sends them (text).
static Row fields(const QString &text)
{
    Row row;
    for (const QString &pair : text.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        row.insert(pair.section(QLatin1Char('='), 0, 0), pair.section(QLatin1Char('='), 1, -1));
    return row;
}

// What the script engine makes of a glued text, judged the way the parser
// judges its own result: a number-like variant or an invalid one.
static QVariant engineReading(const QString &glued)
{
    QJSEngine engine;
    const QVariant value = engine.evaluate(glued).toVariant();
    bool ok = false;
    value.toDouble(&ok);
    const QString text = value.toString();
    if (!ok || text == QLatin1String("nan") || text == QLatin1String("inf") || text == QLatin1String("-inf"))
        return QVariant();
    return value;
}

static QVariant evaluate(ExpressionParse &parser, const QString &formula, const Row &row = Row())
{
    QVariant result(QStringLiteral("untouched"));
    parser.parse(formula, result, row);
    return result;
}

class tst_ExpressionParse : public QObject
{
    Q_OBJECT

    static void setToday(const QDate &date)
    {
        const QDateTime now(date, QTime(9, 30));
        TFCustomMath::instance()->setClock([now] { return now; });
    }

private slots:
    void init() { setToday(QDate(2026, 11, 22)); }
    void cleanup()
    {
        TFCustomMath::instance()->setClock({});
        ScriptWatchdog::setTimeLimit(m_limit);
    }
    void parse_data();
    void parse();
    void gluedText_data();
    void gluedText();
    void manyRowsAndFormulas();
    void dateInArithmetic();
    void lastCharacterCarriesOver();
    void runawayScriptIsInterrupted();
    void evalFunction_data();
    void evalFunction();
    void stringOperations_data();
    void stringOperations();

private:
    const std::chrono::milliseconds m_limit = ScriptWatchdog::timeLimit();
};

void tst_ExpressionParse::parse_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<Row>("row");
    QTest::addColumn<QVariant>("expected");   // invalid: the formula fails

    const QVariant fails;
    const Row ab = fields("A=1;B=2.5");
    QTest::newRow("division by zero") << "[A]/[B]" << fields("A=1;B=0") << fails;
    QTest::newRow("leading equals sign") << "[A]" << fields("A==5") << QVariant(5);
    QTest::newRow("thousands separator reads as 0") << "[A]+1" << fields("A=1,000") << QVariant(1);
    QTest::newRow("exponent text reads as 0") << "[A]+1" << fields("A=1e5") << QVariant(1);
    QTest::newRow("beyond 32 bits reads as 0") << "[A]+1" << fields("A=3000000000") << QVariant(1);
    QTest::newRow("field in a merged call, six places") << "1+todecimal([B])" << fields("B=0.1234567") << QVariant(1.123457);
    QTest::newRow("true reads as 0") << "[A]+2" << Row{{"A", true}} << QVariant(2);
    QTest::newRow("precedence is the engine's") << "1+[A]*2" << fields("A=3") << QVariant(7);
    QTest::newRow("negative value behind plus") << "[A]+[B]" << fields("A=1;B=-5") << QVariant(-4);
    // Spliced as text, "1-" and "-5" meet as "1--5", which the engine refuses.
    QTest::newRow("negative value behind minus") << "[A]-[B]" << fields("A=1;B=-5") << fails;
    QTest::newRow("unary minus") << "-[A]" << fields("A=5") << QVariant(-5);
    QTest::newRow("unary minus before a negative value") << "-[A]" << fields("A=-5") << fails;
    QTest::newRow("two fields side by side glue into one number") << "[A][B]" << fields("A=1;B=2") << QVariant(12);
    QTest::newRow("missing field is a bare word") << "[A]+[C]" << ab << fails;
    QTest::newRow("key compared exactly") << "[a]+1" << ab << fails;
    QTest::newRow("unclosed bracket") << "1+[A" << ab << QVariant(2);
    QTest::newRow("caption with filter names") << QString::fromUtf8("[年份]+1") << fields(QString::fromUtf8("年份=2019"))
                                               << QVariant(2020);
    QTest::newRow("number with a trailing dot") << "1.+1" << Row() << QVariant(2);
    QTest::newRow("call at the start") << "todecimal(3.5)*2" << Row() << QVariant(7);
    QTest::newRow("field inside a merged call") << "1+todecimal([B])" << ab << QVariant(3.5);
    // A call at the start takes its brackets along unread: todecimal gets "[B]".
    QTest::newRow("field inside a call at the start") << "todecimal([B])*2" << ab << QVariant(0);
    QTest::newRow("year of today plus one") << "ofyear()+1" << Row() << QVariant(2027);
    QTest::newRow("unknown function becomes empty") << "round(1.5)+2" << Row() << QVariant(2);
    QTest::newRow("unknown function behind an operator") << "2+round(1.5)" << Row() << fails;
    // "2025-12-31" reaches the engine as arithmetic.
    QTest::newRow("annual report date as arithmetic") << "getlastedyearreport()" << Row() << QVariant(2025 - 12 - 31);
    // The first ")" ends a merged call; the second is left over.
    QTest::newRow("merged call ends at the first parenthesis") << "1+todecimal((2))" << Row() << fails;
    QTest::newRow("call at the start nests") << "todecimal((2))+1" << Row() << QVariant(1);
    QTest::newRow("deeply nested calls")
        << QStringLiteral("todecimal(").repeated(2000) + QStringLiteral("7") + QString(2000, QLatin1Char(')')) << Row()
        << QVariant(7);
    QTest::newRow("deeply nested parentheses")
        << QString(1000, QLatin1Char('(')) + QStringLiteral("[A]") + QString(1000, QLatin1Char(')')) << fields("A=3")
        << QVariant(3);

    QTest::newRow("empty") << "" << Row() << fails;
    QTest::newRow("dangling operator") << "1+" << Row() << fails;
    QTest::newRow("unopened parenthesis") << "1+2)" << Row() << fails;
    QTest::newRow("two dots") << "1.2.3" << Row() << fails;
    QTest::newRow("dollar call") << "$today()" << Row() << fails;
    QTest::newRow("comparison") << "[A]<2" << fields("A=5") << fails;
    QTest::newRow("assignment") << "[A]=2" << fields("A=5") << fails;
    QTest::newRow("line feed") << "1\n+2" << Row() << fails;
    QTest::newRow("empty field") << "[]" << Row() << fails;
    QTest::newRow("field then parenthesis") << "[A](" << fields("A=5") << fails;
    QTest::newRow("deep nesting") << QString(5000, QLatin1Char('(')) + QLatin1Char('1') << Row() << fails;
    QTest::newRow("deep balanced nesting")
        << QString(5000, QLatin1Char('(')) + QLatin1Char('x') + QString(5000, QLatin1Char(')')) << Row() << fails;
    QTest::newRow("list result") << "getyearsbetrweemdate()" << Row() << fails;
    QTest::newRow("text function with no date") << "today(1)" << Row() << fails;
}

// Whatever the formula, the parser stays fit for the next one.
void tst_ExpressionParse::parse()
{
    QFETCH(QString, formula);
    QFETCH(Row, row);
    QFETCH(QVariant, expected);

    ExpressionParse parser;
    const QVariant result = evaluate(parser, formula, row);
    QCOMPARE(result.isValid(), expected.isValid());
    if (expected.isValid())
        QCOMPARE(result.toDouble(), expected.toDouble());
    QCOMPARE(evaluate(parser, QStringLiteral("([A]+1)"), fields("A=5")), QVariant(6));
}

// Whatever road the parser takes, the answer is the script engine's answer
// for the glued text, type included.
void tst_ExpressionParse::gluedText_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<Row>("row");
    QTest::addColumn<QString>("glued");

    QTest::newRow("integer and fixed") << "[A]+[B]" << fields("A=1;B=2.5") << "1+2.500000";
    QTest::newRow("rounded to six places") << "[A]/[B]" << fields("A=1;B=0.0000001") << "1/0.000000";
    QTest::newRow("double variant") << "[A]/3" << Row{{"A", 1.0 / 3.0}} << "0.333333/3";
    QTest::newRow("negative remainder") << "-[A]%[B]" << fields("A=7;B=-3") << "-7%-3";
    QTest::newRow("plus meets minus") << "[A]+-[B]" << fields("A=1;B=-5") << "1+--5";
    QTest::newRow("large fixed value") << "[A]-1" << fields("A=123456789012345.5") << "123456789012345.500000-1";
    QTest::newRow("infinite fixed value") << "[A]*0" << fields("A=1.5e400") << "inf*0";
    QTest::newRow("negative zero") << "1/[A]" << fields("A=-0.0000001") << "1/-0.000000";
    QTest::newRow("merged call") << "[A]*todecimal(2.5)" << fields("A=2") << "2*2.5";
    QTest::newRow("year of today") << "[A]+ofyear()" << fields("A=1") << "1+2026";
    QTest::newRow("negative call result behind minus") << "[A]-todecimal(-3)" << fields("A=1") << "1--3";
    QTest::newRow("date call result") << "2*addyears(1)" << Row() << "2*2027-11-22";
    QTest::newRow("unknown call") << "[A]+round(1)" << fields("A=1") << "1+";
    QTest::newRow("shortest double text") << "[A]*todecimal(0.30000000000000004)" << fields("A=3")
                                          << "3*0.30000000000000004";
    QTest::newRow("exponent call result") << "[A]*todecimal(1e21)" << fields("A=2") << "2*1e+21";
}

void tst_ExpressionParse::gluedText()
{
    QFETCH(QString, formula);
    QFETCH(Row, row);
    QFETCH(QString, glued);

    ExpressionParse parser;
    const QVariant expected = engineReading(glued);
    const QVariant result = evaluate(parser, formula, row);
    QCOMPARE(result.userType(), expected.userType());
    QCOMPARE(result, expected);
}

// One parser for all rows of a table: each row sees its own values. Captions
// bring many formulas to one parser; each keeps its own answer, also after
// the parser has let go of formulas it saw long ago.
void tst_ExpressionParse::manyRowsAndFormulas()
{
    ExpressionParse parser;
    for (int i = 0; i <= 100; ++i) {
        const Row row{{"OPEN", QString::number(i)}, {"CLOSE", QString::number(i + 0.25, 'f', 2)}};
        QCOMPARE(evaluate(parser, QStringLiteral("([CLOSE]-[OPEN])*4+[OPEN]"), row).toDouble(), 1.0 + i);
    }
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 600; ++i)
            QCOMPARE(evaluate(parser, QStringLiteral("([A]-%1)*2").arg(i), fields("A=1000")).toDouble(), (1000.0 - i) * 2);
    }
}

// "2*addyears(1)" hands the engine "2*2027-11-22": a subtraction. The engine
// of the toolkit refuses numbers with a leading zero, so a month or day
// below ten makes the whole formula fail.
void tst_ExpressionParse::dateInArithmetic()
{
    ExpressionParse parser;
    QCOMPARE(evaluate(parser, QStringLiteral("2*addyears(1)")).toDouble(), 2.0 * 2027 - 11 - 22);
    setToday(QDate(2026, 4, 30));
    QCOMPARE(evaluate(parser, QStringLiteral("2*addyears(1)")), QVariant());
}

// A parser is reused; a word at the very start of a formula is judged by
// the last character of the formula before.
void tst_ExpressionParse::lastCharacterCarriesOver()
{
    ExpressionParse parser;
    const QString nested = QStringLiteral("todecimal((2))+1");
    QCOMPARE(evaluate(parser, nested).toDouble(), 1.0);
    QCOMPARE(evaluate(parser, QStringLiteral("1+1")).toDouble(), 2.0);
    // Now "todecimal" is a plain word, merged up to the first ")".
    QCOMPARE(evaluate(parser, nested), QVariant());
    QCOMPARE(evaluate(parser, nested), QVariant());
    // A formula that ends on a splitter gives the start back.
    QCOMPARE(evaluate(parser, QStringLiteral("(1)")).toDouble(), 1.0);
    QCOMPARE(evaluate(parser, nested).toDouble(), 1.0);
}

// Comments let a loop past the reader ("while" is a plain word here, since
// a slash follows it). The watchdog stops it, and the next formula is fine.
void tst_ExpressionParse::runawayScriptIsInterrupted()
{
    ScriptWatchdog::setTimeLimit(std::chrono::milliseconds(200));
    ExpressionParse parser;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(evaluate(parser, QStringLiteral("1;while/**/(1)1")), QVariant());
    QVERIFY(timer.elapsed() < 10000);
    QCOMPARE(evaluate(parser, QStringLiteral("[A]*2"), fields("A=21")), QVariant(42));
}

void tst_ExpressionParse::evalFunction_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("expected");

    QTest::newRow("today") << "$today()" << "2026-11-22";
    QTest::newRow("without dollar") << "today()" << "2026-11-22";
    QTest::newRow("upper case") << "$TODAY()" << "2026-11-22";
    QTest::newRow("empty argument text is no argument") << "$adddays()" << "";
    QTest::newRow("word argument") << "adddays(x)" << "";
    QTest::newRow("quarter end as date text") << "$fndgetlatestquarterlyreport()" << "2026-09-30";
    QTest::newRow("number") << "$todecimal(2.5)" << "2.5";
    // Arguments are never split at ",": one text that holds no date.
    QTest::newRow("list function gets one argument") << "$ofbetweenyear(1,2)" << "";
    QTest::newRow("nested date into year") << "ofyear(addyears(-3))" << "2023";
    QTest::newRow("nested date into number") << "todecimal(adddays(1))" << "0";
    QTest::newRow("unknown") << "$round(1.5)" << "";
    QTest::newRow("no parenthesis") << "today" << "";
}

void tst_ExpressionParse::evalFunction()
{
    QFETCH(QString, call);
    QFETCH(QString, expected);
    ExpressionParse parser;
    QCOMPARE(parser.evalFunction(call), expected);
}

void tst_ExpressionParse::stringOperations_data()
{
    QTest::addColumn<QString>("op");
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<QString>("expected");

    QTest::newRow("add") << "+" << "1" << "2.5" << "3.5";
    QTest::newRow("multiply") << "*" << "1.5" << "2" << "3";
    QTest::newRow("general format") << "*" << "10000000" << "1" << "1e+07";
    QTest::newRow("word reads as 0") << "-" << "x" << "1" << "-1";
    QTest::newRow("divide") << "/" << "1" << "4" << "0.25";
    QTest::newRow("divide by zero") << "/" << "1" << "0" << "-99999999";
    // The divisor is tested as an integer.
    QTest::newRow("divide by a half") << "/" << "1" << "0.5" << "-99999999";
    QTest::newRow("remainder") << "%" << "7" << "3" << "1";
    QTest::newRow("remainder of a fraction") << "%" << "7.9" << "2" << "0";
    QTest::newRow("remainder by minus one") << "%" << "-2147483648" << "-1" << "0";
}

void tst_ExpressionParse::stringOperations()
{
    QFETCH(QString, op);
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(QString, expected);
    const auto operation = ExpressionParse::stringOperations().value(op);
    QVERIFY(operation);
    QCOMPARE(operation(left, right), expected);
}

QTEST_GUILESS_MAIN(tst_ExpressionParse)
#include "tst_expressionparse.moc"
