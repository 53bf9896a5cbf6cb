#include "tfsubjecttablewidget.h"

#include "filterwidget/tfcacheconfig.h"
#include "filterwidget/tfcheckcombox.h"
#include "filterwidget/tfcombobox.h"
#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"

#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QComboBox>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QListWidget>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";

// Rows no control stands for: markers, the sort button and labels.
bool buildsNoControl(const QString &className)
{
    return className == QLatin1String("GroupFlagControl") || className == QLatin1String("SimpleButtonSort")
           || className == QLatin1String("LabelControl");
}

} // namespace

// Each view of the demo catalogue builds its filter bar from its own
// configuration, the way the page does; every control must report a value,
// and the rows request the view sends with those values must be accepted.
class tst_FilterCatalogue : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void bar_data();
    void bar();
    void unitChoiceRescalesTheTable();

private:
    QJsonObject post(const TFUc::TFRequestContent &content);

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
    std::unique_ptr<TFSubjectTableWidget> m_widget;     // every view in turn, as a page reuses its tab
};

void tst_FilterCatalogue::initTestCase()
{
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QCoreApplication::setOrganizationDomain(m_dir.path());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("catalogue.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server->baseUrl());
    TFUc::setBaseUrl(m_server->baseUrl());

    // The cached codes, as the main frame takes them from the navigation reply.
    TFUc::TFRequestContent navigation = TFUc::navigationRowsRequest(2);
    NtResponse response;
    QVERIFY(TFJSP::parseResponse(QString::fromUtf8(QJsonDocument(post(navigation)).toJson()), response));
    TFCacheConfig::instance()->initWith(response.data);
    QVERIFY(!TFCacheConfig::instance()->query(QStringLiteral("AREA"), QString()).isEmpty());
    m_widget.reset(new TFSubjectTableWidget(nullptr, true));
    m_widget->initLayout();
    m_widget->resize(1400, 700);
}

void tst_FilterCatalogue::cleanupTestCase()
{
    m_widget.reset();
    TFCacheConfig::instance()->clear();
    if (m_server)
        m_server->stop();
}

QJsonObject tst_FilterCatalogue::post(const TFUc::TFRequestContent &content)
{
    const auto result = TFWXRSHttp::post(content.url, content.body,
                                         TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    return QJsonDocument::fromJson(result.data).object();
}

void tst_FilterCatalogue::bar_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<QJsonArray>("filters");
    QTest::addColumn<bool>("isOrder");
    const QDir dir(QStringLiteral(":/catalogue/views"));
    const QStringList names = dir.entryList({"*.json"}, QDir::Files, QDir::Name);
    QVERIFY(!names.isEmpty());
    for (const QString &name : names) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonObject view = QJsonDocument::fromJson(file.readAll()).object();
        const QJsonArray filters = view.value("filters").toArray();
        if (filters.isEmpty())
            continue;
        QTest::newRow(qPrintable(name + " " + view.value("name").toString())) << qint64(view.value("id").toInt()) << filters
            << (view.value("properties").toObject().value("IsOrder").toVariant().toString() == "1");
    }
}

void tst_FilterCatalogue::bar()
{
    QFETCH(qint64, viewId);
    QFETCH(QJsonArray, filters);
    QFETCH(bool, isOrder);

    TFSubjectTableWidget &widget = *m_widget;
    widget.reset(viewId);
    NtResponse response;
    QVERIFY(TFJSP::parseResponse(
        QString::fromUtf8(QJsonDocument(post(TFUc::viewConfigRequest(viewId, {}, {}))).toJson()), response));
    QVERIFY(widget.parseConfig(response.data, true));

    // One control per row that stands for one, in the order of the rows.
    QStringList expected;
    QList<QJsonObject> rows;
    for (const QJsonValue &value : filters) {
        const QJsonObject row = value.toObject();
        const QString className = row.value("ClassName").toString();
        if (buildsNoControl(className))
            continue;
        rows.append(row);
        expected.append(className.contains("CheckComboBox", Qt::CaseInsensitive) ? QStringLiteral("CustomCheckCombobox")
                                                                                  : className);
    }
    const QList<TFBaseFilterWidget *> controls =
        widget.filterWidget()->findChildren<TFBaseFilterWidget *>(QString(), Qt::FindDirectChildrenOnly);
    QStringList built;
    for (TFBaseFilterWidget *control : controls)
        built.append(control->objectName());
    QCOMPARE(built, expected);

    // Remote lists fill; then every control that filters reports a value.
    for (TFBaseFilterWidget *control : controls) {
        if (auto *check = qobject_cast<TFCheckCombox *>(control); check && check->isRemote())
            QTRY_VERIFY_WITH_TIMEOUT(check->listWidget()->count() > 1, 10000);
        if (auto *combo = qobject_cast<TFComboBox *>(control); combo && combo->isRemote())
            QTRY_VERIFY_WITH_TIMEOUT(combo->comboBox()->count() > 1, 10000);
    }
    for (int i = 0; i < controls.size(); ++i) {
        const QJsonObject &row = rows.at(i);
        const QString className = row.value("ClassName").toString();
        const FilterParam::Cntrl cntrl = controls.at(i)->getCntrl();
        const auto *combo = qobject_cast<TFComboBox *>(controls.at(i));
        const bool keywords = className.contains("TextEdit", Qt::CaseInsensitive) || className == "KeywordsBox";
        if (className.startsWith("SimpleButton")
            || (row.value("FieldName").toString().isEmpty() && !keywords && className != "YearMonthInterval")
            || (className == "DecimalTextEditInterval" && row.value("DefualtValue").toString() == "0;0")) {
            // Buttons, sources of other controls' defaults, a range at 0 to 0.
            QVERIFY2(cntrl.key.isEmpty(), qPrintable(className));
        } else if (combo && (combo->isUnitList() || combo->isRemote()) && cntrl.key != "PROVINCE") {
            // A unit list, and a remote list under another key, never filter.
            QVERIFY2(!cntrl.value.isValid(), qPrintable(className));
        } else {
            QVERIFY2(!cntrl.key.isEmpty(), qPrintable(className));
            QVERIFY2(cntrl.value.isValid(), qPrintable(className));
        }
    }

    // The query the bar's button starts goes out with every value and is accepted.
    if (isOrder)
        return;     // such a view waits for its child tabs before it asks
    widget.filterWidget()->slotSimpleButtonGetDataClicked();
    QTRY_VERIFY_WITH_TIMEOUT(QJsonDocument::fromJson(widget.sentContent().body).object().value("obj_vw_id").toInt()
                                 == viewId,
                             10000);
    const QJsonObject reply = post(widget.sentContent());
    QVERIFY2(reply.value("state").toInt() == 1,
             qPrintable(reply.value("msg").toString() + " " + QString::fromUtf8(widget.sentContent().body)));
    QTRY_VERIFY_WITH_TIMEOUT(widget.timeLabel()->text().startsWith(QStringLiteral("耗时"))
                                 || widget.timeLabel()->text() == QStringLiteral("无数据!"),
                             30000);
}

// A user opens the unit list of the quarterly figures and picks another
// unit with the keyboard; the table shows the new unit in its captions and
// its numbers in that unit.
void tst_FilterCatalogue::unitChoiceRescalesTheTable()
{
    TFSubjectTableWidget widget(nullptr, true);
    widget.initLayout();
    widget.resize(1400, 700);
    widget.show();
    widget.reset(264);
    NtResponse response;
    QVERIFY(TFJSP::parseResponse(QString::fromUtf8(QJsonDocument(post(TFUc::viewConfigRequest(264, {}, {}))).toJson()),
                                 response));
    QVERIFY(widget.parseConfig(response.data, true));
    QTRY_VERIFY_WITH_TIMEOUT(widget.model() && widget.model()->rowCount() > 0, 30000);

    auto *unitList = widget.filterWidget()->findChild<TFComboBox *>(QStringLiteral("UnitFactorCombobox"));
    QVERIFY(unitList);
    QComboBox *box = unitList->comboBox();
    QCOMPARE(box->currentText(), QStringLiteral("亿元"));
    const int revenue = widget.header()->leafCaptions().indexOf(QRegularExpression(QStringLiteral("^营业收入.*")));
    QVERIFY(revenue >= 0);
    QCOMPARE(widget.header()->leafCaptions().at(revenue), QStringLiteral("营业收入(亿元)"));

    // Open the list, walk up from 亿元 to 万元 and take it.
    QTest::mouseClick(box, Qt::LeftButton);
    QTRY_VERIFY(box->view()->isVisible());
    QTest::keyClick(box->view(), Qt::Key_Up);
    QTest::keyClick(box->view(), Qt::Key_Up);
    QTest::keyClick(box->view(), Qt::Key_Return);
    QTRY_COMPARE(box->currentText(), QStringLiteral("万元"));

    TFSubjectTableModel *model = widget.model();
    QTRY_COMPARE(model->unitFactor(), 10000);
    QCOMPARE(widget.header()->leafCaptions().at(revenue), QStringLiteral("营业收入(万元)"));
    QCOMPARE(model->headerData(revenue, Qt::Horizontal).toString(), QStringLiteral("营业收入(万元)"));
    for (int row : {0, model->rowCount() - 1}) {
        const double raw = model->index(row, revenue).data(TFSubjectTableModel::RawValueRole).toDouble();
        const double shown = model->index(row, revenue).data().toString().remove(',').toDouble();
        QVERIFY2(qAbs(shown - raw / 10000) <= 0.0051, qPrintable(QString("%1 %2").arg(shown).arg(raw)));
    }
}

QTEST_MAIN(tst_FilterCatalogue)
#include "tst_filtercatalogue.moc"
