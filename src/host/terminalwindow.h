#pragma once

#include "tfcore/itfskin.h"

#include <QMainWindow>
#include <QUrl>

class ITFAbstractPage;
class PluginLoader;
class QLabel;
class QTabWidget;

// The terminal's main window: one tab per open page, a skin menu and a status
// line naming the service. Pages call openStringUrl() on it by name.
class TerminalWindow : public QMainWindow, public ITFSkin
{
    Q_OBJECT
public:
    explicit TerminalWindow(const PluginLoader *plugins, QWidget *parent = nullptr);
    ~TerminalWindow() override;

    QWidget *getWidget() override { return this; }
    void applySkinStyle(const QVariant &style) override;

    // Makes a page for url in a new tab; false with error set when none can be made.
    bool openPage(const QUrl &url, QString *error);
    // Builds a composite screen from its document in a new tab; the
    // screen's failure() tells a bad document from a missing component.
    class CompositeScreen *openScreen(const QString &fileName, QString *error, bool *unknownComponent);
    int pageCount() const;
    QWidget *pageAt(int index) const;
    QTabWidget *tabs() const { return m_tabs; }

    void setServiceDescription(const QString &text);

public slots:
    // view: URLs open a page tab; anything else goes to the desktop.
    void openStringUrl(const QString &url);

private slots:
    void slotPageTitleChanged(const QString &title);
    void slotPageIconChanged(const QIcon &icon);
    void slotCloseTab(int index);

private:
    void buildMenus();
    int tabOfSender() const;

    const PluginLoader *m_plugins;
    QTabWidget *m_tabs;
    QLabel *m_serviceLabel;
    QLabel *m_skinLabel;
};
