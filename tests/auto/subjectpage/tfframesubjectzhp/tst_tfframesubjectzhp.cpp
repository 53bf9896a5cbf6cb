#include "screenstub.h"
#include "tfcore/tffactory.h"

#include <QAction>
#include <QVBoxLayout>
#include <QtTest>

#include "webenginetestmain.h"

static const char kRefresh[] = "refresh right container:";

class tst_TFFrameSubjectZHP : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_service.start(&error), qPrintable(error));
        TFFrameSubjectZHP::registerComponents();
    }
    void cleanup() { QThreadPool::globalInstance()->waitForDone(30000); }
    void registration_data();
    void registration();
    void restore_data();
    void restore();
    void roundTripAfterTheData();
    void globalArguments_data();
    void globalArguments();
    void bindingTheSameKeyAgainDoesNothing();
    void boundComponentsFollowTheArgument();
    void globalArgumentReplacesTheControlValue();

private:
    ComponentService m_service;
};

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
    auto parent = screenHolder(&screen);
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
    QVariantMap noVersion = componentState(264, "b");
    noVersion.remove("version");
    noVersion.insert("filterMap", QVariantMap{{"X", 1}});
    QVariantMap zeroVersion = noVersion;
    zeroVersion.insert("version", "0.0.0");
    QVariantMap zeroView = componentState(0, "t");
    QVariantMap otherVersion = componentState(260, "a");
    otherVersion.insert("version", "2.0.0");
    QVariantMap malformed{{"version", "1.0.0"}, {"objVwId", "abc"}, {"filterMap", "not a map"}, {"title", 7}};

    QTest::newRow("full state") << QVariantMap() << componentState(260, "a") << 260LL << "a" << own << QString();
    QTest::newRow("no version keeps the filter map")
        << componentState(260, "a") << noVersion << 264LL << "b" << own << "keys missing.*version";
    QTest::newRow("version 0.0.0 keeps the filter map")
        << componentState(260, "a") << zeroVersion << 264LL << "b" << own << QString();
    QTest::newRow("view 0 keeps the earlier view") << componentState(260, "a") << zeroView << 260LL << "t" << own << QString();
    QTest::newRow("another version opens with defaults")
        << QVariantMap() << otherVersion << 0LL << QString() << own << "version \"2.0.0\" is not read";
    QTest::newRow("malformed values") << componentState(260, "a") << malformed << 260LL << "7" << QVariantMap()
                                      << "keys missing.*titleVisible";
    QTest::newRow("empty state") << QVariantMap() << QVariantMap() << 0LL << QString() << own << "keys missing.*objVwId";
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
    if (state == componentState(260, "a"))
        QCOMPARE(saved, state);   // the round trip gives back what was saved
}

// Once the page has its data the cached settings are applied to the filter
// bar, the child views and the page bar, and a save still gives the state.
void tst_TFFrameSubjectZHP::roundTripAfterTheData()
{
    TFFrameSubjectZHP frame;
    frame.resize(1000, 700);
    frame.show();
    const QVariantMap state = componentState(260, "沪深A股行情");
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
    QTest::newRow("an argument the component overrides is quiet")
        << 260LL << QVariantMap{{"A", 1}} << QVariantMap{{"A", 2}} << 260LL << "" << 0;
    QTest::newRow("an overridden and another one refresh once")
        << 260LL << QVariantMap{{"A", 1}} << QVariantMap{{"A", 2}, {"B", 3}} << 260LL << "" << 1;
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
    auto parent = screenHolder(&screen);
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
}

void tst_TFFrameSubjectZHP::bindingTheSameKeyAgainDoesNothing()
{
    ScreenStub screen;
    screen.setArgs({{"view", "a|260"}});
    auto parent = screenHolder(&screen);
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
}

// Two components bound to one global argument: a change of it makes both
// show the new view's rows. A third one saved on a view that the service no
// longer has stays empty and says why; its neighbours work.
void tst_TFFrameSubjectZHP::boundComponentsFollowTheArgument()
{
    ScreenStub screen;
    screen.setArgs({{"objVwId", "沪深A股行情|260"}});
    auto parent = screenHolder(&screen);
    parent->resize(1000, 900);
    auto *layout = new QVBoxLayout(parent.get());
    QList<TFFrameSubjectZHP *> frames;
    for (int i = 0; i < 2; ++i) {
        frames << new TFFrameSubjectZHP(parent.get());
        layout->addWidget(frames.last());
        frames.last()->restore(componentState(0, QString(), "objVwId"));
    }
    auto *gone = new TFFrameSubjectZHP(parent.get());
    QSignalSpy goneData(gone->rightContainer(), &TFRightContainer::signalDataChanged);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("view 99999 has no configuration on the service"));
    gone->restore(componentState(99999, "gone"));
    parent->show();
    for (TFFrameSubjectZHP *frame : qAsConst(frames)) {
        QCOMPARE(frame->objVwId(), qlonglong(260));
        QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);
    }
    QTRY_COMPARE_WITH_TIMEOUT(goneData.count(), 1, 30000);
    QCOMPARE(rowsShown(*gone), 0);
    QCOMPARE(gone->objVwId(), qlonglong(99999));

    screen.setArgs({{"objVwId", "债券一览|3110"}});
    for (TFFrameSubjectZHP *frame : qAsConst(frames)) {
        QCOMPARE(frame->objVwId(), qlonglong(3110));
        QCOMPARE(frame->rightContainer()->title(), QString("债券一览"));
        QTRY_COMPARE_WITH_TIMEOUT(frame->rightContainer()->mainView()->currentViewId(), 3110, 30000);
        QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);
    }
}

// A global argument named like a control of the view replaces what the
// control holds (its default "6000") in the rows request, and the service
// answers with the rows of that value.
void tst_TFFrameSubjectZHP::globalArgumentReplacesTheControlValue()
{
    ScreenStub screen;
    screen.setArgs({{"SECU_CODE", "601"}});
    auto parent = screenHolder(&screen);
    auto *frame = new TFFrameSubjectZHP(parent.get());
    QVariantMap state = componentState(266, "个股纵览");
    state.insert("filterMap", QVariantMap());
    frame->restore(state);
    QTRY_VERIFY_WITH_TIMEOUT(rowsShown(*frame) > 0, 30000);
    auto *table = qobject_cast<TFSubjectTableWidget *>(frame->rightContainer()->mainView()->currentView());
    const QJsonObject body = QJsonDocument::fromJson(table->sentContent().body).object();
    QCOMPARE(body.value("filterParams").toObject().value("SECU_CODE_0").toString(), QString("601"));
    const QList<QVariantMap> rows = frame->rightContainer()->mainView()->allRows();
    QVERIFY(!rows.isEmpty() && rows.first().contains("SECU_CODE"));
    for (const QVariantMap &row : rows)
        QVERIFY2(row.value("SECU_CODE").toString().contains("601"), qPrintable(row.value("SECU_CODE").toString()));
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFFrameSubjectZHP)
#include "tst_tfframesubjectzhp.moc"
