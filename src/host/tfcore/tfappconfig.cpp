#include "tfcore/tfappconfig.h"

#include <QMutexLocker>

TFAppConfig::TFAppConfig()
{
    m_productId = QStringLiteral("subject");
    m_user.userId = QStringLiteral("demo");
    m_user.userName = QStringLiteral("demo");
}

TFAppConfig *TFAppConfig::instance()
{
    static TFAppConfig config;
    return &config;
}

// Pool threads read while the terminal may write: each getter hands out a
// copy made under the lock, never a reference into the shared strings.
QString TFAppConfig::getAppToken() const
{
    QMutexLocker locker(&m_mutex);
    return m_token;
}

QString TFAppConfig::getProuctId() const
{
    QMutexLocker locker(&m_mutex);
    return m_productId;
}

TFAppConfig::USERINFO TFAppConfig::getUserInfo() const
{
    QMutexLocker locker(&m_mutex);
    return m_user;
}

void TFAppConfig::setAppToken(const QString &token)
{
    QMutexLocker locker(&m_mutex);
    m_token = token;
}

void TFAppConfig::setProuctId(const QString &productId)
{
    QMutexLocker locker(&m_mutex);
    m_productId = productId;
}

void TFAppConfig::setUserInfo(const USERINFO &info)
{
    QMutexLocker locker(&m_mutex);
    m_user = info;
}
