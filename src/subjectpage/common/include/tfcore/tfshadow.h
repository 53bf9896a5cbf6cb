#pragma once

#include "tfcore/tfframelesshelper.h"

#include <QEvent>
#include <QFrame>
#include <QGraphicsBlurEffect>
#include <QMainWindow>
#include <QDebug>
#include <QVBoxLayout>

class QResizeEvent;

// A borderless top-level window of type T (a QDialog here) drawn over a frame
// of its own: the frame, lowered behind the content and blurred, gives the
// window its edge. The margin is the width of that edge.
template<typename T>
class TFShadow : public T
{
public:
    explicit TFShadow(QWidget *parent = nullptr)
        : T(parent)
    {
        T::setWindowFlags(T::windowFlags() | Qt::FramelessWindowHint);
        T::setAttribute(Qt::WA_TranslucentBackground);
        m_shadowFrame = new QFrame(this);
        m_blurEffect = new QGraphicsBlurEffect(m_shadowFrame);
        m_blurEffect->setBlurRadius(m_blurRadius);
        m_shadowFrame->setGraphicsEffect(m_blurEffect);
        m_shadowFrame->setStyleSheet(m_shadowStyle);
        m_shadowFrame->lower();
    }

    int shadowMargin() const { return m_shadowMargin; }
    void setShadowMargin(int margin) { m_shadowMargin = margin; }
    int blurRadius() const { return m_blurRadius; }
    void setBlurRadius(int radius) { m_blurRadius = radius; }
    QString shadowStyle() const { return m_shadowStyle; }
    void setShadowStyle(const QString &style) { m_shadowStyle = style; }
    QFrame *shadowFrame() const { return m_shadowFrame; }

    // Takes the margin, radius and style set above into effect.
    void applyShadow()
    {
        m_shadowFrame->setStyleSheet(m_shadowStyle);
        T::setContentsMargins(m_shadowMargin, m_shadowMargin, m_shadowMargin, m_shadowMargin);
        m_blurEffect->setBlurRadius(m_blurRadius);
        placeShadowFrame();
        T::update();
    }

    // Puts a widget made elsewhere (from a form) in as the window's content.
    void initContentWithWidget(QObject *content)
    {
        if (content && content->inherits("QMainWindow")) {
            qWarning() << "can not init with QMainWidget";
            return;
        }
        QWidget *widget = qobject_cast<QWidget *>(content);
        if (!widget) {
            qWarning() << "the widget is not widget type!";
            return;
        }
        if (auto *mainWindow = qobject_cast<QMainWindow *>(static_cast<QObject *>(this))) {
            mainWindow->setCentralWidget(widget);
            return;
        }
        auto *layout = new QVBoxLayout(this);
        layout->setSpacing(0);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(widget);
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        T::resizeEvent(event);
        placeShadowFrame();
    }

    void changeEvent(QEvent *event) override
    {
        T::changeEvent(event);
        if (event->type() != QEvent::WindowStateChange)
            return;
        if (T::windowState() & Qt::WindowMaximized)
            T::setContentsMargins(0, 0, 0, 0);
        else if (T::windowState() == Qt::WindowNoState)
            applyShadow();
    }

private:
    void placeShadowFrame()
    {
        m_shadowFrame->setGeometry(m_blurRadius, m_blurRadius, T::width() - 2 * m_blurRadius,
                                   T::height() - 2 * m_blurRadius);
    }

    int m_shadowMargin = 0;
    int m_blurRadius = 0;
    QString m_shadowStyle = QStringLiteral("background-color:#636363;border:none;border-radius: 0px;");
    QFrame *m_shadowFrame = nullptr;
    QGraphicsBlurEffect *m_blurEffect = nullptr;
};

// A shadowed window that the host's helper makes movable by dragging.
template<typename T>
class TFAdWidget : public TFShadow<T>
{
public:
    explicit TFAdWidget(QWidget *parent = nullptr)
        : TFShadow<T>(parent)
    {
    }

    TFFramelessHelper *framelessHelper() const { return m_framelessHelper; }
    void setFramelessHelper(TFFramelessHelper *helper) { m_framelessHelper = helper; }

private:
    TFFramelessHelper *m_framelessHelper = nullptr;
};
