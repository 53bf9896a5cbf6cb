#include "tfbaseview.h"
#include "tfmainview.h"
#include "tfsubjecttablewidget.h"

#include "echarts/tfmulticharts.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
#include <QThreadPool>
#include <QtTest>

#include "webenginetestmain.h"

namespace {

QJsonObject configOfType(const QString &type, const QString &name = QStringLiteral("view"))
{
    QJsonObject config;
    if (!type.isNull()) {
        config.insert(QStringLiteral("View_Config"),
                      QJsonArray{QJsonObject{{"prop_name", "ObjViewType"}, {"prop_val", type}}});
    }
    config.insert(QStringLiteral("Object_View"), QJsonArray{QJsonObject{{"obj_vw_name", name}}});
    return config;
}

} // namespace

class tst_TFMainView : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { TFTableModelData::registerRowDataType(); }
    // A main table asks for its rows at once; let those requests end while the application lives.
    void cleanupTestCase() { QVERIFY(QThreadPool::globalInstance()->waitForDone(30000)); }
    void viewKind_data();
    void viewKind();
    void emptyStack();
    void tableThenChartThenTable();
};

void tst_TFMainView::viewKind_data()
{
    QTest::addColumn<QJsonValue>("config");
    QTest::addColumn<int>("kind");

    QTest::newRow("no View_Config") << QJsonValue(QJsonObject()) << 0;
    QTest::newRow("not an object") << QJsonValue(QStringLiteral("x")) << 0;
    QTest::newRow("chart") << QJsonValue(configOfType(QStringLiteral("ViewDataChart"))) << 1;
    QTest::newRow("the comparison has case") << QJsonValue(configOfType(QStringLiteral("viewdatachart"))) << 0;
    QTest::newRow("grid") << QJsonValue(configOfType(QStringLiteral("ViewDataGrid"))) << 0;
}

void tst_TFMainView::viewKind()
{
    QFETCH(QJsonValue, config);
    QFETCH(int, kind);
    QCOMPARE(TFMainView::viewKind(config), kind);
}

void tst_TFMainView::emptyStack()
{
    // With no view on top every forwarding answers empty, and nothing is made.
    TFMainView stack;
    QVERIFY(!stack.currentView());
    QCOMPARE(stack.currentViewId(), -1);
    QVERIFY(stack.filters().isEmpty() && stack.params().isEmpty() && stack.getCntrls().isEmpty());
    QVERIFY(stack.childLinkText(261).isEmpty() && stack.firstRow().isEmpty() && stack.allRows().isEmpty());
    stack.setViewId(5);
    stack.startLoading();
    stack.finished();
    stack.load(qMakePair(QString(), QVariant()));
    QCOMPARE(stack.count(), 0);
    // The factory makes tables and charts only (the page walk sees both in its tabs).
    QVERIFY(!createView(2, 42, configOfType(QString()), &stack, false));
}

void tst_TFMainView::tableThenChartThenTable()
{
    TFMainView stack;
    stack.setViewId(11);
    stack.parseConfig(configOfType(QString()), true);
    QCOMPARE(stack.count(), 1);
    auto *table = qobject_cast<TFSubjectTableWidget *>(stack.currentView());
    QVERIFY(table);
    QCOMPARE(stack.currentViewId(), 11);
    QVERIFY(!table->signalsBlocked());
    // The table's signals come out of the stack.
    QSignalSpy children(&stack, &TFMainView::updateChildren);
    QSignalSpy notices(&stack, &TFMainView::signalGetSubViewCfg);
    QSignalSpy sector(&stack, qOverload<QString>(&TFMainView::sigSectorNumChanged));
    emit table->updateChildren();
    QCOMPARE(children.count(), 1);
    emit table->signalGetSubViewCfg(12, QStringLiteral("c"), 11);
    QCOMPARE(notices.count(), 1);
    QCOMPARE(notices.at(0).at(0).toLongLong(), 12);
    emit table->sigSectorNumChanged(QStringLiteral("5"));
    QCOMPARE(sector.count(), 0); // the one-argument signal is not passed on

    stack.setViewId(21);
    stack.parseConfig(configOfType(QStringLiteral("ViewDataChart"), QStringLiteral("走势")), true);
    QCOMPARE(stack.count(), 2);
    auto *chart = qobject_cast<TFMultiCharts *>(stack.currentView());
    QVERIFY(chart);
    QCOMPARE(stack.currentViewId(), 21);
    QCOMPARE(chart->caption(), QStringLiteral("走势"));
    // Forwarding that needs a table gives nothing with a chart on top.
    QVERIFY(stack.firstRow().isEmpty());
    QVERIFY(stack.childLinkText(1).isEmpty());

    stack.setViewId(31);
    stack.parseConfig(configOfType(QStringLiteral("ViewDataGrid")), true);
    QCOMPARE(stack.count(), 2);
    QCOMPARE(stack.currentView(), static_cast<TFBaseView *>(table));
    QCOMPARE(stack.currentViewId(), 31);
    QCOMPARE(stack.kinds(), (QList<int>{0, 1}));
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFMainView)
#include "tst_tfmainview.moc"
