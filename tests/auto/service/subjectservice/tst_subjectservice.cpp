#include "servicetestclient.h"

#include "catalogue.h"
#include "subjectservice.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QJsonArray>
#include <QSet>
#include <QtTest>

#include <sqlite3.h>

#include <atomic>
#include <thread>

using namespace SubjectService;

class tst_SubjectService : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void navigation_data();
    void navigation();
    void navigationUnknownRoot();
    void blockRows();
    void constants();
    void remoteList();
    void helpPage();

    void configurationDocument();
    void filterTranslation_data();
    void filterTranslation();
    void tableSurvivesInjection();
    void paging_data();
    void paging();
    void pagesDoNotOverlap();
    void order();
    void dataSourceParameters_data();
    void dataSourceParameters();
    void crossView();
    void badInput_data();
    void badInput();
    void token_data();
    void token();
    void everyView_data();
    void everyView();
    void menuAgreesWithCatalogue();
    void catalogueUsesEveryFeature();
    void barDefaultsNarrowTheRows_data();
    void barDefaultsNarrowTheRows();
    void concurrentClients();
    void executable();

private:
    QUrl base() const { return m_server->baseUrl(); }
    QStringList idsFromDatabase(const QString &where) const;
    QStringList idsFromService(const QString &filter, const QJsonObject &params, QString *msg);
    static QJsonValue parseText(const QJsonValue &value);

    std::unique_ptr<Server> m_server;
    Catalogue m_catalogue;
};

void tst_SubjectService::initTestCase()
{
    Options options;
    options.port = 0;
    m_server.reset(new Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    QVERIFY(m_server->port() != 0);
    QVERIFY2(m_catalogue.load(&error), qPrintable(error));
}

void tst_SubjectService::cleanupTestCase()
{
    m_server->stop();
}

QJsonValue tst_SubjectService::parseText(const QJsonValue &value)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(value.toString().toUtf8(), &error);
    if (error.error != QJsonParseError::NoError)
        return QJsonValue(QJsonValue::Undefined);
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

QStringList tst_SubjectService::idsFromDatabase(const QString &where) const
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(QFile::encodeName(m_server->databasePath()).constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt *stmt = nullptr;
    const QByteArray sql = QStringLiteral("SELECT SECU_ID FROM stock WHERE %1 ORDER BY SECU_ID").arg(where).toUtf8();
    QStringList ids;
    if (sqlite3_prepare_v2(db, sql.constData(), -1, &stmt, nullptr) == SQLITE_OK) {
        while (sqlite3_step(stmt) == SQLITE_ROW)
            ids << QString::number(sqlite3_column_int64(stmt, 0));
    } else {
        ids << QStringLiteral("bad expected SQL: ") + QString::fromUtf8(sqlite3_errmsg(db));
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return ids;
}

QStringList tst_SubjectService::idsFromService(const QString &filter, const QJsonObject &params, QString *msg)
{
    QJsonObject body{{"obj_vw_id", 260}, {"flag", 1}, {"page", 1}, {"size", 5000},
                     {"filter", filter}, {"filterParams", params}, {"order", QJsonObject{{"SECU_ID", 1}}}};
    const ServiceReply reply = postJson(base(), "/bas/subject/data", body);
    *msg = reply.msg();
    if (reply.state() != 1)
        return {};
    QStringList ids;
    for (const QJsonValue &row : reply.data().toObject().value("Data").toArray())
        ids << QString::number(qint64(row.toObject().value("SECU_ID").toDouble()));
    return ids;
}

void tst_SubjectService::navigation_data()
{
    QTest::addColumn<int>("root");
    QTest::addColumn<int>("minViews");
    for (int root : {2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837, 190})
        QTest::newRow(qPrintable(QString::number(root))) << root << 1;
}

void tst_SubjectService::navigation()
{
    QFETCH(int, root);
    QFETCH(int, minViews);
    const ServiceReply reply = postJson(base(), "/bas/ds/data", {{"objId", 38}, {"P_NODE_CODE", root},
                                                                 {"auth", QJsonObject{{"userId", "u"}, {"prodId", "p"}}}});
    QCOMPARE(reply.httpStatus, 200);
    QCOMPARE(reply.state(), 1);
    const QJsonArray rows = reply.data().toArray();
    QSet<qint64> codes{root};
    int views = 0;
    for (const QJsonValue &value : rows) {
        const QJsonObject row = value.toObject();
        if (row.contains("VALUE")) {
            // Constants ride along, attached to no node.
            QCOMPARE(row.value("P_NODE_CODE").toInt(), -2);
            continue;
        }
        const qint64 code = qint64(row.value("NODE_CODE").toDouble());
        QVERIFY2(codes.contains(qint64(row.value("P_NODE_CODE").toDouble())), "a node before its parent or an orphan");
        QVERIFY(!codes.contains(code));
        codes.insert(code);
        QVERIFY(!row.value("NODE_CAP").toString().isEmpty());
        const qint64 view = qint64(row.value("OBJ_VW_ID").toDouble());
        const QString url = row.value("NODE_URL").toString();
        if (view != 0) {
            ++views;
            QVERIFY(m_catalogue.view(view));
        }
        if (!url.isEmpty())
            QVERIFY2(url.startsWith(base().toString()), qPrintable(url));
    }
    QVERIFY(views >= minViews);
}

void tst_SubjectService::navigationUnknownRoot()
{
    const ServiceReply reply = postJson(base(), "/bas/ds/data", {{"objId", 38}, {"P_NODE_CODE", 99999}});
    QCOMPARE(reply.state(), 0);
    QVERIFY(reply.msg().contains("99999"));
}

void tst_SubjectService::blockRows()
{
    ServiceReply reply = postJson(base(), "/bas/ds/data",
                                  {{"objId", 43}, {"filter", "(SECU_TYP_CODE == :SECU_TYP_CODE)"},
                                   {"filterParams", QJsonObject{{"SECU_TYP_CODE", 10}}}});
    QCOMPARE(reply.state(), 1);
    const QJsonArray rows = reply.data().toArray();
    QVERIFY(rows.size() > 30);
    int roots = 0;
    for (const QJsonValue &row : rows) {
        QVERIFY(row.toObject().contains("SECT_NAME"));
        roots += row.toObject().value("P_SECT_ID").toInt() == 0;
    }
    QCOMPARE(roots, 3);

    reply = postJson(base(), "/bas/ds/data", {{"objId", 43}, {"filter", "(SECU_TYP_CODE == :SECU_TYP_CODE)"},
                                              {"filterParams", QJsonObject{{"SECU_TYP_CODE", 20}}}});
    QCOMPARE(reply.state(), 1);
    QVERIFY(reply.data().toArray().isEmpty());
}

void tst_SubjectService::constants()
{
    const ServiceReply reply = postJson(base(), "/bas/ds/data", {{"objId", 390}});
    QCOMPARE(reply.state(), 1);
    const QJsonArray rows = reply.data().toArray();
    QVERIFY(!rows.isEmpty());
    QSet<QString> types;
    for (const QJsonValue &row : rows) {
        for (const char *key : {"VALUE", "NAME", "TYPE", "TYPE_DESC", "FILTER1"})
            QVERIFY2(row.toObject().contains(QLatin1String(key)), key);
        types << row.toObject().value("TYPE").toString();
    }
    QVERIFY(types.contains("AREA"));
    QVERIFY(types.contains("CST_NUM"));
}

void tst_SubjectService::remoteList()
{
    // A list control's own body: no auth, no objId.
    ServiceReply reply = postJson(base(), "/bas/ds/data", {{"objName", "PROVINCE_LIST"}, {"filter", ""},
                                                           {"filterParams", QJsonObject()}});
    QCOMPARE(reply.state(), 1);
    QCOMPARE(reply.data().toArray().size(), 14);

    reply = postJson(base(), "/bas/ds/data", {{"objName", "PROVINCE_LIST"}, {"filter", "(REGION == :REGION)"},
                                              {"filterParams", QJsonObject{{"REGION", "HB"}}}});
    QCOMPARE(reply.state(), 1);
    QStringList names;
    for (const QJsonValue &row : reply.data().toArray())
        names << row.toObject().value("NAME").toString() + "=" + row.toObject().value("VALUE").toString();
    QCOMPARE(names, QStringList({"北京=北京", "天津=天津"}));

    reply = postJson(base(), "/bas/ds/data", {{"objName", "NO_SUCH_LIST"}});
    QCOMPARE(reply.state(), 0);
    QVERIFY(reply.msg().contains("NO_SUCH_LIST"));
}

void tst_SubjectService::helpPage()
{
    QNetworkAccessManager manager;
    QUrl url = base();
    url.setPath("/help/stock.html");
    QNetworkReply *reply = manager.get(QNetworkRequest(url));
    QSignalSpy finished(reply, &QNetworkReply::finished);
    QVERIFY(finished.wait(10000));
    QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 200);
    QVERIFY(QString::fromUtf8(reply->readAll()).contains("股票专题"));
    delete reply;
}

void tst_SubjectService::configurationDocument()
{
    const ServiceReply reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", 260}, {"flag", 0}});
    QCOMPARE(reply.state(), 1);
    const QJsonObject document = reply.data().toObject();
    QCOMPARE(document.keys(), QStringList({"Data", "Object_View", "Object_View_Config", "Summary", "View_Config"}));
    QCOMPARE(document.value("Data").toArray().size(), 100);   // the view's page size
    QCOMPARE(document.value("Object_View").toArray().at(0).toObject().value("obj_vw_name").toString(), QString("沪深A股行情"));

    QMap<QString, QJsonObject> properties;
    for (const QJsonValue &row : document.value("View_Config").toArray())
        properties.insert(row.toObject().value("prop_name").toString(), row.toObject());
    QCOMPARE(properties.value("FrozenCount").value("prop_val").toString(), QString("2"));
    QCOMPARE(properties.value("isShowChild").value("prop_val").toString(), QString("1"));
    // The bands level is read from the row's own member.
    QCOMPARE(properties.value("BandsLevel").value("BandsLevel").toInt(), 3);
    for (const char *extend : {"Bands", "filters", "childView"}) {
        QCOMPARE(properties.value(extend).value("prop_typ").toString(), QString("EXTEND"));
        QVERIFY2(properties.value(extend).value("ext_prop_val").isString(), extend);
        QVERIFY2(parseText(properties.value(extend).value("ext_prop_val")).isArray(), extend);
    }
    const QJsonArray children = parseText(properties.value("childView").value("ext_prop_val")).toArray();
    QCOMPARE(children.size(), 3);
    QCOMPARE(children.at(0).toObject().value("ObjShowName").toString(), QString("261"));
    QVERIFY(children.at(0).toObject().value("Propertyparams").toString().contains("数据源"));

    // Bands: three levels, a hidden band, a band whose unit factors override its leaves.
    const QJsonArray bands = parseText(properties.value("Bands").value("ext_prop_val")).toArray();
    QMap<QString, QJsonObject> byName;
    for (const QJsonValue &b : bands)
        byName.insert(b.toObject().value("FieldName").toString(), b.toObject());
    QCOMPARE(byName.value("VOLUME").value("OwnerBand").toString(), QString("B_TRADE"));
    QCOMPARE(byName.value("B_TRADE").value("OwnerBand").toString(), QString("B_QUOTE"));
    QCOMPARE(byName.value("B_QUOTE").value("OwnerBand").toString(), QString("0"));
    QCOMPARE(byName.value("B_INTERNAL").value("Visible").toBool(), false);
    QCOMPARE(byName.value("B_SHARE").value("ShowUnitFactor").toDouble(), 100000000.0);
    QCOMPARE(byName.value("B_SHARE").value("UnitCategory").toInt(), 2);

    // Display settings travel in ots_cfg; visibility in vw_sts.
    QMap<QString, QJsonObject> fields;
    for (const QJsonValue &row : document.value("Object_View_Config").toArray()) {
        const QJsonObject o = row.toObject();
        const QJsonValue ots = parseText(o.value("ots_cfg"));
        QVERIFY(ots.isObject());
        fields.insert(o.value("obj_prop_name").toString(), ots.toObject());
        fields[o.value("obj_prop_name").toString()].insert("vw_sts", o.value("vw_sts"));
    }
    QCOMPARE(fields.value("SECU_ID").value("vw_sts").toString(), QString("0"));
    QCOMPARE(fields.value("MKT").value("vw_sts").toString(), QString("6"));
    QCOMPARE(fields.value("SECU_SHT").value("ColumnType").toString(), QString("HyperLinkEdit"));
    QVERIFY(fields.value("SECU_SHT").value("Url").toString().contains("${SECU_ID}"));
    QCOMPARE(fields.value("COM_PROFILE").value("ColumnType").toString(), QString("MemoExEdit"));
    QCOMPARE(fields.value("AMOUNT").value("ColumnType").toString(), QString("BandedGridColumnWithUnit"));
    QCOMPARE(fields.value("AMPLITUDE").value("UnboundExpression").toString(),
             QString("([HIGH_PRICE]-[LOW_PRICE])*100/[OPEN_PRICE]"));
    QVERIFY(!fields.value("CHG_PCT").value("CellStyleExpression").toString().isEmpty());

    // The first row carries every source field, dates as milliseconds.
    const QJsonObject first = document.value("Data").toArray().at(0).toObject();
    for (const char *key : {"SECU_ID", "SECU_CODE", "HIGH_PRICE", "LOW_PRICE", "OPEN_PRICE", "COM_ID"})
        QVERIFY2(first.contains(QLatin1String(key)), key);
    QVERIFY(first.value("LIST_DATE").isDouble());
    QVERIFY(!first.contains("AMPLITUDE"));   // computed by the client
}

void tst_SubjectService::filterTranslation_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QByteArray>("params");
    QTest::addColumn<QString>("expectedWhere");   // empty: an error is expected
    QTest::addColumn<QString>("errorPart");
    QTest::addColumn<int>("minRows");

    auto rows = [](const char *name, const char *filter, const char *params, const char *where, int minRows) {
        QTest::newRow(name) << QString::fromUtf8(filter) << QByteArray(params) << QString::fromUtf8(where) << QString() << minRows;
    };
    auto error = [](const char *name, const char *filter, const char *params, const char *errorPart) {
        QTest::newRow(name) << QString::fromUtf8(filter) << QByteArray(params) << QString() << QString::fromUtf8(errorPart) << 0;
    };
    rows("greater", "(CHG_PCT > :CHG_PCT_0)", R"j({"CHG_PCT_0":5})j", "CHG_PCT > 5", 5);
    rows("greater or equal, number in text", "(CHG_PCT >= :p)", R"j({"p":"4.5"})j", "CHG_PCT >= 4.5", 5);
    rows("less", "(PE < :p)", R"j({"p":10})j", "PE < 10", 1);
    rows("less or equal, date", "(LIST_DATE <= :d)", R"j({"d":"2000-01-01"})j", "LIST_DATE <= '2000-01-01'", 10);
    rows("date with time in brackets", "(LIST_DATE <= :d)", R"j({"d":"[2000-01-01 23:59:59]"})j",
         "LIST_DATE <= '2000-01-01'", 10);
    rows("a day's last second excludes the day", "(LIST_DATE >= :d)", R"j({"d":"[2000-01-01 23:59:59]"})j",
         "LIST_DATE > '2000-01-01'", 100);
    rows("midnight is the day itself", "(LIST_DATE >= :d)", R"j({"d":"[2000-01-01 00:00:00]"})j",
         "LIST_DATE >= '2000-01-01'", 100);
    rows("equal date", "(TRADE_DATE == :d)", R"j({"d":"2024-12-31"})j", "TRADE_DATE = '2024-12-31'", 2000);
    rows("equal date at a time of day", "(TRADE_DATE == :d)", R"j({"d":"[2024-12-31 23:59:59]"})j", "0", 0);
    rows("service date", "(LIST_DATE <= :d)", R"j({"d":"/Date(946656000000+0800)"})j", "LIST_DATE <= '2000-01-01'", 10);
    rows("greater than a service date", "(LIST_DATE > :d)", R"j({"d":"/Date(946656000000+0800)"})j",
         "LIST_DATE > '2000-01-01'", 100);
    rows("less than a service date west of UTC", "(LIST_DATE < :d)", R"j({"d":"/Date(946684800000-0500)"})j",
         "LIST_DATE <= '1999-12-31'", 10);
    rows("service date in brackets", "(LIST_DATE >= :d)", R"j({"d":"[/Date(946656000000+0800)]"})j",
         "LIST_DATE >= '2000-01-01'", 100);
    rows("not equal to a date", "(LIST_DATE != :d)", R"j({"d":"[2000-01-01 00:00:00]"})j",
         "LIST_DATE <> '2000-01-01'", 100);
    rows("interval of a day", "(LIST_DATE >= :LIST_DATE_0) && (LIST_DATE <= :LIST_DATE_1)",
         R"j({"LIST_DATE_0":"[2010-01-01 00:00:00]","LIST_DATE_1":"[2010-12-31 23:59:59]"})j",
         "LIST_DATE BETWEEN '2010-01-01' AND '2010-12-31'", 10);
    rows("dates in a list, mixed forms", "(LIST_DATE in :d)",
         R"j({"d":["2000-02-13","[2006-12-13 00:00:00]","/Date(1662912000000+0800)"]})j",
         "LIST_DATE IN ('2000-02-13','2006-12-13','2022-09-12')", 10);
    rows("date not in one scalar", "(LIST_DATE nin :d)", R"j({"d":"[2000-02-13 00:00:00]"})j",
         "LIST_DATE <> '2000-02-13'", 1990);
    rows("date as text with like", "(LIST_DATE like :d)", R"j({"d":"2010-"})j", "LIST_DATE LIKE '2010-%'", 10);
    rows("flags sharing a bit", "(SECU_ID && :f)", R"j({"f":1})j", "(SECU_ID & 1) <> 0", 100);
    rows("flags in text", "(SECU_ID && :f)", R"j({"f":"6"})j", "(SECU_ID & 6) <> 0", 100);
    rows("flags and another condition", "(SECU_ID && :f) && (MKT == :m)", R"j({"f":[2],"m":"上交所"})j",
         "(SECU_ID & 2) <> 0 AND MKT = '上交所'", 10);
    rows("equal text", "(MKT == :m)", R"j({"m":"上交所"})j", "MKT = '上交所'", 100);
    rows("not equal", "(MKT != :m)", R"j({"m":"上交所"})j", "MKT <> '上交所'", 100);
    rows("like wraps", "(SECU_SHT like :k)", R"j({"k":"银行"})j", "SECU_SHT LIKE '%银行%'", 1);
    rows("like with own wildcard", "(SECU_SHT like :k)", R"j({"k":"华%"})j", "SECU_SHT LIKE '华%'", 1);
    rows("in many", "(IND_NAME in :i)", R"j({"i":["银行","电子"]})j", "IND_NAME IN ('银行','电子')", 10);
    rows("in one", "(IND_NAME in :i)", R"j({"i":["银行"]})j", "IND_NAME = '银行'", 10);
    rows("in empty", "(IND_NAME in :i)", R"j({"i":[]})j", "0", 0);
    rows("nin scalar", "(IND_NAME nin :i)", R"j({"i":"银行"})j", "IND_NAME <> '银行'", 100);
    rows("nin many", "(IND_NAME nin :i)", R"j({"i":["银行","电子","汽车"]})j", "IND_NAME NOT IN ('银行','电子','汽车')", 100);
    rows("several conditions", "(CHG_PCT >= :CHG_PCT_0) && (CHG_PCT <= :CHG_PCT_1) && (MKT == :MKT_0)",
         R"j({"CHG_PCT_0":1,"CHG_PCT_1":3,"MKT_0":"深交所"})j", "CHG_PCT >= 1 AND CHG_PCT <= 3 AND MKT = '深交所'", 10);
    rows("parameter bound twice", "(CHG_PCT >= :a) && (TURNOVER >= :a)", R"j({"a":3})j", "CHG_PCT >= 3 AND TURNOVER >= 3", 1);
    rows("field name in any case", "(chg_pct > :a)", R"j({"a":9})j", "CHG_PCT > 9", 0);
    rows("no spaces", "(CHG_PCT>:a)&&(MKT==:b)", R"j({"a":2,"b":"上交所"})j", "CHG_PCT > 2 AND MKT = '上交所'", 1);
    rows("empty filter", "", R"j({})j", "1", 2000);
    rows("quote in value", "(SECU_SHT == :s)", R"j({"s":"x' OR '1'='1"})j", "0", 0);
    rows("semicolon in value", "(SECU_SHT == :s)", R"j({"s":"银行'; DROP TABLE stock; --"})j", "0", 0);
    rows("comment markers in value", "(SECU_SHT like :s)", R"j({"s":"/* -- */"})j", "0", 0);
    rows("sql words in value", "(IND_NAME in :s)", R"j({"s":["银行') OR 1=1 --","SELECT * FROM stock"]})j", "0", 0);

    error("field with semicolon", "(SECU_SHT; DROP TABLE stock == :s)", R"j({"s":"a"})j", "does not parse");
    error("trailing sql", "(SECU_SHT == :s) OR 1=1", R"j({"s":"a"})j", "does not parse");
    error("trailing comment", "(SECU_SHT == :s) --", R"j({"s":"a"})j", "does not parse");
    error("block comment", "(SECU_SHT == :s)/**/", R"j({"s":"a"})j", "does not parse");
    error("quoted field", "('SECU_SHT' == :s)", R"j({"s":"a"})j", "does not parse");
    error("sql word as field", "(SELECT == :s)", R"j({"s":"a"})j", "unknown field");
    error("table of another view", "(sqlite_master == :s)", R"j({"s":"a"})j", "unknown field");
    error("unknown field", "(NO_SUCH_FIELD == :s)", R"j({"s":"a"})j", "unknown field");
    error("or is refused", "(CHG_PCT > :a) || (PE > :a)", R"j({"a":1})j", "||");
    error("or inside a condition", "(CHG_PCT || :a)", R"j({"a":1})j", "||");
    error("flags on a text field", "(MKT && :a)", R"j({"a":1})j", "whole-number field");
    error("flags on a fraction field", "(CHG_PCT && :a)", R"j({"a":1})j", "whole-number field");
    error("flags with a fraction", "(SECU_ID && :a)", R"j({"a":1.5})j", "whole number");
    error("flags with two values", "(SECU_ID && :a)", R"j({"a":[1,2]})j", "wrong type");
    error("unreadable service date", "(LIST_DATE > :d)", R"j({"d":"/Date(abc+0800)"})j", "wrong type");
    error("date with a month 13", "(LIST_DATE > :d)", R"j({"d":"[2000-13-01 00:00:00]"})j", "wrong type");
    error("unknown operator", "(CHG_PCT = :a)", R"j({"a":1})j", "does not parse");
    error("no parentheses", "CHG_PCT > :a", R"j({"a":1})j", "does not parse");
    error("unbound parameter", "(CHG_PCT > :a)", R"j({"b":1})j", ":a");
    error("text for a number", "(CHG_PCT > :a)", R"j({"a":"abc"})j", "wrong type");
    error("boolean for a number", "(CHG_PCT > :a)", R"j({"a":true})j", "wrong type");
    error("two values for greater", "(CHG_PCT > :a)", R"j({"a":[1,2]})j", "wrong type");
    error("object for text", "(SECU_SHT == :s)", R"j({"s":{"x":1}})j", "wrong type");
    error("no date", "(LIST_DATE > :d)", R"j({"d":"yesterday"})j", "wrong type");
    error("null value", "(MKT == :m)", R"j({"m":null})j", "wrong type");
}

void tst_SubjectService::filterTranslation()
{
    QFETCH(QString, filter);
    QFETCH(QByteArray, params);
    QFETCH(QString, expectedWhere);
    QFETCH(QString, errorPart);
    QFETCH(int, minRows);

    QString msg;
    const QStringList got = idsFromService(filter, QJsonDocument::fromJson(params).object(), &msg);
    if (expectedWhere.isEmpty()) {
        QVERIFY(got.isEmpty());
        QVERIFY2(msg.contains(errorPart), qPrintable(msg));
        return;
    }
    QVERIFY2(msg.isEmpty(), qPrintable(msg));
    const QStringList expected = idsFromDatabase(expectedWhere);
    QVERIFY(expected.size() >= minRows);
    QCOMPARE(got, expected);
}

void tst_SubjectService::tableSurvivesInjection()
{
    QString msg;
    idsFromService("(SECU_SHT == :s)", {{"s", "x'); DROP TABLE stock; --"}}, &msg);
    const ServiceReply reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", 260}, {"flag", 1}, {"page", 1}, {"size", 1}});
    QCOMPARE(reply.state(), 1);
    QCOMPARE(reply.data().toObject().value("Summary").toArray().at(0).toObject().value("value").toInt(), 2000);
}

void tst_SubjectService::paging_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expectedRows");

    QTest::newRow("first page") << 1 << 200 << 200;
    QTest::newRow("middle page") << 3 << 150 << 150;
    QTest::newRow("last partial page") << 7 << 300 << 200;   // 2000 rows: 1800..1999
    QTest::newRow("past the end") << 11 << 200 << 0;
    QTest::newRow("one row") << 2000 << 1 << 1;
    QTest::newRow("everything") << 1 << 5000 << 2000;
}

void tst_SubjectService::paging()
{
    QFETCH(int, page);
    QFETCH(int, size);
    QFETCH(int, expectedRows);
    const ServiceReply reply = postJson(base(), "/bas/subject/data",
                                        {{"obj_vw_id", 260}, {"flag", 1}, {"page", page}, {"size", size}});
    QCOMPARE(reply.state(), 1);
    const QJsonObject data = reply.data().toObject();
    QCOMPARE(data.value("Data").toArray().size(), expectedRows);
    QMap<QString, int> summary;
    for (const QJsonValue &item : data.value("Summary").toArray())
        summary.insert(item.toObject().value("Item").toString(), item.toObject().value("value").toInt());
    QCOMPARE(summary.value("rcount"), 2000);
    QCOMPARE(summary.value("pindex"), page);
    QCOMPARE(summary.value("psize"), size);
}

void tst_SubjectService::pagesDoNotOverlap()
{
    // Pages under an order with many ties still partition the set.
    QStringList all;
    for (int page = 1; page <= 10; ++page) {
        const ServiceReply reply = postJson(base(), "/bas/subject/data",
                                            {{"obj_vw_id", 260}, {"flag", 1}, {"page", page}, {"size", 200},
                                             {"order", QJsonObject{{"IND_NAME", 1}}}});
        QCOMPARE(reply.state(), 1);
        for (const QJsonValue &row : reply.data().toObject().value("Data").toArray())
            all << QString::number(qint64(row.toObject().value("SECU_ID").toDouble()));
    }
    QCOMPARE(all.size(), 2000);
    QCOMPARE(QSet<QString>(all.begin(), all.end()).size(), 2000);
}

void tst_SubjectService::order()
{
    ServiceReply reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", 260}, {"flag", 1}, {"page", 1}, {"size", 300},
                                                                {"order", QJsonObject{{"CHG_PCT", -1}}}});
    QCOMPARE(reply.state(), 1);
    double previous = 1e9;
    for (const QJsonValue &row : reply.data().toObject().value("Data").toArray()) {
        const double value = row.toObject().value("CHG_PCT").toDouble();
        QVERIFY(value <= previous);
        previous = value;
    }
    reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", 260}, {"flag", 1},
                                                   {"order", QJsonObject{{"CHG_PCT; DROP TABLE stock", -1}}}});
    QCOMPARE(reply.state(), 0);
    QVERIFY(reply.msg().contains("unknown field"));
}

void tst_SubjectService::dataSourceParameters_data()
{
    QTest::addColumn<int>("view");
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");   // every row's value of field, or a prefix with '*'
    QTest::addColumn<int>("expectedCount");

    QTest::newRow("report date as text") << 264 << QByteArray(R"j({"REPORT_DATE":"2024-09-30"})j") << "END_DATE"
                                         << "2024-09-30" << 2000;
    QTest::newRow("report date as service date") << 264 << QByteArray(R"j({"REPORT_DATE":"/Date(1719676800000+0800)"})j")
                                                 << "END_DATE" << "2024-06-30" << 2000;
    QTest::newRow("child date in brackets") << 264 << QByteArray(R"j({"REPORT_DATE":"[2023-12-31]"})j") << "END_DATE"
                                            << "2023-12-31" << 2000;
    QTest::newRow("security of a child chart") << 262 << QByteArray(R"j({"SECU_ID":100007})j") << "" << "" << 30;
    QTest::newRow("empty keywords do not filter") << 260 << QByteArray(R"j({"keywords":""})j") << "" << "" << 2000;
    QTest::newRow("block list") << 260 << QByteArray(R"j({"filterBlock":[1001]})j") << "IND_NAME" << "银行" << -1;
    QTest::newRow("empty block list") << 260 << QByteArray(R"j({"filterBlock":[]})j") << "" << "" << 2000;
    QTest::newRow("undeclared key ignored") << 260 << QByteArray(R"j({"IsStat":1,"x; DROP TABLE stock":"1"})j") << ""
                                            << "" << 2000;
}

void tst_SubjectService::dataSourceParameters()
{
    QFETCH(int, view);
    QFETCH(QByteArray, parameters);
    QFETCH(QString, field);
    QFETCH(QString, expected);
    QFETCH(int, expectedCount);
    QJsonObject body = QJsonDocument::fromJson(parameters).object();
    body.insert("obj_vw_id", view);
    body.insert("flag", 1);
    body.insert("page", 1);
    body.insert("size", 5000);
    const ServiceReply reply = postJson(base(), "/bas/subject/data", body);
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonArray rows = reply.data().toObject().value("Data").toArray();
    if (expectedCount >= 0)
        QCOMPARE(rows.size(), expectedCount);
    else
        QVERIFY(!rows.isEmpty() && rows.size() < 2000);
    for (const QJsonValue &row : rows) {
        if (field.isEmpty())
            break;
        const QJsonValue value = row.toObject().value(field);
        const QString text = value.isDouble() ? QDateTime::fromMSecsSinceEpoch(qint64(value.toDouble())).date().toString(Qt::ISODate)
                                              : value.toString();
        QCOMPARE(text, expected);
    }
}

void tst_SubjectService::crossView()
{
    const ServiceReply reply = postJson(base(), "/bas/subject/data",
                                        {{"obj_vw_id", 1590}, {"flag", 2}, {"filter", "(YEAR in :YEAR_0)"},
                                         {"filterParams", QJsonObject{{"YEAR_0", QJsonArray{2023.0, 2024.0}}}}});
    QCOMPARE(reply.state(), 1);
    const QJsonObject document = reply.data().toObject();
    // A cross view's whole set comes with its configuration.
    QVERIFY(document.contains("View_Config"));
    QJsonArray columns;
    for (const QJsonValue &item : document.value("Summary").toArray()) {
        if (item.toObject().value("Item").toString() == "GridColumns")
            columns = parseText(item.toObject().value("value")).toArray();
    }
    QStringList leaves;
    for (const QJsonValue &c : columns) {
        const QJsonObject o = c.toObject();
        QVERIFY(o.contains("fieldName") && o.contains("ownerBand") && o.contains("showStatus"));
        QVERIFY(!o.contains("FieldName"));
        if (o.value("columnType").toString() != "Band")
            leaves << o.value("fieldName").toString();
    }
    QCOMPARE(leaves, QStringList({"IND_NAME", "2023__NET_PROFIT", "2024__NET_PROFIT", "TOTAL_NET_PROFIT", "MAX_NET_PROFIT"}));
    const QJsonArray rows = document.value("Data").toArray();
    QCOMPARE(rows.size(), 16);
    for (const QJsonValue &row : rows) {
        QCOMPARE(row.toObject().keys(), QStringList({"2023__NET_PROFIT", "2024__NET_PROFIT", "IND_NAME"}));
    }
}

void tst_SubjectService::badInput_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("errorPart");

    QTest::newRow("not json") << "/bas/subject/data" << QByteArray("{obj_vw_id: 260") << "not JSON";
    QTest::newRow("empty body") << "/bas/subject/data" << QByteArray() << "not JSON";
    QTest::newRow("array body") << "/bas/subject/data" << QByteArray("[1,2]") << "not a JSON object";
    QTest::newRow("unknown view") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":4242,"flag":0})j") << "unknown view";
    QTest::newRow("no view") << "/bas/subject/data" << QByteArray(R"j({"flag":0})j") << "obj_vw_id";
    QTest::newRow("no flag") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":260})j") << "flag";
    QTest::newRow("flag out of range") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":260,"flag":3})j") << "flag";
    QTest::newRow("view id as text of words") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":"abc","flag":0})j") << "obj_vw_id";
    QTest::newRow("page zero") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":260,"flag":1,"page":0,"size":10})j") << "page";
    QTest::newRow("size negative") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":260,"flag":1,"page":1,"size":-5})j") << "size";
    QTest::newRow("page far out of range") << "/bas/subject/data"
                                           << QByteArray(R"j({"obj_vw_id":260,"flag":1,"page":1000000,"size":1000000})j")
                                           << "out of range";
    QTest::newRow("filter not text") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":260,"flag":1,"filter":5})j") << "filter";
    QTest::newRow("filterParams not object") << "/bas/subject/data"
                                             << QByteArray(R"j({"obj_vw_id":260,"flag":1,"filter":"","filterParams":[1]})j")
                                             << "filterParams";
    QTest::newRow("order direction") << "/bas/subject/data" << QByteArray(R"j({"obj_vw_id":260,"flag":1,"order":{"PE":2}})j") << "order";
    QTest::newRow("parameter of wrong type") << "/bas/subject/data"
                                             << QByteArray(R"j({"obj_vw_id":264,"flag":1,"REPORT_DATE":"soon"})j") << "wrong type";
    QTest::newRow("block list not a list") << "/bas/subject/data"
                                           << QByteArray(R"j({"obj_vw_id":260,"flag":1,"filterBlock":"1001"})j") << "wrong type";
    QTest::newRow("unknown objId") << "/bas/ds/data" << QByteArray(R"j({"objId":77})j") << "unknown objId";
    QTest::newRow("neither objId nor objName") << "/bas/ds/data" << QByteArray(R"j({"filter":""})j") << "objName";
    QTest::newRow("navigation root of words") << "/bas/ds/data" << QByteArray(R"j({"objId":38,"P_NODE_CODE":"two"})j") << "P_NODE_CODE";
    QTest::newRow("block filter on unknown field") << "/bas/ds/data"
                                                   << QByteArray(R"j({"objId":43,"filter":"(X == :X)","filterParams":{"X":1}})j")
                                                   << "unknown field";
    QTest::newRow("unknown path") << "/bas/other" << QByteArray("{}") << "no such path";
}

void tst_SubjectService::badInput()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, body);
    QFETCH(QString, errorPart);
    const ServiceReply reply = postToService(base(), path, body);
    QVERIFY(!reply.timedOut);
    QVERIFY2(reply.envelope.contains("state") && reply.envelope.contains("msg") && reply.envelope.contains("extend")
                 && reply.envelope.contains("data"),
             reply.body.constData());
    QVERIFY(reply.state() != 1);
    QVERIFY(reply.data().isNull());
    QVERIFY2(reply.msg().contains(errorPart), qPrintable(reply.msg()));
}

void tst_SubjectService::token_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::addColumn<int>("status");
    QTest::newRow("no header") << QByteArray() << 401;
    QTest::newRow("wrong token") << QByteArray("guess") << 401;
    QTest::newRow("token with a suffix") << QByteArray("s3cretX") << 401;
    QTest::newRow("token in another case") << QByteArray("S3CRET") << 401;
    QTest::newRow("right token") << QByteArray("s3cret") << 200;
}

void tst_SubjectService::token()
{
    QFETCH(QByteArray, token);
    QFETCH(int, status);
    Options options;
    options.token = "s3cret";
    options.dbPath = m_server->databasePath();
    Server guarded(options);
    QString error;
    QVERIFY2(guarded.start(&error), qPrintable(error));
    for (const char *path : {"/bas/subject/data", "/bas/ds/data"}) {
        const ServiceReply reply = postToService(guarded.baseUrl(), path, R"j({"obj_vw_id":260,"flag":0,"objId":390})j", token);
        QCOMPARE(reply.httpStatus, status);
        if (status == 200)
            QCOMPARE(reply.state(), 1);
    }
}

void tst_SubjectService::everyView_data()
{
    QTest::addColumn<qint64>("view");
    for (qint64 id : m_catalogue.viewIds())
        QTest::newRow(qPrintable(QString::number(id))) << id;
}

void tst_SubjectService::everyView()
{
    QFETCH(qint64, view);
    const ViewDefinition *definition = m_catalogue.view(view);
    QVERIFY(definition);

    // flag 0: the whole document, well formed.
    ServiceReply reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", view}, {"flag", 0}});
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonObject document = reply.data().toObject();
    for (const char *table : {"Data", "View_Config", "Object_View_Config", "Summary", "Object_View"})
        QVERIFY2(document.value(QLatin1String(table)).isArray(), table);
    QString viewType;
    QSet<QString> bandNames{"0", ""};
    QStringList leafFields;
    bool hasBands = false;
    for (const QJsonValue &value : document.value("View_Config").toArray()) {
        const QJsonObject row = value.toObject();
        QCOMPARE(qint64(row.value("obj_vw_id").toDouble()), view);
        const QString name = row.value("prop_name").toString();
        QVERIFY(!name.isEmpty());
        if (name == "ObjViewType")
            viewType = row.value("prop_val").toString();
        if (name == "isShowFilter")
            QVERIFY(row.value("prop_val").isBool());
        else
            QVERIFY2(row.value("prop_val").isString(), qPrintable(name));
        if (row.value("prop_typ").toString() != "EXTEND")
            continue;
        const QJsonValue content = parseText(row.value("ext_prop_val"));
        if (name == "ChartViewConfig") {
            QVERIFY(content.isObject());
            QVERIFY(!content.toObject().value("ChartDataConfigs").toArray().isEmpty());
        } else {
            QVERIFY2(content.isArray() && !content.toArray().isEmpty(), qPrintable(name));
        }
        if (name == "Bands") {
            hasBands = true;
            for (const QJsonValue &b : content.toArray()) {
                const QJsonObject o = b.toObject();
                QVERIFY2(bandNames.contains(o.value("OwnerBand").toString()), "a band named before it is defined");
                if (o.value("ColumnType").toString() == "Band")
                    bandNames.insert(o.value("FieldName").toString());
                else
                    leafFields << o.value("FieldName").toString();
            }
        }
        if (name == "filters") {
            for (const QJsonValue &f : content.toArray())
                QVERIFY(!f.toObject().value("ClassName").toString().isEmpty());
        }
    }
    QCOMPARE(viewType, QString(definition->isChart() ? "ViewDataChart" : "ViewDataGrid"));
    QCOMPARE(hasBands, !definition->columns.isEmpty());

    QSet<QString> configured;
    for (const QJsonValue &value : document.value("Object_View_Config").toArray()) {
        const QJsonObject row = value.toObject();
        QVERIFY(parseText(row.value("ots_cfg")).isObject());
        configured << row.value("obj_prop_name").toString();
    }
    for (const QString &leaf : qAsConst(leafFields))
        QVERIFY2(configured.contains(leaf), qPrintable(leaf));

    // Every row carries what the columns and the chart read.
    QStringList fields = definition->sourceFields();
    if (definition->hasCross) {
        fields.clear();
        for (const ColumnSpec &c : definition->cross.rows)
            fields << c.field;
    }
    for (const QJsonValue &row : document.value("Data").toArray()) {
        for (const QString &field : fields)
            QVERIFY2(row.toObject().contains(field), qPrintable(field));
    }

    // flag 1: one page.
    reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", view}, {"flag", 1}, {"page", 2}, {"size", 7}});
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonObject page = reply.data().toObject();
    QVERIFY(page.value("Data").toArray().size() <= 7);
    QMap<QString, int> summary;
    for (const QJsonValue &item : page.value("Summary").toArray())
        summary.insert(item.toObject().value("Item").toString(), item.toObject().value("value").toInt());
    QCOMPARE(summary.value("pindex"), 2);
    QCOMPARE(summary.value("psize"), 7);
    QCOMPARE(page.value("Data").toArray().size(), qBound(0, summary.value("rcount") - 7, 7));

    // flag 2: the whole set.
    reply = postJson(base(), "/bas/subject/data", {{"obj_vw_id", view}, {"flag", 2}});
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonObject whole = reply.data().toObject();
    int rcount = -1;
    bool gridColumns = false;
    for (const QJsonValue &item : whole.value("Summary").toArray()) {
        if (item.toObject().value("Item").toString() == "rcount")
            rcount = item.toObject().value("value").toInt();
        if (item.toObject().value("Item").toString().contains("GridColumns")) {
            gridColumns = true;
            QVERIFY(parseText(item.toObject().value("value")).isArray());
        }
    }
    QCOMPARE(whole.value("Data").toArray().size(), qMin(rcount, 20000));
    QCOMPARE(gridColumns, definition->hasCross);
}

void tst_SubjectService::menuAgreesWithCatalogue()
{
    QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/../../src/subjectpage/json/menu.json"));
    if (!file.exists())
        QSKIP("the plug-in's menu file is not there yet");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray menus = QJsonDocument::fromJson(file.readAll()).object().value("menubar").toArray();
    QCOMPARE(menus.size(), 12);
    QSet<qint64> roots;
    for (const QJsonValue &menuValue : menus) {
        const QJsonObject menu = menuValue.toObject();
        const qint64 root = qint64(menu.value("P_NODE_CODE").toDouble());
        roots << root;
        QJsonArray rows;
        QVERIFY2(m_catalogue.navigationRows(root, QString(), &rows), qPrintable(QString::number(root)));
        QCOMPARE(menu.value("menu").toString(), m_catalogue.topicCaption(root));
        QMap<qint64, QJsonObject> byCode;
        for (const QJsonValue &r : rows)
            byCode.insert(qint64(r.toObject().value("NODE_CODE").toDouble()), r.toObject());
        const QJsonArray items = menu.value("menuItem").toArray();
        QVERIFY(!items.isEmpty());
        for (const QJsonValue &itemValue : items) {
            const QJsonObject item = itemValue.toObject();
            const qint64 view = item.value("obj_vw_id").toString().toLongLong();
            bool found = false;
            for (const QJsonObject &node : qAsConst(byCode)) {
                if (qint64(node.value("OBJ_VW_ID").toDouble()) != view)
                    continue;
                found = true;
                QCOMPARE(item.value("itemName").toString(), node.value("NODE_CAP").toString());
                const QJsonObject parent = byCode.value(qint64(node.value("P_NODE_CODE").toDouble()));
                QCOMPARE(item.value("sectorName").toString(), parent.value("NODE_CAP").toString());
            }
            QVERIFY2(found, qPrintable(QString("view %1 is not in topic %2").arg(view).arg(root)));
        }
    }
    QCOMPARE(roots, QSet<qint64>({190, 2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837}));
}

static void collectColumns(const QList<ColumnSpec> &columns, int depth, QStringList *features)
{
    for (const ColumnSpec &c : columns) {
        if (c.caption.contains('{'))
            *features << "caption expression";
        if (c.isBand) {
            *features << QStringLiteral("band depth %1").arg(depth + 1);
            if (c.hidden)
                *features << "hidden band";
            if (c.showUnitFactor != 0 && c.unitCategory != 0)
                *features << "band unit override";
            collectColumns(c.children, depth + 1, features);
            continue;
        }
        if (c.hidden)
            *features << "hidden column";
        if (c.columnType == "HyperLinkEdit" && c.url.contains("${"))
            *features << "link with placeholder";
        if (c.columnType == "MemoExEdit")
            *features << "memo";
        if (c.unitCategory != 0)
            *features << QStringLiteral("unit category %1").arg(c.unitCategory);
        if (!c.format.isEmpty())
            *features << (c.valueType == "DateTime" ? QStringLiteral("date format") : "format " + c.format);
        if (c.expression.contains("SUM(["))
            *features << "SUM";
        else if (c.expression.contains("MAX(["))
            *features << "MAX";
        else if (!c.expression.isEmpty())
            *features << "arithmetic";
        if (!c.cellStyle.isEmpty())
            *features << "cell style";
    }
}

void tst_SubjectService::catalogueUsesEveryFeature()
{
    QStringList features;
    QStringList classNames;
    for (qint64 id : m_catalogue.viewIds()) {
        const ViewDefinition *view = m_catalogue.view(id);
        collectColumns(view->columns, 0, &features);
        if (view->hasCross) {
            features << "cross";
            collectColumns(view->cross.totals, 0, &features);
            collectColumns(view->cross.values, 0, &features);
        }
        for (const char *property : {"FrozenCount", "VGridColHeaderField", "IsGroup", "IsOrder", "SectorNum"}) {
            if (view->properties.contains(QLatin1String(property)))
                features << QLatin1String(property);
        }
        if (view->properties.value("isShowFilter").isBool())
            features << "isShowFilter as boolean";
        for (const ChildSpec &child : view->children) {
            if (child.link.contains("数据源"))
                features << "child linked to 数据源";
        }
        for (const QJsonValue &value : view->filters) {
            const QJsonObject f = value.toObject();
            classNames << f.value("ClassName").toString();
            if (!f.value("DataSourceName").toString().isEmpty())
                features << "remote list";
            if (!f.value("NameValues").toString().isEmpty())
                features << "literal list";
            if (f.value("FieldName").toString() == "AREA" || f.value("FieldName").toString() == "CST_NUM")
                features << "cached list";
            const QString defaultValue = f.value("DefualtValue").toString();
            if (defaultValue.contains("$today()"))
                features << "$today()";
            if (defaultValue.contains("$adddays(-1)"))
                features << "$adddays(-1)";
            if (QRegularExpression("^(=\\$)(\\w+)\\(\\[(.+)\\]\\)").match(defaultValue).hasMatch())
                features << "dynamic default";
        }
        if (view->isChart()) {
            features << QStringLiteral("legend %1").arg(view->chart.value("LegendPosition").toInt());
            features << "chart " + view->chart.value("ChartType").toString();
            for (const QJsonValue &series : view->chart.value("ChartDataConfigs").toArray()) {
                features << "chart " + series.toObject().value("ChartType").toString();
                if (series.toObject().value("YShaftType").toString() == "Right")
                    features << "right axis";
            }
        }
    }
    const QStringList required = {
        "band depth 1", "band depth 2", "hidden band", "band unit override", "hidden column", "link with placeholder",
        "memo", "unit category 1", "unit category 2", "unit category 3", "unit category 6", "unit category 7",
        "format n0", "format n1", "format n2", "format n3", "format n4", "date format", "SUM", "MAX", "arithmetic",
        "caption expression", "cell style", "cross", "FrozenCount", "VGridColHeaderField", "IsGroup", "IsOrder",
        "SectorNum", "isShowFilter as boolean", "child linked to 数据源", "remote list", "literal list", "cached list",
        "$today()", "$adddays(-1)", "dynamic default", "legend 0", "legend 1", "legend 2", "legend 3", "legend 4",
        "right axis", "chart XYPlot", "chart Line", "chart LineSymbols", "chart LineSmoothed", "chart Area",
        "chart AreaStacked", "chart AreaStacked100pc", "chart Pie", "chart ColumnStacked", "chart Column"};
    for (const QString &feature : required)
        QVERIFY2(features.contains(feature), qPrintable(feature));

    // Every control the factory builds, in the spelling the factory tests for.
    const QStringList controls = {"DecimalTextEditInterval", "dateedit", "simpleyear", "multyear", "checkcombobox",
                                  "UnitFactorCombobox", "textedit", "KeywordsBox", "SimpleButtonGetData",
                                  "SimpleButtonSaveToExcel", "SimpleButtonSort", "datetimeinterval", "ReportDateSimple",
                                  "YearMonthInterval", "virtualcntrl", "F9SecuIdCntrl", "F9COMIDCntrl",
                                  "YearMonthSimple", "LabelControl", "GroupFlagControl"};
    for (const QString &control : controls) {
        bool found = false;
        for (const QString &name : qAsConst(classNames))
            found = found || name.contains(control, Qt::CaseInsensitive);
        QVERIFY2(found, qPrintable(control));
    }
    QVERIFY(classNames.contains("ComboBox"));
}

// For each kind of simple control, a view whose bar opens with a default that
// the service accepts and that leaves fewer rows than no filter. The body is
// the one the bar makes from that default: "(FIELD op :FIELD_i)" terms, or a
// top-level key for a data-source control. "%TODAY%" stands for today's date.
void tst_SubjectService::barDefaultsNarrowTheRows_data()
{
    QTest::addColumn<qint64>("view");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QByteArray>("keys");   // filterParams and top-level keys of the body

    QTest::newRow("date edit") << qint64(7580) << "DateEdit" << "=date'2024-01-01'" << "(START_DATE >= :START_DATE_0)"
                               << QByteArray(R"j({"filterParams":{"START_DATE_0":"[2024-01-01 23:59:59]"}})j");
    QTest::newRow("date-time interval of one day")
        << qint64(47810) << "DateTimeInterval" << "=date'2024-12-31';=date'2024-12-31'"
        << "(TRADE_DATE >= :TRADE_DATE_0) && (TRADE_DATE <= :TRADE_DATE_1)"
        << QByteArray(R"j({"filterParams":{"TRADE_DATE_0":"[2024-12-31 00:00:00]","TRADE_DATE_1":"[2024-12-31 23:59:59]"}})j");
    QTest::newRow("date-time interval up to today")
        << qint64(47820) << "DateTimeInterval" << "=date'2024-12-01';$today()"
        << "(TRADE_DATE >= :TRADE_DATE_0) && (TRADE_DATE <= :TRADE_DATE_1)"
        << QByteArray(R"j({"filterParams":{"TRADE_DATE_0":"[2024-12-01 00:00:00]","TRADE_DATE_1":"[%TODAY% 23:59:59]"}})j");
    QTest::newRow("decimal interval") << qint64(266) << "DecimalTextEditInterval" << "0;30"
                                      << "(PE >= :PE_0) && (PE <= :PE_1)"
                                      << QByteArray(R"j({"filterParams":{"PE_0":0,"PE_1":30}})j");
    QTest::newRow("text edit") << qint64(266) << "TextEdit" << "6000" << "(SECU_CODE like :SECU_CODE_0)"
                               << QByteArray(R"j({"filterParams":{"SECU_CODE_0":"6000"}})j");
    QTest::newRow("hidden F9 security") << qint64(1641) << "F9SecuIdCntrl" << "100000" << "(secu_id == :secu_id_0)"
                                        << QByteArray(R"j({"filterParams":{"secu_id_0":100000}})j");
    QTest::newRow("virtual control as a data-source key") << qint64(47811) << "VirtualCntrl" << "AU" << ""
                                                          << QByteArray(R"j({"CMD_CODE":"AU"})j");
}

void tst_SubjectService::barDefaultsNarrowTheRows()
{
    QFETCH(qint64, view);
    QFETCH(QString, className);
    QFETCH(QString, defaultValue);
    QFETCH(QString, filter);
    QFETCH(QByteArray, keys);

    const ViewDefinition *definition = m_catalogue.view(view);
    QVERIFY(definition);
    QStringList configured;
    for (const QJsonValue &value : definition->filters) {
        if (value.toObject().value("ClassName").toString() == className)
            configured << value.toObject().value("DefualtValue").toString();
    }
    QCOMPARE(configured, QStringList{defaultValue});

    auto rowCount = [this](const QJsonObject &body) {
        const ServiceReply reply = postJson(base(), "/bas/subject/data", body);
        if (reply.state() != 1)
            return -1;
        for (const QJsonValue &item : reply.data().toObject().value("Summary").toArray()) {
            if (item.toObject().value("Item").toString() == "rcount")
                return item.toObject().value("value").toInt();
        }
        return -2;
    };
    const QJsonObject plain{{"obj_vw_id", view}, {"flag", 1}, {"page", 1}, {"size", 1}};
    QJsonObject narrowed = plain;
    const QByteArray today = QDate::currentDate().toString(Qt::ISODate).toLatin1();
    const QJsonObject extra = QJsonDocument::fromJson(keys.replace("%TODAY%", today)).object();
    QVERIFY(!extra.isEmpty());
    for (auto it = extra.begin(); it != extra.end(); ++it)
        narrowed.insert(it.key(), it.value());
    if (!filter.isEmpty())
        narrowed.insert("filter", filter);

    const int all = rowCount(plain);
    const int some = rowCount(narrowed);
    QVERIFY2(some > 0, qPrintable(QString::number(some)));
    QVERIFY2(some < all, qPrintable(QStringLiteral("%1 of %2").arg(some).arg(all)));
}

void tst_SubjectService::concurrentClients()
{
    // Several threads at once, each with its own manager; every answer must be
    // the same page as a single client gets.
    const ServiceReply reference = postJson(base(), "/bas/subject/data",
                                            {{"obj_vw_id", 260}, {"flag", 1}, {"page", 3}, {"size", 50}});
    QCOMPARE(reference.state(), 1);
    const QUrl url = base();
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 6; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 8; ++i) {
                const ServiceReply reply = postJson(url, "/bas/subject/data",
                                                    {{"obj_vw_id", 260}, {"flag", 1}, {"page", 3}, {"size", 50}});
                if (reply.body != reference.body)
                    ++mismatches;
            }
        });
    }
    for (std::thread &t : threads)
        t.join();
    QCOMPARE(mismatches.load(), 0);
}

void tst_SubjectService::executable()
{
    const QString program = QStringLiteral(SUBJECT_BIN_DIR "/subject-service");
    if (!QFileInfo::exists(program))
        QSKIP("subject-service is not built in this tree");
    QProcess process;
    process.start(program, {"--port", "0", "--db", m_server->databasePath(), "--token", "t"});
    QVERIFY(process.waitForStarted(10000));
    QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), 60000);
    const QString line = QString::fromUtf8(process.readLine()).trimmed();
    const QRegularExpressionMatch m = QRegularExpression("^listening on (http://127\\.0\\.0\\.1:(\\d+))$").match(line);
    QVERIFY2(m.hasMatch(), qPrintable(line));
    QVERIFY(m.captured(2).toInt() > 0);
    const ServiceReply reply = postToService(QUrl(m.captured(1)), "/bas/ds/data", R"j({"objId":390})j", "t");
    QCOMPARE(reply.httpStatus, 200);
    QCOMPARE(reply.state(), 1);
    QCOMPARE(process.readAll().trimmed(), QByteArray());   // exactly one line
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 0);

    QProcess bad;
    bad.start(program, {"--port", "70000"});
    QVERIFY(bad.waitForFinished(10000));
    QCOMPARE(bad.exitCode(), 2);
}

QTEST_GUILESS_MAIN(tst_SubjectService)
#include "tst_subjectservice.moc"
