#include "httptestserver.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>
#include <QProcess>
#include <QSslSocket>
#include <QTcpServer>
#include <QThread>

bool RecordedRequest::hasHeader(const QByteArray &name) const
{
    for (const auto &header : headers) {
        if (header.first.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QByteArray RecordedRequest::header(const QByteArray &name) const
{
    for (const auto &header : headers) {
        if (header.first.compare(name, Qt::CaseInsensitive) == 0)
            return header.second;
    }
    return QByteArray();
}

class HttpTestListener : public QTcpServer
{
public:
    HttpTestListener(HttpTestServer *owner, bool tls, const QSslCertificate &certificate, const QSslKey &key)
        : m_owner(owner), m_tls(tls), m_certificate(certificate), m_key(key)
    {
    }

    quint16 listenOnLoopback()
    {
        return listen(QHostAddress::LocalHost, 0) ? serverPort() : 0;
    }

    void shutDown()
    {
        close();
        // Direct children only: a TLS socket owns a plain socket of its own,
        // which its destructor deletes.
        const auto sockets = findChildren<QTcpSocket *>(QString(), Qt::FindDirectChildrenOnly);
        for (QTcpSocket *socket : sockets)
            socket->abort();
        qDeleteAll(sockets);
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        QTcpSocket *socket;
        if (m_tls) {
            auto *ssl = new QSslSocket(this);
            ssl->setSocketDescriptor(descriptor);
            ssl->setLocalCertificate(m_certificate);
            ssl->setPrivateKey(m_key);
            ssl->setPeerVerifyMode(QSslSocket::VerifyNone);
            ssl->startServerEncryption();
            socket = ssl;
        } else {
            socket = new QTcpSocket(this);
            socket->setSocketDescriptor(descriptor);
        }
        auto *buffer = new QByteArray;
        connect(socket, &QObject::destroyed, [buffer] { delete buffer; });
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] {
            buffer->append(socket->readAll());
            serve(socket, *buffer);
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }

private:
    void serve(QTcpSocket *socket, QByteArray &buffer)
    {
        const int headerEnd = buffer.indexOf("\r\n\r\n");
        if (headerEnd < 0)
            return;
        RecordedRequest request;
        const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
        const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
        request.method = requestLine.value(0);
        request.target = requestLine.value(1);
        int contentLength = 0;
        for (int i = 1; i < lines.size(); ++i) {
            const QByteArray line = lines.at(i).trimmed();
            const int colon = line.indexOf(':');
            if (colon <= 0)
                continue;
            const QByteArray name = line.left(colon).trimmed();
            const QByteArray value = line.mid(colon + 1).trimmed();
            request.headers.append({name, value});
            if (name.compare("content-length", Qt::CaseInsensitive) == 0)
                contentLength = value.toInt();
        }
        if (buffer.size() < headerEnd + 4 + contentLength)
            return;
        request.body = buffer.mid(headerEnd + 4, contentLength);
        buffer.remove(0, headerEnd + 4 + contentLength);

        const CannedReply reply = m_owner->answer(request);
        if (reply.hold)
            return;
        if (reply.close) {
            socket->disconnectFromHost();
            return;
        }
        QByteArray out = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reply.reason + "\r\n";
        bool hasType = false;
        for (const auto &header : reply.headers) {
            out += header.first + ": " + header.second + "\r\n";
            hasType = hasType || header.first.compare("content-type", Qt::CaseInsensitive) == 0;
        }
        if (!hasType)
            out += "Content-Type: application/json\r\n";
        out += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\nConnection: close\r\n\r\n";
        out += reply.cutAfter >= 0 ? reply.body.left(reply.cutAfter) : reply.body;
        socket->write(out);
        socket->disconnectFromHost();
    }

    HttpTestServer *m_owner;
    bool m_tls;
    QSslCertificate m_certificate;
    QSslKey m_key;
};

HttpTestServer::HttpTestServer()
    : m_thread(new QThread)
    , m_listener(nullptr)
{
}

HttpTestServer::~HttpTestServer()
{
    if (m_listener) {
        QMetaObject::invokeMethod(m_listener, [this] {
            m_listener->shutDown();
            delete m_listener;
        }, Qt::BlockingQueuedConnection);
    }
    m_thread->quit();
    m_thread->wait();
    delete m_thread;
}

void HttpTestServer::setTls(const QSslCertificate &certificate, const QSslKey &key)
{
    m_tls = true;
    m_certificate = certificate;
    m_key = key;
}

void HttpTestServer::setHandler(Handler handler)
{
    QMutexLocker lock(&m_mutex);
    m_handler = std::move(handler);
}

bool HttpTestServer::start()
{
    m_listener = new HttpTestListener(this, m_tls, m_certificate, m_key);
    m_listener->moveToThread(m_thread);
    m_thread->start();
    QMetaObject::invokeMethod(m_listener, [this] { m_port = m_listener->listenOnLoopback(); },
                              Qt::BlockingQueuedConnection);
    return m_port != 0;
}

QUrl HttpTestServer::baseUrl() const
{
    return QUrl(QStringLiteral("%1://127.0.0.1:%2").arg(m_tls ? "https" : "http").arg(m_port));
}

QList<RecordedRequest> HttpTestServer::requests() const
{
    QMutexLocker lock(&m_mutex);
    return m_requests;
}

int HttpTestServer::requestCount() const
{
    QMutexLocker lock(&m_mutex);
    return m_requests.size();
}

QList<RecordedRequest> HttpTestServer::requestsWithBodyContaining(const QByteArray &part) const
{
    QList<RecordedRequest> found;
    for (const RecordedRequest &request : requests()) {
        if (request.body.contains(part))
            found.append(request);
    }
    return found;
}

CannedReply HttpTestServer::answer(const RecordedRequest &request)
{
    Handler handler;
    {
        QMutexLocker lock(&m_mutex);
        m_requests.append(request);
        handler = m_handler;
    }
    if (handler)
        return handler(request);
    CannedReply reply;
    reply.body = envelope(QJsonValue());
    return reply;
}

bool HttpTestServer::makeSelfSignedCertificate(const QString &dir, QSslCertificate *certificate, QSslKey *key,
                                               QString *error)
{
    const QString certPath = dir + QStringLiteral("/cert.pem");
    const QString keyPath = dir + QStringLiteral("/key.pem");
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                   QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-keyout"), keyPath,
                   QStringLiteral("-out"), certPath, QStringLiteral("-days"), QStringLiteral("1"),
                   QStringLiteral("-subj"), QStringLiteral("/CN=127.0.0.1")});
    if (!openssl.waitForFinished(60000) || openssl.exitCode() != 0) {
        *error = QString::fromLocal8Bit(openssl.readAllStandardError()) + openssl.errorString();
        return false;
    }
    QFile certFile(certPath);
    QFile keyFile(keyPath);
    if (!certFile.open(QIODevice::ReadOnly) || !keyFile.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read the generated files");
        return false;
    }
    *certificate = QSslCertificate(certFile.readAll(), QSsl::Pem);
    *key = QSslKey(keyFile.readAll(), QSsl::Rsa, QSsl::Pem);
    if (certificate->isNull() || key->isNull()) {
        *error = QStringLiteral("the generated certificate or key does not load");
        return false;
    }
    return true;
}

QByteArray HttpTestServer::envelope(const QJsonValue &data, int state, const QString &msg)
{
    QJsonObject object;
    object.insert(QStringLiteral("state"), state);
    object.insert(QStringLiteral("msg"), msg);
    object.insert(QStringLiteral("extend"), QJsonValue());
    object.insert(QStringLiteral("data"), data);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}
