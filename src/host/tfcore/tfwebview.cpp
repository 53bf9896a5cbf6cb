#include "tfcore/tfwebview.h"

#include <QDebug>
#include <QWebEngineHistory>

TFWebView::TFWebView(QWidget *parent)
    : QWebEngineView(parent)
{
}

TFWebView::~TFWebView() = default;

// An empty address loads nothing: a stack keeps the view ready for a later
// refresh without showing an error page.
void TFWebView::init(const QUrl &url, QVariant arg)
{
    Q_UNUSED(arg)
    if (url.isEmpty() || !url.isValid()) {
        qDebug() << "web view: nothing to load for" << url;
        return;
    }
    m_homeUrl = url;
    load(url);
}

void TFWebView::refresh(const QUrl &url, QVariant arg)
{
    Q_UNUSED(arg)
    if (url.isEmpty() || !url.isValid()) {
        qDebug() << "web view: nothing to load for" << url;
        return;
    }
    if (m_homeUrl.isEmpty())
        m_homeUrl = url;
    load(url);
}

QString TFWebView::url()
{
    return QWebEngineView::url().toString();
}

QString TFWebView::title()
{
    return QWebEngineView::title();
}

QIcon TFWebView::icon()
{
    return QWebEngineView::icon();
}

const char *TFWebView::signalWindowTitleChanged()
{
    return SIGNAL(titleChanged(QString));
}

const char *TFWebView::signalUrlChanged()
{
    return SIGNAL(urlChanged(QUrl));
}

const char *TFWebView::signalWindowIconChanged()
{
    return SIGNAL(iconChanged(QIcon));
}

const char *TFWebView::signalLoadProgressChanged()
{
    return SIGNAL(loadProgress(int));
}

bool TFWebView::hasBack()
{
    return history()->canGoBack();
}

void TFWebView::goBack()
{
    back();
}

bool TFWebView::hasForward()
{
    return history()->canGoForward();
}

void TFWebView::goForward()
{
    forward();
}

void TFWebView::goHome()
{
    if (!m_homeUrl.isEmpty())
        load(m_homeUrl);
}

void TFWebView::stop()
{
    QWebEngineView::stop();
}

void TFWebView::save(QMap<QString, QVariant> &state)
{
    state.insert(QStringLiteral("url"), QWebEngineView::url().toString());
    state.insert(QStringLiteral("homeUrl"), m_homeUrl.toString());
    state.insert(QStringLiteral("zoomFactor"), zoomFactor());
}

void TFWebView::restore(const QMap<QString, QVariant> &state)
{
    m_homeUrl = QUrl(state.value(QStringLiteral("homeUrl")).toString());
    const qreal zoom = state.value(QStringLiteral("zoomFactor"), 1.0).toReal();
    if (zoom > 0)
        setZoomFactor(zoom);
    const QUrl url(state.value(QStringLiteral("url")).toString());
    if (!url.isEmpty() && url.isValid())
        load(url);
}
