#include "tfsubjectmainframe.h"
#include "tfsubjecttablewidget.h"

#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "mulittable/tfheaderdatastruct.h"
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

// The filter clause and its parameters of the last rows request.
QString clauseOf(const QList<RecordedRequest> &requests)
{
    for (int i = requests.size() - 1; i >= 0; --i) {
        const QJsonObject body = QJsonDocument::fromJson(requests.at(i).body).object();
        if (body.value(QStringLiteral("flag")).toInt() == 1)
            return body.value(QStringLiteral("filter")).toString() + QLatin1Char(' ')
                   + QString::fromUtf8(QJsonDocument(body.value(QStringLiteral("filterParams")).toObject())
                                           .toJson(QJsonDocument::Compact));
    }
    return QString();
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
    void clauseNarrowsTheRows_data();
    void clauseNarrowsTheRows();

private:
    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_service;
    HttpTestServer m_relay;
    QJsonValue m_config;
    // One page, opened for a security, holds the view every row reuses.
    std::unique_ptr<TFSubjectMainFrame> m_page;
    TFSubjectTableWidget *m_widget = nullptr;
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
    const TFUc::TFRequestContent request = TFUc::viewConfigRequest(kView, {}, {});
    NtResponse response;
    QVERIFY(TFJSP::parseResponse(QString::fromUtf8(TFWXRSHttp::post(request.url, request.body, {}).data), response));
    m_config = response.data;
    QVERIFY(m_config.isObject());

    m_page.reset(new TFSubjectMainFrame);
    m_page->setF9Args({{QStringLiteral("SECU_ID"), QStringLiteral("100012")}});
    m_widget = new TFSubjectTableWidget(m_page.get(), true);
    m_widget->initLayout();
}

void tst_FilterBarWire::cleanupTestCase()
{
    m_page.reset();
    if (m_service)
        m_service->stop();
}

// The user changes the one control of each kind and presses get-data: the
// clause that control makes reaches the service, which answers with other
// rows than at the control's default.
void tst_FilterBarWire::clauseNarrowsTheRows_data()
{
    QTest::addColumn<QByteArray>("filters");
    QTest::addColumn<QString>("change");    // kind:value; empty: the default goes out
    QTest::addColumn<QString>("clause");    // of the rows request after the change
    QTest::addColumn<int>("total");         // -1: any other than at the default

    QTest::newRow("keywords box")
        << QByteArray(R"J([{"ClassName":"KeywordsBox","Caption":"代码/简称","Operator":"LIKE","ValueType":"string","ParameterCategory":1}])J")
        << "text:6000" << " {}" << -1;
    QTest::newRow("text box on a field")
        << QByteArray(R"J([{"ClassName":"TextEdit","Caption":"代码","FieldName":"SECU_CODE","Operator":"LIKE","ValueType":"string","DefualtValue":"6000"}])J")
        << "text:0000" << R"J((SECU_CODE like :SECU_CODE_0) {"SECU_CODE_0":"0000"})J" << -1;
    QTest::newRow("text box with IN")
        << QByteArray(R"J([{"ClassName":"TextEdit","Caption":"代码","FieldName":"SECU_CODE","Operator":"IN","ValueType":"string","DefualtValue":"600000"}])J")
        << "text:600001,,600002" << R"J((SECU_CODE in :SECU_CODE_0) {"SECU_CODE_0":["600001","600002"]})J" << -1;
    QTest::newRow("date")
        << QByteArray(R"J([{"ClassName":"DateEdit","Caption":"上市不晚于","FieldName":"LIST_DATE","Operator":"<=","ValueType":"DateTime","DefualtValue":"=date'2005-12-31'"}])J")
        << "date:2015-06-30" << R"J((LIST_DATE <= :LIST_DATE_0) {"LIST_DATE_0":"[2015-06-30 23:59:59]"})J" << -1;
    QTest::newRow("date range")
        << QByteArray(R"J([{"ClassName":"DateTimeInterval","Caption":"上市日","FieldName":"LIST_DATE","ValueType":"DateTime","DefualtValue":"=date'2010-01-01';=date'2012-12-31'"}])J")
        << "date:2011-07-01"
        << R"J((LIST_DATE >= :LIST_DATE_0) && (LIST_DATE <= :LIST_DATE_1) {"LIST_DATE_0":"[2011-07-01 00:00:00]","LIST_DATE_1":"[2012-12-31 23:59:59]"})J"
        << -1;
    QTest::newRow("number range")
        << QByteArray(R"J([{"ClassName":"DecimalTextEditInterval","Caption":"涨跌幅(%)","FieldName":"CHG_PCT","ValueType":"decimal","DefualtValue":"0;0","ControlParameters":"Step=1"}])J")
        << "spin:-2,3" << R"J((CHG_PCT >= :CHG_PCT_0) && (CHG_PCT <= :CHG_PCT_1) {"CHG_PCT_0":-2,"CHG_PCT_1":3})J" << -1;
    QTest::newRow("hidden holder beside an unknown control")
        << QByteArray(R"J([{"ClassName":"Slider","Caption":"?","FieldName":"PE"},{"ClassName":"VirtualCntrl","Caption":"市场","FieldName":"MKT","Operator":"IN","ValueType":"string","DefualtValue":"上交所;深交所"},{"ClassName":"TextEdit","Caption":"简称","FieldName":"SECU_SHT","Operator":"LIKE","ValueType":"string"}])J")
        << "text:银" << R"J((MKT in :MKT_0) && (SECU_SHT like :SECU_SHT_0) {"MKT_0":["上交所","深交所"],"SECU_SHT_0":"银"})J" << -1;
    // The security the page was opened for reaches its hidden F9 control.
    QTest::newRow("F9 security of the page")
        << QByteArray(R"J([{"ClassName":"F9SecuIdCntrl","Caption":"证券","FieldName":"SECU_ID","Operator":"=","ValueType":"decimal","DefualtValue":"1"}])J")
        << "" << R"J((SECU_ID == :SECU_ID_0) {"SECU_ID_0":"100012"})J" << 1;
}

void tst_FilterBarWire::clauseNarrowsTheRows()
{
    QFETCH(QByteArray, filters);
    QFETCH(QString, change);
    QFETCH(QString, clause);
    QFETCH(int, total);

    TFSubjectTableWidget &widget = *m_widget;
    widget.reset(kView);
    const QByteArray getData = R"J(,{"ClassName":"SimpleButtonGetData","Caption":"查询"}])J";
    QVERIFY(widget.parseConfig(withFilters(m_config, filters.chopped(1) + getData), true));
    QTRY_VERIFY_WITH_TIMEOUT(settled(widget), 30000);
    QVERIFY2(widget.timeLabel()->text().startsWith(QStringLiteral("耗时")), "the service took the default");
    const int totalAtDefault = widget.total();

    TFFilterWidget *bar = widget.filterWidget();
    const QString kind = change.section(QLatin1Char(':'), 0, 0);
    const QString value = change.section(QLatin1Char(':'), 1);
    if (kind == QLatin1String("text")) {
        bar->findChild<QLineEdit *>()->setText(value);
    } else if (kind == QLatin1String("date")) {
        bar->findChild<QDateEdit *>()->setDate(QDate::fromString(value, Qt::ISODate));
    } else if (kind == QLatin1String("spin")) {
        const QList<QSpinBox *> boxes = bar->findChildren<QSpinBox *>();
        QCOMPARE(boxes.size(), 2);
        boxes.at(0)->setValue(value.section(QLatin1Char(','), 0, 0).toInt());
        boxes.at(1)->setValue(value.section(QLatin1Char(','), 1, 1).toInt());
    }
    if (!change.isEmpty()) {
        const int before = m_relay.requestCount();
        auto *getDataButton = bar->findChild<QToolButton *>(QStringLiteral("SimpleButtonGetDataButton"));
        QVERIFY(getDataButton);
        getDataButton->click();
        QTRY_VERIFY_WITH_TIMEOUT(m_relay.requestCount() > before && settled(widget), 30000);
    }
    QCOMPARE(clauseOf(m_relay.requests()), clause);
    QVERIFY2(widget.timeLabel()->text().startsWith(QStringLiteral("耗时")), "the service took the change");
    if (total < 0)
        QVERIFY2(widget.total() != totalAtDefault, "the change narrows or widens the rows");
    else
        QCOMPARE(widget.total(), total);
}

QTEST_MAIN(tst_FilterBarWire)
#include "tst_filterbarwire.moc"
