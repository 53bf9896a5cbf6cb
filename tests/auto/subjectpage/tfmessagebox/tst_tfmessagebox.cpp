#include "tfmessagebox.h"

#include "tfcore/commontemplate.h"
#include "tfcore/tfshadow.h"

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTextBrowser>
#include <QtTest>

class tst_TFMessageBox : public QObject
{
    Q_OBJECT
private slots:
    void showMsg_data();
    void showMsg();
    void shadowFollowsSizeAndState();
    void missingChildIsLogged();
};

void tst_TFMessageBox::showMsg_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QPoint>("expected");

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const int w = screen.width();
    const int h = screen.height();
    QTest::newRow("room to the right and below") << QPoint(20, 30) << QPoint(20, 30);
    QTest::newRow("exactly fits") << QPoint(w - 300, h - 200) << QPoint(w - 300, h - 200);
    QTest::newRow("one pixel past the right edge") << QPoint(w - 299, 30) << QPoint(w - 599, 30);
    QTest::newRow("one pixel past the bottom edge") << QPoint(20, h - 199) << QPoint(20, h - 399);
    QTest::newRow("bottom right corner: up and to the left") << QPoint(w - 10, h - 10) << QPoint(w - 310, h - 210);
}

// The box is modal and returns only when closed: it is inspected and closed
// from the event loop that its exec() runs.
void tst_TFMessageBox::showMsg()
{
    QFETCH(QPoint, cursor);
    QFETCH(QPoint, expected);
    QCursor::setPos(cursor);
    QCOMPARE(QCursor::pos(), cursor);

    // What the box shows, seen from inside its exec() and closed by its button.
    QStringList seen;
    QTimer::singleShot(0, this, [&seen] {
        auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        auto *title = box ? box->findChild<QLabel *>(QStringLiteral("lbTitle")) : nullptr;
        auto *text = box ? box->findChild<QTextBrowser *>(QStringLiteral("tbMsg")) : nullptr;
        auto *close = box ? box->findChild<QPushButton *>(QStringLiteral("pbMsgClose")) : nullptr;
        if (!title || !text || !close)
            return;
        seen << title->text() << text->toPlainText()
             << QStringLiteral("%1,%2 %3x%4").arg(box->x()).arg(box->y()).arg(box->width()).arg(box->height())
             << (box->windowFlags().testFlag(Qt::FramelessWindowHint) ? "frameless" : "framed");
        QTest::mouseClick(close, Qt::LeftButton);
        seen << (box->isVisible() ? "open" : "closed");
    });
    // Should the button fail to close it, the test ends instead of hanging.
    QTimer::singleShot(5000, this, [] {
        if (QWidget *box = QApplication::activeModalWidget())
            box->close();
    });

    TFMessageBox::showMsg(QStringLiteral("600000-公告"), QStringLiteral("第一行\n第二行"));
    QCOMPARE(seen, QStringList({QStringLiteral("600000-公告"), QStringLiteral("第一行\n第二行"),
                                QStringLiteral("%1,%2 300x200").arg(expected.x()).arg(expected.y()), "frameless",
                                "closed"}));
}

void tst_TFMessageBox::shadowFollowsSizeAndState()
{
    TFAdWidget<QDialog> window;
    window.setShadowMargin(3);
    window.setBlurRadius(4);
    window.applyShadow();
    window.resize(200, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.shadowFrame()->geometry(), QRect(4, 4, window.width() - 8, window.height() - 8));
    QCOMPARE(window.contentsMargins(), QMargins(3, 3, 3, 3));

    window.showMaximized();
    QTRY_VERIFY(window.isMaximized());
    QCOMPARE(window.contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(window.shadowFrame()->geometry(), QRect(4, 4, window.width() - 8, window.height() - 8));

    window.showNormal();
    QTRY_VERIFY(!window.isMaximized());
    QCOMPARE(window.contentsMargins(), QMargins(3, 3, 3, 3));
}

void tst_TFMessageBox::missingChildIsLogged()
{
    QWidget parent;
    auto *label = new QLabel(&parent);
    label->setObjectName(QStringLiteral("lbTitle"));
    QCOMPARE(CommonTemplate::get<QLabel>(&parent, QStringLiteral("lbTitle")), label);
    QTest::ignoreMessage(QtWarningMsg, "not found  \"lbTitle\"  with typename: QPushButton");
    QCOMPARE(CommonTemplate::get<QPushButton>(&parent, QStringLiteral("lbTitle")), nullptr);
}

QTEST_MAIN(tst_TFMessageBox)
#include "tst_tfmessagebox.moc"
