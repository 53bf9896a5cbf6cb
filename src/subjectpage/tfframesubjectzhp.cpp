#include "tfframesubjectzhp.h"

#include "tfbaseview.h"
#include "tfmainview.h"
#include "tfrightcontainer.h"
#include "tfsubjectsetting.h"

#include "tfcore/invokerbase.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfframelesshelper.h"
#include "tfcore/tffactory.h"

#include <QAction>
#include <QDebug>
#include <QDialog>
#include <QGraphicsBlurEffect>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

const char TFFrameSubjectZHP::kStateVersion[] = "1.0.0";

namespace {

const char kNoVersion[] = "0.0.0";
const char kCacheVisibleArgs[] = "cacheVisibleArgs";
const char kShadowStyle[] = "background-color:#636363;border:none;border-radius: 0px;";
constexpr int kDialogWidth = 507;
constexpr int kDialogHeight = 482;
constexpr int kMovableHeight = 30;

// The keys a saved state holds, in the order save writes them.
const QStringList &stateKeys()
{
    static const QStringList keys = {
        QStringLiteral("version"),         QStringLiteral("titleVisible"),   QStringLiteral("filterVisible"),
        QStringLiteral("mainViewVisible"), QStringLiteral("subViewVisible"), QStringLiteral("pageBarVisible"),
        QStringLiteral("objVwId"),         QStringLiteral("title"),          QStringLiteral("objVwIdBinder"),
        QStringLiteral("filterMap")};
    return keys;
}

// The shell of the settings dialog: frameless and translucent, with a
// blurred frame lowered behind the content as its shadow. Its top strip
// moves it, and its buttons are found by name in the content.
class SettingsDialogShell : public QDialog
{
public:
    SettingsDialogShell()
        : m_shadow(new QFrame(this))
        , m_helper(new TFFramelessHelper(this))
    {
        setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
        setAttribute(Qt::WA_TranslucentBackground);
        m_shadow->setObjectName(QStringLiteral("dialogShadow"));
        m_shadow->setStyleSheet(QLatin1String(kShadowStyle));
        auto *blur = new QGraphicsBlurEffect(m_shadow);
        blur->setBlurRadius(0);
        m_shadow->setGraphicsEffect(blur);
        m_shadow->lower();
        m_helper->activateOn(this);
        m_helper->setWidgetMovable(true, kMovableHeight);
        m_helper->setWidgetResizable(true);
    }

    void initContentWithWidget(QObject *content)
    {
        if (content->inherits("QMainWindow")) {
            qWarning() << "can not init with QMainWidget";
            return;
        }
        if (!content->isWidgetType()) {
            qWarning() << "the widget is not widget type!";
            return;
        }
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(static_cast<QWidget *>(content));
        connectButton("pbClose", false);
        connectButton("pbCancel", false);
        connectButton("pbOk", true);

        resize(kDialogWidth, kDialogHeight);
        setModal(true);
        if (QScreen *screen = QGuiApplication::primaryScreen()) {
            const QRect available = screen->availableGeometry();
            move(qRound(available.x() + (available.width() - kDialogWidth) / 2.0),
                 qRound(available.y() + (available.height() - kDialogHeight) / 2.0));
        }
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QDialog::resizeEvent(event);
        m_shadow->setGeometry(rect());
    }

private:
    void connectButton(const char *name, bool accepts)
    {
        auto *button = findChild<QPushButton *>(QLatin1String(name));
        if (!button) {
            qWarning() << "not found " << name << " with typename:" << QPushButton::staticMetaObject.className();
            return;
        }
        if (accepts)
            connect(button, &QPushButton::clicked, this, &QDialog::accept);
        else
            connect(button, &QPushButton::clicked, this, &QDialog::reject);
    }

    QFrame *m_shadow;
    TFFramelessHelper *m_helper;
};

} // namespace

TFFrameSubjectZHP::TFFrameSubjectZHP(QWidget *parent, const QString &list)
    : QFrame(parent)
    , m_rightContainer(new TFRightContainer(this))
    , m_list(list)
    , m_settingsAction(new QAction(QStringLiteral("设置"), this))
{
    if (parent)
        m_zhpObj = parent->property("zhpObj").value<QObject *>();
    qDebug() << "TFFrameSubjectZHP::TFFrameSubjectZHP mZhpObj:" << m_zhpObj.data();
    if (m_zhpObj)
        connect(m_zhpObj, SIGNAL(argsChanged(QVariantMap)), this, SLOT(slotsArgsChanged(QVariantMap)));

    auto *layout = new QHBoxLayout(this);
    layout->setSpacing(0);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->addWidget(m_rightContainer);

    // Several components share a window: the shortcut belongs to the one
    // that has the focus, and the frame's own menu offers the same action.
    m_settingsAction->setShortcut(QKeySequence(QStringLiteral("Ctrl+p")));
    m_settingsAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(m_settingsAction);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(m_settingsAction, &QAction::triggered, this, &TFFrameSubjectZHP::slotOpenSettings);

    connect(m_rightContainer, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    connect(m_rightContainer, &TFRightContainer::signalDataChanged, this, &TFFrameSubjectZHP::applyCachedVisibility);
    connect(m_rightContainer, &TFRightContainer::signalDataChanged, this, &TFFrameSubjectZHP::reportMissingView);

    TFCore::instance()->addStyle2View(this, QStringLiteral("subject/subject.css"));
}

TFFrameSubjectZHP::~TFFrameSubjectZHP() = default;

void TFFrameSubjectZHP::registerComponents()
{
    auto &constructors = TFFactory<QWidget>::constructors();
    constructors.insert("TFFrameSubjectZHP", [](QWidget *parent) -> QWidget * { return new TFFrameSubjectZHP(parent); });
    constructors.insert("TFFrameSubjectZHP_CQ", [](QWidget *parent) -> QWidget * { return new TFFrameSubjectZHP_CQ(parent); });
    constructors.insert("TFFrameSubjectZHP_ZZ", [](QWidget *parent) -> QWidget * { return new TFFrameSubjectZHP_ZZ(parent); });
}

void TFFrameSubjectZHP::applySkinStyle(const QVariant &style)
{
    if (style.isValid())
        setStyleSheet(style.toString());
}

void TFFrameSubjectZHP::setObjVwId(qlonglong objVwId)
{
    if (objVwId >= 1 && objVwId != m_objVwId)
        m_objVwId = objVwId;
}

QVariantMap TFFrameSubjectZHP::glFilterArgs() const
{
    // The component's own arguments beat the screen's; those fill the rest.
    QVariantMap merged = m_filterMap;
    if (m_zhpObj) {
        const QVariantMap global = m_zhpObj->property("args").toMap();
        for (auto it = global.cbegin(); it != global.cend(); ++it) {
            if (!merged.contains(it.key()))
                merged.insert(it.key(), it.value());
        }
    }
    return merged;
}

void TFFrameSubjectZHP::setGlFilterArgs(const QMap<QString, QVariant> &args)
{
    if (args == m_filterMap)
        return;
    m_filterMap = args;
    qDebug() << "refresh page with gl filter args" << m_filterMap;
    refreshPage();
}

void TFFrameSubjectZHP::setObjVwIdGlKey(const QString &key)
{
    qDebug() << "binding objVmIdAndTitle to global arg,global name -->" << key;
    if (key.isEmpty() || key == m_binderKey) {
        qDebug() << "binding failed: the key is empty or bound already:" << key;
        return;
    }
    qDebug() << "binding sucessed!";
    m_binderKey = key;
    const QVariantMap args = m_zhpObj ? m_zhpObj->property("args").toMap() : QVariantMap();
    if (!m_zhpObj)
        qWarning() << "binder key" << key << ": the component is on no screen, so no global argument reaches it";
    else if (!args.contains(key))
        qWarning() << "binder key" << key << "names none of the screen's global arguments" << args.keys()
                   << "; the view stays as it is until the screen has one";
    slotsArgsChanged(args);
}

void TFFrameSubjectZHP::slotsArgsChanged(const QVariantMap &glArgs)
{
    qDebug() << "global args changed" << glArgs << " binderKey:" << m_binderKey;
    if (glArgs.contains(m_binderKey)) {
        // "caption|view identifier", as the settings dialog shows a choice.
        const QString value = glArgs.value(m_binderKey).toString();
        const QStringList parts = value.split(QLatin1Char('|'), Qt::KeepEmptyParts);
        qDebug() << "TFFrameSubjectZHP::slotsArgsChanged:" << m_binderKey << "=" << value;
        if (parts.size() == 2) {
            m_title = parts.at(0);
            const qlonglong objVwId = parts.at(1).toLongLong();
            if (objVwId != m_objVwId) {
                if (objVwId >= 1)
                    m_objVwId = objVwId;
                refreshPage();
            }
        } else {
            qWarning() << "global argument" << m_binderKey << "=" << value
                       << "is not \"caption|view identifier\"; the view stays";
        }
    }
    // An argument that the component overrides does not disturb the page.
    for (auto it = glArgs.cbegin(); it != glArgs.cend(); ++it) {
        if (!m_filterMap.contains(it.key())) {
            refreshPage();
            break;
        }
    }
}

void TFFrameSubjectZHP::save(QMap<QString, QVariant> &state)
{
    const QVariantMap cached = property(kCacheVisibleArgs).toMap();
    TFMainView *mainView = m_rightContainer->mainView();
    state.insert(QStringLiteral("version"), QString::fromLatin1(kStateVersion));
    state.insert(QStringLiteral("titleVisible"), m_rightContainer->isTitleVisible());
    // Before its first data the page has no filter or page bar: the cached
    // settings stand for them.
    state.insert(QStringLiteral("filterVisible"),
                 mainView->isFilterWidgetVisible(cached.value(QStringLiteral("filterVisible")).toBool()));
    state.insert(QStringLiteral("mainViewVisible"), m_rightContainer->isMainViewVisible());
    state.insert(QStringLiteral("subViewVisible"), m_rightContainer->childViewsVisible());
    state.insert(QStringLiteral("pageBarVisible"),
                 mainView->isPageBarVisible(cached.value(QStringLiteral("pageBarVisible")).toBool()));
    state.insert(QStringLiteral("objVwId"), qlonglong(m_objVwId));
    state.insert(QStringLiteral("title"), m_title);
    state.insert(QStringLiteral("objVwIdBinder"), m_binderKey);
    state.insert(QStringLiteral("filterMap"), QVariant(QVariantMap(m_filterMap)));
    qDebug() << "TFFrameSubjectZHP::save:" << state;
}

void TFFrameSubjectZHP::restore(const QMap<QString, QVariant> &state)
{
    const QString version = state.value(QStringLiteral("version"), QString::fromLatin1(kNoVersion)).toString();
    qDebug() << "TFFrameSubjectZHP::restore:" << state;
    if (version != QLatin1String(kStateVersion) && version != QLatin1String(kNoVersion)) {
        qWarning() << "TFFrameSubjectZHP::restore: a state of version" << version << "is not read, this component"
                   << "reads" << kStateVersion << "; it opens with its defaults";
        return;
    }
    QStringList missing;
    for (const QString &key : stateKeys()) {
        if (!state.contains(key))
            missing.append(key);
    }
    if (!missing.isEmpty())
        qWarning() << "TFFrameSubjectZHP::restore: keys missing from the saved state, read as false, 0 or empty:"
                   << missing;

    m_title = state.value(QStringLiteral("title")).toString();
    setObjVwId(state.value(QStringLiteral("objVwId")).toLongLong());
    setObjVwIdGlKey(state.value(QStringLiteral("objVwIdBinder")).toString());
    m_rightContainer->setTitle(m_title);
    m_rightContainer->setTitleVisible(state.value(QStringLiteral("titleVisible")).toBool());
    m_rightContainer->setMainViewVisible(state.value(QStringLiteral("mainViewVisible")).toBool());
    // The filter bar, the child views and the page bar exist only once the
    // page has its configuration; they take these at every new page.
    setProperty(kCacheVisibleArgs, QVariant(QVariantMap(state)));
    // A state without a version keeps the filter map that the frame has.
    if (version != QLatin1String(kNoVersion)) {
        const QMap<QString, QVariant> filterMap = state.value(QStringLiteral("filterMap")).toMap();
        if (filterMap != m_filterMap)
            m_filterMap = filterMap;
    }
    refreshPage();
}

void TFFrameSubjectZHP::refreshPage()
{
    m_rightContainer->refreshPage(m_objVwId, m_title);
}

void TFFrameSubjectZHP::applyCachedVisibility()
{
    // Never restored, the property is invalid and all three go hidden.
    const QVariantMap cached = property(kCacheVisibleArgs).toMap();
    TFMainView *mainView = m_rightContainer->mainView();
    mainView->setPageBarVisible(cached.value(QStringLiteral("pageBarVisible")).toBool());
    m_rightContainer->setChildViewsVisible(cached.value(QStringLiteral("subViewVisible")).toBool());
    mainView->setFilterWidgetVisible(cached.value(QStringLiteral("filterVisible")).toBool());
}

void TFFrameSubjectZHP::reportMissingView()
{
    // The service answers a view it does not know with an envelope and no
    // configuration: the page stays empty, and the log says why.
    TFBaseView *view = m_rightContainer->mainView()->currentView();
    if (m_rightContainer->currentView() >= 1 && (!view || view->caption().isEmpty()))
        qWarning() << "view" << m_rightContainer->currentView()
                   << "has no configuration on the service (removed, or never there); the component stays empty";
}

void TFFrameSubjectZHP::bindToGlobalArgument(TFSubjectSetting *setting)
{
    Q_UNUSED(setting)
    InvokerBase invoker;
    invoker.arg<QString>(m_binderKey, "QString").arg<QString>(QString(), "QString");
    invoker.invoke(m_zhpObj, "getArgsDlg");
    setObjVwIdGlKey(invoker.result(1).toString());
}

void TFFrameSubjectZHP::connectSetting(TFSubjectSetting *setting)
{
    TFMainView *mainView = m_rightContainer->mainView();
    connect(setting, &TFSubjectSetting::signalTitleVisibleChanged, m_rightContainer,
            &TFRightContainer::setTitleVisible);
    connect(setting, &TFSubjectSetting::signalTitleChanged, this, [this](const QString &title) {
        m_title = title;
        m_rightContainer->setTitle(title);
    });
    connect(setting, &TFSubjectSetting::signalFilterWidgetVisibleSettingChanged, mainView,
            &TFMainView::setFilterWidgetVisible);
    connect(setting, &TFSubjectSetting::signalMainViewVisibleSettingChanged, m_rightContainer,
            &TFRightContainer::setMainViewVisible);
    connect(setting, &TFSubjectSetting::signalSubViewVisibleSettingChanged, m_rightContainer,
            &TFRightContainer::setChildViewsVisible);
    connect(setting, &TFSubjectSetting::signalPageBarVisibleChanged, mainView, &TFMainView::setPageBarVisible);
    connect(setting, &TFSubjectSetting::signalObjVwIdChanged, this, [this](qlonglong objVwId, const QString &) {
        if (objVwId == m_objVwId)
            return;
        if (objVwId >= 1)
            m_objVwId = objVwId;
        // The arguments of the former view do not apply to the new one.
        m_filterMap.clear();
        refreshPage();
    });
    connect(setting, &TFSubjectSetting::signalBindGlBtnClicked, this,
            [this, setting] { bindToGlobalArgument(setting); });
    connect(setting, &TFSubjectSetting::signalPreviewFilters, this, [this, setting] {
        qDebug() << "on preview clicked-->slot";
        setGlFilterArgs(setting->filterArgs());
    });
    connect(setting, &TFSubjectSetting::signalRefreashPage, this, &TFFrameSubjectZHP::refreshPage);
    // The dialog's own bar shows the filter rows of the page.
    connect(m_rightContainer, &TFRightContainer::signalDataChanged, setting, [this, setting] {
        TFBaseView *view = m_rightContainer->mainView()->currentView();
        setting->showFilterRows(view ? view->filterList() : QList<TFTableModelData::FilterData>());
    });
}

bool TFFrameSubjectZHP::slotOpenSettings()
{
    SettingsDialogShell dialog;
    auto *setting = new TFSubjectSetting(m_list);
    setting->setFrame(this);

    QMap<QString, QVariant> snapshot;
    save(snapshot);
    const QVariantMap cached = property(kCacheVisibleArgs).toMap();
    TFMainView *mainView = m_rightContainer->mainView();
    setting->setVisibility(m_rightContainer->isMainViewVisible(),
                           mainView->isFilterWidgetVisible(cached.value(QStringLiteral("filterVisible")).toBool()),
                           m_rightContainer->childViewsVisible(),
                           mainView->isPageBarVisible(cached.value(QStringLiteral("pageBarVisible")).toBool()));
    setting->setCurrentView(m_objVwId, m_title);
    connectSetting(setting);
    dialog.initContentWithWidget(setting);

    if (dialog.exec() != QDialog::Accepted) {
        restore(snapshot);
        return false;
    }
    setGlFilterArgs(setting->filterArgs());
    QMap<QString, QVariant> changed;
    save(changed);
    if (changed != snapshot && m_zhpObj) {
        InvokerBase invoker;
        invoker.invoke(m_zhpObj, "settingsChanged");
    }
    return true;
}

TFFrameSubjectZHP_CQ::TFFrameSubjectZHP_CQ(QWidget *parent)
    : TFFrameSubjectZHP(parent, QStringLiteral("专题-船期:2114000074"))
{
}

TFFrameSubjectZHP_ZZ::TFFrameSubjectZHP_ZZ(QWidget *parent)
    : TFFrameSubjectZHP(parent, QStringLiteral("专题-装置:2"))
{
}
