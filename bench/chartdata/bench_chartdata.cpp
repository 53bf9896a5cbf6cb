// Timed program: the chart messages of rows x series numbers, as a ratio to
// QJsonDocument::toJson of the same numbers and labels measured in the same
// run.
//
//   bench_chartdata [rows] [series] [repeats]
//
// 1. rows to message: the rows of a table handed to the data source (the
//    series step: selection, order, data points rounded by their format)
//    and the mixed message built from them.
// 2. message alone: the message step on series already built.
// 3. reply to message: the reply's Data read into rows as well, as a chart
//    that requests its own data does it.
// Each figure is the median of the repeats.

#include "echarts/tfdatasource.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

static double medianMs(int repeats, const std::function<void()> &work)
{
    std::vector<double> times;
    for (int i = 0; i < repeats; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int rowCount = argc > 1 ? atoi(argv[1]) : 10000;
    const int seriesCount = argc > 2 ? atoi(argv[2]) : 5;
    const int repeats = argc > 3 ? atoi(argv[3]) : 15;

    QJsonArray entries;
    for (int s = 0; s < seriesCount; ++s)
        entries.append(QJsonObject { { "FieldName", QStringLiteral("V%1").arg(s) },
                                     { "LegendLable", QStringLiteral("series %1").arg(s) },
                                     { "ChartType", s % 2 ? "Line" : "Column" },
                                     { "IsVisible", true },
                                     { "ValueFormatString", qEnvironmentVariable("BENCH_FORMAT", QStringLiteral("n2")) } });
    const QJsonObject chart { { "ChartType", "Line" }, { "XFieldName", "X" }, { "XValueType", "String" },
                              { "XDisplayDataPattern", 1 }, { "ChartDataConfigs", entries } };
    const QJsonArray viewConfig { QJsonObject { { "prop_typ", "" }, { "prop_name", "IsGetChartData" }, { "prop_val", "1" } },
                                  QJsonObject { { "prop_typ", "EXTEND" }, { "prop_name", "ChartViewConfig" },
                                                { "ext_prop_val", QString::fromUtf8(QJsonDocument(chart).toJson()) } } };

    // Numbers with fractions, as a price or a ratio has them.
    QJsonArray rows;
    QList<QVariantMap> rowMaps;
    QJsonArray labels;
    std::vector<QJsonArray> columns(static_cast<size_t>(seriesCount), QJsonArray());
    for (int r = 0; r < rowCount; ++r) {
        QJsonObject row;
        const QString x = QStringLiteral("D%1").arg(r, 5, 10, QLatin1Char('0'));
        row.insert("X", x);
        labels.append(x);
        for (int s = 0; s < seriesCount; ++s) {
            const double value = double((r * 7919 + s * 104729) % 100000) / 100.0 + 0.25 * s;
            row.insert(QStringLiteral("V%1").arg(s), value);
            columns[size_t(s)].append(value);
        }
        rows.append(row);
        rowMaps.append(row.toVariantMap());
    }
    QJsonObject same { { "xData", labels } };
    QJsonArray series;
    for (const QJsonArray &column : columns)
        series.append(QJsonObject { { "data", column } });
    same.insert("series", series);

    TFDataSource source;
    source.loadConfig(QJsonObject { { "View_Config", viewConfig } });
    QByteArray message;
    QObject::connect(&source, &TFDataSource::signalMixedChartData, [&message](const QByteArray &m) { message = m; });

    QByteArray baselineText;
    const double baseline = medianMs(repeats, [&] { baselineText = QJsonDocument(same).toJson(QJsonDocument::Compact); });
    const double rowsToMessage = medianMs(repeats, [&] {
        source.setRows(rowMaps);
        source.slotRefreshChartDaTa();
    });
    const QByteArray rowsMessage = message;
    const double messageAlone = medianMs(repeats, [&] { source.slotRefreshChartDaTa(); });
    const QJsonObject reply { { "Data", rows } };
    const double replyToMessage = medianMs(repeats, [&] {
        source.loadConfigAndData(reply);
        source.slotRefreshChartDaTa();
    });

    std::printf("%d rows x %d series, median of %d\n", rowCount, seriesCount, repeats);
    std::printf("toJson of the same numbers and labels: %8.2f ms (%d bytes)\n", baseline, int(baselineText.size()));
    std::printf("rows to message:                       %8.2f ms (%d bytes)  ratio %.2f\n", rowsToMessage,
                int(rowsMessage.size()), rowsToMessage / baseline);
    std::printf("message alone:                         %8.2f ms  ratio %.2f\n", messageAlone, messageAlone / baseline);
    std::printf("reply to message:                      %8.2f ms  ratio %.2f\n", replyToMessage, replyToMessage / baseline);
    return 0;
}
