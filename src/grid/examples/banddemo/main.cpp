// bandgrid-demo [--dark] [--rows N] [--screenshot FILE.png]
//
// A banded grid grouped by industry, with links and memo buttons; two
// frozen columns, the code and the price-earnings ratio from the middle of
// its band; the hovered row marked, a right-click menu to copy, and the
// status line of the selection.
#include "bandgrid.h"
#include "demomodel.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <QtDebug>

using namespace BandGrid;

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption dark(QStringLiteral("dark"), QStringLiteral("Dark palette."));
    const QCommandLineOption rows(QStringLiteral("rows"), QStringLiteral("Rows of data."),
                                  QStringLiteral("N"), QStringLiteral("60"));
    const QCommandLineOption shot(QStringLiteral("screenshot"),
                                  QStringLiteral("Save a picture and exit."), QStringLiteral("FILE"));
    parser.addOptions({dark, rows, shot});
    parser.process(app);

    DemoModel model(parser.value(rows).toInt());
    Grid grid;
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPointSize(9);
    grid.setFont(font);
    grid.setViewType(ViewType::BandedTable);
    grid.setTheme(parser.isSet(dark) ? GridTheme::dark() : GridTheme::light());
    BandedTableView *view = grid.bandedView();
    view->setModel(&model);

    Band *basics = view->addBand(QStringLiteral("证券"));
    Band *market = view->addBand(QStringLiteral("行情"));
    Band *price = view->addBand(QStringLiteral("价格"));
    Band *trade = view->addBand(QStringLiteral("成交"));
    Band *value = view->addBand(QStringLiteral("估值"));
    Band *notes = view->addBand(QStringLiteral("资料"));
    price->setBandIndex(market->index());
    trade->setBandIndex(market->index());
    const QVector<QPair<int, Band *>> binding = {
        {DemoModel::Code, basics}, {DemoModel::Name, basics}, {DemoModel::Industry, basics},
        {DemoModel::Close, price}, {DemoModel::Change, price}, {DemoModel::ChangePct, price},
        {DemoModel::Volume, trade}, {DemoModel::Amount, trade},
        {DemoModel::Pe, value}, {DemoModel::Pb, value},
        {DemoModel::Report, notes}, {DemoModel::Memo, notes}};
    for (const auto &bind : binding)
        view->column(bind.first)->setBandIndex(bind.second->index());

    const int widths[] = {84, 80, 72, 70, 64, 70, 100, 100, 64, 64, 60, 90};
    for (int c = 0; c < DemoModel::ColumnCount; ++c) {
        view->column(c)->setWidth(widths[c]);
        view->column(c)->setSortRole(Qt::UserRole);
    }
    view->column(DemoModel::Code)->setFixedKind(FixedKind::Left);
    view->column(DemoModel::Pe)->setFixedKind(FixedKind::Left);
    view->options()->setHoverHighlight(true);
    view->options()->setContextMenuEnabled(true);
    GridTexts texts;
    texts.copy = QStringLiteral("复制");
    texts.copyWithCaptions = QStringLiteral("复制(含列标题)");
    texts.selectAll = QStringLiteral("全选");
    texts.count = QStringLiteral("计数");
    texts.sum = QStringLiteral("求和");
    texts.average = QStringLiteral("平均值");
    view->options()->setTexts(texts);
    grid.setStatusLineVisible(true);
    view->column(DemoModel::Report)->setEditorKind(EditorKind::Link);
    view->column(DemoModel::Memo)->addButton(QIcon(), QStringLiteral("全文"));
    view->options()->setColumnHidingOnGroupingEnabled(true);
    view->column(DemoModel::Industry)->setGroupIndex(0);
    view->setGroupExpanded(0, true);
    view->setGroupExpanded(2, true);
    view->sortBy(DemoModel::ChangePct, Qt::DescendingOrder);

    QObject::connect(view, &TableView::linkActivated, [](const QString &anchor) {
        qDebug() << "link:" << anchor;
    });
    QObject::connect(view, &TableView::cellButtonClicked, [view](int row, int column) {
        QMessageBox::information(view, view->column(0)->value(row).toString(),
                                 view->column(column)->value(row).toString());
    });

    grid.resize(760, 460);
    grid.show();
    if (parser.isSet(shot)) {
        const QString file = parser.value(shot);
        QTimer::singleShot(200, [&] {
            // Scrolled sideways, so that the picture shows the frozen columns
            // at work; a block of prices selected, summed below; a followed
            // link; the mouse over a row.
            view->options()->setSelectionPolicy(SelectionPolicy::MultiCell);
            view->selectionModel()->select(
                QItemSelection(view->model()->index(3, DemoModel::Close),
                               view->model()->index(7, DemoModel::Change)),
                QItemSelectionModel::ClearAndSelect);
            view->horizontalScrollBar()->setValue(120);
            const QModelIndex report = view->model()->index(4, DemoModel::Report);
            view->reportLinkClick(report, LinkText::parse(report.data().toString()).anchor);
            const QPoint over = view->cellRect(10, DemoModel::Volume).center();
            QMouseEvent move(QEvent::MouseMove, over, view->viewport()->mapToGlobal(over), Qt::NoButton,
                             Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(view->viewport(), &move);
            QTimer::singleShot(100, [&] {
                if (!grid.grab().save(file))
                    qWarning() << "cannot save" << file;
                app.quit();
            });
        });
    }
    return app.exec();
}
