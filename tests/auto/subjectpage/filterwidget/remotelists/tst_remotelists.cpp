#include "filterrow.h"
#include "expression/tfcustommath.h"
#include "httptestserver.h"

#include "filterwidget/tfcheckcombox.h"
#include "filterwidget/tfcombobox.h"
#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "net/tfuc.h"

#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListWidget>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";

QStringList itemsOf(const QComboBox *box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts.append(box->itemText(i));
    return texts;
}

QStringList itemsOf(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts.append(list->item(i)->text());
    return texts;
}

// Every list request is done and its answer, if any, delivered.
void settle()
{
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

TFTableModelData::FilterData remoteRow(const QString &className, const QString &field, const QString &list,
                                       const QString &filter = QString(), const QString &params = QString())
{
    TFTableModelData::FilterData row;
    row.ClassName = className;
    row.FieldName = field;
    row.Operator = QStringLiteral("IN");
    row.Caption = QStringLiteral("列表");
    row.DataSourceName = list;
    row.DataSourceFilter = filter;
    row.DataSourceFilterParams = params;
    return row;
}

} // namespace

class tst_RemoteLists : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();

    void requestAndReply_data();
    void requestAndReply();
    void answerAfterTheControlIsGone();
    void serviceLists_data();
    void serviceLists();
    void badInputKeepsTheBar_data();
    void badInputKeepsTheBar();

private:
    QStringList serviceNames(const QString &list);
    void answer(int status, const QByteArray &reply, unsigned long delay = 0);

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_service;
    HttpTestServer m_canned;    // answers each list request as the row says
};

void tst_RemoteLists::initTestCase()
{
    QVERIFY(m_dir.isValid());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("lists.sqlite"));
    m_service.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_service->start(&error), qPrintable(error));
    QVERIFY(m_canned.start());
}

void tst_RemoteLists::answer(int status, const QByteArray &reply, unsigned long delay)
{
    m_canned.setHandler([status, reply, delay](const RecordedRequest &) {
        QThread::msleep(delay);
        CannedReply canned;
        canned.status = status;
        canned.reason = status == 200 ? "OK" : "Internal Server Error";
        canned.body = reply;
        return canned;
    });
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_canned.baseUrl());
}

void tst_RemoteLists::cleanupTestCase()
{
    if (m_service)
        m_service->stop();
}

void tst_RemoteLists::requestAndReply_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("params");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("updated");
    QTest::addColumn<QStringList>("names");     // the entries, without "未选择" and "All"

    const QByteArray plain = R"({"filter":"","filterParams":{},"objName":"CITY_LIST"})";
    QTest::newRow("names sorted; NAME and VALUE")
        << "(NAME like :NAME_0)" << R"({"NAME_0":"%江%"})"
        << QByteArray(R"x({"filter":"(NAME like :NAME_0)","filterParams":{"NAME_0":"%江%"},"objName":"CITY_LIST"})x")
        << 200 << HttpTestServer::envelope(QJsonArray{QJsonObject{{"NAME", "浙江"}, {"VALUE", "ZJ"}},
                                                      QJsonObject{{"NAME", "江苏"}, {"VALUE", "JS"}}})
        << true << QStringList{"江苏", "浙江"};
    QTest::newRow("node keys come first") << "" << "" << plain << 200
                                          << HttpTestServer::envelope(QJsonArray{QJsonObject{
                                                 {"NodeNameFieldName", "甲"}, {"NAME", "x"},
                                                 {"NodeDataKeyFieldName", 1}, {"VALUE", "y"}}})
                                          << true << QStringList{"甲"};
    QTest::newRow("a repeated name is one entry")
        << "" << "" << plain << 200
        << HttpTestServer::envelope(QJsonArray{QJsonObject{{"NAME", "a"}, {"VALUE", "1"}},
                                               QJsonObject{{"NAME", "a"}, {"VALUE", "2"}}})
        << true << QStringList{"a"};
    QTest::newRow("parameters that are no JSON object go as {}") << "" << "[1,2]" << plain << 200
                                                                 << HttpTestServer::envelope(QJsonArray()) << true
                                                                 << QStringList();
    QTest::newRow("parameters that don't parse go as {}") << "" << "{oops" << plain << 200
                                                          << HttpTestServer::envelope(QJsonArray()) << true
                                                          << QStringList();
    QTest::newRow("a reply that doesn't parse: no entries") << "" << "" << plain << 200 << QByteArray("{\"data\":[")
                                                            << true << QStringList();
    QTest::newRow("data that is no array: no entries") << "" << "" << plain << 200
                                                       << QByteArray(R"({"state":1,"data":{"NAME":"a"}})") << true
                                                       << QStringList();
    QTest::newRow("a failed request changes nothing") << "" << "" << plain << 500 << QByteArray("error") << false
                                                      << QStringList();
}

void tst_RemoteLists::requestAndReply()
{
    QFETCH(QString, filter);
    QFETCH(QString, params);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(QByteArray, reply);
    QFETCH(bool, updated);
    QFETCH(QStringList, names);

    answer(status, reply);
    const int before = m_canned.requestCount();
    // The literal entries of a remote list are ignored.
    TFTableModelData::FilterData row = remoteRow("ComboBox", "PROVINCE", "CITY_LIST", filter, params);
    row.NameValues = QStringLiteral("北京=BJ");
    TFComboBox combo(row);
    QSignalSpy comboUpdates(&combo, &TFComboBox::signalItemDataUpdate);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox check(remoteRow("CheckComboBox", "CITY", "CITY_LIST", filter, params));
    QSignalSpy checkUpdates(&check, &TFCheckCombox::signalItemDataUpdate);
    QCOMPARE(itemsOf(combo.comboBox()), QStringList());

    settle();
    QCOMPARE(m_canned.requestCount(), before + 2);
    for (const RecordedRequest &request : m_canned.requests().mid(before)) {
        QCOMPARE(request.target, QByteArray("/bas/ds/data"));
        QCOMPARE(request.body, body);
    }
    QCOMPARE(comboUpdates.count() + checkUpdates.count(), updated ? 2 : 0);
    QCOMPARE(itemsOf(combo.comboBox()), updated ? QStringList{"未选择"} + names : QStringList());
    QCOMPARE(itemsOf(check.listWidget()), updated ? QStringList{"All"} + names : QStringList());
    // Every entry that came is ticked, so the list filters by all of them.
    for (int i = 1; i < check.listWidget()->count(); ++i)
        QCOMPARE(check.listWidget()->item(i)->checkState(), Qt::Checked);
    QCOMPARE(check.checkedIndices().size(), names.size());
    // Both stay usable: a choice is still reported.
    QCOMPARE(combo.getCntrl().value, QVariant(combo.comboBox()->currentText()));
}

void tst_RemoteLists::answerAfterTheControlIsGone()
{
    answer(200, HttpTestServer::envelope(QJsonArray{QJsonObject{{"NAME", "a"}, {"VALUE", "1"}}}), 100);
    const int before = m_canned.requestCount();
    {
        TFComboBox combo(remoteRow("ComboBox", "PROVINCE", "CITY_LIST"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
        TFCheckCombox check(remoteRow("CheckComboBox", "CITY", "CITY_LIST"));
    }
    // The answers arrive for nobody and are dropped.
    settle();
    QCOMPARE(m_canned.requestCount(), before + 2);
}

QStringList tst_RemoteLists::serviceNames(const QString &list)
{
    TFUc::setBaseUrl(m_service->baseUrl());
    const TFUc::TFRequestContent content = TFUc::listRequest(list, QString(), QString());
    const auto result = TFWXRSHttp::post(content.url, content.body,
                                         TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    QStringList names;
    for (const QJsonValue &row : QJsonDocument::fromJson(result.data).object().value("data").toArray())
        names.append(row.toObject().value("NAME").toString());
    names.sort();
    return names;
}

void tst_RemoteLists::serviceLists_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("pick");
    QTest::addColumn<bool>("filters");
    QTest::addColumn<bool>("namesAreValues");

    QTest::newRow("provinces filter by name") << "PROVINCE" << "PROVINCE_LIST" << "北京" << true << true;
    QTest::newRow("another field shows names but never filters") << "IND_NAME" << "INDUSTRY_LIST" << "" << false
                                                                 << false;
    QTest::newRow("fund companies") << "MGR_COMPANY" << "FUND_COMPANY_LIST" << "" << false << true;
}

void tst_RemoteLists::serviceLists()
{
    QFETCH(QString, field);
    QFETCH(QString, list);
    QFETCH(QString, pick);
    QFETCH(bool, filters);
    QFETCH(bool, namesAreValues);

    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_service->baseUrl());
    const QStringList names = serviceNames(list);
    QVERIFY(names.size() > 1);

    TFComboBox combo(remoteRow("ComboBox", field, list));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFTableModelData::FilterData checkRow = remoteRow("CheckComboBox", field, list);
    checkRow.DefualtValue = names.first();      // a remote list has no default: all get ticked
    TFCheckCombox check(checkRow);
    QTRY_COMPARE_WITH_TIMEOUT(combo.comboBox()->count(), names.size() + 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(check.listWidget()->count(), names.size() + 1, 10000);
    QCOMPARE(itemsOf(combo.comboBox()), QStringList{"未选择"} + names);
    QCOMPARE(itemsOf(check.listWidget()), QStringList{"All"} + names);
    QCOMPARE(check.checkedIndices().size(), names.size());
    QCOMPARE(check.fullText(), QStringLiteral("All"));

    if (!pick.isEmpty())
        combo.comboBox()->setCurrentText(pick);
    else
        combo.comboBox()->setCurrentIndex(1);
    const FilterParam::Cntrl cntrl = combo.getCntrl();
    QCOMPARE(cntrl.value.isValid(), filters);
    if (filters)
        QCOMPARE(cntrl.value, QVariant(pick));
    // A ticked text is looked up among the values: where names are their
    // values the list filters by them all, otherwise by empty texts.
    QCOMPARE(check.getCntrl().value.toStringList(),
             namesAreValues ? names : QStringList(QVector<QString>(names.size()).toList()));
}

void tst_RemoteLists::badInputKeepsTheBar_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("list request fails") << 500 << QByteArray("error");
    QTest::newRow("list reply malformed") << 200 << QByteArray("{\"data\":[{\"NAME\":");
}

void tst_RemoteLists::badInputKeepsTheBar()
{
    QFETCH(int, status);
    QFETCH(QByteArray, reply);

    answer(status, reply);
    const int before = m_canned.requestCount();
    QList<TFTableModelData::FilterData> rows{
        filterRow(R"({"ClassName":"ComboBox","FieldName":"IND_NAME","DataSourceName":"L","DataSourceFilterParams":"{bad"})"),
        filterRow(R"({"ClassName":"CheckComboBox","FieldName":"MKT","Operator":"IN","DataSourceName":"L"})"),
        filterRow(R"({"ClassName":"UnitFactorCombobox","FieldName":"UNIT","UnitCategory":1,"DefualtValue":"万元"})"),
        filterRow(R"({"ClassName":"ComboBox","FieldName":"CITY","NameValues":";;=;上海=SH;北京;上海=SH2;a=b=c"})"),
        filterRow(R"({"ClassName":"CheckComboBox","FieldName":"EX","Operator":"IN","NameValues":"A=A;;A=A;=;B="})"),
        filterRow(R"({"ClassName":"DecimalTextEditInterval","FieldName":"PCT","DefualtValue":"1;5","ControlParameters":"Step==x=}{"})"),
        filterRow(R"({"ClassName":"SimpleYear","FieldName":"YEAR","NameValues":";;2019年=1;;2019年=1","ControlParameters":"{"})"),
        filterRow(R"({"ClassName":"ReportDateSimple5","FieldName":"END","ParameterCategory":1,"DefualtValue":"=date'x'"})"),
        filterRow(R"({"ClassName":"KeywordsBox","FieldName":"","ParameterCategory":1})")};
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCustomMath::instance()->setClock([] { return QDateTime(QDate(2024, 7, 15), QTime(10, 0)); });
    TFFilterWidget bar;
    bar.setFilterData(rows);
    TFCustomMath::instance()->setClock({});
    QCOMPARE(bar.findChildren<TFBaseFilterWidget *>(QString(), Qt::FindDirectChildrenOnly).size(), rows.size());
    settle();
    QCOMPARE(m_canned.requestCount(), before + 2);

    QList<FilterParam::DataSourceFilter> params;
    QList<FilterParam::CustomFilter> filters;
    bar.finalFilter(params, filters);
    QStringList terms;
    for (const FilterParam::CustomFilter &filter : filters)
        terms.append(filter.paramName + " " + filter.op + " " + QVariant(filter.values).toStringList().join(','));
    // Neither remote list nor the unit list filters; the rest keep working.
    QCOMPARE(terms.join(" / "), QStringLiteral("CITY_0 == SH2 / EX_0 in A / PCT_0 >= 1 / PCT_1 <= 5 / YEAR_0 == 2019"));
    // An unreadable default leaves the report date on its first entries.
    QCOMPARE(params.size(), 2);
    QCOMPARE(params.at(0).key, QStringLiteral("END"));
    QCOMPARE(params.at(0).value, QVariant("2024-06-30"));
    QCOMPARE(params.at(1).key, QStringLiteral("keywords"));
}

QTEST_MAIN(tst_RemoteLists)
#include "tst_remotelists.moc"
