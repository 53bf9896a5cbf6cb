#pragma once

#include "tfcore/itfabstractpage.h"
#include "tfcore/itfnavigation.h"
#include "tfcore/itfskin.h"

#include <QColor>
#include <QIcon>
#include <QWidget>

class TFSubjectMainFrame;

// One open page URL in a tab of the host. It takes the URL apart, hands the
// values to the main frame and tells the host the window title and icon;
// everything else is built by the frame.
class TFSubjectPage : public QWidget, public ITFSkin, public ITFAbstractPage, public ITFNavigation
{
    Q_OBJECT
    Q_PROPERTY(QColor headerBorderColor READ headerBorderColor WRITE setHeaderBorderColor)
    Q_PROPERTY(QColor headerSplitColor READ headerSplitColor WRITE setHeaderSplitColor)
    Q_PROPERTY(QColor highlightColor READ highlightColor WRITE setHighlightColor)
public:
    explicit TFSubjectPage(QWidget *parent = nullptr);
    ~TFSubjectPage() override;

    QWidget *getWidget() override { return this; }

    // ITFAbstractPage
    void init(const QUrl &url, QVariant arg) override;
    const char *signalWindowTitleChanged() override;
    const char *signalWindowIconChanged() override;
    QString url() override;
    void setUrl(const QString &url) override;

    // ITFNavigation: a page keeps no history of its own.
    void goBack() override {}
    void goForward() override {}

    // ITFSkin
    void applySkinStyle(const QVariant &style) override;

    bool parseUrl(const QUrl &url);
    TFSubjectMainFrame *mainFrame() const { return m_mainFrame; }

    // For the host, which calls it by name: exports the table of the main
    // view to fileName as its export button would, without a dialog. False,
    // with error set, when the page shows no table; otherwise
    // signalExportFinished follows.
    Q_INVOKABLE bool exportMainTable(const QString &fileName, QString &error);

    QColor headerBorderColor() const { return m_headerBorderColor; }
    void setHeaderBorderColor(const QColor &color);
    QColor headerSplitColor() const { return m_headerSplitColor; }
    void setHeaderSplitColor(const QColor &color);
    QColor highlightColor() const { return m_highlightColor; }
    void setHighlightColor(const QColor &color);

signals:
    void signalWindowIconChanged(QIcon icon);
    void signalWindowTitleChanged(QString title);
    void signalExportFinished(bool ok, QString message);

public slots:
    void slotChangeWindowTitle(QString title);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void announceTitleAndIcon(const QString &urlTitle);

    TFSubjectMainFrame *m_mainFrame;
    QColor m_headerBorderColor;
    QColor m_headerSplitColor;
    QColor m_highlightColor;
};
