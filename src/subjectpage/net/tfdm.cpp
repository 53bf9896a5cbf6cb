#include "net/tfdm.h"

#include "tfcore/tfappconfig.h"
#include "tfcore/tfserviceconfig.h"

TFDm::TFDm(QObject *owner)
    : m_owner(owner)
{
    TFUc::setBaseUrl(TFServiceConfig::instance()->getHttpUrl(QStringLiteral("servercfg.ini:Subject"),
                                                             QString()));
    TFUc::setUserId(TFAppConfig::instance()->getUserInfo().userId);
    TFUc::setProductId(TFAppConfig::instance()->getProuctId());
}
