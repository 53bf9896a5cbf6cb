#pragma once

#include <QString>
#include <QUrl>

#include <memory>

namespace SubjectService {

struct Options
{
    QString listenAddress = QStringLiteral("127.0.0.1");
    quint16 port = 0;           // 0 picks a free port
    QString dbPath;             // empty: a file in the temporary folder, kept per scale
    QString token;              // when set, requests must carry it as kvt-token
    int scale = 1;
};

// The reference data service: answers /bas/subject/data and /bas/ds/data from
// the demo catalogue and its SQLite database. The HTTP server runs on threads
// of its own; start() returns once the port is listening.
class Server
{
public:
    explicit Server(const Options &options);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    bool start(QString *error);
    quint16 port() const;
    QUrl baseUrl() const;
    void stop();

    // The database file in use, once started.
    QString databasePath() const;
    // The file used when no path is given.
    static QString defaultDatabasePath(int scale);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace SubjectService
