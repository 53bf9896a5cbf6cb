#pragma once

#include "tfcore/tfhostglobal.h"

#include <QMutex>
#include <QString>

// Who is signed in. Read from pool threads as well as the user-interface
// thread, so every getter copies under a lock.
class TFHOST_EXPORT TFAppConfig
{
public:
    struct USERINFO
    {
        QString userId;
        QString userName;
        QString orgId;
    };

    static TFAppConfig *instance();

    QString getAppToken() const;
    QString getProuctId() const;
    USERINFO getUserInfo() const;

    // Terminal side.
    void setAppToken(const QString &token);
    void setProuctId(const QString &productId);
    void setUserInfo(const USERINFO &info);

private:
    TFAppConfig();
    mutable QMutex m_mutex;
    QString m_token;
    QString m_productId;
    USERINFO m_user;
};
