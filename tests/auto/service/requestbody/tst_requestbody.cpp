#include "filterexpression.h"
#include "requestbody.h"
#include "servicevalue.h"

#include <QtTest>

using namespace SubjectService;

class tst_RequestBody : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
    void parseFilter_data();
    void parseFilter();
    void serviceDate_data();
    void serviceDate();
    void yearMonth_data();
    void yearMonth();
};

void tst_RequestBody::read_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("expected");   // flag, view, parameters, order; empty: refused

    QTest::newRow("view data body")
        << QByteArray(R"j({"REPORT_DATE":"2024-09-30","auth":{"prodId":"p","userId":"u"},"filter":"(F == :F_0)",)j"
                      R"j("filterParams":{"F_0":1},"flag":1,"obj_vw_id":260,"page":1,"size":200})j")
        << "1 260 REPORT_DATE ";
    QTest::newRow("identifiers as text") << QByteArray(R"j({"flag":"2","obj_vw_id":"1641"})j") << "2 1641  ";
    QTest::newRow("order object") << QByteArray(R"j({"flag":0,"obj_vw_id":1,"order":{"B":1,"A":-1}})j") << "0 1  A-1,B1";
    QTest::newRow("order text") << QByteArray(R"j({"flag":0,"obj_vw_id":1,"order":"A DESC,B ASC"})j") << "0 1  A-1,B1";
    QTest::newRow("block list and keywords") << QByteArray(R"j({"flag":1,"obj_vw_id":1,"filterBlock":[1],"keywords":"x"})j")
                                             << "1 1 filterBlock,keywords ";
    QTest::newRow("size without page") << QByteArray(R"j({"flag":1,"obj_vw_id":1,"size":10})j") << "1 1  ";
    QTest::newRow("fraction as flag") << QByteArray(R"j({"flag":1.5,"obj_vw_id":1})j") << "";
    QTest::newRow("huge view id") << QByteArray(R"j({"flag":1,"obj_vw_id":1e300})j") << "";
    QTest::newRow("auth not object") << QByteArray(R"j({"auth":"me","flag":1,"obj_vw_id":1})j") << "";
    QTest::newRow("page without size") << QByteArray(R"j({"flag":1,"obj_vw_id":1,"page":2})j") << "";
    QTest::newRow("truncated") << QByteArray(R"j({"flag":1,"obj_vw_id":)j") << "";
}

void tst_RequestBody::read()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, expected);

    RequestBody body;
    QString error;
    QCOMPARE(RequestBody::read(json, &body, &error), !expected.isEmpty());
    if (expected.isEmpty()) {
        QVERIFY(!error.isEmpty());
        return;
    }
    QStringList terms;
    for (const auto &term : body.order)
        terms << term.first + QString::number(term.second);
    QCOMPARE(QStringLiteral("%1 %2 %3 %4").arg(body.flag).arg(body.viewId).arg(body.parameters.keys().join(','), terms.join(',')),
             expected);
}

void tst_RequestBody::parseFilter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("conditions");   // field op param | ..., or "error"

    QTest::newRow("empty") << "" << "";
    QTest::newRow("blanks only") << "   " << "";
    QTest::newRow("one") << "(A == :A_0)" << "A == A_0";
    QTest::newRow("as the terminal joins") << "(A >= :A_0) && (A <= :A_1) && (B like :B_0)" << "A >= A_0|A <= A_1|B like B_0";
    QTest::newRow("words in capitals") << "(A IN :A_0) && (B NIN :B)" << "A in A_0|B nin B";
    QTest::newRow("all symbols") << "(A > :a) && (A < :b) && (A != :c)" << "A > a|A < b|A != c";
    QTest::newRow("dangling and") << "(A == :A) &&" << "error";
    QTest::newRow("outer parentheses") << "((A == :A))" << "error";
    QTest::newRow("no colon") << "(A == A)" << "error";
    QTest::newRow("field starting with digit") << "(1A == :A)" << "error";
    QTest::newRow("non-ascii field") << "(名称 == :A)" << "error";
    QTest::newRow("or") << "(A == :A) || (B == :B)" << "error";
    QTest::newRow("unclosed") << "(A == :A" << "error";
    QTest::newRow("like without blank") << "(A like:A)" << "A like A";
    QTest::newRow("field with semicolon") << "(A; DROP TABLE stock == :s)" << "error";
    QTest::newRow("trailing sql") << "(A == :s) OR 1=1" << "error";
    QTest::newRow("quoted field") << "('A' == :s)" << "error";
    QTest::newRow("unknown operator") << "(A = :a)" << "error";
    QTest::newRow("no parentheses") << "A > :a" << "error";
}

void tst_RequestBody::parseFilter()
{
    QFETCH(QString, text);
    QFETCH(QString, conditions);
    QList<FilterCondition> parsed;
    QString error;
    const bool ok = FilterExpression::parse(text, &parsed, &error);
    if (conditions == "error") {
        QVERIFY(!ok);
        QVERIFY(error.contains("does not parse"));
        return;
    }
    QVERIFY2(ok, qPrintable(error));
    QStringList got;
    for (const FilterCondition &c : parsed)
        got << c.field + ' ' + c.op + ' ' + c.param;
    QCOMPARE(got.join('|'), conditions);
}

void tst_RequestBody::serviceDate_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QDate>("date");
    QTest::newRow("iso") << QJsonValue("2024-09-30") << QDate(2024, 9, 30);
    QTest::newRow("short month and day") << QJsonValue("2024-9-3") << QDate(2024, 9, 3);
    QTest::newRow("date-time in brackets") << QJsonValue("[2024-09-30 23:59:59]") << QDate(2024, 9, 30);
    QTest::newRow("date in brackets") << QJsonValue("[2023-12-31]") << QDate(2023, 12, 31);
    QTest::newRow("service date east") << QJsonValue("/Date(1596124800000+0800)") << QDate(2020, 7, 31);
    QTest::newRow("service date west") << QJsonValue("/Date(1596124800000-0500)") << QDate(2020, 7, 30);
    // 01:00 UTC on the 31st is still the 30th five hours west.
    QTest::newRow("service date west, the day before") << QJsonValue("/Date(1596157200000-0500)") << QDate(2020, 7, 30);
    QTest::newRow("service date with closing slash") << QJsonValue("/Date(1596124800000+0800)/") << QDate(2020, 7, 31);
    QTest::newRow("words") << QJsonValue("today") << QDate();
    QTest::newRow("bad month") << QJsonValue("2024-13-01") << QDate();
    QTest::newRow("boolean") << QJsonValue(true) << QDate();
}

void tst_RequestBody::serviceDate()
{
    QFETCH(QJsonValue, value);
    QFETCH(QDate, date);
    QCOMPARE(parseServiceDate(value), date);
}

void tst_RequestBody::yearMonth_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<int>("yearMonth");
    QTest::newRow("compact") << QJsonValue("201903") << 201903;
    QTest::newRow("number") << QJsonValue(201903) << 201903;
    QTest::newRow("quoted as the interval control sends it") << QJsonValue("'2019-3'") << 201903;
    QTest::newRow("date") << QJsonValue("2019-03-31") << 201903;
    QTest::newRow("month thirteen") << QJsonValue("2019-13") << 0;
    QTest::newRow("words") << QJsonValue("March") << 0;
}

void tst_RequestBody::yearMonth()
{
    QFETCH(QJsonValue, value);
    QFETCH(int, yearMonth);
    QCOMPARE(parseYearMonth(value), yearMonth);
}

QTEST_GUILESS_MAIN(tst_RequestBody)
#include "tst_requestbody.moc"
