#include "tfcore/tfframelesshelper.h"
#include "tfcore/tfviewscrollbarexpand.h"

#include <QMouseEvent>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>
#include <QtTest>

namespace {

void sendMouse(QWidget *window, QEvent::Type type, const QPoint &local, Qt::MouseButtons buttons)
{
    const QPoint global = window->mapToGlobal(local);
    QMouseEvent event(type, local, global, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      buttons, Qt::NoModifier);
    QApplication::sendEvent(window, &event);
}

} // namespace

class tst_TFFramelessHelper : public QObject
{
    Q_OBJECT
private slots:
    void dragging_data();
    void dragging();
    void scrollbarsWidenUnderTheMouse();
};

// A drag that starts inside the title height moves the window; one that
// starts at an edge of a resizable window resizes it instead.
void tst_TFFramelessHelper::dragging_data()
{
    QTest::addColumn<bool>("movable");
    QTest::addColumn<bool>("resizable");
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("delta");
    QTest::addColumn<QPoint>("expectedMove");
    QTest::addColumn<QSize>("expectedGrowth");
    QTest::newRow("title drag moves") << true << false << QPoint(100, 10) << QPoint(30, 20) << QPoint(30, 20) << QSize(0, 0);
    QTest::newRow("below title stays") << true << false << QPoint(100, 60) << QPoint(30, 20) << QPoint(0, 0) << QSize(0, 0);
    QTest::newRow("not movable") << false << false << QPoint(100, 10) << QPoint(30, 20) << QPoint(0, 0) << QSize(0, 0);
    QTest::newRow("right edge grows") << true << true << QPoint(299, 100) << QPoint(40, 0) << QPoint(0, 0) << QSize(40, 0);
    QTest::newRow("bottom edge grows") << true << true << QPoint(150, 199) << QPoint(0, 25) << QPoint(0, 0) << QSize(0, 25);
    QTest::newRow("left edge moves and grows") << true << true << QPoint(1, 100) << QPoint(-20, 0) << QPoint(-20, 0) << QSize(20, 0);
    QTest::newRow("edge of fixed window drags") << true << false << QPoint(299, 5) << QPoint(10, 0) << QPoint(10, 0) << QSize(0, 0);
    QTest::newRow("never below minimum") << true << true << QPoint(299, 100) << QPoint(-500, 0) << QPoint(0, 0) << QSize(-200, 0);
}

void tst_TFFramelessHelper::dragging()
{
    QFETCH(bool, movable);
    QFETCH(bool, resizable);
    QFETCH(QPoint, press);
    QFETCH(QPoint, delta);
    QFETCH(QPoint, expectedMove);
    QFETCH(QSize, expectedGrowth);

    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setMinimumSize(100, 100);
    window.setGeometry(200, 200, 300, 200);
    TFFramelessHelper helper;
    helper.activateOn(&window);
    helper.setWidgetMovable(movable, 30);
    helper.setWidgetResizable(resizable);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    const QRect before = window.geometry();
    sendMouse(&window, QEvent::MouseButtonPress, press, Qt::LeftButton);
    sendMouse(&window, QEvent::MouseMove, press + delta, Qt::LeftButton);
    sendMouse(&window, QEvent::MouseButtonRelease, window.mapFromGlobal(before.topLeft() + press + delta), Qt::NoButton);

    QTRY_COMPARE(window.geometry().topLeft(), before.topLeft() + expectedMove);
    QCOMPARE(window.geometry().size(), before.size() + expectedGrowth);
}

void tst_TFFramelessHelper::scrollbarsWidenUnderTheMouse()
{
    QStandardItemModel model(200, 30);
    QTableView view;
    view.setModel(&model);
    view.resize(300, 200);
    TFViewScrollbarExpand expand(&view, &view);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));

    const int thin = view.verticalScrollBar()->sizeHint().width();
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(&view, &enter);
    const int wide = view.verticalScrollBar()->sizeHint().width();
    QVERIFY2(wide > thin, qPrintable(QString("%1 -> %2").arg(thin).arg(wide)));
    QVERIFY(view.horizontalScrollBar()->sizeHint().height() > thin);

    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&view, &leave);
    QCOMPARE(view.verticalScrollBar()->sizeHint().width(), thin);
}

QTEST_MAIN(tst_TFFramelessHelper)
#include "tst_tfframelesshelper.moc"
