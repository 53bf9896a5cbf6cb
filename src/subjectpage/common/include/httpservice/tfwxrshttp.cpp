#include "httpservice/tfwxrshttp.h"

#include "tfcore/tfappconfig.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QThread>

TFWXRSHttp::RawHeaders TFWXRSHttp::buildHeaders(const QString &token, const QString &format,
                                                const QString &language)
{
    RawHeaders headers;
    if (!token.isEmpty())
        headers.append({QByteArrayLiteral("kvt-token"), token.toUtf8()});
    if (!format.isEmpty())
        headers.append({QByteArrayLiteral("kvt-format"), format.toUtf8()});
    if (!language.isEmpty())
        headers.append({QByteArrayLiteral("kvt-language"), language.toUtf8()});
    return headers;
}

TFWXRSHttp::HttpResult TFWXRSHttp::post(const QUrl &url, const QByteArray &body, const RawHeaders &headers)
{
    QNetworkAccessManager manager;
    manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);

    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    for (const auto &header : headers)
        request.setRawHeader(header.first, header.second);
    const TFAppConfig *config = TFAppConfig::instance();
    request.setRawHeader(QByteArrayLiteral("userId"), config->getUserInfo().userId.toUtf8());
    request.setRawHeader(QByteArrayLiteral("prodId"), config->getProuctId().toUtf8());

    // The service may sit behind a certificate of its own: trust it whatever the scheme.
    QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
    ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
    ssl.setProtocol(QSsl::AnyProtocol);
    ssl.setSslOption(QSsl::SslOptionDisableLegacyRenegotiation, false);
    request.setSslConfiguration(ssl);

    QNetworkReply *reply = manager.post(request, body);
    reply->ignoreSslErrors();

    QEventLoop loop;
    QObject::connect(&manager, &QNetworkAccessManager::finished, &loop, &QEventLoop::quit);
    QCoreApplication *app = QCoreApplication::instance();
    if (app && QThread::currentThread() != app->thread()) {
        // Queued to this thread, where the reply lives: quitting ends the wait.
        QObject::connect(app, &QCoreApplication::aboutToQuit, reply, [reply] { reply->abort(); });
    }
    // A reply can be finished before the loop starts (an immediate failure).
    if (!reply->isFinished())
        loop.exec();

    HttpResult result;
    if (reply->error() != QNetworkReply::NoError) {
        result.ok = false;
        result.data = reply->errorString().toUtf8();
        qDebug() << "download error:" << result.data;
    } else {
        result.ok = true;
        result.data = reply->readAll();
        result.cookies = reply->header(QNetworkRequest::CookieHeader);
    }
    reply->deleteLater();
    return result;
}
