#include "net/tfuc.h"

#include <QJsonDocument>
#include <QtTest>

struct FilterCall
{
    QString field;
    QString op;
    QVariantList values;
    QString param;
};
using FilterCalls = QList<FilterCall>;
Q_DECLARE_METATYPE(FilterCalls)
Q_DECLARE_METATYPE(TFUc::TFRequestContent)

namespace {

const QByteArray kAuth = R"j("auth":{"prodId":"p1","userId":"u1"})j";

FilterParam::CustomFilter customFilter(const QString &field, const QString &op, const QVariantList &values,
                                       const QString &param = QString())
{
    FilterParam::CustomFilter filter;
    filter.fieldName = field;
    filter.op = op;
    filter.values = values;
    filter.paramName = param;
    return filter;
}

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

class tst_TFUc : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void requestBodies_data();
    void requestBodies();
    void emptyBaseUrlLeavesThePath();
    void insertFilter_data();
    void insertFilter();
    void viewProperties_data();
    void viewProperties();
};

void tst_TFUc::initTestCase()
{
    TFUc::setBaseUrl(QUrl(QStringLiteral("http://127.0.0.1:8080")));
    TFUc::setUserId(QStringLiteral("u1"));
    TFUc::setProductId(QStringLiteral("p1"));
}

void tst_TFUc::requestBodies_data()
{
    QTest::addColumn<TFUc::TFRequestContent>("content");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("expected");
    using TFUc::TFPaging;
    const QString ds = QStringLiteral("/bas/ds/data");
    const QString subject = QStringLiteral("/bas/subject/data");
    QTest::newRow("navigation rows, stock topic")
        << TFUc::navigationRowsRequest(2) << ds << QByteArray(R"j({"P_NODE_CODE":2,)j" + kAuth + R"j(,"objId":38})j");
    QTest::newRow("navigation rows, no topic")
        << TFUc::navigationRowsRequest(-1) << ds << QByteArray(R"j({"P_NODE_CODE":-1,)j" + kAuth + R"j(,"objId":38})j");
    QTest::newRow("navigation rows, 64-bit code")
        << TFUc::navigationRowsRequest(4294967296LL) << ds
        << QByteArray(R"j({"P_NODE_CODE":4294967296,)j" + kAuth + R"j(,"objId":38})j");
    QTest::newRow("block rows, security type 10")
        << TFUc::blockRowsRequest(10) << ds
        << QByteArray("{" + kAuth + R"j(,"filter":"(SECU_TYP_CODE == :SECU_TYP_CODE)",)j"
                      R"j("filterParams":{"SECU_TYP_CODE":10},"objId":43})j");
    // A list control's body carries no "auth"; parameters that are not a JSON
    // object go as an empty object.
    QTest::newRow("list, filter and parameters")
        << TFUc::listRequest(QStringLiteral("CITY_LIST"), QStringLiteral("(NAME like :N)"), QStringLiteral(R"({"N":"%江%"})"))
        << ds << QByteArray(R"j({"filter":"(NAME like :N)","filterParams":{"N":"%江%"},"objName":"CITY_LIST"})j");
    QTest::newRow("list, parameters not an object")
        << TFUc::listRequest(QStringLiteral("CITY_LIST"), QString(), QStringLiteral("[1]")) << ds
        << QByteArray(R"j({"filter":"","filterParams":{},"objName":"CITY_LIST"})j");
    QTest::newRow("constants table")
        << TFUc::constantsRequest() << ds << QByteArray("{" + kAuth + R"j(,"objId":390})j");
    QTest::newRow("view configuration")
        << TFUc::viewConfigRequest(260, {}, {}) << subject << QByteArray("{" + kAuth + R"j(,"flag":0,"obj_vw_id":260})j");
    QTest::newRow("view configuration ignores paging and keeps params")
        << TFUc::viewConfigRequest(260, {{QStringLiteral("SECU_ID"), QStringLiteral("600000")}}, {}) << subject
        << QByteArray(R"j({"SECU_ID":"600000",)j" + kAuth + R"j(,"flag":0,"obj_vw_id":260})j");
    QTest::newRow("view data with a filter and a data-source parameter")
        << TFUc::viewDataRequest(260, {{QStringLiteral("P"), QStringLiteral("x")}},
                                 {customFilter(QStringLiteral("F"), QStringLiteral("=="), {1})},
                                 TFPaging{false, 2, 50}) << subject
        << QByteArray(R"j({"P":"x",)j" + kAuth + R"j(,"filter":"(F == :F)","filterParams":{"F":1},)j"
                      R"j("flag":1,"obj_vw_id":260,"page":2,"size":50})j");
    QTest::newRow("view data without paging omits page and size")
        << TFUc::viewDataRequest(260, {}, {}, TFPaging{true, 3, 10}) << subject
        << QByteArray("{" + kAuth + R"j(,"flag":1,"obj_vw_id":260})j");
    QTest::newRow("whole data set")
        << TFUc::wholeDataSetRequest(7, {}, {}) << subject << QByteArray("{" + kAuth + R"j(,"flag":2,"obj_vw_id":7})j");
    QTest::newRow("view request with a given flag")
        << TFUc::viewRequest(9, 5, {}, {}, TFPaging{false, 1, 200}) << subject
        << QByteArray("{" + kAuth + R"j(,"flag":5,"obj_vw_id":9,"page":1,"size":200})j");
    QTest::newRow("null parameter omitted, empty string sent")
        << TFUc::viewDataRequest(1, {{QStringLiteral("A"), QVariant()}, {QStringLiteral("B"), QString("")}}, {},
                                 TFPaging{}) << subject
        << QByteArray(R"j({"B":"",)j" + kAuth + R"j(,"flag":1,"obj_vw_id":1})j");
    QTest::newRow("null key omitted")
        << TFUc::viewDataRequest(1, {{QString(), 5}}, {}, TFPaging{}) << subject
        << QByteArray("{" + kAuth + R"j(,"flag":1,"obj_vw_id":1})j");
    QTest::newRow("a later parameter replaces an earlier one")
        << TFUc::viewDataRequest(1, {{QStringLiteral("K"), 1}, {QStringLiteral("K"), 2}}, {}, TFPaging{}) << subject
        << QByteArray(R"j({"K":2,)j" + kAuth + R"j(,"flag":1,"obj_vw_id":1})j");
    QTest::newRow("the builder's flag and view replace parameters of those names")
        << TFUc::viewDataRequest(1, {{QStringLiteral("flag"), 9}, {QStringLiteral("obj_vw_id"), 8}}, {},
                                 TFPaging{}) << subject
        << QByteArray("{" + kAuth + R"j(,"flag":1,"obj_vw_id":1})j");
    QTest::newRow("list parameter")
        << TFUc::viewDataRequest(1, {{QStringLiteral("filterBlock"), QVariantList{3, 4}}}, {}, TFPaging{}) << subject
        << QByteArray("{" + kAuth + R"j(,"filterBlock":[3,4],"flag":1,"obj_vw_id":1})j");
    // A filter without values or without a field is dropped before it is inserted: no condition, no log line.
    QTest::newRow("filters without values or field dropped")
        << TFUc::viewDataRequest(1, {}, {customFilter("F", "==", {}), customFilter(QString(), "==", {1})}, TFPaging{})
        << subject << QByteArray("{" + kAuth + R"j(,"flag":1,"obj_vw_id":1})j");
    QTest::newRow("two filters joined")
        << TFUc::viewDataRequest(1, {}, {customFilter("A", ">=", {"x"}, "A_0"), customFilter("A", "<=", {"y"}, "A_1")},
                                 TFPaging{}) << subject
        << QByteArray("{" + kAuth + R"j(,"filter":"(A >= :A_0) && (A <= :A_1)",)j"
                      R"j("filterParams":{"A_0":"x","A_1":"y"},"flag":1,"obj_vw_id":1})j");
}

void tst_TFUc::requestBodies()
{
    QFETCH(TFUc::TFRequestContent, content);
    QFETCH(QString, path);
    QFETCH(QByteArray, expected);
    QCOMPARE(content.body, expected);
    QCOMPARE(content.url.toString(), QStringLiteral("http://127.0.0.1:8080") + path);
}

void tst_TFUc::emptyBaseUrlLeavesThePath()
{
    const QString saved = TFUc::baseUrl();
    TFUc::setBaseUrl(QUrl());
    const QUrl url = TFUc::viewConfigRequest(1, {}, {}).url;
    TFUc::setBaseUrl(QUrl(saved));
    // Nothing but the path: it names no server.
    QCOMPARE(url.path(), QStringLiteral("/bas/subject/data"));
    QVERIFY(url.host().isEmpty());
    QVERIFY(!url.scheme().startsWith(QLatin1String("http")));
    QCOMPARE(TFUc::baseUrl(), saved);
}

void tst_TFUc::insertFilter_data()
{
    QTest::addColumn<FilterCalls>("calls");
    QTest::addColumn<QList<bool>>("results");
    QTest::addColumn<QByteArray>("expected");

    const QString F = QStringLiteral("F");
    const auto call = [](const QString &field, const QString &op, const QVariantList &values,
                         const QString &param = QString()) { return FilterCall{field, op, values, param}; };

    QTest::newRow("equal, scalar") << FilterCalls{call(F, "==", {1})} << QList<bool>{true}
                                   << QByteArray(R"j({"filter":"(F == :F)","filterParams":{"F":1}})j");
    QTest::newRow("named parameter") << FilterCalls{call(F, "==", {"a"}, "P0")} << QList<bool>{true}
                                     << QByteArray(R"j({"filter":"(F == :P0)","filterParams":{"P0":"a"}})j");
    const QStringList accepted = {">", ">=", "<", "<=", "!=", "like", "nin", "&&"};
    for (const QString &op : accepted) {
        QTest::addRow("accepted %s", qPrintable(op))
            << FilterCalls{call(F, op, {2})} << QList<bool>{true}
            << QByteArray(R"j({"filter":"(F )j" + op.toUtf8() + R"j( :F)","filterParams":{"F":2}})j");
    }
    QTest::newRow("in, one value binds an array") << FilterCalls{call(F, "in", {1})} << QList<bool>{true}
                                                  << QByteArray(R"j({"filter":"(F in :F)","filterParams":{"F":[1]}})j");
    QTest::newRow("greater, two values bind an array")
        << FilterCalls{call(F, ">", {1, 2})} << QList<bool>{true}
        << QByteArray(R"j({"filter":"(F > :F)","filterParams":{"F":[1,2]}})j");
    QTest::newRow("nin, one value binds a scalar") << FilterCalls{call(F, "nin", {5})} << QList<bool>{true}
                                                   << QByteArray(R"j({"filter":"(F nin :F)","filterParams":{"F":5}})j");
    QTest::newRow("nin, two values bind an array")
        << FilterCalls{call(F, "nin", {"a", "b"})} << QList<bool>{true}
        << QByteArray(R"j({"filter":"(F nin :F)","filterParams":{"F":["a","b"]}})j");
    QTest::newRow("single equals refused") << FilterCalls{call(F, "=", {1})} << QList<bool>{false} << QByteArray("{}");
    QTest::newRow("or refused") << FilterCalls{call(F, "||", {1})} << QList<bool>{false} << QByteArray("{}");
    QTest::newRow("operator compared with case") << FilterCalls{call(F, "LIKE", {"x"})} << QList<bool>{false}
                                                 << QByteArray("{}");
    QTest::newRow("two fields joined")
        << FilterCalls{call("A", "==", {1}), call("B", ">", {2})} << QList<bool>{true, true}
        << QByteArray(R"j({"filter":"(A == :A) && (B > :B)","filterParams":{"A":1,"B":2}})j");
    QTest::newRow("same field twice keeps both conditions and the first value")
        << FilterCalls{call(F, "==", {1}), call(F, "==", {2})} << QList<bool>{true, false}
        << QByteArray(R"j({"filter":"(F == :F) && (F == :F)","filterParams":{"F":1}})j");
    QTest::newRow("two fields sharing a parameter share the first value")
        << FilterCalls{call("A", "==", {1}, "P"), call("B", "==", {2}, "P")} << QList<bool>{true, false}
        << QByteArray(R"j({"filter":"(A == :P) && (B == :P)","filterParams":{"P":1}})j");
    QTest::newRow("a refused operator between two accepted ones")
        << FilterCalls{call("A", "==", {1}), call("B", "=", {2}), call("C", "<", {3})} << QList<bool>{true, false, true}
        << QByteArray(R"j({"filter":"(A == :A) && (C < :C)","filterParams":{"A":1,"C":3}})j");
    QTest::newRow("text with quotes is bound, not written into the condition")
        << FilterCalls{call(F, "like", {"O'Neil; --"})} << QList<bool>{true}
        << QByteArray(R"j({"filter":"(F like :F)","filterParams":{"F":"O'Neil; --"}})j");
    QTest::newRow("no value binds null") << FilterCalls{call(F, "==", {})} << QList<bool>{true}
                                         << QByteArray(R"j({"filter":"(F == :F)","filterParams":{"F":null}})j");
}

void tst_TFUc::insertFilter()
{
    QFETCH(FilterCalls, calls);
    QFETCH(QList<bool>, results);
    QFETCH(QByteArray, expected);

    TFUc::TFJSContent content;
    QList<bool> got;
    for (int i = 0; i < calls.size(); ++i) {
        const FilterCall &c = calls.at(i);
        // Every refusal says why in the log.
        if (!TFUc::acceptedOperators().contains(c.op))
            QTest::ignoreMessage(QtWarningMsg,
                                 qPrintable(QStringLiteral("did not contain the operator \"%1\"").arg(c.op)));
        else if (!results.value(i))
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^has same param")));
        got.append(content.insertFilter(c.field, c.op, c.values, c.param));
    }
    QCOMPARE(got, results);
    QCOMPARE(compact(content), expected);
}

void tst_TFUc::viewProperties_data()
{
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("expected");

    const QVariantMap defaults{{"isPaged", true}, {"isShowFilter", true}, {"IsCross", false}, {"pageSize", 200.0},
                               {"VGridColumnWidth", 200.0}, {"FrozenCount", 0.0}, {"BandsLevel", 1.0}};
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it)
        QTest::addRow("default %s", qPrintable(it.key())) << QByteArray("[]") << it.key() << it.value();
    QTest::newRow("flag 1 is true") << QByteArray(R"j([{"prop_name":"IsCross","prop_val":"1"}])j") << "IsCross"
                                    << QVariant(true);
    QTest::newRow("flag 'true' is false") << QByteArray(R"j([{"prop_name":"IsCross","prop_val":"true"}])j")
                                          << "IsCross" << QVariant(false);
    QTest::newRow("flag as a JSON number is false") << QByteArray(R"j([{"prop_name":"IsCross","prop_val":1}])j")
                                                    << "IsCross" << QVariant(false);
    QTest::newRow("name compared with case") << QByteArray(R"j([{"prop_name":"iscross","prop_val":"1"}])j")
                                             << "IsCross" << QVariant(false);
    QTest::newRow("isPaged 0 clears the default") << QByteArray(R"j([{"prop_name":"isPaged","prop_val":"0"}])j")
                                                  << "isPaged" << QVariant(false);
    QTest::newRow("later row overwrites")
        << QByteArray(R"j([{"prop_name":"IsOrder","prop_val":"1"},{"prop_name":"IsOrder","prop_val":"0"}])j")
        << "IsOrder" << QVariant(false);
    QTest::newRow("non-objects and empty objects passed over")
        << QByteArray(R"j([1,"x",{},null,{"prop_name":"isShowBlock","prop_val":"1"}])j") << "isShowBlock"
        << QVariant(true);
    QTest::newRow("pageSize whole number") << QByteArray(R"j([{"prop_name":"pageSize","prop_val":"50"}])j")
                                           << "pageSize" << QVariant(50.0);
    QTest::newRow("pageSize not a number") << QByteArray(R"j([{"prop_name":"pageSize","prop_val":"abc"}])j")
                                           << "pageSize" << QVariant(0.0);
    QTest::newRow("FrozenCount decimals are not read") << QByteArray(R"j([{"prop_name":"FrozenCount","prop_val":"2.5"}])j")
                                                       << "FrozenCount" << QVariant(0.0);
    QTest::newRow("ObjViewType text") << QByteArray(R"j([{"prop_name":"ObjViewType","prop_val":"Chart"}])j")
                                      << "ObjViewType" << QVariant(QStringLiteral("Chart"));
    QTest::newRow("MaxColumnWith as the service spells it")
        << QByteArray(R"j([{"prop_name":"MaxColumnWith","prop_val":"300"}])j") << "MaxColumnWith"
        << QVariant(QStringLiteral("300"));
    QTest::newRow("childView from ext_prop_val")
        << QByteArray(R"j([{"prop_name":"childView","prop_val":"1","ext_prop_val":"[{\"id\":3}]"}])j") << "childView"
        << QVariant(QStringLiteral("[{\"id\":3}]"));
    QTest::newRow("WebPageURL from prop_val, not ext_prop_val")
        << QByteArray(R"j([{"prop_name":"WebPageURL","prop_val":"http://a","ext_prop_val":"http://b"}])j")
        << "WebPageURL" << QVariant(QStringLiteral("http://a"));
}

void tst_TFUc::viewProperties()
{
    QFETCH(QByteArray, rows);
    QFETCH(QString, field);
    QFETCH(QVariant, expected);

    const TFUc::TFViewProperties p = TFUc::readViewProperties(QJsonDocument::fromJson(rows).array());
    const QMap<QString, QVariant> fields = {
        {"IsCross", p.IsCross}, {"isPaged", p.isPaged}, {"IsOrder", p.IsOrder}, {"isShowBlock", p.isShowBlock},
        {"pageSize", p.pageSize}, {"FrozenCount", p.FrozenCount}, {"ObjViewType", p.ObjViewType},
        {"MaxColumnWith", p.MaxColumnWith}, {"childView", p.childView}, {"WebPageURL", p.WebPageURL},
        {"isShowFilter", p.isShowFilter}, {"VGridColumnWidth", p.VGridColumnWidth}, {"BandsLevel", p.BandsLevel},
    };
    QVERIFY2(fields.contains(field), qPrintable(field));
    QCOMPARE(fields.value(field), expected);
}

QTEST_GUILESS_MAIN(tst_TFUc)
#include "tst_tfuc.moc"
