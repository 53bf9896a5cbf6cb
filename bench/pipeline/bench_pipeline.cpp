// Timed program: three measurements of the data table, each as a ratio to a
// bare toolkit operation measured in the same run.
//
//   bench_pipeline [rows] [repeats]
//
// 1. A whole-set reply of rows x 30 fields under three header levels, from
//    the reply's bytes to rows set on the model, against QJsonDocument::
//    fromJson alone on the same bytes; and the peak memory of all structures
//    together, per cell (VmHWM over the run, reset before it).
// 2. Display text of every cell, against one QLocale::toString(double, 'f',
//    2) per cell.
// 3. Text colour of a screen of 40 rows x 25 columns, every column with a
//    colour expression: the first paint against one bare QJSEngine::evaluate
//    per cell, and repeated paints against the first.

#include "jsonparser/tfdatajsontable.h"
#include "jsonparser/tfheaderbuilder.h"
#include "jsonparser/tfjsonparser.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfrowbuilder.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"
#include "expression/expressionparse.h"
#include "mulittable/tfunboundexpression.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "tfcore/tfcore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QJSEngine>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

namespace {

constexpr int kFields = 30;

qint64 statusKb(const char* key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(key))
            return line.mid(qstrlen(key)).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

void resetPeak()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

QString fieldName(int i) { return QStringLiteral("F%1").arg(i, 2, 10, QLatin1Char('0')); }

// Kinds of the 30 columns: 12 decimal unit columns, 8 plain decimals,
// 5 strings, 5 dates.
enum Kind { UnitDecimal, PlainDecimal, Text, Date };
Kind kindOf(int i)
{
    if (i < 12)
        return UnitDecimal;
    if (i < 20)
        return PlainDecimal;
    if (i < 25)
        return Text;
    return Date;
}

QByteArray objectViewConfig(bool withColors)
{
    QJsonArray records;
    for (int i = 0; i < kFields; ++i) {
        QJsonObject ots{ { "FieldName", fieldName(i) } };
        switch (kindOf(i)) {
        case UnitDecimal:
            ots.insert("ValueType", "Decimal");
            ots.insert("ColumnType", "BandedGridColumnWithUnit");
            ots.insert("UnitCategory", 1);
            ots.insert("ShowUnit", QStringLiteral("万元"));
            ots.insert("PrevUnitFactor", 1);
            ots.insert("ShowUnitFactor", 10000);
            ots.insert("CaptionShowType", 1);
            break;
        case PlainDecimal:
            ots.insert("ValueType", "Decimal");
            ots.insert("FormatString", "n4");
            break;
        case Text:
            ots.insert("ValueType", "String");
            break;
        case Date:
            ots.insert("ValueType", "DateTime");
            break;
        }
        if (withColors && i < 25)
            ots.insert("CellStyleExpression",
                       QStringLiteral("$%1 > 0 ? '#E83E3E' : ($%1 < 0 ? '#1AA34A' : '$use_default_color')")
                           .arg(fieldName(i % 20)));
        records.append(QJsonObject{ { "obj_prop_name", fieldName(i) }, { "vw_sts", "1" },
                                    { "ots_cfg", QString::fromUtf8(QJsonDocument(ots).toJson(QJsonDocument::Compact)) } });
    }
    return QJsonDocument(records).toJson(QJsonDocument::Compact);
}

QByteArray bands()
{
    // Three top bands, each split in two, five columns under each half.
    QJsonArray list;
    for (int top = 0; top < 3; ++top) {
        const QString topName = QStringLiteral("T%1").arg(top);
        list.append(QJsonObject{ { "FieldName", topName }, { "Caption", topName }, { "ColumnType", "Band" },
                                 { "OwnerBand", "0" }, { "Visible", true } });
        for (int half = 0; half < 2; ++half) {
            const QString halfName = QStringLiteral("H%1%2").arg(top).arg(half);
            list.append(QJsonObject{ { "FieldName", halfName }, { "Caption", halfName }, { "ColumnType", "Band" },
                                     { "OwnerBand", topName }, { "Visible", true } });
            for (int c = 0; c < 5; ++c) {
                const int i = top * 10 + half * 5 + c;
                list.append(QJsonObject{ { "FieldName", fieldName(i) }, { "Caption", fieldName(i) },
                                         { "OwnerBand", halfName }, { "Visible", true }, { "Width", 80 } });
            }
        }
    }
    return QJsonDocument(list).toJson(QJsonDocument::Compact);
}

// The reply's "data" object as the service sends it: rows first, then the
// configuration tables.
QByteArray makeDocument(int rows, bool withColors)
{
    QByteArray out;
    out.reserve(rows * 700);
    out += "{\"Data\":[";
    quint32 seed = 12345;
    auto next = [&seed] { seed = seed * 1664525u + 1013904223u; return seed >> 8; };
    for (int r = 0; r < rows; ++r) {
        if (r)
            out += ',';
        out += "{\"SECU_ID\":";
        out += QByteArray::number(100000 + r);
        for (int i = 0; i < kFields; ++i) {
            out += ",\"";
            out += fieldName(i).toLatin1();
            out += "\":";
            switch (kindOf(i)) {
            case UnitDecimal:
                out += QByteArray::number((double(next() % 2000000000) - 400000000.0) / 100.0, 'f', 2);
                break;
            case PlainDecimal:
                out += QByteArray::number((double(next() % 2000000) - 500000.0) / 1000.0, 'f', 3);
                break;
            case Text:
                out += "\"" + QByteArray::number(600000 + next() % 5000) + "名称\"";
                break;
            case Date:
                out += QByteArray::number(qint64(1500000000000) + qint64(next() % 2000) * 86400000);
                break;
            }
        }
        out += '}';
    }
    out += "],\"View_Config\":[{\"obj_vw_id\":1,\"prop_typ\":\"EXTEND\",\"prop_name\":\"Bands\",\"prop_val\":\"\",\"ext_prop_val\":";
    out += QJsonDocument(QJsonArray{ QString::fromUtf8(bands()) }).toJson(QJsonDocument::Compact).mid(1).chopped(1);
    out += "}],\"Object_View_Config\":";
    out += objectViewConfig(withColors);
    out += ",\"Summary\":[{\"Item\":\"rcount\",\"value\":" + QByteArray::number(rows) + "}]}";
    return out;
}

// The steps that TFJsonParser::parseConfig runs, one by one, so that the
// memory of each can be read: its tables, the band header, the cell rows.
struct StepwiseParser
{
    void parseConfig(const QJsonObject& document, TFTreeStruct* root)
    {
        data.initWith(document.value("Data"));
        phaseKb[1] = statusKb("VmRSS:");
        view.initWith(document.value("View_Config"));
        objectView.initWith(document.value("Object_View_Config"));
        summary.initWith(document.value("Summary"));
        const TFSubject::ExpressionParseSource source = [this] {
            if (!expression)
                expression.reset(new ExpressionParse);
            return expression.get();
        };
        TFSubject::buildHeader(root, &view, &objectView, &summary, source);
        TFUnboundExpression unbound(source);
        TFSubject::TFRowBuilder builder(root->leaves(), &unbound, [this](const QString& name) {
            return TFSubject::referenceField(name, false, &summary, &objectView).valueType;
        });
        m_rows = builder.build(data.rows());
        phaseKb[2] = statusKb("VmRSS:");
    }
    qint64 phaseKb[3] = {};
    QList<RowData> rows() const { return m_rows; }

    TFDataJsonTable data;
    TFViewConfigTable view;
    TFObjectViewConfigTable objectView;
    TFSummaryJsonTable summary;
    std::unique_ptr<ExpressionParse> expression;
    QList<RowData> m_rows;
};

double msSince(const QElapsedTimer& timer) { return timer.nsecsElapsed() / 1e6; }

template <typename F>
double bestOf(int repeats, F&& run)
{
    double best = 1e300;
    for (int i = 0; i < repeats; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        best = std::min(best, msSince(timer));
    }
    return best;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    const int rows = argc > 1 ? atoi(argv[1]) : 100000;
    const int repeats = argc > 2 ? atoi(argv[2]) : 3;
    const qint64 cells = qint64(rows) * kFields;
    std::printf("rows %d, fields %d, cells %lld, best of %d\n", rows, kFields, cells, repeats);

    // --- 1. bytes to rows on the model ---------------------------------------
    const QByteArray bytes = makeDocument(rows, false);
    std::printf("reply: %.1f MB\n", bytes.size() / 1e6);

    using Parser = TFSubject::TFJsonParser;
    auto pipeline = [&](TFTreeStruct& root, Parser& parser, TFSubjectTableModel& model) {
        const QJsonDocument document = QJsonDocument::fromJson(bytes);
        parser.parseConfig(document.object(), &root);
        model.setHeader(&root);
        model.setRows(parser.rows());
    };

    // Both sides are timed up to their result, without tearing it down, and
    // take turns, so that a change of load meets both alike.
    double parseOnly = 1e300;
    double full = 1e300;
    for (int i = 0; i < repeats; ++i) {
        {
            QElapsedTimer timer;
            timer.start();
            const QJsonDocument document = QJsonDocument::fromJson(bytes);
            parseOnly = std::min(parseOnly, msSince(timer));
            if (!document.isObject())
                std::abort();
        }
        TFTreeStruct root{ QString() };
        Parser parser;
        TFSubjectTableModel model;
        QElapsedTimer timer;
        timer.start();
        pipeline(root, parser, model);
        full = std::min(full, msSince(timer));
        if (model.rowCount() != rows || model.columnCount() != kFields)
            std::abort();
    }
    std::printf("[1] fromJson alone        %9.1f ms\n", parseOnly);
    std::printf("[1] bytes -> model rows   %9.1f ms   ratio %.2f (goal <= 4)\n", full, full / parseOnly);

    // Memory: everything alive at the peak of one run, reply bytes excluded
    // (the caller holds them), and what stays once the model has the rows.
    {
        resetPeak();
        const qint64 before = statusKb("VmRSS:");
        TFTreeStruct root{ QString() };
        Parser parser;
        TFSubjectTableModel model;
        pipeline(root, parser, model);
        const qint64 peak = statusKb("VmHWM:");
        const qint64 after = statusKb("VmRSS:");
        std::printf("[1] peak memory           %9.1f MB   %.0f bytes per cell (goal <= 300)\n",
                    (peak - before) / 1024.0, (peak - before) * 1024.0 / cells);
        std::printf("[1] kept after the run    %9.1f MB   %.0f bytes per cell\n",
                    (after - before) / 1024.0, (after - before) * 1024.0 / cells);
        std::printf("[1] reply bytes           %9.1f MB   %.0f bytes per cell\n", bytes.size() / 1048576.0,
                    double(bytes.size()) / cells);
    }
    {
        // Where the memory goes, step by step.
        malloc_trim(0);
        const qint64 before = statusKb("VmRSS:");
        TFTreeStruct root{ QString() };
        StepwiseParser parser;
        const QJsonDocument document = QJsonDocument::fromJson(bytes);
        parser.phaseKb[0] = statusKb("VmRSS:");
        parser.parseConfig(document.object(), &root);
        std::printf("[1]   JSON document %.0f, raw rows %.0f, cells %.0f bytes per cell\n",
                    (parser.phaseKb[0] - before) * 1024.0 / cells,
                    (parser.phaseKb[1] - parser.phaseKb[0]) * 1024.0 / cells,
                    (parser.phaseKb[2] - parser.phaseKb[1]) * 1024.0 / cells);
    }

    // --- 2. display text of every cell ---------------------------------------
    {
        TFTreeStruct root{ QString() };
        TFSubject::TFJsonParser parser;
        TFSubjectTableModel model;
        pipeline(root, parser, model);

        QVector<double> numbers;
        numbers.reserve(int(cells));
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < kFields; ++c)
                numbers.append(model.data(model.index(r, c), TFSubjectTableModel::RawValueRole).toDouble());

        qint64 sink = 0;
        double bare = 1e300;
        double display = 1e300;
        for (int i = 0; i < repeats; ++i) {
            bare = std::min(bare, bestOf(1, [&] {
                const QLocale locale;
                for (double number : qAsConst(numbers))
                    sink += locale.toString(number, 'f', 2).size();
            }));
            display = std::min(display, bestOf(1, [&] {
                for (int r = 0; r < rows; ++r)
                    for (int c = 0; c < kFields; ++c)
                        sink += model.data(model.index(r, c), Qt::DisplayRole).toString().size();
            }));
        }
        // By kind, to show where the time goes.
        auto kindTime = [&](Kind kind) {
            return bestOf(repeats, [&] {
                for (int r = 0; r < rows; ++r)
                    for (int c = 0; c < kFields; ++c)
                        if (kindOf(c) == kind)
                            sink += model.data(model.index(r, c), Qt::DisplayRole).toString().size();
            });
        };
        const double perCellBare = bare * 1e6 / cells;
        const double perCell = display * 1e6 / cells;
        std::printf("[2] QLocale::toString     %9.1f ns/cell\n", perCellBare);
        std::printf("[2] display text          %9.1f ns/cell   ratio %.2f (goal <= 2)\n", perCell,
                    perCell / perCellBare);
        const char* names[] = { "unit decimal", "plain decimal", "string", "datetime" };
        const int counts[] = { 12, 8, 5, 5 };
        for (int k = 0; k < 4; ++k) {
            const double t = kindTime(Kind(k)) * 1e6 / (double(rows) * counts[k]);
            std::printf("[2]   %-14s       %9.1f ns/cell   ratio %.2f\n", names[k], t, t / perCellBare);
        }
        if (sink == 42)
            std::printf(" ");
    }

    // --- 3. text colour of a screen ------------------------------------------
    {
        const int screenRows = 40;
        const int screenColumns = 25;
        const QByteArray small = makeDocument(1000, true);
        TFTreeStruct root{ QString() };
        TFSubject::TFJsonParser parser;
        parser.parseConfig(QJsonDocument::fromJson(small).object(), &root);
        TFSubjectTableModel model;
        model.setHeader(&root);
        model.setRows(parser.rows());

        // The bare side: one evaluate per cell of the same expression text,
        // the row's values set once beforehand.
        QJSEngine bareEngine;
        const QList<RowData> built = parser.rows();
        for (int i = 0; i < kFields; ++i)
            bareEngine.globalObject().setProperty("$" + fieldName(i), built.first().at(i).value.toString());
        QStringList programs;
        for (int c = 0; c < screenColumns; ++c)
            programs << QStringLiteral("(%1)").arg(root.leaves().at(c)->info().cellStyleExpression);
        int bareCount = 0;
        const double bare = bestOf(repeats, [&] {
            for (int r = 0; r < screenRows; ++r)
                for (int c = 0; c < screenColumns; ++c)
                    bareCount += bareEngine.evaluate(programs.at(c), QString(), 1).isString();
        });

        QVector<QVariant> first;
        QVector<QVariant> repeated;
        auto paint = [&](int top, QVector<QVariant>& out) {
            out.clear();
            for (int r = top; r < top + screenRows; ++r)
                for (int c = 0; c < screenColumns; ++c)
                    out.append(model.data(model.index(r, c), Qt::ForegroundRole));
        };
        // First paints: every screen a place not painted before, the
        // expressions compiled already by an earlier screen.
        QElapsedTimer coldTimer;
        coldTimer.start();
        paint(0, first);
        const double cold = msSince(coldTimer);
        int top = 0;
        const double firstPaint = bestOf(repeats, [&] {
            top += screenRows;
            paint(top, first);
        });
        const double repeatPaint = bestOf(repeats * 5, [&] { paint(top, repeated); });

        // Identical to painting afresh: a new model, whose kept colours are
        // empty, over the same rows.
        TFSubjectTableModel fresh;
        fresh.setHeader(&root);
        fresh.setRows(parser.rows());
        int differences = 0;
        for (int r = top, i = 0; r < top + screenRows; ++r)
            for (int c = 0; c < screenColumns; ++c, ++i)
                differences += fresh.data(fresh.index(r, c), Qt::ForegroundRole) != repeated.at(i)
                    || first.at(i) != repeated.at(i);

        const double cellsOnScreen = screenRows * screenColumns;
        std::printf("[3] bare evaluate         %9.2f us/cell\n", bare * 1e3 / cellsOnScreen);
        std::printf("[3] very first screen     %9.2f us/cell   ratio %.2f (compiles the 25 expressions)\n",
                    cold * 1e3 / cellsOnScreen, cold / bare);
        std::printf("[3] first paint           %9.2f us/cell   ratio %.2f (goal <= 1)\n",
                    firstPaint * 1e3 / cellsOnScreen, firstPaint / bare);
        std::printf("[3] repeated paint        %9.2f us/cell   first/repeated %.1f (goal >= 10)\n",
                    repeatPaint * 1e3 / cellsOnScreen, firstPaint / repeatPaint);
        std::printf("[3] cells differing from a fresh paint: %d of %d\n", differences, int(cellsOnScreen));
        if (bareCount < 0)
            std::printf(" ");
    }
    return 0;
}
