#include "tfsubjectmainframe.h"
#include "tfsubjecttablewidget.h"

#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"

#include "httptestserver.h"
#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QDateEdit>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";
const qint64 kView = 260;     // the A-share quotes: a table with dates, codes and numbers

bool settled(const TFSubjectTableWidget &widget)
{
    const QString text = widget.timeLabel()->text();
    return text.startsWith(QStringLiteral("耗时")) || text == QStringLiteral("无数据!");
}

// The view's configuration with its filter rows replaced by the given ones.
QJsonValue withFilters(QJsonValue config, const QByteArray &filters)
{
    QJsonObject object = config.toObject();
    QJsonArray rows = object.value(QStringLiteral("View_Config")).toArray();
    for (int i = 0; i < rows.size(); ++i) {
        QJsonObject row = rows.at(i).toObject();
        if (row.value(QStringLiteral("prop_name")).toString() == QLatin1String("filters")) {
            row.insert(QStringLiteral("ext_prop_val"), QString::fromUtf8(filters));
            rows.replace(i, row);
        }
    }
    object.insert(QStringLiteral("View_Config"), rows);
    return object;
}

} // namespace

class tst_FilterBarWire : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void bodies_data();
    void bodies();
    void f9ArgumentOfThePage();
    void unitChosenOnTheBar();

private:
    QByteArray lastRowsBody() const;

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_service;
    HttpTestServer m_relay;
    QJsonValue m_config;
};

void tst_FilterBarWire::initTestCase()
{
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    QCoreApplication::setOrganizationDomain(m_dir.path());

    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("wire.sqlite"));
    m_service.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_service->start(&error), qPrintable(error));

    // Every request passes the relay, which keeps it and hands it on.
    const QUrl service = m_service->baseUrl();
    m_relay.setHandler([service](const RecordedRequest &request) {
        QUrl url = service;
        url.setPath(QString::fromUtf8(request.target));
        const TFWXRSHttp::HttpResult result = TFWXRSHttp::post(url, request.body, {});
        CannedReply reply;
        reply.status = result.ok ? 200 : 502;
        reply.headers = {{"Content-Type", "application/json"}};
        reply.body = result.data;
        return reply;
    });
    QVERIFY(m_relay.start());
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_relay.baseUrl());

    TFUc::setBaseUrl(m_relay.baseUrl());
    const auto reply = TFWXRSHttp::post(TFUc::viewConfigRequest(kView, {}, {}).url,
                                        TFUc::viewConfigRequest(kView, {}, {}).body, {});
    NtResponse response;
    QVERIFY(TFJSP::parseResponse(QString::fromUtf8(reply.data), response));
    m_config = response.data;
    QVERIFY(m_config.isObject());
}

void tst_FilterBarWire::cleanupTestCase()
{
    if (m_service)
        m_service->stop();
}

QByteArray tst_FilterBarWire::lastRowsBody() const
{
    const QList<RecordedRequest> requests = m_relay.requests();
    for (int i = requests.size() - 1; i >= 0; --i) {
        if (requests.at(i).body.contains("\"flag\":1"))
            return requests.at(i).body;
    }
    return QByteArray();
}

void tst_FilterBarWire::bodies_data()
{
    QTest::addColumn<QByteArray>("filters");
    QTest::addColumn<QString>("change");        // what the user does before pressing get-data
    QTest::addColumn<QByteArray>("atDefault");  // the whole body of the rows request
    QTest::addColumn<QByteArray>("changed");

    const QByteArray getData = R"J(,{"ClassName":"SimpleButtonGetData","Caption":"查询"}])J";
    // Keys come sorted: auth, filter, filterParams, flag, keywords, obj_vw_id, page, size.
    const QByteArray auth = R"J({"auth":{"prodId":"subject","userId":"demo"},)J";
    const QByteArray rows = R"J("flag":1,"obj_vw_id":260,"page":1,"size":200})J";
    auto body = [&](const QByteArray &filter) { return auth + (filter.isEmpty() ? filter : filter + ',') + rows; };

    QTest::newRow("keywords box")
        << QByteArray(R"J([{"ClassName":"KeywordsBox","Caption":"代码/简称","Operator":"LIKE","ValueType":"string","ParameterCategory":1})J") + getData
        << "text:6000"
        << auth + R"J("flag":1,"keywords":"","obj_vw_id":260,"page":1,"size":200})J"
        << auth + R"J("flag":1,"keywords":"6000","obj_vw_id":260,"page":1,"size":200})J";
    QTest::newRow("text box on a field")
        << QByteArray(R"J([{"ClassName":"TextEdit","Caption":"代码","FieldName":"SECU_CODE","Operator":"LIKE","ValueType":"string","DefualtValue":"6000"})J") + getData
        << "text:0000"
        << body(R"J("filter":"(SECU_CODE like :SECU_CODE_0)","filterParams":{"SECU_CODE_0":"6000"})J")
        << body(R"J("filter":"(SECU_CODE like :SECU_CODE_0)","filterParams":{"SECU_CODE_0":"0000"})J");
    QTest::newRow("text box with IN")
        << QByteArray(R"J([{"ClassName":"TextEdit","Caption":"代码","FieldName":"SECU_CODE","Operator":"IN","ValueType":"string","DefualtValue":"600000"})J") + getData
        << "text:600001,,600002"
        << body(R"J("filter":"(SECU_CODE in :SECU_CODE_0)","filterParams":{"SECU_CODE_0":["600000"]})J")
        << body(R"J("filter":"(SECU_CODE in :SECU_CODE_0)","filterParams":{"SECU_CODE_0":["600001","600002"]})J");
    QTest::newRow("date")
        << QByteArray(R"J([{"ClassName":"DateEdit","Caption":"上市不晚于","FieldName":"LIST_DATE","Operator":"<=","ValueType":"DateTime","DefualtValue":"=date'2005-12-31'"})J") + getData
        << "date:2015-06-30"
        << body(R"J("filter":"(LIST_DATE <= :LIST_DATE_0)","filterParams":{"LIST_DATE_0":"[2005-12-31 23:59:59]"})J")
        << body(R"J("filter":"(LIST_DATE <= :LIST_DATE_0)","filterParams":{"LIST_DATE_0":"[2015-06-30 23:59:59]"})J");
    QTest::newRow("date range")
        << QByteArray(R"J([{"ClassName":"DateTimeInterval","Caption":"上市日","FieldName":"LIST_DATE","ValueType":"DateTime","DefualtValue":"=date'2010-01-01';=date'2012-12-31'"})J") + getData
        << "date:2011-07-01"
        << body(R"J("filter":"(LIST_DATE >= :LIST_DATE_0) && (LIST_DATE <= :LIST_DATE_1)","filterParams":{"LIST_DATE_0":"[2010-01-01 00:00:00]","LIST_DATE_1":"[2012-12-31 23:59:59]"})J")
        << body(R"J("filter":"(LIST_DATE >= :LIST_DATE_0) && (LIST_DATE <= :LIST_DATE_1)","filterParams":{"LIST_DATE_0":"[2011-07-01 00:00:00]","LIST_DATE_1":"[2012-12-31 23:59:59]"})J");
    QTest::newRow("number range")
        << QByteArray(R"J([{"ClassName":"DecimalTextEditInterval","Caption":"涨跌幅(%)","FieldName":"CHG_PCT","ValueType":"decimal","DefualtValue":"0;0","ControlParameters":"Step=1"})J") + getData
        << "spin:-2,3"
        << body(QByteArray())
        << body(R"J("filter":"(CHG_PCT >= :CHG_PCT_0) && (CHG_PCT <= :CHG_PCT_1)","filterParams":{"CHG_PCT_0":-2,"CHG_PCT_1":3})J");
    QTest::newRow("hidden holder and an unknown control")
        << QByteArray(R"J([{"ClassName":"Slider","Caption":"?","FieldName":"PE"},{"ClassName":"VirtualCntrl","Caption":"市场","FieldName":"MKT","Operator":"IN","ValueType":"string","DefualtValue":"上交所;深交所"},{"ClassName":"TextEdit","Caption":"简称","FieldName":"SECU_SHT","Operator":"LIKE","ValueType":"string"})J") + getData
        << "text:银"
        << body(R"J("filter":"(MKT in :MKT_0) && (SECU_SHT like :SECU_SHT_0)","filterParams":{"MKT_0":["上交所","深交所"],"SECU_SHT_0":""})J")
        << body(R"J("filter":"(MKT in :MKT_0) && (SECU_SHT like :SECU_SHT_0)","filterParams":{"MKT_0":["上交所","深交所"],"SECU_SHT_0":"银"})J");
}

void tst_FilterBarWire::bodies()
{
    QFETCH(QByteArray, filters);
    QFETCH(QString, change);
    QFETCH(QByteArray, atDefault);
    QFETCH(QByteArray, changed);

    TFSubjectTableWidget widget(nullptr, true);
    widget.initLayout();
    widget.reset(kView);
    QVERIFY(widget.parseConfig(withFilters(m_config, filters), true));
    QTRY_VERIFY_WITH_TIMEOUT(settled(widget), 30000);
    QCOMPARE(lastRowsBody(), atDefault);
    QVERIFY2(widget.timeLabel()->text().startsWith(QStringLiteral("耗时")), "the service took the default");
    const int totalAtDefault = widget.total();

    // The user changes the control and presses get-data.
    TFFilterWidget *bar = widget.filterWidget();
    const QString action = change.section(QLatin1Char(':'), 0, 0);
    const QString value = change.section(QLatin1Char(':'), 1);
    if (action == QLatin1String("text")) {
        bar->findChild<QLineEdit *>()->setText(value);
    } else if (action == QLatin1String("date")) {
        bar->findChild<QDateEdit *>()->setDate(QDate::fromString(value, Qt::ISODate));
    } else if (action == QLatin1String("spin")) {
        const QList<QSpinBox *> boxes = bar->findChildren<QSpinBox *>();
        QCOMPARE(boxes.size(), 2);
        boxes.at(0)->setValue(value.section(QLatin1Char(','), 0, 0).toInt());
        boxes.at(1)->setValue(value.section(QLatin1Char(','), 1, 1).toInt());
    }
    const int before = m_relay.requestCount();
    auto *getDataButton = bar->findChild<QToolButton *>(QStringLiteral("SimpleButtonGetDataButton"));
    QVERIFY(getDataButton);
    getDataButton->click();
    QTRY_VERIFY_WITH_TIMEOUT(m_relay.requestCount() > before && settled(widget), 30000);
    QCOMPARE(lastRowsBody(), changed);
    QVERIFY2(widget.timeLabel()->text().startsWith(QStringLiteral("耗时")), "the service took the change");
    QVERIFY2(widget.total() != totalAtDefault, "the change narrows or widens the rows");
}

void tst_FilterBarWire::f9ArgumentOfThePage()
{
    // The security that the page was opened for reaches the hidden F9
    // control of a view on that page. The page adds its sector pair, empty
    // while no sector is checked.
    TFSubjectMainFrame page;
    page.setF9Args({{QStringLiteral("SECU_ID"), QStringLiteral("100012")}});
    auto *widget = new TFSubjectTableWidget(&page, true);
    widget->initLayout();
    widget->reset(kView);
    QVERIFY(widget->parseConfig(
        withFilters(m_config, R"J([{"ClassName":"F9SecuIdCntrl","Caption":"证券","FieldName":"SECU_ID","Operator":"=","ValueType":"decimal","DefualtValue":"1"}])J"),
        true));
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    QCOMPARE(lastRowsBody(),
             QByteArray(R"J({"auth":{"prodId":"subject","userId":"demo"},"filter":"(SECU_ID == :SECU_ID_0)","filterBlock":[],"filterParams":{"SECU_ID_0":"100012"},"flag":1,"obj_vw_id":260,"page":1,"size":200})J"));
    QCOMPARE(widget->total(), 1);
}

void tst_FilterBarWire::unitChosenOnTheBar()
{
    TFSubjectTableWidget widget(nullptr, true);
    widget.initLayout();
    widget.reset(kView);
    QVERIFY(widget.parseConfig(m_config, true));
    QTRY_VERIFY_WITH_TIMEOUT(settled(widget) && widget.model(), 30000);
    const int amount = widget.header()->leafCaptions().indexOf(QStringLiteral("成交额(亿元)"));
    QVERIFY2(amount >= 0, qPrintable(widget.header()->leafCaptions().join(',')));
    TFSubjectTableModel *model = widget.model();
    QCOMPARE(model->unitFactor(), 0);

    // The unit list of the bar reports 万元 of the yuan category.
    emit widget.filterWidget()->signalComboBoxChanged(1004, 1);
    QCOMPARE(widget.header()->leafCaptions().at(amount), QStringLiteral("成交额(万元)"));
    QCOMPARE(model->unitFactor(), 10000);
    QCOMPARE(model->unitCategory(), 1);
    QCOMPARE(model->headerData(amount, Qt::Horizontal).toString(), QStringLiteral("成交额(万元)"));
}

QTEST_MAIN(tst_FilterBarWire)
#include "tst_filterbarwire.moc"
