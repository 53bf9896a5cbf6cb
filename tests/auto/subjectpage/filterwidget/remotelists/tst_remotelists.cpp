#include "filterrow.h"
#include "httptestserver.h"

#include "filterwidget/tfcheckcombox.h"
#include "filterwidget/tfcombobox.h"
#include "filterwidget/tffilterwidget.h"
#include "tfcore/tfserviceconfig.h"

#include <QComboBox>
#include <QJsonArray>
#include <QJsonObject>
#include <QListWidget>
#include <QThreadPool>
#include <QtTest>

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

TFTableModelData::FilterData remoteRow(const QString &className, const QString &field, const QString &filter = QString(),
                                       const QString &params = QString())
{
    TFTableModelData::FilterData row;
    row.ClassName = className;
    row.FieldName = field;
    row.Operator = QStringLiteral("IN");
    row.Caption = QStringLiteral("列表");
    row.DataSourceName = QStringLiteral("CITY_LIST");
    row.DataSourceFilter = filter;
    row.DataSourceFilterParams = params;
    return row;
}

} // namespace

// List controls that ask the data service for their entries, against a
// server on loopback that answers as each row says.
class tst_RemoteLists : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY(m_server.start()); }
    void requestAndReply_data();
    void requestAndReply();
    void answerAfterTheControlIsGone();
    void badInputKeepsTheBar_data();
    void badInputKeepsTheBar();

private:
    void answer(int status, const QByteArray &reply, unsigned long delay = 0);

    HttpTestServer m_server;
};

void tst_RemoteLists::answer(int status, const QByteArray &reply, unsigned long delay)
{
    m_server.setHandler([status, reply, delay](const RecordedRequest &) {
        QThread::msleep(delay);
        CannedReply canned;
        canned.status = status;
        canned.reason = status == 200 ? "OK" : "Internal Server Error";
        canned.body = reply;
        return canned;
    });
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server.baseUrl());
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
    QTest::addColumn<QStringList>("values");    // of the check list: a ticked text is looked up among the values

    const QByteArray plain = R"({"filter":"","filterParams":{},"objName":"CITY_LIST"})";
    const auto rows = [](const QJsonArray &data) { return HttpTestServer::envelope(data); };
    QTest::newRow("names sorted; NAME and VALUE") << "(NAME like :NAME_0)" << R"({"NAME_0":"%江%"})"
        << QByteArray(R"x({"filter":"(NAME like :NAME_0)","filterParams":{"NAME_0":"%江%"},"objName":"CITY_LIST"})x") << 200
        << rows({QJsonObject{{"NAME", "浙江"}, {"VALUE", "ZJ"}}, QJsonObject{{"NAME", "江苏"}, {"VALUE", "JS"}}}) << true << QStringList{"江苏", "浙江"}
        << QStringList{"", ""};
    QTest::newRow("node keys come first") << "" << "" << plain << 200
        << rows({QJsonObject{{"NodeNameFieldName", "甲"}, {"NAME", "x"}, {"NodeDataKeyFieldName", 1}, {"VALUE", "y"}}}) << true << QStringList{"甲"}
        << QStringList{""};
    QTest::newRow("a repeated name is one entry") << "" << "" << plain << 200
        << rows({QJsonObject{{"NAME", "a"}, {"VALUE", "1"}}, QJsonObject{{"NAME", "a"}, {"VALUE", "2"}}}) << true << QStringList{"a"}
        << QStringList{""};
    QTest::newRow("names that are their values") << "" << "" << plain << 200
        << rows({QJsonObject{{"NAME", "沪"}, {"VALUE", "沪"}}, QJsonObject{{"NAME", "深"}, {"VALUE", "深"}}}) << true << QStringList{"沪", "深"}
        << QStringList{"沪", "深"};
    QTest::newRow("parameters that are no JSON object go as {}") << "" << "[1,2]" << plain << 200 << rows({}) << true << QStringList()
        << QStringList();
    QTest::newRow("parameters that don't parse go as {}") << "" << "{oops" << plain << 200 << rows({}) << true << QStringList() << QStringList();
    QTest::newRow("a reply that doesn't parse: no entries") << "" << "" << plain << 200 << QByteArray("{\"data\":[") << true << QStringList()
        << QStringList();
    QTest::newRow("data that is no array: no entries") << "" << "" << plain << 200 << QByteArray(R"({"state":1,"data":{"NAME":"a"}})") << true
        << QStringList() << QStringList();
    QTest::newRow("a failed request changes nothing") << "" << "" << plain << 500 << QByteArray("error") << false << QStringList() << QStringList();
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
    QFETCH(QStringList, values);

    answer(status, reply);
    const int before = m_server.requestCount();
    // The literal entries of a remote list are ignored.
    TFTableModelData::FilterData row = remoteRow("ComboBox", "PROVINCE", filter, params);
    row.NameValues = QStringLiteral("北京=BJ");
    TFComboBox combo(row);
    QSignalSpy comboUpdates(&combo, &TFComboBox::signalItemDataUpdate);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFCheckCombox check(remoteRow("CheckComboBox", "CITY", filter, params));
    QSignalSpy checkUpdates(&check, &TFCheckCombox::signalItemDataUpdate);
    QCOMPARE(itemsOf(combo.comboBox()), QStringList());

    settle();
    QCOMPARE(m_server.requestCount(), before + 2);
    for (const RecordedRequest &request : m_server.requests().mid(before)) {
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
    QCOMPARE(check.getCntrl().value.toStringList(), values);
    // Both stay usable: a choice is still reported.
    QCOMPARE(combo.getCntrl().value, QVariant(combo.comboBox()->currentText()));
}

void tst_RemoteLists::answerAfterTheControlIsGone()
{
    answer(200, HttpTestServer::envelope(QJsonArray{QJsonObject{{"NAME", "a"}, {"VALUE", "1"}}}), 100);
    const int before = m_server.requestCount();
    {
        TFComboBox combo(remoteRow("ComboBox", "PROVINCE"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
        TFCheckCombox check(remoteRow("CheckComboBox", "CITY"));
    }
    // The answers arrive for nobody and are dropped.
    settle();
    QCOMPARE(m_server.requestCount(), before + 2);
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
    const int before = m_server.requestCount();
    QList<TFTableModelData::FilterData> rows{
        filterRow(R"({"ClassName":"ComboBox","FieldName":"IND_NAME","DataSourceName":"L","DataSourceFilterParams":"{bad"})"),
        filterRow(R"({"ClassName":"CheckComboBox","FieldName":"MKT","Operator":"IN","DataSourceName":"L"})"),
        filterRow(R"({"ClassName":"UnitFactorCombobox","FieldName":"UNIT","UnitCategory":1,"DefualtValue":"万元"})"),
        filterRow(R"({"ClassName":"ComboBox","FieldName":"CITY","NameValues":";;=;上海=SH;北京;上海=SH2;a=b=c"})"),
        filterRow(R"({"ClassName":"SimpleYear","FieldName":"YEAR","NameValues":";;2019年=1;;2019年=1","ControlParameters":"{"})"),
        filterRow(R"({"ClassName":"KeywordsBox","FieldName":"","ParameterCategory":1})")};
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("signalInitItems"));
    TFFilterWidget bar;
    bar.setFilterData(rows);
    QCOMPARE(bar.findChildren<TFBaseFilterWidget *>(QString(), Qt::FindDirectChildrenOnly).size(), rows.size());
    settle();
    QCOMPARE(m_server.requestCount(), before + 2);

    QList<FilterParam::DataSourceFilter> params;
    QList<FilterParam::CustomFilter> filters;
    bar.finalFilter(params, filters);
    QStringList terms;
    for (const FilterParam::CustomFilter &filter : filters)
        terms.append(filter.paramName + " " + filter.op + " " + QVariant(filter.values).toStringList().join(','));
    // Neither remote list nor the unit list filters; the rest keep working.
    QCOMPARE(terms.join(" / "), QStringLiteral("CITY_0 == SH2 / YEAR_0 == 2019"));
    QCOMPARE(params.size(), 1);
    QCOMPARE(params.at(0).key, QStringLiteral("keywords"));
}

QTEST_MAIN(tst_RemoteLists)
#include "tst_remotelists.moc"
