#include <httplib.h>

#include "subjectservice.h"

#include "catalogue.h"
#include "demodatagenerator.h"
#include "requesthandler.h"
#include "servicedatabase.h"

#include <QDebug>
#include <QDir>

#include <thread>

namespace SubjectService {

class Server::Private
{
public:
    explicit Private(const Options &o) : options(o), handler(catalogue, database) {}

    void installRoutes();

    Options options;
    Catalogue catalogue;
    ServiceDatabase database;
    RequestHandler handler;
    std::unique_ptr<httplib::Server> http;
    std::thread thread;
    quint16 port = 0;
    QString databasePath;
};

namespace {

void sendJson(httplib::Response &res, const QByteArray &body)
{
    res.set_content(body.constData(), size_t(body.size()), "application/json; charset=utf-8");
}

} // namespace

void Server::Private::installRoutes()
{
    const std::string token = options.token.toStdString();
    http->set_pre_routing_handler([token](const httplib::Request &req, httplib::Response &res) {
        if (!token.empty() && req.get_header_value("kvt-token") != token) {
            res.status = 401;
            sendJson(res, RequestHandler::envelope(0, QStringLiteral("kvt-token does not match"), QJsonValue::Null));
            return httplib::Server::HandlerResponse::Handled;
        }
        return httplib::Server::HandlerResponse::Unhandled;
    });
    http->Post("/bas/subject/data", [this](const httplib::Request &req, httplib::Response &res) {
        sendJson(res, handler.subjectData(QByteArray::fromStdString(req.body)));
    });
    http->Post("/bas/ds/data", [this](const httplib::Request &req, httplib::Response &res) {
        sendJson(res, handler.dataSourceData(QByteArray::fromStdString(req.body)));
    });
    http->Get(R"(/help/([A-Za-z0-9_-]+\.html))", [this](const httplib::Request &req, httplib::Response &res) {
        const QByteArray page = catalogue.helpPage(QString::fromStdString(req.matches[1]));
        if (page.isEmpty()) {
            res.status = 404;
            return;
        }
        res.set_content(page.constData(), size_t(page.size()), "text/html; charset=utf-8");
    });
    http->set_error_handler([](const httplib::Request &req, httplib::Response &res) {
        if (res.status == 404) {
            sendJson(res, RequestHandler::envelope(0, QStringLiteral("no such path: %1")
                                                          .arg(QString::fromStdString(req.path)),
                                                   QJsonValue::Null));
        }
    });
    http->set_payload_max_length(8 * 1024 * 1024);
    // The terminal opens a new connection per request; the load program and
    // other clients keep theirs.
    http->set_keep_alive_max_count(100);
    // Headers and body go out in separate writes; without this, Nagle and the
    // peer's delayed acknowledgement hold every reply back by tens of ms.
    http->set_tcp_nodelay(true);
    http->new_task_queue = [] { return new httplib::ThreadPool(32); };
}

Server::Server(const Options &options) : d(new Private(options)) {}

Server::~Server()
{
    stop();
}

QString Server::defaultDatabasePath(int scale)
{
    return QDir(QDir::tempPath())
        .filePath(QStringLiteral("subject-demo-v%1-scale%2.sqlite").arg(DemoDataGenerator::version()).arg(qMax(1, scale)));
}

bool Server::start(QString *error)
{
    if (d->http)
        return true;
    d->databasePath = d->options.dbPath.isEmpty() ? defaultDatabasePath(d->options.scale) : d->options.dbPath;
    if (!d->catalogue.load(error))
        return false;
    if (!d->database.open(d->databasePath, d->options.scale, error))
        return false;
    const QStringList problems = d->catalogue.problems(d->database);
    if (!problems.isEmpty()) {
        *error = QStringLiteral("the catalogue does not match the database: ") + problems.join(QLatin1String("; "));
        return false;
    }

    d->http.reset(new httplib::Server);
    d->installRoutes();
    const std::string host = d->options.listenAddress.toStdString();
    int port = d->options.port;
    if (port == 0) {
        port = d->http->bind_to_any_port(host);
    } else if (!d->http->bind_to_port(host, port)) {
        port = -1;
    }
    if (port <= 0) {
        *error = QStringLiteral("cannot listen on %1:%2").arg(d->options.listenAddress).arg(d->options.port);
        d->http.reset();
        return false;
    }
    d->port = quint16(port);
    d->handler.setServiceBase(baseUrl().toString());
    httplib::Server *http = d->http.get();
    d->thread = std::thread([http] { http->listen_after_bind(); });
    qDebug() << "subject service listening on" << baseUrl().toString() << "database" << d->databasePath;
    return true;
}

quint16 Server::port() const
{
    return d->port;
}

QUrl Server::baseUrl() const
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(d->options.listenAddress);
    url.setPort(d->port);
    return url;
}

QString Server::databasePath() const
{
    return d->databasePath;
}

void Server::stop()
{
    if (!d->http)
        return;
    d->http->stop();
    if (d->thread.joinable())
        d->thread.join();
    d->http.reset();
    d->database.close();
}

} // namespace SubjectService
