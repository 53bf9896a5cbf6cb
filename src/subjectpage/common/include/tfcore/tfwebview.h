#pragma once

#include "tfcore/itfabstractpage.h"
#include "tfcore/itfmemory.h"
#include "tfcore/itfnavigation.h"
#include "tfcore/tfhostglobal.h"

#include <QWebEngineView>

// The host's web page in a tab or in a stack: init() and refresh() load a URL.
class TFHOST_EXPORT TFWebView : public QWebEngineView,
                                public ITFAbstractPage,
                                public ITFNavigation,
                                public ITFMemory
{
    Q_OBJECT
public:
    explicit TFWebView(QWidget *parent = nullptr);
    ~TFWebView() override;

    QWidget *getWidget() override { return this; }
    void init(const QUrl &url, QVariant arg) override;
    void refresh(const QUrl &url, QVariant arg) override;

    // The page's own address, title and icon, and the web view's signals
    // for them, so that a tab follows the page.
    QString url() override;
    QString title() override;
    QIcon icon() override;
    const char *signalWindowTitleChanged() override;
    const char *signalUrlChanged() override;
    const char *signalWindowIconChanged() override;
    const char *signalLoadProgressChanged() override;

    bool hasBack() override;
    void goBack() override;
    bool hasForward() override;
    void goForward() override;
    void goHome() override;
    void stop() override;

    void save(QMap<QString, QVariant> &state) override;
    void restore(const QMap<QString, QVariant> &state) override;

private:
    QUrl m_homeUrl;
};
