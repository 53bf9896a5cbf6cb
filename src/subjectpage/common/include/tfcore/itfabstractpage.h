#pragma once

#include "tfcore/itfinterface.h"

#include <QDateTime>
#include <QIcon>
#include <QString>
#include <QUrl>
#include <QVariant>

// A page that lives in one of the host's tabs. The signal accessors return
// the signature text (as SIGNAL() writes it) of the implementing widget's
// signal, or null when the page has no such signal; the host connects by them.
class ITFAbstractPage : public ITFInterface
{
public:
    ~ITFAbstractPage() override = default;

    virtual void init(const QUrl &url, QVariant arg) = 0;
    virtual void refresh(const QUrl &url, QVariant arg) { Q_UNUSED(url) Q_UNUSED(arg) }

    virtual const char *signalWindowTitleChanged() { return nullptr; }
    virtual const char *signalUrlChanged() { return nullptr; }
    virtual const char *signalWindowIconChanged() { return nullptr; }
    virtual const char *signalLoadProgressChanged() { return nullptr; }
    virtual const char *signalOpenNewUrl() { return nullptr; }

    virtual QString url() { return m_url; }
    virtual QIcon icon() { return m_icon; }
    virtual QString title() { return m_title; }
    virtual QDateTime lastVisited() { return m_lastVisited; }

    virtual void setUrl(const QString &url) { m_url = url; }
    virtual void setIcon(QIcon icon) { m_icon = icon; }
    virtual void setTitle(const QString &title) { m_title = title; }

private:
    QString m_url;
    QIcon m_icon;
    QString m_title;
    QDateTime m_lastVisited = QDateTime::currentDateTime();
};
