// bench_tree: run with QT_QPA_PLATFORM=offscreen.
//
// A navigation reply of N rows (the envelope, rows of NODE_* keys in three
// levels under the root, every tenth row given before its parent) goes the
// way the main frame takes it: the envelope is read, the tree container
// builds its model and selects a node by code, and the shown container is
// painted. Side by side, QJsonDocument::fromJson of the same bytes. Each
// figure is the median of five runs of the processor time of the one thread
// that does all of it, which the load of a shared machine disturbs less than
// the clock on the wall; the wall time of the whole road is given as well.

#include "net/tfjsp.h"
#include "tftreemodel.h"
#include "tftreewidgetcontainer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <ctime>

#include <algorithm>
#include <vector>

namespace {

constexpr int RootCode = 2;

// Groups of 10 subgroups each, the rest leaves under the subgroups.
QByteArray reply(int rowCount, QString *leafCode)
{
    const int groups = std::max(1, rowCount / 500);
    const int subgroups = groups * 10;
    QJsonArray rows;
    int code = 1000;
    auto row = [&](int own, int parent, const QString &caption, int level, int viewId) {
        return QJsonObject{{"NODE_CODE", own}, {"P_NODE_CODE", parent}, {"NODE_CAP", caption},
                           {"NODE_TYP", level == 3 ? 2 : 1}, {"LEVEL", level}, {"OBJ_VW_ID", viewId},
                           {"NODE_URL", QString()}};
    };
    std::vector<QJsonObject> ordered;
    ordered.reserve(size_t(rowCount));
    for (int g = 0; g < groups; ++g)
        ordered.push_back(row(code + g, RootCode, QStringLiteral("专题%1").arg(g), 1, 0));
    const int subgroupBase = code + groups;
    for (int s = 0; s < subgroups; ++s)
        ordered.push_back(row(subgroupBase + s, code + s % groups, QStringLiteral("分类%1").arg(s), 2, 0));
    const int leafBase = subgroupBase + subgroups;
    for (int l = 0; int(ordered.size()) < rowCount; ++l)
        ordered.push_back(row(leafBase + l, subgroupBase + l % subgroups, QStringLiteral("视图%1").arg(l), 3, 260 + l % 50));
    // Every tenth row swaps with the one before: some children come first.
    for (size_t i = 10; i < ordered.size(); i += 10)
        std::swap(ordered[i], ordered[i - 1]);
    for (const QJsonObject &o : ordered)
        rows.append(o);
    *leafCode = QString::number(leafBase + (rowCount - groups - subgroups) / 2);
    QJsonObject envelope{{"state", 1}, {"msg", QString()}, {"extend", QJsonValue()}, {"data", rows}};
    return QJsonDocument(envelope).toJson(QJsonDocument::Compact);
}

// Milliseconds of processor time this thread has used.
double threadMs()
{
    timespec clockTime{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &clockTime);
    return clockTime.tv_sec * 1e3 + clockTime.tv_nsec / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void dropDebug(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    // The terminal's console without --verbose or --log: debug lines go nowhere.
    if (type != QtDebugMsg && type != QtInfoMsg && !message.contains(QLatin1String("propagateSizeHints")))
        QTextStream(stderr) << message << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    qInstallMessageHandler(dropDebug);
    QTextStream out(stdout);
    out << "| rows | reply | fromJson | envelope | model, view, selection | paint | reply to shown tree | ratio | wall |\n"
        << "|---|---|---|---|---|---|---|---|---|\n";
    for (int rowCount : {5000, 20000, 50000, 200000}) {
        QString leafCode;
        const QByteArray bytes = reply(rowCount, &leafCode);
        std::vector<double> parse, envelope, load, paint, shown, wall;
        for (int run = 0; run < 5; ++run) {
            double start = threadMs();
            const QJsonDocument document = QJsonDocument::fromJson(bytes);
            parse.push_back(threadMs() - start);
            if (document.isNull())
                return 1;

            auto *container = new TFTreeWidgetContainer;
            container->resize(300, 900);
            container->show();
            QApplication::processEvents();
            QElapsedTimer clock;
            clock.start();
            start = threadMs();
            NtResponse response;
            if (!TFJSP::parseResponse(QString::fromUtf8(bytes), response))
                return 1;
            const double parsed = threadMs();
            if (!container->loadMainTreeByCode(leafCode, response.data, RootCode, QString()))
                return 1;
            const double loaded = threadMs();
            container->repaint();
            QApplication::processEvents();
            const double painted = threadMs();
            wall.push_back(clock.nsecsElapsed() / 1e6);
            envelope.push_back(parsed - start);
            load.push_back(loaded - parsed);
            paint.push_back(painted - loaded);
            shown.push_back(painted - start);
            delete container;
        }
        const auto ms = [](const std::vector<double> &values) {
            return QString::number(median(values), 'f', 1) + QStringLiteral(" ms");
        };
        out << "| " << rowCount << " | " << QString::number(bytes.size() / 1e6, 'f', 1) << " MB | " << ms(parse)
            << " | " << ms(envelope) << " | " << ms(load) << " | " << ms(paint) << " | " << ms(shown) << " | "
            << QString::number(median(shown) / median(parse), 'f', 1) << " | " << ms(wall) << " |\n";
        out.flush();
    }
    return 0;
}
