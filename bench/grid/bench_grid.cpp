// bench_grid: run with QT_QPA_PLATFORM=offscreen.
//
// Both sides see the same model: 100,000 rows of 30 columns, texts made on
// request, numbers in the sort role. The grid has three levels of bands,
// two frozen columns and its own delegate; the plain side is a QTableView
// straight on the model, and sorts through a QSortFilterProxyModel with
// the same role and locale-aware comparison. The status line is timed alone:
// reading a selection of 100,000 x 10 cells and showing its count, sum and
// average.
#include "bandgrid.h"

#include <QApplication>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTableView>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

const int kRows = 100000;
const int kColumns = 30;
const int kSortRole = 274;
const QSize kScreen(1600, 900);

class QuoteModel : public QAbstractTableModel
{
public:
    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : kRows;
    }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : kColumns;
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        const int row = index.row();
        const int column = index.column();
        if (role == Qt::DisplayRole) {
            if (column == 0)
                return QStringLiteral("%1.SZ").arg(row, 6, 10, QLatin1Char('0'));
            if (column == 1)
                return name(row);
            return QString::number(value(row, column), 'f', 2);
        }
        if (role == kSortRole)
            return column == 1 ? QVariant(name(row)) : QVariant(value(row, column));
        if (role == Qt::TextAlignmentRole)
            return column < 2 ? int(Qt::AlignLeft | Qt::AlignVCenter) : int(Qt::AlignRight | Qt::AlignVCenter);
        return QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
            return QStringLiteral("字段%1").arg(section);
        return QAbstractTableModel::headerData(section, orientation, role);
    }

private:
    static QString name(int row)
    {
        static const QStringList names{QStringLiteral("平安银行"), QStringLiteral("万科"),
                                       QStringLiteral("招商银行"), QStringLiteral("贵州茅台"),
                                       QStringLiteral("中国平安"), QStringLiteral("宁德时代"),
                                       QStringLiteral("比亚迪")};
        return names.at((row * 7919) % names.size()) + QString::number(row % 997);
    }
    static double value(int row, int column)
    {
        return double((row * 2654435761u + unsigned(column) * 40503u) % 1000000u) / 100.0;
    }
};

QuoteModel &model()
{
    static QuoteModel m;
    return m;
}

// Three levels: 5 top bands of 6 columns, each split into 2 of 3.
void addBands(BandGrid::BandedTableView *view)
{
    for (int top = 0; top < 5; ++top) {
        BandGrid::Band *parent = view->addBand(QStringLiteral("分组%1").arg(top));
        for (int half = 0; half < 2; ++half) {
            BandGrid::Band *band = view->addBand(QStringLiteral("子组%1").arg(half));
            band->setBandIndex(parent->index());
            for (int c = 0; c < 3; ++c)
                view->column(top * 6 + half * 3 + c)->setBandIndex(band->index());
        }
    }
    view->column(0)->setFixedKind(BandGrid::FixedKind::Left);
    view->column(1)->setFixedKind(BandGrid::FixedKind::Left);
    for (int c = 0; c < kColumns; ++c)
        view->column(c)->setSortRole(kSortRole);
    // As the page has it: the row under the mouse is marked.
    view->options()->setHoverHighlight(true);
}

std::unique_ptr<BandGrid::BandedTableView> makeGrid()
{
    auto view = std::make_unique<BandGrid::BandedTableView>();
    view->setModel(&model());
    addBands(view.get());
    view->resize(kScreen);
    return view;
}

std::unique_ptr<QTableView> makePlain()
{
    auto view = std::make_unique<QTableView>();
    view->setModel(&model());
    view->resize(kScreen);
    return view;
}

void paint(QWidget *widget, QImage &image)
{
    widget->render(&image);
    benchmark::DoNotOptimize(image.bits());
}

QImage screen()
{
    QImage image(kScreen, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    return image;
}

void BM_SetModelAndPaint_Grid(benchmark::State &state)
{
    QImage image = screen();
    for (auto _ : state) {
        auto view = makeGrid();
        paint(view.get(), image);
    }
}

void BM_SetModelAndPaint_Plain(benchmark::State &state)
{
    QImage image = screen();
    for (auto _ : state) {
        auto view = makePlain();
        paint(view.get(), image);
    }
}

// One screen at a new place each time, as scrolling through the rows does.
template<typename View>
void scrollAndPaint(benchmark::State &state, View *view)
{
    QImage image = screen();
    paint(view, image);
    QScrollBar *bar = view->verticalScrollBar();
    int step = 0;
    for (auto _ : state) {
        bar->setValue(int((qint64(bar->maximum()) * (step * 37 % 101)) / 100));
        ++step;
        paint(view, image);
    }
}

void BM_ScrollPaint_Grid(benchmark::State &state)
{
    auto view = makeGrid();
    scrollAndPaint(state, view.get());
}

void BM_ScrollPaint_Plain(benchmark::State &state)
{
    auto view = makePlain();
    scrollAndPaint(state, view.get());
}

void BM_SortByRole_Grid(benchmark::State &state)
{
    const int column = int(state.range(0));
    auto view = makeGrid();
    bool ascending = true;
    for (auto _ : state) {
        view->sortBy(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        ascending = !ascending;
    }
}

void BM_SortByRole_Plain(benchmark::State &state)
{
    const int column = int(state.range(0));
    QSortFilterProxyModel proxy;
    proxy.setSortRole(kSortRole);
    proxy.setSortLocaleAware(true);
    proxy.setSourceModel(&model());
    QTableView view;
    view.setModel(&proxy);
    view.resize(kScreen);
    bool ascending = true;
    for (auto _ : state) {
        proxy.sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        ascending = !ascending;
    }
}

// Columns 0 to 9 of every row: eight of numbers, one of codes and one of
// names, whose sort values are texts made on request.
void BM_StatusLine_100000x10(benchmark::State &state)
{
    auto view = makeGrid();
    BandGrid::StatusLine line;
    line.setView(view.get());
    const QItemSelection block(view->model()->index(0, 0), view->model()->index(kRows - 1, 9));
    for (auto _ : state) {
        view->selectionModel()->select(block, QItemSelectionModel::ClearAndSelect);
        line.refresh();
        benchmark::DoNotOptimize(line.text().size());
        state.PauseTiming();
        view->clearSelection();
        state.ResumeTiming();
    }
    state.SetLabel(line.text().toStdString());
}

} // namespace

BENCHMARK(BM_SetModelAndPaint_Grid)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetModelAndPaint_Plain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScrollPaint_Grid)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScrollPaint_Plain)->Unit(benchmark::kMillisecond);
// Column 1 holds Chinese names, column 5 numbers.
BENCHMARK(BM_SortByRole_Grid)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortByRole_Plain)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StatusLine_100000x10)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPointSize(9);
    QApplication::setFont(font);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
