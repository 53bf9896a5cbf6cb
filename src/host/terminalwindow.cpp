#include "terminalwindow.h"

#include "compositescreen.h"
#include "pluginloader.h"

#include "tfcore/itfabstractpage.h"
#include "tfcore/tfcore.h"

#include <QActionGroup>
#include <QDebug>
#include <QDesktopServices>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>

TerminalWindow::TerminalWindow(const PluginLoader *plugins, QWidget *parent)
    : QMainWindow(parent)
    , m_plugins(plugins)
    , m_tabs(new QTabWidget(this))
    , m_serviceLabel(new QLabel(this))
    , m_skinLabel(new QLabel(this))
{
    setObjectName(QStringLiteral("TerminalWindow"));
    setWindowTitle(QStringLiteral("Subject Terminal"));

    m_tabs->setObjectName(QStringLiteral("TerminalTabs"));
    m_tabs->setDocumentMode(true);
    m_tabs->setTabsClosable(true);
    m_tabs->setMovable(true);
    m_tabs->tabBar()->setObjectName(QStringLiteral("TerminalTabBar"));
    m_tabs->tabBar()->setDrawBase(false);
    connect(m_tabs, &QTabWidget::tabCloseRequested, this, &TerminalWindow::slotCloseTab);
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        setWindowTitle(index < 0 ? tr("Subject Terminal")
                                 : tr("%1 - Subject Terminal").arg(m_tabs->tabText(index)));
    });
    setCentralWidget(m_tabs);

    m_serviceLabel->setObjectName(QStringLiteral("ServiceLabel"));
    m_skinLabel->setObjectName(QStringLiteral("SkinLabel"));
    statusBar()->setObjectName(QStringLiteral("TerminalStatusBar"));
    statusBar()->addWidget(m_serviceLabel, 1);
    statusBar()->addPermanentWidget(m_skinLabel);

    buildMenus();

    TFCore *core = TFCore::instance();
    core->setMainWindow(this);
    m_skinLabel->setText(tr("skin: %1").arg(core->getCurrentSkinId()));
    connect(core, &TFCore::signalSkinChanged, this, [this](const QString &skinId) {
        m_skinLabel->setText(tr("skin: %1").arg(skinId));
    });
    core->addStyle2View(this, QStringLiteral("terminal.css"));
}

TerminalWindow::~TerminalWindow()
{
    if (TFCore::instance()->mainWindow() == this)
        TFCore::instance()->setMainWindow(nullptr);
    // Pages belong to their plug-ins' code; they go before the plug-ins do.
    while (m_tabs->count() > 0) {
        QWidget *page = m_tabs->widget(0);
        m_tabs->removeTab(0);
        delete page;
    }
}

void TerminalWindow::applySkinStyle(const QVariant &style)
{
    if (style.isValid())
        setStyleSheet(style.toString());
}

void TerminalWindow::buildMenus()
{
    QMenu *view = menuBar()->addMenu(tr("&View"));
    QMenu *skins = view->addMenu(tr("&Skin"));
    auto *group = new QActionGroup(this);
    const QString current = TFCore::instance()->getCurrentSkinId();
    const QStringList ids = TFCore::instance()->skinIds();
    for (const QString &id : ids) {
        QAction *action = skins->addAction(id);
        action->setCheckable(true);
        action->setChecked(id == current);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [id] { TFCore::instance()->setCurrentSkin(id); });
    }
    connect(TFCore::instance(), &TFCore::signalSkinChanged, group, [group](const QString &skinId) {
        const QList<QAction *> actions = group->actions();
        for (QAction *action : actions)
            action->setChecked(action->text() == skinId);
    });
    view->addSeparator();
    QAction *close = view->addAction(tr("&Close Tab"));
    close->setShortcut(QKeySequence::Close);
    connect(close, &QAction::triggered, this, [this] { slotCloseTab(m_tabs->currentIndex()); });
    QAction *quit = view->addAction(tr("&Quit"));
    quit->setShortcut(QKeySequence::Quit);
    connect(quit, &QAction::triggered, this, &QWidget::close);
}

void TerminalWindow::setServiceDescription(const QString &text)
{
    m_serviceLabel->setText(text);
}

bool TerminalWindow::openPage(const QUrl &url, QString *error)
{
    ITFAbstractPage *page = m_plugins ? m_plugins->createPage(url, error) : nullptr;
    if (!page)
        return false;
    QWidget *widget = page->getWidget();
    const int index = m_tabs->addTab(widget, tr("Loading…"));
    m_tabs->setCurrentIndex(index);

    // The page names its signals as SIGNAL() writes them; the tab follows them.
    if (const char *signal = page->signalWindowTitleChanged()) {
        if (!connect(widget, signal, this, SLOT(slotPageTitleChanged(QString))))
            qWarning() << "cannot follow the title signal" << signal << "of" << widget->metaObject()->className();
    }
    if (const char *signal = page->signalWindowIconChanged()) {
        if (!connect(widget, signal, this, SLOT(slotPageIconChanged(QIcon))))
            qWarning() << "cannot follow the icon signal" << signal << "of" << widget->metaObject()->className();
    }
    if (const char *signal = page->signalOpenNewUrl()) {
        if (!connect(widget, signal, this, SLOT(openStringUrl(QString))))
            qWarning() << "cannot follow the new-URL signal" << signal << "of" << widget->metaObject()->className();
    }

    qDebug() << "opening page" << url;
    page->init(url, QVariant());
    if (m_tabs->tabText(m_tabs->indexOf(widget)) == tr("Loading…") && !page->title().isEmpty())
        m_tabs->setTabText(m_tabs->indexOf(widget), page->title());
    return true;
}

CompositeScreen *TerminalWindow::openScreen(const QString &fileName, QString *error, bool *unknownComponent)
{
    auto *screen = new CompositeScreen;
    if (!screen->load(fileName, error)) {
        *unknownComponent = screen->failure() == CompositeScreen::UnknownComponent;
        delete screen;
        return nullptr;
    }
    *unknownComponent = false;
    const int index = m_tabs->addTab(screen, screen->title());
    m_tabs->setCurrentIndex(index);
    return screen;
}

int TerminalWindow::pageCount() const
{
    return m_tabs->count();
}

QWidget *TerminalWindow::pageAt(int index) const
{
    return m_tabs->widget(index);
}

void TerminalWindow::openStringUrl(const QString &url)
{
    const QUrl parsed = QUrl::fromUserInput(url);
    if (parsed.scheme().compare(QLatin1String("view"), Qt::CaseInsensitive) == 0) {
        QString error;
        if (!openPage(QUrl(url), &error))
            qWarning() << "cannot open" << url << ":" << error;
        return;
    }
    if (!parsed.isValid() || !QDesktopServices::openUrl(parsed))
        qWarning() << "cannot open" << url << "on the desktop";
}

int TerminalWindow::tabOfSender() const
{
    auto *widget = qobject_cast<QWidget *>(sender());
    return widget ? m_tabs->indexOf(widget) : -1;
}

void TerminalWindow::slotPageTitleChanged(const QString &title)
{
    const int index = tabOfSender();
    if (index < 0)
        return;
    m_tabs->setTabText(index, title);
    m_tabs->setTabToolTip(index, title);
    if (index == m_tabs->currentIndex())
        setWindowTitle(tr("%1 - Subject Terminal").arg(title));
}

void TerminalWindow::slotPageIconChanged(const QIcon &icon)
{
    const int index = tabOfSender();
    if (index >= 0)
        m_tabs->setTabIcon(index, icon);
}

void TerminalWindow::slotCloseTab(int index)
{
    QWidget *page = m_tabs->widget(index);
    if (!page)
        return;
    m_tabs->removeTab(index);
    page->deleteLater();
}
