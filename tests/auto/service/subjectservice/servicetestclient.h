#pragma once

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

// A blocking POST over loopback for the tests: status, raw body and the
// envelope as an object. Bounded by a time-out so that a hung server fails
// the test instead of the run.
struct ServiceReply
{
    int httpStatus = 0;
    QByteArray body;
    QJsonObject envelope;
    bool timedOut = false;

    int state() const { return envelope.value(QLatin1String("state")).toInt(-999); }
    QString msg() const { return envelope.value(QLatin1String("msg")).toString(); }
    QJsonValue data() const { return envelope.value(QLatin1String("data")); }
};

inline ServiceReply postToService(const QUrl &base, const QString &path, const QByteArray &body,
                                  const QByteArray &token = QByteArray(), int timeoutMs = 30000)
{
    QNetworkAccessManager manager;
    QUrl url = base;
    url.setPath(path);
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setRawHeader("userId", "tester");
    request.setRawHeader("prodId", "subject");
    if (!token.isNull())
        request.setRawHeader("kvt-token", token);
    QNetworkReply *reply = manager.post(request, body);
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(timeoutMs);
    loop.exec();
    ServiceReply result;
    if (!reply->isFinished()) {
        result.timedOut = true;
        reply->abort();
    }
    result.httpStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.body = reply->readAll();
    result.envelope = QJsonDocument::fromJson(result.body).object();
    delete reply;
    return result;
}

inline ServiceReply postJson(const QUrl &base, const QString &path, const QJsonObject &body)
{
    return postToService(base, path, QJsonDocument(body).toJson(QJsonDocument::Compact));
}
