#include "tfmainview.h"
#include "tfrightcontainer.h"

#include "tfcore/tfserviceconfig.h"

#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QThreadPool>
#include <QtTest>

using Notices = QList<QPair<qlonglong, qlonglong>>; // (child, parent) of each notice

class tst_TFRightContainer : public QObject
{
    Q_OBJECT
private slots:
    // Nobody listens: every request of the container fails.
    void initTestCase() { TFServiceConfig::instance()->setHttpUrl("servercfg.ini:Subject", QUrl("http://127.0.0.1:9")); }
    void tabText_data();
    void tabText();
    void childNotices_data();
    void childNotices();
    void hideTab();
    void splitterRule_data();
    void splitterRule();
};

void tst_TFRightContainer::tabText_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("ten characters stay") << "一二三四五六七八九十" << "一二三四五六七八九十";
    QTest::newRow("eleven are cut") << "一二三四五六七八九十壹" << "一二三四五六七八九十...";
    QTest::newRow("latin") << "abcdefghijklmnop" << "abcdefghij...";
}

void tst_TFRightContainer::tabText()
{
    QFETCH(QString, caption);
    QFETCH(QString, text);
    QCOMPARE(TFRightContainer::tabText(caption), text);
}

void tst_TFRightContainer::childNotices_data()
{
    // Notices as (child, parent) pairs sent while the container shows view 7000.
    QTest::addColumn<Notices>("notices");
    QTest::addColumn<QList<qint64>>("children");
    QTest::newRow("none") << Notices{} << QList<qint64>{};
    QTest::newRow("one child") << Notices{{7001, 7000}} << QList<qint64>{7001};
    QTest::newRow("stale notice of an earlier page") << Notices{{7001, 6000}} << QList<qint64>{};
    QTest::newRow("repeated notice") << Notices{{7001, 7000}, {7001, 7000}, {7002, 7000}} << QList<qint64>{7001, 7002};
    QTest::newRow("mixed") << Notices{{7003, 6999}, {7002, 7000}} << QList<qint64>{7002};
}

void tst_TFRightContainer::childNotices()
{
    QFETCH(Notices, notices);
    QFETCH(QList<qint64>, children);
    TFRightContainer container;
    container.show();
    container.refreshPage(7000, QStringLiteral("none"));
    QCOMPARE(container.currentView(), 7000);
    QVERIFY(container.tabWidget()->isHidden());
    for (const auto &notice : notices)
        emit container.mainView()->signalGetSubViewCfg(notice.first, QStringLiteral("c"), notice.second);
    QCOMPARE(container.childState().keys(), children);
    QVERIFY(!container.childState().values().contains(true));
    QCOMPARE(container.tabWidget()->isHidden(), children.isEmpty());
    // A configuration that is null, or for a view that is no child, makes no tab.
    for (qlonglong child : {7001, 7002, 7003})
        container.createSubWidgets(child, QJsonValue());
    container.createSubWidgets(7005, QJsonObject());
    // Every request has run and its reply is among the posted events: what
    // has not happened by now does not happen.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(container.tabWidget()->count(), 0);
    QCOMPARE(container.childState().keys(), children);
    QVERIFY(!container.childState().values().contains(true));
}

void tst_TFRightContainer::hideTab()
{
    TFRightContainer container;
    container.resize(800, 600);
    container.show();
    QTabWidget *tabs = container.tabWidget();
    tabs->addTab(new QLabel, QStringLiteral("x"));
    tabs->show();
    const int bar = tabs->tabBar()->height();
    QVERIFY(bar > 0);
    QVERIFY(container.cornerButton()->isCheckable());
    container.cornerButton()->click(); // fold
    QCOMPARE(tabs->minimumHeight(), 0);
    QCOMPARE(tabs->maximumHeight(), bar);
    container.cornerButton()->click(); // open
    QCOMPARE(tabs->minimumHeight(), 5 * bar);
    QCOMPARE(tabs->maximumHeight(), QWIDGETSIZE_MAX);
}

void tst_TFRightContainer::splitterRule_data()
{
    QTest::addColumn<bool>("mainVisible");
    QTest::addColumn<bool>("childrenVisible");
    QTest::addColumn<bool>("mainLarger");
    QTest::addColumn<bool>("childrenLarger");
    QTest::newRow("both") << true << true << false << false;
    QTest::newRow("main only") << true << false << true << false;
    QTest::newRow("children only") << false << true << false << true;
}

void tst_TFRightContainer::splitterRule()
{
    QFETCH(bool, mainVisible);
    QFETCH(bool, childrenVisible);
    QFETCH(bool, mainLarger);
    QFETCH(bool, childrenLarger);
    TFRightContainer container;
    container.resize(800, 600);
    container.show();
    container.tabWidget()->show();
    container.setMainViewVisible(mainVisible);
    container.setChildViewsVisible(childrenVisible);
    if (childrenVisible)
        container.tabWidget()->show();
    const QList<int> sizes = container.findChild<QSplitter *>(QStringLiteral("Splitter"))->sizes();
    QCOMPARE(sizes.size(), 2);
    // Equal shares of an odd height differ by the one pixel left over.
    QCOMPARE(sizes.at(0) > sizes.at(1) + 1, mainLarger);
    QCOMPARE(sizes.at(1) > sizes.at(0) + 1, childrenLarger);
    QCOMPARE(container.childViewsVisible(), childrenVisible);
}

QTEST_MAIN(tst_TFRightContainer)
#include "tst_tfrightcontainer.moc"
