#include "catalogue.h"
#include "configurationdocument.h"
#include "subjectservice.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <sqlite3.h>

#include <atomic>
#include <thread>

using namespace SubjectService;

namespace {

struct ServiceReply
{
    int httpStatus = 0;     // 0: no answer in time
    QByteArray body;
    QJsonObject envelope;
    int state() const { return envelope.value("state").toInt(-999); }
    QString msg() const { return envelope.value("msg").toString(); }
    QJsonValue data() const { return envelope.value("data"); }
};

// A blocking POST over loopback, from any thread; bounded, so that a hung
// service fails the test instead of the run.
ServiceReply postTo(const QUrl &base, const QString &path, const QByteArray &body, const QByteArray &token = {})
{
    QNetworkAccessManager manager;
    QUrl url = base;
    url.setPath(path);
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    if (!token.isNull())
        request.setRawHeader("kvt-token", token);
    std::unique_ptr<QNetworkReply> reply(manager.post(request, body));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(30000, &loop, &QEventLoop::quit);
    loop.exec();
    ServiceReply result{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(), {}};
    result.envelope = QJsonDocument::fromJson(result.body).object();
    return result;
}

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

// EXTEND values and Summary items carry JSON as text.
QJsonValue parseText(const QJsonValue &value)
{
    const QJsonDocument document = QJsonDocument::fromJson(value.toString().toUtf8());
    return document.isArray() ? QJsonValue(document.array())
                              : document.isObject() ? QJsonValue(document.object()) : QJsonValue(QJsonValue::Undefined);
}

QMap<QString, QJsonValue> summaryOf(const QJsonObject &data)
{
    QMap<QString, QJsonValue> items;
    for (const QJsonValue &item : data.value("Summary").toArray())
        items.insert(item.toObject().value("Item").toString(), item.toObject().value("value"));
    return items;
}

// A value as the rows of a test name it: dates come as milliseconds of local midnight.
QString text(const QJsonValue &value)
{
    if (value.isDouble() && value.toDouble() > 1e11)
        return QDateTime::fromMSecsSinceEpoch(qint64(value.toDouble())).date().toString(Qt::ISODate);
    return value.isDouble() ? QString::number(value.toDouble(), 'g', 15) : value.toString();
}

} // namespace

class tst_SubjectService : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void navigation_data();
    void navigation();
    void dataSource_data();
    void dataSource();
    void viewRows_data();
    void viewRows();
    void filterTranslation_data();
    void filterTranslation();
    void order_data();
    void order();
    void crossView();
    void badInput_data();
    void badInput();
    void token_data();
    void token();
    void everyView_data();
    void everyView();
    void catalogueCoversEveryFeature_data();
    void catalogueCoversEveryFeature();
    void concurrentClients();
    void helpPage();
    void executable();

private:
    ServiceReply post(const QString &path, const QJsonObject &body) const
    {
        return postTo(m_server->baseUrl(), path, QJsonDocument(body).toJson(QJsonDocument::Compact));
    }
    QStringList idsFromDatabase(const QString &where, int *count) const;

    QTemporaryDir m_dir;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<Server> m_guarded;
    Catalogue m_catalogue;
    QMap<qint64, QJsonObject> m_menus;   // the plug-in's menus by topic
};

void tst_SubjectService::initTestCase()
{
    QVERIFY(m_dir.isValid());
    Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("service.sqlite"));
    m_server.reset(new Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    options.token = "s3cret";
    m_guarded.reset(new Server(options));
    QVERIFY2(m_guarded->start(&error), qPrintable(error));
    QVERIFY2(m_catalogue.load(&error), qPrintable(error));
    QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/../../src/subjectpage/json/menu.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray menus = QJsonDocument::fromJson(file.readAll()).object().value("menubar").toArray();
    for (const QJsonValue &menu : menus)
        m_menus.insert(qint64(menu.toObject().value("P_NODE_CODE").toDouble()), menu.toObject());
    QCOMPARE(m_menus.size(), menus.size());
}

void tst_SubjectService::cleanupTestCase()
{
    m_guarded->stop();
    m_server->stop();
}

// The first hundred identifiers of the stocks where the condition holds, and their count.
QStringList tst_SubjectService::idsFromDatabase(const QString &where, int *count) const
{
    sqlite3 *db = nullptr;
    sqlite3_open_v2(QFile::encodeName(m_server->databasePath()).constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt *stmt = nullptr;
    const QByteArray sql = QStringLiteral("SELECT SECU_ID FROM stock WHERE %1 ORDER BY SECU_ID").arg(where).toUtf8();
    QStringList ids;
    const bool prepared = sqlite3_prepare_v2(db, sql.constData(), -1, &stmt, nullptr) == SQLITE_OK;
    for (*count = prepared ? 0 : -1; prepared && sqlite3_step(stmt) == SQLITE_ROW; ++*count) {
        if (*count < 100)
            ids << QString::number(sqlite3_column_int64(stmt, 0));
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return ids;
}

// Every topic of the plug-in's menus, and no other: the tree the service
// sends, and the menu's items and sectors named as the nodes showing their views.
void tst_SubjectService::navigation_data()
{
    QTest::addColumn<int>("root");
    for (int root : {2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837, 190})
        QTest::newRow(qPrintable(QString::number(root))) << root;
}

void tst_SubjectService::navigation()
{
    QFETCH(int, root);
    QCOMPARE(m_menus.size(), 12);
    const QJsonObject menu = m_menus.value(root);
    QCOMPARE(menu.value("menu").toString(), m_catalogue.topicCaption(root));
    const ServiceReply reply = post("/bas/ds/data", {{"objId", 38}, {"P_NODE_CODE", root},
                                                     {"auth", QJsonObject{{"userId", "u"}, {"prodId", "p"}}}});
    QCOMPARE(reply.state(), 1);
    QMap<qint64, QJsonObject> byCode{{root, QJsonObject()}};
    int views = 0;
    for (const QJsonValue &value : reply.data().toArray()) {
        const QJsonObject row = value.toObject();
        // Constants ride along, attached to no node.
        if (row.contains("VALUE") && row.value("P_NODE_CODE").toInt() == -2)
            continue;
        const qint64 code = qint64(row.value("NODE_CODE").toDouble());
        QVERIFY2(byCode.contains(qint64(row.value("P_NODE_CODE").toDouble())), "a node before its parent or an orphan");
        QVERIFY(!byCode.contains(code) && !row.value("NODE_CAP").toString().isEmpty());
        byCode.insert(code, row);
        const qint64 view = qint64(row.value("OBJ_VW_ID").toDouble());
        views += view != 0;
        QVERIFY(view == 0 || m_catalogue.view(view));
        const QString url = row.value("NODE_URL").toString();
        QVERIFY2(url.isEmpty() || url.startsWith(m_server->baseUrl().toString()), qPrintable(url));
    }
    QVERIFY(views >= 1);
    QVERIFY(!menu.value("menuItem").toArray().isEmpty());
    for (const QJsonValue &itemValue : menu.value("menuItem").toArray()) {
        const QJsonObject item = itemValue.toObject();
        QStringList found;   // item and sector names of the nodes showing the item's view
        for (const QJsonObject &node : qAsConst(byCode)) {
            if (qint64(node.value("OBJ_VW_ID").toDouble()) == item.value("obj_vw_id").toString().toLongLong())
                found << node.value("NODE_CAP").toString() + '/'
                             + byCode.value(qint64(node.value("P_NODE_CODE").toDouble())).value("NODE_CAP").toString();
        }
        QVERIFY2(!found.isEmpty(), qPrintable(item.value("obj_vw_id").toString()));
        for (const QString &names : qAsConst(found))
            QCOMPARE(names, item.value("itemName").toString() + '/' + item.value("sectorName").toString());
    }
}

// Blocks, constants and the lists of list controls: rows, the keys of a row,
// and values that must be among the rows' values of a field.
void tst_SubjectService::dataSource_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("rows");      // -1: some
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QStringList>("values");

    QTest::newRow("constants") << QByteArray(R"j({"objId":390})j") << -1 << "FILTER1 NAME TYPE TYPE_DESC VALUE"
                               << "TYPE" << QStringList{"AREA", "CST_NUM"};
    QTest::newRow("blocks of a type") << QByteArray(R"j({"objId":43,"filter":"(SECU_TYP_CODE == :T)","filterParams":{"T":10}})j")
                                      << 39 << "P_SECT_ID SECT_ID SECT_NAME SECU_TYP_CODE" << "P_SECT_ID" << QStringList{"0"};
    QTest::newRow("no blocks of a type") << QByteArray(R"j({"objId":43,"filter":"(SECU_TYP_CODE == :T)","filterParams":{"T":20}})j")
                                         << 0 << "" << "" << QStringList();
    // A list control's own body: no auth, no objId.
    QTest::newRow("list") << QByteArray(R"j({"objName":"PROVINCE_LIST","filter":"","filterParams":{}})j") << 14
                          << "NAME VALUE" << "" << QStringList();
    QTest::newRow("list narrowed") << QByteArray(R"j({"objName":"PROVINCE_LIST","filter":"(REGION == :R)","filterParams":{"R":"HB"}})j")
                                   << 2 << "NAME VALUE" << "VALUE" << QStringList{"北京", "天津"};
}

void tst_SubjectService::dataSource()
{
    QFETCH(QByteArray, body);
    QFETCH(int, rows);
    QFETCH(QString, keys);
    QFETCH(QString, field);
    QFETCH(QStringList, values);

    const ServiceReply reply = post("/bas/ds/data", object(body));
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonArray got = reply.data().toArray();
    QVERIFY(rows >= 0 ? got.size() == rows : !got.isEmpty());
    QSet<QString> seen;
    for (const QJsonValue &row : got) {
        QCOMPARE(QStringList(row.toObject().keys()).join(' '), keys);
        seen << text(row.toObject().value(field));
    }
    for (const QString &value : values)
        QVERIFY2(seen.contains(value), qPrintable(value));
}

// Rows of /bas/subject/data under paging, data-source parameters, the
// foreign filters of a configuration request and the bodies a filter bar
// makes from its defaults. Every body starts from view 260, flag 1, first
// page of 200; the other flags take no paging. "%TODAY%" stands for today.
void tst_SubjectService::viewRows_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("rows");           // -1: some, fewer than the view has
    QTest::addColumn<QString>("summary");    // items that must be there
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value");      // every row's value of field

    auto row = [](const char *name, const char *body, int rows, const char *summary, const char *field = "",
                  const char *value = "") {
        QTest::newRow(name) << QByteArray(body) << rows << QString(summary) << QString(field) << QString::fromUtf8(value);
    };
    row("first page", "{}", 200, "rcount=2000 pindex=1 psize=200");
    row("middle page", R"j({"page":3,"size":150})j", 150, "rcount=2000 pindex=3 psize=150");
    row("last partial page", R"j({"page":7,"size":300})j", 200, "rcount=2000 pindex=7 psize=300");
    row("past the end", R"j({"page":11})j", 0, "rcount=2000 pindex=11 psize=200");
    row("one row", R"j({"page":2000,"size":1})j", 1, "rcount=2000 pindex=2000 psize=1");
    row("the whole set without paging", R"j({"flag":2})j", 2000, "rcount=2000 pindex=1 psize=2000");
    row("a whole set stops at 20000", R"j({"obj_vw_id":501,"flag":2})j", 20000, "rcount=45000");
    // A configuration request ignores the filters of the view shown before.
    row("configuration leaves foreign fields out", R"j({"flag":0,"filter":"(YM >= :YM_0) && (YM <= :YM_1)",
        "filterParams":{"YM_0":"'2024-1'","YM_1":"'2024-1'"}})j", 100, "rcount=2000 pindex=1 psize=100");
    row("configuration still filters by its own", R"j({"flag":0,"filter":"(YM >= :YM_0) && (MKT == :MKT_0)",
        "filterParams":{"YM_0":"'2024-1'","MKT_0":"no such market"}})j", 0, "rcount=0");
    row("report date as text", R"j({"obj_vw_id":264,"REPORT_DATE":"2024-09-30"})j", 200, "rcount=2000", "END_DATE", "2024-09-30");
    row("security of a child chart", R"j({"obj_vw_id":262,"SECU_ID":100007})j", 30, "rcount=30");
    row("empty keywords do not filter", R"j({"keywords":""})j", 200, "rcount=2000");
    row("block list", R"j({"filterBlock":[1001]})j", -1, "", "IND_NAME", "银行");
    row("empty block list", R"j({"filterBlock":[]})j", 200, "rcount=2000");
    row("undeclared keys ignored", R"j({"IsStat":1,"x; DROP TABLE stock":"1"})j", 200, "rcount=2000");
    row("bar default: date-time interval up to today", R"j({"obj_vw_id":47820,
        "filter":"(TRADE_DATE >= :TRADE_DATE_0) && (TRADE_DATE <= :TRADE_DATE_1)",
        "filterParams":{"TRADE_DATE_0":"[2024-12-01 00:00:00]","TRADE_DATE_1":"[%TODAY% 23:59:59]"}})j", -1, "");
    row("bar default: virtual control as a data-source key", R"j({"obj_vw_id":47811,"CMD_CODE":"AU"})j", -1, "");
}

void tst_SubjectService::viewRows()
{
    QFETCH(QByteArray, body);
    QFETCH(int, rows);
    QFETCH(QString, summary);
    QFETCH(QString, field);
    QFETCH(QString, value);

    QJsonObject request{{"obj_vw_id", 260}, {"flag", 1}, {"page", 1}, {"size", 200}};
    const QJsonObject extra = object(body.replace("%TODAY%", QDate::currentDate().toString(Qt::ISODate).toLatin1()));
    QVERIFY(!extra.isEmpty() || body == "{}");
    for (auto it = extra.begin(); it != extra.end(); ++it)
        request.insert(it.key(), it.value());
    if (request.value("flag").toInt() != 1) {
        request.remove("page");
        request.remove("size");
    }
    const ServiceReply reply = post("/bas/subject/data", request);
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonArray got = reply.data().toObject().value("Data").toArray();
    const QMap<QString, QJsonValue> items = summaryOf(reply.data().toObject());
    if (rows < 0) {
        const ServiceReply all = post("/bas/subject/data", {{"obj_vw_id", request.value("obj_vw_id")}, {"flag", 1},
                                                            {"page", 1}, {"size", 1}});
        const int some = items.value("rcount").toInt();
        QVERIFY2(some > 0 && some < summaryOf(all.data().toObject()).value("rcount").toInt(), qPrintable(QString::number(some)));
    }
    QCOMPARE(got.size(), rows < 0 ? got.size() : rows);
    for (const QString &pair : summary.split(' ', Qt::SkipEmptyParts))
        QCOMPARE(pair.section('=', 0, 0) + '=' + text(items.value(pair.section('=', 0, 0))), pair);
    for (int i = 0; !field.isEmpty() && i < got.size(); ++i)
        QCOMPARE(text(got.at(i).toObject().value(field)), value);
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
    rows("less or equal, date", "(LIST_DATE <= :d)", R"j({"d":"2000-01-01"})j", "LIST_DATE <= '2000-01-01'", 10);
    rows("date with time in brackets", "(LIST_DATE <= :d)", R"j({"d":"[2000-01-01 23:59:59]"})j", "LIST_DATE <= '2000-01-01'", 10);
    rows("a day's last second excludes the day", "(LIST_DATE >= :d)", R"j({"d":"[2000-01-01 23:59:59]"})j",
         "LIST_DATE > '2000-01-01'", 100);
    rows("midnight is the day itself", "(LIST_DATE >= :d)", R"j({"d":"[2000-01-01 00:00:00]"})j", "LIST_DATE >= '2000-01-01'", 100);
    rows("equal date", "(TRADE_DATE == :d)", R"j({"d":"2024-12-31"})j", "TRADE_DATE = '2024-12-31'", 2000);
    rows("equal date at a time of day", "(TRADE_DATE == :d)", R"j({"d":"[2024-12-31 23:59:59]"})j", "0", 0);
    rows("greater than a service date", "(LIST_DATE > :d)", R"j({"d":"/Date(946656000000+0800)"})j",
         "LIST_DATE > '2000-01-01'", 100);
    rows("less than a service date west of UTC", "(LIST_DATE < :d)", R"j({"d":"/Date(946684800000-0500)"})j",
         "LIST_DATE <= '1999-12-31'", 10);
    rows("service date in brackets", "(LIST_DATE >= :d)", R"j({"d":"[/Date(946656000000+0800)]"})j",
         "LIST_DATE >= '2000-01-01'", 100);
    rows("not equal to a date", "(LIST_DATE != :d)", R"j({"d":"[2000-01-01 00:00:00]"})j", "LIST_DATE <> '2000-01-01'", 100);
    rows("interval of a day", "(LIST_DATE >= :LIST_DATE_0) && (LIST_DATE <= :LIST_DATE_1)",
         R"j({"LIST_DATE_0":"[2010-01-01 00:00:00]","LIST_DATE_1":"[2010-12-31 23:59:59]"})j",
         "LIST_DATE BETWEEN '2010-01-01' AND '2010-12-31'", 10);
    rows("dates in a list, mixed forms", "(LIST_DATE in :d)",
         R"j({"d":["2000-02-13","[2006-12-13 00:00:00]","/Date(1662912000000+0800)"]})j",
         "LIST_DATE IN ('2000-02-13','2006-12-13','2022-09-12')", 10);
    rows("date not in one scalar", "(LIST_DATE nin :d)", R"j({"d":"[2000-02-13 00:00:00]"})j", "LIST_DATE <> '2000-02-13'", 1990);
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
    rows("parameter bound twice", "(CHG_PCT >= :a) && (TURNOVER >= :a)", R"j({"a":3})j", "CHG_PCT >= 3 AND TURNOVER >= 3", 1);
    rows("field name in any case", "(chg_pct > :a)", R"j({"a":9})j", "CHG_PCT > 9", 0);
    rows("no spaces", "(CHG_PCT>:a)&&(MKT==:b)", R"j({"a":2,"b":"上交所"})j", "CHG_PCT > 2 AND MKT = '上交所'", 1);
    rows("empty filter", "", R"j({})j", "1", 2000);
    rows("quote in value", "(SECU_SHT == :s)", R"j({"s":"x' OR '1'='1"})j", "0", 0);
    rows("sql words in value", "(IND_NAME in :s)", R"j({"s":["银行') OR 1=1 --","SELECT * FROM stock"]})j", "0", 0);
    error("table of another view", "(sqlite_master == :s)", R"j({"s":"a"})j", "unknown field");
    error("or is refused", "(CHG_PCT > :a) || (PE > :a)", R"j({"a":1})j", "||");
    error("flags on a text field", "(MKT && :a)", R"j({"a":1})j", "whole-number field");
    error("flags with a fraction", "(SECU_ID && :a)", R"j({"a":1.5})j", "whole number");
    error("flags with two values", "(SECU_ID && :a)", R"j({"a":[1,2]})j", "wrong type");
    error("unreadable service date", "(LIST_DATE > :d)", R"j({"d":"/Date(abc+0800)"})j", "wrong type");
    error("date with a month 13", "(LIST_DATE > :d)", R"j({"d":"[2000-13-01 00:00:00]"})j", "wrong type");
    error("unbound parameter", "(CHG_PCT > :a)", R"j({"b":1})j", ":a");
    error("text for a number", "(CHG_PCT > :a)", R"j({"a":"abc"})j", "wrong type");
    error("boolean for a number", "(CHG_PCT > :a)", R"j({"a":true})j", "wrong type");
    error("two values for greater", "(CHG_PCT > :a)", R"j({"a":[1,2]})j", "wrong type");
    error("object for text", "(SECU_SHT == :s)", R"j({"s":{"x":1}})j", "wrong type");
    error("no date", "(LIST_DATE > :d)", R"j({"d":"yesterday"})j", "wrong type");
    error("null value", "(MKT == :m)", R"j({"m":null})j", "wrong type");
}

// The service's rows against the database's own answer to the same condition
// in SQL: the count, and the first page of identifiers.
void tst_SubjectService::filterTranslation()
{
    QFETCH(QString, filter);
    QFETCH(QByteArray, params);
    QFETCH(QString, expectedWhere);
    QFETCH(QString, errorPart);
    QFETCH(int, minRows);

    const ServiceReply reply = post("/bas/subject/data", {{"obj_vw_id", 260}, {"flag", 1}, {"page", 1}, {"size", 100},
                                                          {"filter", filter}, {"filterParams", object(params)},
                                                          {"order", QJsonObject{{"SECU_ID", 1}}}});
    if (expectedWhere.isEmpty()) {
        QCOMPARE(reply.state(), 0);
        QVERIFY2(reply.msg().contains(errorPart), qPrintable(reply.msg()));
        return;
    }
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    QStringList got;
    for (const QJsonValue &row : reply.data().toObject().value("Data").toArray())
        got << QString::number(qint64(row.toObject().value("SECU_ID").toDouble()));
    int count = 0;
    QCOMPARE(got, idsFromDatabase(expectedWhere, &count));
    QVERIFY(count >= minRows);
    QCOMPARE(summaryOf(reply.data().toObject()).value("rcount").toInt(), count);
}

void tst_SubjectService::order_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("pages");     // of 200 rows
    QTest::newRow("numbers descending") << "CHG_PCT" << -1 << 1;
    // Many ties: pages must still partition the set.
    QTest::newRow("texts ascending, with ties") << "IND_NAME" << 1 << 10;
}

void tst_SubjectService::order()
{
    QFETCH(QString, field);
    QFETCH(int, direction);
    QFETCH(int, pages);
    QSet<qint64> ids;
    QJsonValue previous;
    for (int page = 1; page <= pages; ++page) {
        const ServiceReply reply = post("/bas/subject/data", {{"obj_vw_id", 260}, {"flag", 1}, {"page", page},
                                                              {"size", 200}, {"order", QJsonObject{{field, direction}}}});
        for (const QJsonValue &value : reply.data().toObject().value("Data").toArray()) {
            const QJsonValue current = value.toObject().value(field);
            const int sign = current.isDouble() ? (current.toDouble() > previous.toDouble()) - (current.toDouble() < previous.toDouble())
                                                : QString::compare(current.toString(), previous.toString());
            QVERIFY2(previous.isUndefined() || previous.isNull() || sign * direction >= 0, qPrintable(text(previous) + " then " + text(current)));
            previous = current;
            ids << qint64(value.toObject().value("SECU_ID").toDouble());
        }
    }
    QCOMPARE(ids.size(), pages * 200);
}

void tst_SubjectService::crossView()
{
    const ServiceReply reply = post("/bas/subject/data", {{"obj_vw_id", 1590}, {"flag", 2}, {"filter", "(YEAR in :YEAR_0)"},
                                                          {"filterParams", QJsonObject{{"YEAR_0", QJsonArray{2023.0, 2024.0}}}}});
    QCOMPARE(reply.state(), 1);
    const QJsonObject document = reply.data().toObject();
    // A cross view's whole set comes with its configuration.
    QVERIFY(document.contains("View_Config"));
    QStringList leaves;
    for (const QJsonValue &c : parseText(summaryOf(document).value("GridColumns")).toArray()) {
        const QJsonObject o = c.toObject();
        QVERIFY(o.contains("fieldName") && o.contains("ownerBand") && o.contains("showStatus") && !o.contains("FieldName"));
        if (o.value("columnType").toString() != "Band")
            leaves << o.value("fieldName").toString();
    }
    QCOMPARE(leaves, QStringList({"IND_NAME", "2023__NET_PROFIT", "2024__NET_PROFIT", "TOTAL_NET_PROFIT", "MAX_NET_PROFIT"}));
    const QJsonArray rows = document.value("Data").toArray();
    QCOMPARE(rows.size(), 16);
    for (const QJsonValue &row : rows)
        QCOMPARE(row.toObject().keys(), QStringList({"2023__NET_PROFIT", "2024__NET_PROFIT", "IND_NAME"}));
}

void tst_SubjectService::badInput_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("errorPart");

    auto view = [](const char *name, const char *body, const char *errorPart) {
        QTest::newRow(name) << "/bas/subject/data" << QByteArray(body) << errorPart;
    };
    auto source = [](const char *name, const char *body, const char *errorPart) {
        QTest::newRow(name) << "/bas/ds/data" << QByteArray(body) << errorPart;
    };
    view("not json", "{obj_vw_id: 260", "not JSON");
    view("array body", "[1,2]", "not a JSON object");
    view("unknown view", R"j({"obj_vw_id":4242,"flag":0})j", "unknown view");
    view("no view", R"j({"flag":0})j", "obj_vw_id");
    view("no flag", R"j({"obj_vw_id":260})j", "flag");
    view("flag out of range", R"j({"obj_vw_id":260,"flag":3})j", "flag");
    view("view id as text of words", R"j({"obj_vw_id":"abc","flag":0})j", "obj_vw_id");
    view("page zero", R"j({"obj_vw_id":260,"flag":1,"page":0,"size":10})j", "page");
    view("size negative", R"j({"obj_vw_id":260,"flag":1,"page":1,"size":-5})j", "size");
    view("page far out of range", R"j({"obj_vw_id":260,"flag":1,"page":1000000,"size":1000000})j", "out of range");
    view("filter not text", R"j({"obj_vw_id":260,"flag":1,"filter":5})j", "filter");
    view("filterParams not object", R"j({"obj_vw_id":260,"flag":1,"filter":"","filterParams":[1]})j", "filterParams");
    view("order direction", R"j({"obj_vw_id":260,"flag":1,"order":{"PE":2}})j", "order");
    view("order on a field of words", R"j({"obj_vw_id":260,"flag":1,"order":{"CHG_PCT; DROP TABLE stock":-1}})j", "unknown field");
    view("rows refuse foreign fields", R"j({"obj_vw_id":260,"flag":1,"filter":"(YM >= :YM_0)","filterParams":{"YM_0":"'2024-1'"}})j",
         "unknown field");
    view("parameter of wrong type", R"j({"obj_vw_id":264,"flag":1,"REPORT_DATE":"soon"})j", "wrong type");
    view("block list not a list", R"j({"obj_vw_id":260,"flag":1,"filterBlock":"1001"})j", "wrong type");
    source("unknown objId", R"j({"objId":77})j", "unknown objId");
    source("neither objId nor objName", R"j({"filter":""})j", "objName");
    source("navigation root of words", R"j({"objId":38,"P_NODE_CODE":"two"})j", "P_NODE_CODE");
    source("unknown navigation root", R"j({"objId":38,"P_NODE_CODE":99999})j", "99999");
    source("unknown list", R"j({"objName":"NO_SUCH_LIST"})j", "NO_SUCH_LIST");
    source("block filter on unknown field", R"j({"objId":43,"filter":"(X == :X)","filterParams":{"X":1}})j", "unknown field");
    QTest::newRow("unknown path") << "/bas/other" << QByteArray("{}") << "no such path";
}

void tst_SubjectService::badInput()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, body);
    QFETCH(QString, errorPart);
    const ServiceReply reply = postTo(m_server->baseUrl(), path, body);
    QVERIFY(reply.httpStatus != 0);
    QCOMPARE(QStringList(reply.envelope.keys()), QStringList({"data", "extend", "msg", "state"}));
    QVERIFY(reply.state() != 1 && reply.data().isNull());
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
    for (const char *path : {"/bas/subject/data", "/bas/ds/data"}) {
        const ServiceReply reply = postTo(m_guarded->baseUrl(), path, R"j({"obj_vw_id":260,"flag":0,"objId":390})j", token);
        QCOMPARE(reply.httpStatus, status);
        QCOMPARE(reply.state(), status == 200 ? 1 : 0);
    }
}

void tst_SubjectService::everyView_data()
{
    QTest::addColumn<qint64>("view");
    for (qint64 id : m_catalogue.viewIds())
        QTest::newRow(qPrintable(QString::number(id))) << id;
}

// Every view of the catalogue, under each flag: a document of five tables, a
// page, and the whole set with a cross view's columns. What the plug-in reads
// from each view's configuration is compared with the view's file elsewhere.
void tst_SubjectService::everyView()
{
    QFETCH(qint64, view);
    const ViewDefinition *definition = m_catalogue.view(view);
    QVERIFY(definition);

    ServiceReply reply = post("/bas/subject/data", {{"obj_vw_id", view}, {"flag", 0}});
    QVERIFY2(reply.state() == 1, qPrintable(reply.msg()));
    const QJsonObject document = reply.data().toObject();
    for (const char *table : {"Data", "View_Config", "Object_View_Config", "Summary", "Object_View"})
        QVERIFY2(document.value(QLatin1String(table)).isArray(), table);
    QString viewType;
    for (const QJsonValue &value : document.value("View_Config").toArray()) {
        if (value.toObject().value("prop_name").toString() == "ObjViewType")
            viewType = value.toObject().value("prop_val").toString();
    }
    QCOMPARE(viewType, QString(definition->isChart() ? "ViewDataChart" : "ViewDataGrid"));

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

    reply = post("/bas/subject/data", {{"obj_vw_id", view}, {"flag", 1}, {"page", 2}, {"size", 7}});
    const QMap<QString, QJsonValue> summary = summaryOf(reply.data().toObject());
    QCOMPARE(text(summary.value("pindex")) + '/' + text(summary.value("psize")), QString("2/7"));
    const int rcount = summary.value("rcount").toInt();
    QCOMPARE(reply.data().toObject().value("Data").toArray().size(), qBound(0, rcount - 7, 7));

    // The whole set of a large view is asked once, in viewRows.
    if (rcount > 2000 && !definition->hasCross)
        return;
    reply = post("/bas/subject/data", {{"obj_vw_id", view}, {"flag", 2}});
    const QJsonObject whole = reply.data().toObject();
    const QMap<QString, QJsonValue> wholeSummary = summaryOf(whole);
    QCOMPARE(whole.value("Data").toArray().size(), qMin(wholeSummary.value("rcount").toInt(), 20000));
    QCOMPARE(parseText(wholeSummary.value("GridColumns")).isArray(), definition->hasCross);
}

void tst_SubjectService::catalogueCoversEveryFeature_data()
{
    QTest::addColumn<QStringList>("patterns");
    auto row = [](const char *name, const QStringList &patterns) { QTest::newRow(name) << patterns; };
    const QString band = R"("ColumnType":"Band"[^{}]*)";
    const QString leaf = R"("ColumnType":"(?!Band")[^"]*"[^{}]*)";
    row("bands", {band + R"("Level":1)", band + R"("Level":2)", band + R"("Visible":false)",
                  band + R"("ShowUnitFactor":[1-9][^{}]*"UnitCategory":[1-9])"});
    row("columns", {leaf + R"("Visible":false)", R"("ColumnType":"HyperLinkEdit"[^{}]*"Url":"[^"]*\$\{)",
                    R"("ColumnType":"MemoExEdit")", R"("Caption":"[^"]*\{)", R"("CellStyleExpression":"[^"])"});
    row("unit categories", {R"("UnitCategory":1\b)", R"("UnitCategory":2\b)", R"("UnitCategory":3\b)",
                            R"("UnitCategory":6\b)", R"("UnitCategory":7\b)"});
    row("formats", {R"("FormatString":"n0")", R"("FormatString":"n1")", R"("FormatString":"n2")",
                    R"("FormatString":"n3")", R"("FormatString":"n4")", R"("FormatString":"yyyy)"});
    row("expressions", {R"(SUM\(\[)", R"(MAX\(\[)", R"("UnboundExpression":"[^"]*\[)"});
    row("view properties", {R"("prop_name":"IsCross","prop_typ":"VIEW","prop_val":"1")", R"("prop_name":"FrozenCount")",
                            R"("prop_name":"VGridColHeaderField")", R"("prop_name":"IsGroup")", R"("prop_name":"IsOrder")",
                            R"("prop_name":"SectorNum")", R"("prop_name":"isShowFilter","prop_typ":"VIEW","prop_val":(true|false))",
                            "数据源\\."});
    row("filter lists and defaults", {R"("DataSourceName":"[^"])", R"("NameValues":"[^"])", R"("FieldName":"AREA")",
                                      R"("FieldName":"CST_NUM")", R"("DefualtValue":"[^"]*\$today\(\))",
                                      R"("DefualtValue":"[^"]*\$adddays\(-1\))", R"("DefualtValue":"=\$\w+\(\[)"});
    row("charts", {R"("LegendPosition":0)", R"("LegendPosition":1)", R"("LegendPosition":2)", R"("LegendPosition":3)",
                   R"("LegendPosition":4)", R"("YShaftType":"Right")", R"("ChartType":"XYPlot")", R"("ChartType":"Line")",
                   R"("ChartType":"LineSymbols")", R"("ChartType":"LineSmoothed")", R"("ChartType":"Area")",
                   R"("ChartType":"AreaStacked")", R"("ChartType":"AreaStacked100pc")", R"("ChartType":"Pie")",
                   R"("ChartType":"ColumnStacked")", R"("ChartType":"Column")"});
    // Every control the factory builds, in the spelling the factory tests for.
    QStringList controls;
    for (const char *name : {"DecimalTextEditInterval", "dateedit", "simpleyear", "multyear", "checkcombobox",
                             "UnitFactorCombobox", "textedit", "KeywordsBox", "SimpleButtonGetData",
                             "SimpleButtonSaveToExcel", "SimpleButtonSort", "datetimeinterval", "ReportDateSimple",
                             "YearMonthInterval", "virtualcntrl", "F9SecuIdCntrl", "F9COMIDCntrl", "YearMonthSimple",
                             "LabelControl", "GroupFlagControl"})
        controls << QString(R"r((?i)"ClassName":"[^"]*%1)r").arg(QLatin1String(name));
    row("controls", controls << R"("ClassName":"ComboBox")");
}

// The demo catalogue is what the end-to-end suites walk: the configuration
// the page reads must hold a view for every feature of the page.
void tst_SubjectService::catalogueCoversEveryFeature()
{
    QFETCH(QStringList, patterns);
    QString wire;
    for (qint64 id : m_catalogue.viewIds()) {
        const ViewDefinition &view = *m_catalogue.view(id);
        for (const QJsonValue &row : ConfigurationDocument::viewConfig(view)) {
            wire += QString::fromUtf8(QJsonDocument(row.toObject()).toJson(QJsonDocument::Compact))
                    + row.toObject().value("ext_prop_val").toString() + '\n';
        }
        for (const QJsonValue &row : ConfigurationDocument::objectViewConfig(view))
            wire += row.toObject().value("ots_cfg").toString() + '\n';
        if (view.hasCross)
            wire += QJsonDocument(ConfigurationDocument::gridColumns(view, {"2024"})).toJson(QJsonDocument::Compact);
    }
    for (const QString &pattern : patterns)
        QVERIFY2(QRegularExpression(pattern).match(wire).hasMatch(), qPrintable(pattern));
}

void tst_SubjectService::concurrentClients()
{
    // Several threads at once, each with its own manager; every answer must be
    // the same page as a single client gets.
    const QJsonObject body{{"obj_vw_id", 260}, {"flag", 1}, {"page", 3}, {"size", 50}};
    const ServiceReply reference = post("/bas/subject/data", body);
    QCOMPARE(reference.state(), 1);
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 6; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 8; ++i)
                mismatches += post("/bas/subject/data", body).body != reference.body;
        });
    }
    for (std::thread &t : threads)
        t.join();
    QCOMPARE(mismatches.load(), 0);
}

void tst_SubjectService::helpPage()
{
    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(m_server->baseUrl().resolved(QUrl("/help/stock.html")))));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QVERIFY(finished.wait(10000));
    QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 200);
    QVERIFY(QString::fromUtf8(reply->readAll()).contains("股票专题"));
}

void tst_SubjectService::executable()
{
    const QString program = QStringLiteral(SUBJECT_BIN_DIR "/subject-service");
    if (!QFileInfo::exists(program))
        QSKIP("subject-service is not built in this tree");
    QProcess process;
    process.start(program, {"--port", "0", "--db", m_server->databasePath(), "--token", "t"});
    QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), 60000);
    const QString line = QString::fromUtf8(process.readLine()).trimmed();
    const QRegularExpressionMatch m = QRegularExpression("^listening on (http://127\\.0\\.0\\.1:[1-9]\\d*)$").match(line);
    QVERIFY2(m.hasMatch(), qPrintable(line));
    const ServiceReply reply = postTo(QUrl(m.captured(1)), "/bas/ds/data", R"j({"objId":390})j", "t");
    QCOMPARE(reply.httpStatus * 10 + reply.state(), 2001);
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
