// An unbound column of a table is computed row by row with one kept parser.
// The figure to beat is the plainest alternative: the row's values spliced
// into the formula's text and one QJSEngine::evaluate per row.
#include <QCoreApplication>
#include <QJSEngine>
#include <QMap>
#include <QVariant>

#include <benchmark/benchmark.h>

#include "expression/expressionparse.h"
#include "expression/tfcustommath.h"

namespace {

constexpr int RowCount = 100000;

using Row = QMap<QString, QVariant>;

// Rows as the service sends them: numbers as text, a few more fields that
// the formula does not use.
const QVector<Row> &rows()
{
    static const QVector<Row> rows = [] {
        QVector<Row> list;
        list.reserve(RowCount);
        for (int i = 0; i < RowCount; ++i) {
            Row row;
            row.insert(QStringLiteral("SECU_ID"), QString::number(1000 + i));
            row.insert(QStringLiteral("NAME"), QStringLiteral("Security %1").arg(i));
            row.insert(QStringLiteral("OPEN"), QString::number(10.0 + (i % 97) * 0.25, 'f', 2));
            row.insert(QStringLiteral("CLOSE"), QString::number(10.5 + (i % 89) * 0.3, 'f', 2));
            row.insert(QStringLiteral("VOLUME"), QString::number(100000 + i * 7));
            list.append(row);
        }
        return list;
    }();
    return rows;
}

void BM_ExpressionParse(benchmark::State &state, const QString &formula)
{
    ExpressionParse parser;
    const QVector<Row> &table = rows();
    double sum = 0;
    for (auto _ : state) {
        for (const Row &row : table) {
            QVariant result;
            parser.parse(formula, result, row);
            sum += result.toDouble();
        }
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * table.size());
}

// The same arithmetic, with each row's values spliced into the text. A
// fresh engine that holds no value of its own gives back its heap after
// every evaluation and maps it again for the next, which costs more than the
// arithmetic; "warm" keeps one value alive, as any engine in use does.
enum class Engine { Fresh, Warm };

void BM_BareEvaluate(benchmark::State &state, const QString &pattern, Engine kind)
{
    QJSEngine engine;
    QJSValue kept;
    if (kind == Engine::Warm)
        kept = engine.newObject();
    const QVector<Row> &table = rows();
    double sum = 0;
    for (auto _ : state) {
        for (const Row &row : table) {
            const QString program = pattern.arg(row.value(QStringLiteral("CLOSE")).toString(),
                                                row.value(QStringLiteral("OPEN")).toString());
            sum += engine.evaluate(program).toVariant().toDouble();
        }
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * table.size());
}

} // namespace

// Plain arithmetic over fields: the parser's compiled road.
BENCHMARK_CAPTURE(BM_ExpressionParse, growth, QStringLiteral("([CLOSE]-[OPEN])/[OPEN]*100"))
    ->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_BareEvaluate, growth_fresh, QStringLiteral("(%1-%2)/%2*100"), Engine::Fresh)
    ->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_BareEvaluate, growth_warm, QStringLiteral("(%1-%2)/%2*100"), Engine::Warm)
    ->Unit(benchmark::kMillisecond)->Iterations(3);
// A call inside the formula, evaluated per row and passed in.
BENCHMARK_CAPTURE(BM_ExpressionParse, with_call, QStringLiteral("[CLOSE]-[OPEN]+todecimal(1)"))
    ->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_BareEvaluate, with_call_fresh, QStringLiteral("%1-%2+1"), Engine::Fresh)
    ->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_BareEvaluate, with_call_warm, QStringLiteral("%1-%2+1"), Engine::Warm)
    ->Unit(benchmark::kMillisecond)->Iterations(3);
// A negative call result could fuse with its neighbour, so every row is
// glued and evaluated as text: the parser's slow road.
BENCHMARK_CAPTURE(BM_ExpressionParse, glued, QStringLiteral("[CLOSE]-[OPEN]+todecimal(-1)"))
    ->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_BareEvaluate, glued_fresh, QStringLiteral("%1-%2+-1"), Engine::Fresh)
    ->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_BareEvaluate, glued_warm, QStringLiteral("%1-%2+-1"), Engine::Warm)
    ->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // A fixed day, so that runs compare.
    const QDateTime today(QDate(2026, 4, 30), QTime(12, 0));
    TFCustomMath::instance()->setClock([today] { return today; });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
