#pragma once

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include <memory>

// Asks a data service for the configuration document of a view, as a demo
// user would, and hands back the reply's envelope: empty when the request
// failed or took longer than 30 s. Suites that check the catalogue through
// the parser share it, so that every one asks in the same way.
inline QJsonObject fetchViewConfiguration(const QUrl &serviceBase, qint64 viewId)
{
    QUrl url = serviceBase;
    url.setPath(QStringLiteral("/bas/subject/data"));
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    request.setRawHeader("userId", "demo");
    request.setRawHeader("prodId", "subject");
    const QJsonObject body { { "auth", QJsonObject { { "userId", "demo" }, { "prodId", "subject" } } },
                             { "obj_vw_id", double(viewId) }, { "flag", 0 } };

    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> reply(
        manager.post(request, QJsonDocument(body).toJson(QJsonDocument::Compact)));
    QEventLoop loop;
    QTimer::singleShot(30000, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    if (!reply->isFinished() || reply->error() != QNetworkReply::NoError)
        return QJsonObject();
    return QJsonDocument::fromJson(reply->readAll()).object();
}
