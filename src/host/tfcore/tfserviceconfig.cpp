#include "tfcore/tfserviceconfig.h"

#include "tfcore/tfcore.h"

#include <QDebug>
#include <QMutexLocker>

TFServiceConfig::TFServiceConfig() = default;

TFServiceConfig *TFServiceConfig::instance()
{
    static TFServiceConfig config;
    return &config;
}

// A key the terminal has not set is looked up in the server list itself:
// "servercfg.ini:Subject" reads the key "url" of the section Subject.
QUrl TFServiceConfig::getHttpUrl(const QString &key, const QString &path) const
{
    QUrl base;
    {
        QMutexLocker locker(&m_mutex);
        base = m_urls.value(key);
    }
    if (base.isEmpty()) {
        const QString fromFile = TFCore::instance()->value(key + QStringLiteral("/url")).toString();
        base = QUrl(fromFile);
        if (base.isEmpty())
            qWarning() << "no service address for" << key;
    }
    if (path.isEmpty() || base.isEmpty())
        return base;

    QString joined = base.path();
    if (!joined.endsWith(QLatin1Char('/')))
        joined += QLatin1Char('/');
    joined += path.startsWith(QLatin1Char('/')) ? path.mid(1) : path;
    QUrl url = base;
    url.setPath(joined);
    return url;
}

int TFServiceConfig::getCurrentLang() const
{
    QMutexLocker locker(&m_mutex);
    return m_language;
}

void TFServiceConfig::setHttpUrl(const QString &key, const QUrl &url)
{
    QMutexLocker locker(&m_mutex);
    m_urls.insert(key, url);
}

void TFServiceConfig::setCurrentLang(int language)
{
    QMutexLocker locker(&m_mutex);
    m_language = language;
}
