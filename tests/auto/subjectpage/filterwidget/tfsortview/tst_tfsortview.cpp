#include "filterwidget/tfcomboxview.h"
#include "filterwidget/tffocusdelegate.h"
#include "filterwidget/tfsecuritytablemodel.h"
#include "filterwidget/tfsortview.h"

#include <QComboBox>
#include <QImage>
#include <QListView>
#include <QMessageBox>
#include <QPainter>
#include <QStandardItemModel>
#include <QtTest>

class tst_TFSortView : public QObject
{
    Q_OBJECT
private slots:
    void dialog_data();
    void dialog();
    void modelRefusals();
    void tickAll();
    void focusFrameIsNotDrawn();
};

// Each step of a script: "add", "remove", "up", "down", "clear", "confirm",
// "select:R", "field:R:TEXT" and "order:R:TEXT" (chosen in the cell's list).
void tst_TFSortView::dialog_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("selected");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<bool>("warned");
    QTest::addColumn<QString>("result");       // "position+" ascending, "position-" descending

    QTest::newRow("same field twice warns, whatever the direction") << QStringList{"add", "add", "order:1:降序", "confirm"} << 2 << 1 << "0,1" << true
        << "";
    QTest::newRow("distinct fields are accepted") << QStringList{"add", "add", "field:1:涨跌幅", "order:1:降序", "confirm"} << 2 << 1 << "0,1" << false
        << "0+,2-";
    QTest::newRow("an empty dialog warns") << QStringList{"confirm"} << 0 << -1 << "" << true << "";
    QTest::newRow("removing the only row") << QStringList{"add", "remove"} << 0 << -1 << "" << false << "";
    QTest::newRow("removing selects row 0, numbers are not reused") << QStringList{"add", "add", "add", "select:1", "remove", "add"} << 3 << 2
        << "0,2,3" << false << "";
    QTest::newRow("down from the last row wraps") << QStringList{"add", "add", "add", "down"} << 3 << 0 << "0,1,2" << false << "";
    QTest::newRow("up from the first row wraps") << QStringList{"add", "add", "select:0", "up"} << 2 << 1 << "0,1" << false << "";
    QTest::newRow("moving keeps the data in place") << QStringList{"add", "add", "field:1:收盘价", "select:1", "up", "confirm"} << 2 << 0 << "0,1"
        << false << "0+,1+";
    QTest::newRow("clearing, then confirming, warns") << QStringList{"add", "clear", "confirm"} << 0 << -1 << "" << true << "";
}

void tst_TFSortView::dialog()
{
    QFETCH(QStringList, script);
    QFETCH(int, rows);
    QFETCH(int, selected);
    QFETCH(QString, keys);
    QFETCH(bool, warned);
    QFETCH(QString, result);

    TFSortView dialog({"证券代码", "收盘价", "涨跌幅"});
    dialog.show();
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    for (const QString &step : qAsConst(script)) {
        const QStringList parts = step.split(':');
        if (step == "add")
            dialog.on_pushButton_2_clicked();
        else if (step == "remove")
            dialog.on_pushButton_3_clicked();
        else if (step == "up")
            dialog.on_moveUp_clicked();
        else if (step == "down")
            dialog.on_moveDown_clicked();
        else if (step == "clear")
            dialog.on_pushButton_7_clicked();
        else if (step == "confirm")
            dialog.on_pushButton_6_clicked();
        else if (parts.first() == "select")
            dialog.view()->selectionModel()->select(dialog.view()->model()->index(parts.at(1).toInt(), 0),
                                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        else {
            const int column = parts.first() == "field" ? 0 : 1;
            auto *editor = qobject_cast<TFComboxView *>(
                dialog.view()->indexWidget(dialog.view()->model()->index(parts.at(1).toInt(), column)));
            QVERIFY2(editor, qPrintable(step));
            QVERIFY(editor->items().contains(parts.at(2)));
            editor->comboBox()->setCurrentIndex(editor->items().indexOf(parts.at(2)));
        }
    }

    TFSecurityTableModel *model = dialog.model();
    QCOMPARE(model->rowCount(), rows);
    QCOMPARE(dialog.currentRow(), selected);
    QCOMPARE(model->keys().join(','), keys);
    // Every cell has its list open.
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < 2; ++c)
            QVERIFY(qobject_cast<TFComboxView *>(dialog.view()->indexWidget(dialog.view()->model()->index(r, c))));
    }
    QCOMPARE(bool(dialog.warning()), warned);
    if (warned) {
        QCOMPARE(dialog.warning()->text(), QStringLiteral("排序列重复出现\n请清空重复排序列后重试!"));
        QCOMPARE(dialog.warning()->width(), 300);
    }
    QCOMPARE(accepted.count(), result.isEmpty() ? 0 : 1);
    QStringList texts;
    for (const auto &column : dialog.sortColumns())
        texts.append(QString::number(column.first) + (column.second ? "-" : "+"));
    QCOMPARE(texts.join(','), result);
}

void tst_TFSortView::modelRefusals()
{
    TFSecurityTableModel model;
    QVERIFY(model.insertRecord({"1", 0, "a", "升序"}));
    QVERIFY(!model.insertRecord({"1", 0, "b", "降序"}));
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.index(0, 0).data().toString(), QStringLiteral("a"));
    QVERIFY(!model.removeRecord(-1));
    QVERIFY(!model.removeRecord(1));
    QVERIFY(model.removeRecord(0));
    QCOMPARE(model.rowCount(), 0);
    // A key freed by removal may come back.
    QVERIFY(model.insertRecord({"1", 0, "c", "升序"}));
}

void tst_TFSortView::tickAll()
{
    TFSecurityTableModel model;
    model.insertRecord({"1", 0, "a", "升序"});
    QVERIFY(model.setData(model.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    model.insertRecord({"2", 0, "b", "升序"});
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.slotCheckStateChanged(Qt::PartiallyChecked);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex().row(), 0);
    QCOMPARE(changed.first().at(1).toModelIndex().row(), 1);
    for (int r = 0; r < 2; ++r)
        QCOMPARE(model.index(r, 0).data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
}

void tst_TFSortView::focusFrameIsNotDrawn()
{
    QStandardItemModel model;
    model.appendRow(new QStandardItem(QStringLiteral("item")));
    QListView view;
    view.setModel(&model);
    const auto render = [&](QAbstractItemDelegate &delegate, bool focus) {
        QImage image(120, 24, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        QStyleOptionViewItem option;
        option.initFrom(&view);
        option.rect = image.rect();
        option.state |= QStyle::State_Enabled;
        if (focus)
            option.state |= QStyle::State_HasFocus;
        delegate.paint(&painter, option, model.index(0, 0));
        return image;
    };
    QStyledItemDelegate plain;
    TFFocusDelegate focusless;
    if (render(plain, true) == render(plain, false))
        QSKIP("this style draws no focus frame on items");
    QCOMPARE(render(focusless, true), render(plain, false));
}

QTEST_MAIN(tst_TFSortView)
#include "tst_tfsortview.moc"
