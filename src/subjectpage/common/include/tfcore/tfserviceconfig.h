#pragma once

#include "tfcore/tfhostglobal.h"

#include <QMap>
#include <QMutex>
#include <QString>
#include <QUrl>

// The host's list of service addresses. Keys join the server-list file and a
// section: "servercfg.ini:Subject".
class TFHOST_EXPORT TFServiceConfig
{
public:
    enum Language { Chinese = 1, TraditionalChinese = 2, English = 3 };

    static TFServiceConfig *instance();

    // The base address of the service named by key, with path appended.
    QUrl getHttpUrl(const QString &key, const QString &path) const;
    int getCurrentLang() const;

    // Terminal side.
    void setHttpUrl(const QString &key, const QUrl &url);
    void setCurrentLang(int language);

private:
    TFServiceConfig();
    mutable QMutex m_mutex;
    QMap<QString, QUrl> m_urls;
    int m_language = Chinese;
};
