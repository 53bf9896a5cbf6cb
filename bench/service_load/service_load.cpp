// Drives the reference service with concurrent clients on loopback for a
// bounded time and reports requests per second and latency percentiles of
// page requests of view 260.
//
//   service_load [--scale N[,N...]] [--clients C] [--seconds S] [--db-dir DIR]
//
// Several scales run one after the other in the same process, and the last
// lines give each figure as a ratio to the first scale, measured side by side.
#include <httplib.h>

#include "subjectservice.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <random>
#include <thread>
#include <vector>

namespace {

struct Result
{
    std::vector<double> latenciesMs;
    long errors = 0;
};

struct Workload
{
    const char *name;
    QByteArray (*body)(std::mt19937 &rng, int pages);
};

QByteArray plainPage(std::mt19937 &rng, int pages)
{
    QJsonObject body{{"auth", QJsonObject{{"userId", "bench"}, {"prodId", "subject"}}},
                     {"obj_vw_id", 260}, {"flag", 1}, {"size", 100},
                     {"page", int(std::uniform_int_distribution<int>(1, pages)(rng))},
                     {"filterBlock", QJsonArray()}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QByteArray filteredPage(std::mt19937 &rng, int pages)
{
    // What the filter bar of view 260 sends after a change: an interval on the
    // change, the exchange list, the hidden type constant and an order.
    QJsonObject body{{"auth", QJsonObject{{"userId", "bench"}, {"prodId", "subject"}}},
                     {"obj_vw_id", 260}, {"flag", 1}, {"size", 100},
                     {"page", int(std::uniform_int_distribution<int>(1, std::max(1, pages / 4))(rng))},
                     {"filter", "(CHG_PCT >= :CHG_PCT_0) && (CHG_PCT <= :CHG_PCT_1) && (MKT in :MKT_0) && (SECU_TYP_CODE == :SECU_TYP_CODE_0)"},
                     {"filterParams", QJsonObject{{"CHG_PCT_0", -2}, {"CHG_PCT_1", 5},
                                                  {"MKT_0", QJsonArray{"上交所", "深交所"}}, {"SECU_TYP_CODE_0", 10}}},
                     {"order", QJsonObject{{"CHG_PCT", -1}}},
                     {"keywords", ""}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

double percentile(std::vector<double> &v, double p)
{
    if (v.empty())
        return 0;
    const size_t k = std::min(v.size() - 1, size_t(p / 100.0 * double(v.size())));
    std::nth_element(v.begin(), v.begin() + long(k), v.end());
    return v[k];
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption scaleOption("scale", "Demo data scales, separated by commas.", "N", "1");
    const QCommandLineOption clientsOption("clients", "Concurrent clients.", "C", "16");
    const QCommandLineOption secondsOption("seconds", "Seconds per workload.", "S", "10");
    const QCommandLineOption dbDirOption("db-dir", "Folder of the SQLite files, one per scale (generated when missing).", "DIR");
    parser.addOptions({scaleOption, clientsOption, secondsOption, dbDirOption});
    parser.process(app);
    const int clients = parser.value(clientsOption).toInt();
    const int seconds = parser.value(secondsOption).toInt();
    QTextStream out(stdout);

    struct Figure { int scale; QString workload; double rps; double p99; };
    QList<Figure> figures;
    for (const QString &scaleText : parser.value(scaleOption).split(',', Qt::SkipEmptyParts)) {
    const int scale = scaleText.toInt();
    SubjectService::Options options;
    options.scale = scale;
    if (parser.isSet(dbDirOption))
        options.dbPath = QDir(parser.value(dbDirOption)).filePath(QStringLiteral("bench-scale%1.sqlite").arg(scale));
    SubjectService::Server server(options);
    QElapsedTimer startTimer;
    startTimer.start();
    QString error;
    if (!server.start(&error)) {
        out << "service_load: " << error << Qt::endl;
        return 1;
    }
    out << "scale " << scale << ": service ready in " << startTimer.elapsed() / 1000.0 << " s (database "
        << server.databasePath() << ")" << Qt::endl;

    const std::string host = "127.0.0.1";
    const int port = server.port();
    const int pages = 2000 * scale / 100;

    for (const Workload &workload : {Workload{"page of view 260", plainPage},
                                     Workload{"filtered, ordered page of view 260", filteredPage}}) {
        {
            // The first request of a filter pays for its row count; later pages
            // of the same filter find it kept. Shown apart from the timed run.
            std::mt19937 rng(12345u);
            httplib::Client client(host, port);
            client.set_read_timeout(120, 0);
            const QByteArray body = workload.body(rng, pages);
            const auto t0 = std::chrono::steady_clock::now();
            auto response = client.Post("/bas/subject/data", body.constData(), size_t(body.size()), "application/json");
            const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
            char line[160];
            std::snprintf(line, sizeof line, "scale %d | %-36s | first request %.1f ms (%s)", scale, workload.name, ms,
                          response && response->status == 200 ? "ok" : "failed");
            out << line << Qt::endl;
        }
        std::vector<Result> results(static_cast<size_t>(clients));
        std::vector<std::thread> threads;
        std::atomic<bool> stop{false};
        const auto begin = std::chrono::steady_clock::now();
        for (int c = 0; c < clients; ++c) {
            threads.emplace_back([&, c] {
                std::mt19937 rng(unsigned(c) * 7919u + 1u);
                httplib::Client client(host, port);
                client.set_keep_alive(true);
                client.set_tcp_nodelay(true);
                client.set_read_timeout(60, 0);   // a slow answer is a latency, not an error
                Result &result = results[size_t(c)];
                while (!stop.load(std::memory_order_relaxed)) {
                    const QByteArray body = workload.body(rng, pages);
                    const auto t0 = std::chrono::steady_clock::now();
                    auto response = client.Post("/bas/subject/data", body.constData(), size_t(body.size()),
                                                "application/json");
                    const auto t1 = std::chrono::steady_clock::now();
                    if (!response || response->status != 200
                        || response->body.find("\"state\":1") == std::string::npos) {
                        ++result.errors;
                        if (result.errors == 1)
                            std::fprintf(stderr, "error: %s\n", response ? response->body.substr(0, 200).c_str()
                                                                           : httplib::to_string(response.error()).c_str());
                    }
                    else
                        result.latenciesMs.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
                }
            });
        }
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        stop = true;
        for (std::thread &t : threads)
            t.join();
        const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();

        std::vector<double> all;
        long errors = 0;
        for (Result &r : results) {
            all.insert(all.end(), r.latenciesMs.begin(), r.latenciesMs.end());
            errors += r.errors;
        }
        const double rps = double(all.size()) / elapsed;
        const double p50 = percentile(all, 50);
        const double p99 = percentile(all, 99);
        const double worst = all.empty() ? 0 : *std::max_element(all.begin(), all.end());
        char line[256];
        std::snprintf(line, sizeof line,
                      "scale %d | %-36s | clients %d | %6.1f s | %8ld ok | %ld errors | %8.1f req/s | p50 %7.2f ms | p99 %7.2f ms | max %7.2f ms",
                      scale, workload.name, clients, elapsed, long(all.size()), errors, rps, p50, p99, worst);
        out << line << Qt::endl;
        figures.append({scale, QString::fromLatin1(workload.name), rps, p99});
    }
    server.stop();
    }
    for (const Figure &f : qAsConst(figures)) {
        for (const Figure &base : qAsConst(figures)) {
            if (base.workload == f.workload && base.scale == figures.first().scale && f.scale != base.scale) {
                char line[200];
                std::snprintf(line, sizeof line, "scale %d / scale %d | %-36s | req/s x%.2f | p99 x%.2f", f.scale,
                              base.scale, qPrintable(f.workload), f.rps / base.rps, f.p99 / base.p99);
                out << line << Qt::endl;
            }
        }
    }
    return 0;
}
