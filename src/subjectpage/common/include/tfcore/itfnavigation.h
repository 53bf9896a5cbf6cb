#pragma once

#include "tfcore/itfinterface.h"

#include <QList>
#include <QUrl>
#include <QVariant>

// Back and forward navigation of a page, as the host's toolbar drives it.
class ITFNavigation : public ITFInterface
{
public:
    ~ITFNavigation() override = default;

    virtual bool hasBack() { return false; }
    virtual void goBack() {}
    virtual bool hasForward() { return false; }
    virtual void goForward() {}
    virtual void goHome() {}
    virtual void stop() {}
    virtual QList<QUrl> getForwardList() { return {}; }
    virtual QList<QUrl> getBackList() { return {}; }
    virtual void refresh(const QUrl &url, QVariant arg) { Q_UNUSED(url) Q_UNUSED(arg) }
    virtual const char *signalNavIconEnabledChanged() { return nullptr; }
};
