#include "tfframesubjectzhp.h"
#include "tfmainview.h"
#include "tfrightcontainer.h"
#include "tfsubjecttablewidget.h"

#include "mulittable/tfsubjecttablemodel.h"
#include "screenstub.h"
#include "subjectservice.h"
#include "tfcore/tffactory.h"
#include "tfcore/tfserviceconfig.h"

#include <QAction>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";
const char kRefresh[] = "refresh right container:";

QVariantMap fullState(qlonglong objVwId, const QString &title, const QString &binder = QString())
{
    return {{"version", "1.0.0"},       {"titleVisible", true},   {"filterVisible", true},
            {"mainViewVisible", true},  {"subViewVisible", true}, {"pageBarVisible", false},
            {"objVwId", objVwId},       {"title", title},         {"objVwIdBinder", binder},
            {"filterMap", QVariantMap{{"IND_NAME", "%银行%"}}}};
}

QJsonObject sentBody(const TFFrameSubjectZHP &frame)
{
    auto *table = qobject_cast<TFSubjectTableWidget *>(frame.rightContainer()->mainView()->currentView());
    return table ? QJsonDocument::fromJson(table->sentContent().body).object() : QJsonObject();
}

int rowsShown(const TFFrameSubjectZHP &frame)
{
    auto *table = qobject_cast<TFSubjectTableWidget *>(frame.rightContainer()->mainView()->currentView());
    return table && table->model() ? table->model()->rowCount() : 0;
}

} // namespace

// Components live under a parent that carries the screen in "zhpObj".
class tst_TFFrameSubjectZHP : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void registration_data();
    void registration();
    void restore_data();
    void restore();
    void roundTripAfterTheData();
    void globalArguments_data();
    void globalArguments();
    void bindingTheSameKeyAgainDoesNothing();
    void boundComponentsRequestTheNewView();
    void aViewThatNoLongerExists();
    void globalArgumentReplacesTheControlValue_data();
    void globalArgumentReplacesTheControlValue();

private:
    std::unique_ptr<QWidget> holder(ScreenStub *screen);

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
};

void tst_TFFrameSubjectZHP::initTestCase()
{
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("frame.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server->baseUrl());
    TFFrameSubjectZHP::registerComponents();
}

void tst_TFFrameSubjectZHP::cleanupTestCase()
{
    QThreadPool::globalInstance()->waitForDone(30000);
    if (m_server)
        m_server->stop();
}

std::unique_ptr<QWidget> tst_TFFrameSubjectZHP::holder(ScreenStub *screen)
{
    std::unique_ptr<QWidget> widget(new QWidget);
    widget->setProperty("zhpObj", QVariant::fromValue<QObject *>(screen));
    return widget;
}

void tst_TFFrameSubjectZHP::registration_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("topics");
    QTest::newRow("plain") << QByteArray("TFFrameSubjectZHP") << QString();
    QTest::newRow("shipping") << QByteArray("TFFrameSubjectZHP_CQ") << QString("专题-船期:2114000074");
    QTest::newRow("plants") << QByteArray("TFFrameSubjectZHP_ZZ") << QString("专题-装置:2");
}

// Every class is made by its name, finds the screen, and answers to the
// class name that filter bars look for.
void tst_TFFrameSubjectZHP::registration()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, topics);
    ScreenStub screen;
    auto parent = holder(&screen);
    const auto constructor = TFFactory<QWidget>::constructors().value(name);
    QVERIFY(constructor);
    auto *frame = dynamic_cast<TFFrameSubjectZHP *>(constructor(parent.get()));
    QVERIFY(frame);
    QCOMPARE(frame->parentWidget(), parent.get());
    QCOMPARE(frame->screenObject(), &screen);
    QCOMPARE(frame->topicList(), topics);
    QCOMPARE(QByteArray(frame->metaObject()->className()), QByteArray("TFFrameSubjectZHP"));
    QCOMPARE(frame->objVwId(), qlonglong(0));
    QCOMPARE(frame->settingsAction()->text(), QString("设置"));
    QCOMPARE(frame->settingsAction()->shortcut(), QKeySequence("Ctrl+P"));
    QCOMPARE(frame->layout()->contentsMargins(), QMargins(10, 10, 10, 10));
}

void tst_TFFrameSubjectZHP::restore_data()
{
    QTest::addColumn<QVariantMap>("before");     // restored first
    QTest::addColumn<QVariantMap>("state");
    QTest::addColumn<qlonglong>("objVwId");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QVariantMap>("filterMap");
    QTest::addColumn<QString>("warning");        // what the log says, if anything

    const QVariantMap own{{"IND_NAME", "%银行%"}};
    QVariantMap noVersion = fullState(264, "b");
    noVersion.remove("version");
    noVersion.insert("filterMap", QVariantMap{{"X", 1}});
    QVariantMap zeroVersion = noVersion;
    zeroVersion.insert("version", "0.0.0");
    QVariantMap zeroView = fullState(0, "t");
    QVariantMap otherVersion = fullState(260, "a");
    otherVersion.insert("version", "2.0.0");
    QVariantMap malformed{{"version", "1.0.0"}, {"objVwId", "abc"}, {"filterMap", "not a map"}, {"title", 7}};

    QTest::newRow("full state") << QVariantMap() << fullState(260, "a") << 260LL << "a" << own << QString();
    QTest::newRow("no version keeps the filter map")
        << fullState(260, "a") << noVersion << 264LL << "b" << own << "keys missing.*version";
    QTest::newRow("version 0.0.0 keeps the filter map")
        << fullState(260, "a") << zeroVersion << 264LL << "b" << own << QString();
    QTest::newRow("view 0 keeps the earlier view") << fullState(260, "a") << zeroView << 260LL << "t" << own << QString();
    QTest::newRow("another version opens with defaults")
        << QVariantMap() << otherVersion << 0LL << QString() << own << "version \"2.0.0\" is not read";
    QTest::newRow("malformed values") << fullState(260, "a") << malformed << 260LL << "7" << QVariantMap()
                                      << "keys missing.*titleVisible";
    QTest::newRow("empty state") << QVariantMap() << QVariantMap() << 0LL << QString() << own
                                 << "keys missing.*objVwId";
}

void tst_TFFrameSubjectZHP::restore()
{
    QFETCH(QVariantMap, before);
    QFETCH(QVariantMap, state);
    QFETCH(qlonglong, objVwId);
    QFETCH(QString, title);
    QFETCH(QVariantMap, filterMap);
    QFETCH(QString, warning);

    TFFrameSubjectZHP frame;
    if (before.isEmpty())
        frame.setGlFilterArgs({{"IND_NAME", "%银行%"}});   // what a state without a version keeps
    else
        frame.restore(before);
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));
    frame.restore(state);
    QCOMPARE(frame.objVwId(), objVwId);
    QCOMPARE(frame.title(), title);
    QCOMPARE(frame.filterMap(), filterMap);

    QMap<QString, QVariant> saved;
    frame.save(saved);
    QCOMPARE(saved.value("version").toString(), QString("1.0.0"));
    QCOMPARE(saved.value("objVwId").toLongLong(), objVwId);
    if (state == fullState(260, "a"))
        QCOMPARE(saved, state);   // the round trip gives back what was saved
    QThreadPool::globalInstance()->waitForDone(30000);
}

// Once the page has its data the cached settings are applied to the filter
// bar, the child views and the page bar, and a save still gives the state.
void tst_TFFrameSubjectZHP::roundTripAfterTheData()
{
    TFFrameSubjectZHP frame;
    frame.resize(1000, 700);
    frame.show();
    const QVariantMap state = fullState(260, "沪深A股行情");
    frame.restore(state);
    QTRY_VERIFY_WITH_TIMEOUT(rowsShown(frame) > 0, 30000);
    auto *table = qobject_cast<TFSubjectTableWidget *>(frame.rightContainer()->mainView()->currentView());
    QVERIFY(table);
    QVERIFY(table->isFilterBarVisible());
    QVERIFY(!table->isPageBarVisible());
    QCOMPARE(frame.windowTitle(), QString("沪深A股行情"));
    QMap<QString, QVariant> saved;
    frame.save(saved);
    QCOMPARE(saved, state);

    // A frame that was never restored hides all three at its first data.
    TFFrameSubjectZHP fresh;
    fresh.setObjVwId(260);
    fresh.rightContainer()->refreshPage(260, QString());
    QTRY_VERIFY_WITH_TIMEOUT(rowsShown(fresh) > 0, 30000);
    auto *freshTable = qobject_cast<TFSubjectTableWidget *>(fresh.rightContainer()->mainView()->currentView());
    QVERIFY(!freshTable->isFilterBarVisible());
    QVERIFY(!freshTable->isPageBarVisible());
    QVERIFY(!fresh.rightContainer()->childViewsVisible());
    QThreadPool::globalInstance()->waitForDone(30000);
}

void tst_TFFrameSubjectZHP::globalArguments_data()
{
    QTest::addColumn<qlonglong>("startView");
    QTest::addColumn<QVariantMap>("filterMap");
    QTest::addColumn<QVariantMap>("args");
    QTest::addColumn<qlonglong>("objVwId");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("refreshes");

    const QVariantMap none;
    QTest::newRow("binder value selects the view, and the argument refreshes again")
        << 0LL << none << QVariantMap{{"view", "债券一览|3110"}} << 3110LL << "债券一览" << 2;
    QTest::newRow("identifier 0 keeps the view and still refreshes")
        << 260LL << none << QVariantMap{{"view", "标题|0"}} << 260LL << "标题" << 2;
    QTest::newRow("the same view refreshes once, for the argument")
        << 260LL << none << QVariantMap{{"view", "x|260"}} << 260LL << "x" << 1;
    QTest::newRow("a value without a bar changes no view")
        << 260LL << none << QVariantMap{{"view", "3110"}} << 260LL << "" << 1;
    QTest::newRow("a value of three parts changes no view")
        << 260LL << none << QVariantMap{{"view", "a|3110|b"}} << 260LL << "" << 1;
    QTest::newRow("an argument the component overrides is quiet")
        << 260LL << QVariantMap{{"A", 1}} << QVariantMap{{"A", 2}} << 260LL << "" << 0;
    QTest::newRow("an overridden and another one refresh once")
        << 260LL << QVariantMap{{"A", 1}} << QVariantMap{{"A", 2}, {"B", 3}} << 260LL << "" << 1;
    QTest::newRow("no arguments") << 260LL << none << QVariantMap() << 260LL << "" << 0;
}

void tst_TFFrameSubjectZHP::globalArguments()
{
    QFETCH(qlonglong, startView);
    QFETCH(QVariantMap, filterMap);
    QFETCH(QVariantMap, args);
    QFETCH(qlonglong, objVwId);
    QFETCH(QString, title);
    QFETCH(int, refreshes);

    ScreenStub screen;
    auto parent = holder(&screen);
    auto *frame = new TFFrameSubjectZHP(parent.get());
    frame->setObjVwId(startView);
    frame->setGlFilterArgs(filterMap);
    frame->setObjVwIdGlKey("view");   // no such argument yet: nothing to follow
    QCOMPARE(frame->binderKey(), QString("view"));

    const bool badValue = args.value("view").toString().count('|') != 1 && args.contains("view");
    if (badValue)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("is not \"caption\\|view identifier\""));
    {
        LogCounter counter(kRefresh);
        screen.setArgs(args);
        QCOMPARE(counter.count(), refreshes);
    }
    QCOMPARE(frame->objVwId(), objVwId);
    QCOMPARE(frame->title(), title);

    // The component's own arguments beat the screen's; those fill the rest.
    QVariantMap merged = args;
    for (auto it = filterMap.cbegin(); it != filterMap.cend(); ++it)
        merged.insert(it.key(), it.value());
    QCOMPARE(frame->glFilterArgs(), merged);
    QCOMPARE(frame->property("glFilterArgs").toMap(), merged);
    QThreadPool::globalInstance()->waitForDone(30000);
}

void tst_TFFrameSubjectZHP::bindingTheSameKeyAgainDoesNothing()
{
    ScreenStub screen;
    screen.setArgs({{"view", "a|260"}});
    auto parent = holder(&screen);
    auto *frame = new TFFrameSubjectZHP(parent.get());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("binder key \"nothing\" names none of the screen's"));
    frame->setObjVwIdGlKey("nothing");
    QCOMPARE(frame->objVwId(), qlonglong(0));
    frame->setObjVwIdGlKey("view");
    QCOMPARE(frame->objVwId(), qlonglong(260));
    frame->setObjVwId(264);
    LogCounter counter(kRefresh);
    frame->setObjVwIdGlKey("view");    // bound already: the arguments are not read again
    frame->setObjVwIdGlKey(QString());
    QCOMPARE(frame->objVwId(), qlonglong(264));
    QCOMPARE(counter.count(), 0);
    QCOMPARE(frame->binderKey(), QString("view"));
    QThreadPool::globalInstance()->waitForDone(30000);
}

// Two components bound to one global argument: a change of it makes both
// ask the service for the new view, and both show its rows.
void tst_TFFrameSubjectZHP::boundComponentsRequestTheNewView()
{
    ScreenStub screen;
    screen.setArgs({{"objVwId", "沪深A股行情|260"}});
    auto parent = holder(&screen);
    parent->resize(1000, 900);
    auto *layout = new QVBoxLayout(parent.get());
    QList<TFFrameSubjectZHP *> frames;
    for (int i = 0; i < 2; ++i) {
        auto *frame = new TFFrameSubjectZHP(parent.get());
        layout->addWidget(frame);
        frame->restore(fullState(0, QString(), "objVwId"));
        frames << frame;
    }
    parent->show();
    for (TFFrameSubjectZHP *frame : qAsConst(frames)) {
        QCOMPARE(frame->objVwId(), qlonglong(260));
        QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);
        QCOMPARE(sentBody(*frame).value("obj_vw_id").toInt(), 260);
    }

    screen.setArgs({{"objVwId", "债券一览|3110"}});
    for (TFFrameSubjectZHP *frame : qAsConst(frames)) {
        QCOMPARE(frame->objVwId(), qlonglong(3110));
        QCOMPARE(frame->rightContainer()->title(), QString("债券一览"));
        QTRY_COMPARE_WITH_TIMEOUT(sentBody(*frame).value("obj_vw_id").toInt(), 3110, 30000);
        QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);
        QCOMPARE(frame->rightContainer()->mainView()->currentViewId(), 3110);
    }
    QThreadPool::globalInstance()->waitForDone(30000);
}

// A saved view that the service no longer has: that component stays empty
// and says why, its neighbour works.
void tst_TFFrameSubjectZHP::aViewThatNoLongerExists()
{
    ScreenStub screen;
    auto parent = holder(&screen);
    auto *gone = new TFFrameSubjectZHP(parent.get());
    auto *working = new TFFrameSubjectZHP(parent.get());
    QSignalSpy goneData(gone->rightContainer(), &TFRightContainer::signalDataChanged);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("view 99999 has no configuration on the service"));
    gone->restore(fullState(99999, "gone"));
    working->restore(fullState(3110, "ok"));
    QTRY_COMPARE_WITH_TIMEOUT(goneData.count(), 1, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*working) > 0, 30000);
    QCOMPARE(rowsShown(*gone), 0);
    QCOMPARE(gone->objVwId(), qlonglong(99999));
    QThreadPool::globalInstance()->waitForDone(30000);
}

void tst_TFFrameSubjectZHP::globalArgumentReplacesTheControlValue_data()
{
    QTest::addColumn<QVariantMap>("filterMap");
    QTest::addColumn<QString>("code");
    QTest::newRow("the screen's argument") << QVariantMap() << QString("601");
    QTest::newRow("the component's own beats it") << QVariantMap{{"SECU_CODE", "600"}} << QString("600");
}

// A global argument named like a control of the view replaces what the
// control holds (its default "6000") in the rows request, and the service
// answers with the rows of that value.
void tst_TFFrameSubjectZHP::globalArgumentReplacesTheControlValue()
{
    QFETCH(QVariantMap, filterMap);
    QFETCH(QString, code);
    ScreenStub screen;
    screen.setArgs({{"SECU_CODE", "601"}});
    auto parent = holder(&screen);
    auto *frame = new TFFrameSubjectZHP(parent.get());
    QVariantMap state = fullState(266, "个股纵览");
    state.insert("filterMap", filterMap);
    frame->restore(state);
    QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);
    const QJsonObject body = sentBody(*frame);
    QCOMPARE(body.value("obj_vw_id").toInt(), 266);
    QVERIFY2(body.value("filter").toString().contains("(SECU_CODE like :SECU_CODE_0)"),
             QJsonDocument(body).toJson().constData());
    QCOMPARE(body.value("filterParams").toObject().value("SECU_CODE_0").toString(), code);
    const QList<QVariantMap> rows = frame->rightContainer()->mainView()->allRows();
    QVERIFY(!rows.isEmpty() && rows.first().contains("SECU_CODE"));
    for (const QVariantMap &row : rows)
        QVERIFY2(row.value("SECU_CODE").toString().contains(code), qPrintable(row.value("SECU_CODE").toString()));
    QThreadPool::globalInstance()->waitForDone(30000);
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFFrameSubjectZHP)
#include "tst_tfframesubjectzhp.moc"
