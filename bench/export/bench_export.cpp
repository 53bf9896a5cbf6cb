// The export of a table of 100,000 rows x 30 columns to a workbook, three
// ways in one run: TFExcelWritter (header with bands and merges, typed cells,
// number formats carried from cell to cell), libxlsxwriter called by hand on
// the same cells in the same mode, and openpyxl in write-only mode. Also the
// peak memory the export adds beyond the table already in memory.
//
//   build-bench/bin/bench_export [rows] [repetitions]

#include "tfexcelwritter.h"
#include "tfxlsxdocument.h"

#include "mulittable/tfheaderdatastruct.h"

#include <xlsxwriter.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kColumns = 30;

QVariant value(int r, int c)
{
    switch (c % 3) {
    case 0: return r * 0.37 + c;
    case 1: return qlonglong(r) * 31 + c;
    default: return QStringLiteral("名称%1-%2").arg(r % 1000).arg(c);
    }
}

// Five bands of six columns: two header rows, five merges.
std::unique_ptr<TFTreeStruct> makeHeader()
{
    std::unique_ptr<TFTreeStruct> root(new TFTreeStruct(QString()));
    for (int b = 0; b < kColumns / 6; ++b) {
        HeaderFieldInfo band;
        band.fieldName = band.caption = QStringLiteral("B%1").arg(b);
        band.columnType = QStringLiteral("Band");
        band.visible = true;
        auto *node = new TFTreeStruct(band);
        for (int c = b * 6; c < b * 6 + 6; ++c) {
            HeaderFieldInfo leaf;
            leaf.fieldName = leaf.caption = QStringLiteral("C%1").arg(c);
            leaf.visible = true;
            node->addChild(new TFTreeStruct(leaf));
        }
        root->addChild(node);
    }
    return root;
}

double exportWithWriter(const QString &path, TFTreeStruct *header, const QList<QList<QVariant>> &rows)
{
    QElapsedTimer timer;
    timer.start();
    TFXlsxDocument doc(path);
    if (!TFExcelWritter::writeHeader(doc, header) || !TFExcelWritter::writeData(doc, header, rows) || !doc.save()) {
        QTextStream(stderr) << "export failed: " << doc.errorString() << '\n';
        return -1;
    }
    return timer.nsecsElapsed() / 1e9;
}

// What a caller holding the same Qt values would write by hand: the same
// header, widths and formats, each cell converted once.
double exportByHand(const QString &path, const QList<QList<QVariant>> &rows)
{
    QElapsedTimer timer;
    timer.start();
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    lxw_workbook *book = workbook_new_opt(QFile::encodeName(path).constData(), &options);
    lxw_worksheet *sheet = workbook_add_worksheet(book, nullptr);
    lxw_format *bold = workbook_add_format(book);
    format_set_bold(bold);
    format_set_align(bold, LXW_ALIGN_CENTER);
    format_set_align(bold, LXW_ALIGN_VERTICAL_CENTER);
    lxw_format *number = workbook_add_format(book);
    format_set_align(number, LXW_ALIGN_CENTER);
    format_set_align(number, LXW_ALIGN_VERTICAL_CENTER);
    format_set_num_format(number, "#,##0.00######;-#,##0.00######");
    for (int b = 0; b < kColumns / 6; ++b)
        worksheet_merge_range(sheet, 0, lxw_col_t(b * 6), 0, lxw_col_t(b * 6 + 5),
                              QStringLiteral("B%1").arg(b).toUtf8().constData(), bold);
    for (int c = 0; c < kColumns; ++c)
        worksheet_write_string(sheet, 1, lxw_col_t(c), QStringLiteral("C%1").arg(c).toUtf8().constData(), bold);
    worksheet_set_column(sheet, 0, kColumns - 1, 25.0, nullptr);
    for (int r = 0; r < rows.size(); ++r) {
        const QList<QVariant> &row = rows.at(r);
        for (int c = 0; c < row.size(); ++c) {
            const QVariant &v = row.at(c);
            if (v.type() == QVariant::String)
                worksheet_write_string(sheet, lxw_row_t(r + 2), lxw_col_t(c), v.toString().toUtf8().constData(), number);
            else
                worksheet_write_number(sheet, lxw_row_t(r + 2), lxw_col_t(c), v.toDouble(), number);
        }
    }
    if (workbook_close(book) != LXW_NO_ERROR)
        return -1;
    return timer.nsecsElapsed() / 1e9;
}

double exportWithOpenpyxl(const QString &path, int rowCount)
{
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral(OPENPYXL_SCRIPT), path, QString::number(rowCount), QString::number(kColumns)});
    if (!python.waitForFinished(-1) || python.exitCode() != 0) {
        QTextStream(stderr) << "openpyxl failed: " << python.readAllStandardError() << '\n';
        return -1;
    }
    return python.readAllStandardOutput().trimmed().toDouble();
}

long statusKb(const char *key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(int(qstrlen(key))).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

// Resets the peak resident size, so that the next one is the export's.
bool resetPeak()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const int rowCount = argc > 1 ? atoi(argv[1]) : 100000;
    const int repetitions = argc > 2 ? atoi(argv[2]) : 3;
    QTextStream out(stdout);

    QList<QList<QVariant>> rows;
    rows.reserve(rowCount);
    for (int r = 0; r < rowCount; ++r) {
        QList<QVariant> row;
        row.reserve(kColumns);
        for (int c = 0; c < kColumns; ++c)
            row.append(value(r, c));
        rows.append(row);
    }
    const std::unique_ptr<TFTreeStruct> header = makeHeader();
    QTemporaryDir dir;

    // Memory first, in a process that has not written a workbook yet.
    const long before = statusKb("VmRSS:");
    const bool peakReset = resetPeak();
    exportWithWriter(dir.filePath(QStringLiteral("memory.xlsx")), header.get(), rows);
    const long peak = statusKb("VmHWM:");
    out << "table in memory: " << before / 1024 << " MB resident\n";
    if (peakReset)
        out << "peak added by the export: " << (peak - before) / 1024.0 << " MB\n";
    else
        out << "peak added by the export: unknown (cannot reset the peak)\n";

    std::vector<double> writer, byHand, openpyxl;
    for (int i = 0; i < repetitions; ++i) {
        writer.push_back(exportWithWriter(dir.filePath(QStringLiteral("writer.xlsx")), header.get(), rows));
        byHand.push_back(exportByHand(dir.filePath(QStringLiteral("hand.xlsx")), rows));
        openpyxl.push_back(exportWithOpenpyxl(dir.filePath(QStringLiteral("openpyxl.xlsx")), rowCount));
    }
    const double w = median(writer), h = median(byHand), o = median(openpyxl);
    out << QStringLiteral("%1 rows x %2 columns, median of %3\n").arg(rowCount).arg(kColumns).arg(repetitions);
    out << QStringLiteral("TFExcelWritter        %1 s\n").arg(w, 0, 'f', 3);
    out << QStringLiteral("libxlsxwriter by hand %1 s   writer / by hand  = %2\n").arg(h, 0, 'f', 3).arg(w / h, 0, 'f', 2);
    out << QStringLiteral("openpyxl write-only   %1 s   openpyxl / writer = %2\n").arg(o, 0, 'f', 3).arg(o / w, 0, 'f', 2);
    out << QStringLiteral("file sizes: writer %1 KB, by hand %2 KB\n")
               .arg(QFileInfo(dir.filePath(QStringLiteral("writer.xlsx"))).size() / 1024)
               .arg(QFileInfo(dir.filePath(QStringLiteral("hand.xlsx"))).size() / 1024);
    return 0;
}
