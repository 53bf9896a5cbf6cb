#include "filterwidget/flowlayout.h"

#include <QtTest>

class tst_FlowLayout : public QObject
{
    Q_OBJECT

private slots:
    void wrapping_data();
    void wrapping();
    void sizesAndRange();
};

void tst_FlowLayout::wrapping_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QList<QSize>>("items");     // a width of 0 stands for a hidden item of 50
    QTest::addColumn<QString>("places");
    QTest::addColumn<int>("height");

    const QList<QSize> three{{50, 20}, {50, 20}, {50, 20}};
    // Margin 5, spacing 12 across and 5 down, as in the filter bar.
    QTest::newRow("one line") << 200 << three << "5,5 67,5 129,5" << 30;
    QTest::newRow("last fits to the pixel") << 184 << three << "5,5 67,5 129,5" << 30;
    QTest::newRow("one pixel short wraps") << 183 << three << "5,5 67,5 5,30" << 55;
    QTest::newRow("tallest item sets the line") << 180 << QList<QSize>{{50, 20}, {50, 40}, {50, 20}} << "5,5 67,5 5,50" << 75;
    QTest::newRow("too wide for any line stays") << 40 << QList<QSize>{{50, 20}, {50, 20}} << "5,5 5,30" << 55;
    QTest::newRow("hidden item takes no room") << 180 << QList<QSize>{{50, 20}, {0, 20}, {50, 20}, {50, 20}} << "5,5 - 67,5 5,30" << 55;
}

void tst_FlowLayout::wrapping()
{
    QFETCH(int, width);
    QFETCH(QList<QSize>, items);
    QFETCH(QString, places);
    QFETCH(int, height);

    QWidget parent;
    auto *layout = new FlowLayout(&parent, 5, 12, 5);
    QList<QWidget *> widgets;
    for (const QSize &size : items) {
        auto *widget = new QWidget(&parent);
        widget->setFixedSize(size.width() ? size : QSize(50, size.height()));
        widget->setVisible(size.width() != 0);
        layout->addWidget(widget);
        widgets.append(widget);
    }
    layout->setGeometry(QRect(0, 0, width, 500));
    QStringList found;
    for (QWidget *widget : widgets)
        found.append(widget->isHidden() ? QStringLiteral("-")
                                        : QStringLiteral("%1,%2").arg(widget->x()).arg(widget->y()));
    QCOMPARE(found.join(QLatin1Char(' ')), places);
    QVERIFY(layout->hasHeightForWidth());
    QCOMPARE(layout->heightForWidth(width), height);
}

void tst_FlowLayout::sizesAndRange()
{
    QWidget parent;
    auto *layout = new FlowLayout(&parent, 5, 12, 5);
    for (const QSize &size : {QSize(30, 40), QSize(60, 10)}) {
        auto *widget = new QWidget(&parent);
        widget->setMinimumSize(size);
        layout->addWidget(widget);
    }
    // The widest and the tallest item, within the margins.
    QCOMPARE(layout->minimumSize(), QSize(70, 50));
    QCOMPARE(layout->sizeHint(), layout->minimumSize());
    QVERIFY(!layout->itemAt(2));
    QVERIFY(!layout->itemAt(-1));
    QVERIFY(!layout->takeAt(2));
}

QTEST_MAIN(tst_FlowLayout)
#include "tst_flowlayout.moc"
