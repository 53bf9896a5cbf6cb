#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>
#include <QVariant>

// The blocking HTTP client of the data service. post() runs a local event
// loop on the calling thread and shares no network state between calls, so
// pool threads may run several side by side.
class TFWXRSHttp
{
public:
    using RawHeaders = QList<QPair<QByteArray, QByteArray>>;

    struct HttpResult
    {
        bool ok = false;
        QByteArray data;        // the body; on failure the error text as UTF-8
        QVariant cookies;       // the reply's cookie header; invalid on failure
    };

    // kvt-token, kvt-format and kvt-language, each only when its text is not empty.
    static RawHeaders buildHeaders(const QString &token, const QString &format, const QString &language);

    // POSTs body as application/json with the given headers plus userId and
    // prodId. Untrusted certificates are accepted; a redirect to a less safe
    // scheme is not followed. No time-out: it waits for the reply, or for the
    // application to quit when called off the main thread.
    static HttpResult post(const QUrl &url, const QByteArray &body, const RawHeaders &headers);
};
