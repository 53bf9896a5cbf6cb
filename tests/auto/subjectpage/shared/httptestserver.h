#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPair>
#include <QSslCertificate>
#include <QSslKey>
#include <QUrl>

#include <functional>

class QThread;
class HttpTestListener;

// One request as it arrived on the wire.
struct RecordedRequest
{
    QByteArray method;
    QByteArray target;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;

    bool hasHeader(const QByteArray &name) const;
    QByteArray header(const QByteArray &name) const;    // name compared without case
};

struct CannedReply
{
    int status = 200;
    QByteArray reason = "OK";
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    bool hold = false;      // never answer; the connection stays open
    bool close = false;     // close the connection without a word
    int cutAfter = -1;      // send only this many bytes of the body, then close
};

// A small HTTP/1.1 server on 127.0.0.1 with a port of its own, running on
// its own thread so that blocking clients on any thread can reach it. It
// records every request and answers with what the handler returns.
class HttpTestServer
{
public:
    using Handler = std::function<CannedReply(const RecordedRequest &)>;

    HttpTestServer();
    ~HttpTestServer();

    // Serve TLS with this certificate and key (call before start()).
    void setTls(const QSslCertificate &certificate, const QSslKey &key);
    void setHandler(Handler handler);
    bool start();

    QUrl baseUrl() const;
    QList<RecordedRequest> requests() const;
    int requestCount() const;
    QList<RecordedRequest> requestsWithBodyContaining(const QByteArray &part) const;

    // Called on the server thread.
    CannedReply answer(const RecordedRequest &request);

    // A self-signed certificate for 127.0.0.1 made by the openssl command in dir.
    static bool makeSelfSignedCertificate(const QString &dir, QSslCertificate *certificate, QSslKey *key,
                                          QString *error);
    // {"state":state,"msg":msg,"extend":null,"data":data}
    static QByteArray envelope(const QJsonValue &data, int state = 1, const QString &msg = QString());

private:
    mutable QMutex m_mutex;
    Handler m_handler;
    QList<RecordedRequest> m_requests;
    QThread *m_thread;
    HttpTestListener *m_listener;
    bool m_tls = false;
    QSslCertificate m_certificate;
    QSslKey m_key;
    quint16 m_port = 0;
};
