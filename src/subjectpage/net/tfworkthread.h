#pragma once

#include "httpservice/tfwxrshttp.h"
#include "net/tfsigconnec.h"
#include "net/tfuc.h"
#include "tfcore/tfappconfig.h"

#include <QDebug>
#include <QRunnable>
#include <QTime>

// One blocking POST on a pool thread. The result reaches functor(bool isOk,
// const QByteArray &data) as a queued call on the receiver's thread; when the
// receiver is gone by then, Qt drops the call and nothing else happens.
template<typename F>
class TFWorkThread : public QRunnable
{
public:
    TFWorkThread(const TFUc::TFRequestContent &content, F functor, QObject *receiver)
        : m_url(content.url)
        , m_body(content.body)
        , m_reserved(content.reserved)
        , m_headers(content.headers)
        , m_startTime(QTime::currentTime())
        , m_carrier(new TFSigConnec)
    {
        if (receiver) {
            QObject::connect(m_carrier, &TFSigConnec::signalResult, receiver, std::move(functor),
                             Qt::QueuedConnection);
        } else {
            QObject::connect(m_carrier, &TFSigConnec::signalResult, m_carrier, std::move(functor),
                             Qt::AutoConnection);
        }
    }

    // The deferred delete is posted after the queued result, so the result
    // is delivered first; the functor dies with the carrier.
    ~TFWorkThread() override { m_carrier->deleteLater(); }

    void run() override
    {
        qDebug() << "request " << m_url << m_body << " end \n";
        const auto headers = TFWXRSHttp::buildHeaders(TFAppConfig::instance()->getAppToken(),
                                                      QString(), QString());
        const TFWXRSHttp::HttpResult result = TFWXRSHttp::post(m_url, m_body, headers);
        qDebug() << "response---" << m_url << m_body << " end \n";
        m_carrier->emitResult(result.ok, result.data);
    }

    QTime startTime() const { return m_startTime; }

private:
    QUrl m_url;
    QByteArray m_body;
    QString m_reserved;
    TFUc::RawHeaders m_headers;
    QTime m_startTime;
    TFSigConnec *m_carrier;
};
