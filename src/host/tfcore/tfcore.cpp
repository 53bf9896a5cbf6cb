#include "tfcore/tfcore.h"

#include "tfcore/itfskin.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QPointer>
#include <QRegularExpression>
#include <QSettings>
#include <QThread>
#include <QWidget>

namespace {

struct StyledView
{
    QObject *widget;   // identifies the entry; the interface dies with it
    ITFSkin *skin;
    QString cssFile;
};

QString applicationDirFile(const QString &name)
{
    if (!QCoreApplication::instance())
        return name;
    return QDir(QCoreApplication::applicationDirPath()).filePath(name);
}

} // namespace

class TFCorePrivate
{
public:
    QString skinsRootOrDefault() const
    {
        return skinsRoot.isEmpty() ? applicationDirFile(QStringLiteral("skins")) : skinsRoot;
    }
    QString iniDirectoryOrDefault() const
    {
        return iniDirectory.isEmpty() ? applicationDirFile(QStringLiteral("ini")) : iniDirectory;
    }
    QString skinFile(const QString &skinId, const QString &relativeFile) const
    {
        return QDir(skinsRootOrDefault()).filePath(skinId + QLatin1Char('/') + relativeFile);
    }
    QString styleSheetText(const QString &relativeCssFile) const;
    void apply(const StyledView &view) const;

    mutable QMutex mutex;   // guards the strings that value() and paths read off the UI thread
    QString skinsRoot;
    QString iniDirectory;
    QString currentSkin = QStringLiteral("white");
    QVector<StyledView> views;
    QPointer<QWidget> mainWindow;
};

// Style sheets name their images relative to the skin ("url(subject/x.png)");
// Qt would resolve them against the working directory, so they are made
// absolute here, for the skin that is current.
QString TFCorePrivate::styleSheetText(const QString &relativeCssFile) const
{
    QString skinId;
    {
        QMutexLocker locker(&mutex);
        skinId = currentSkin;
    }
    const QString path = skinFile(skinId, relativeCssFile);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qWarning() << "style sheet not found:" << path;
        return QString();
    }
    QString text = QString::fromUtf8(file.readAll());
    const QString skinDir = QDir(skinsRootOrDefault()).filePath(skinId);
    static const QRegularExpression urlPattern(
        QStringLiteral("url\\(\\s*(['\"]?)([^'\")]+)\\1\\s*\\)"));
    QString result;
    int last = 0;
    auto it = urlPattern.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const QString target = match.captured(2).trimmed();
        const bool relative = !target.startsWith(QLatin1Char('/')) && !target.startsWith(QLatin1Char(':'))
                && !target.contains(QLatin1String("://"));
        result += text.midRef(last, match.capturedStart() - last);
        if (relative)
            result += QStringLiteral("url(\"%1\")").arg(QDir(skinDir).filePath(target));
        else
            result += match.captured(0);
        last = match.capturedEnd();
    }
    result += text.midRef(last);
    return result;
}

void TFCorePrivate::apply(const StyledView &view) const
{
    view.skin->applySkinStyle(QVariant(styleSheetText(view.cssFile)));
}

TFCore::TFCore()
    : d(new TFCorePrivate)
{
}

TFCore::~TFCore()
{
    delete d;
}

TFCore *TFCore::instance()
{
    static TFCore *core = [] {
        auto *made = new TFCore;
        if (QCoreApplication::instance() && made->thread() != QCoreApplication::instance()->thread())
            made->moveToThread(QCoreApplication::instance()->thread());
        return made;
    }();
    return core;
}

void TFCore::addStyle2View(ITFSkin *view, const QString &relativeCssFile)
{
    if (!view)
        return;
    QWidget *widget = view->getWidget();
    StyledView entry{widget, view, relativeCssFile};
    if (!widget) {
        // Without a widget there is nothing to watch for destruction; the
        // sheet is applied once and not remembered.
        qWarning() << "skin view without a widget; style applied once:" << relativeCssFile;
        d->apply(entry);
        return;
    }
    bool known = false;
    for (StyledView &existing : d->views) {
        if (existing.widget == widget && existing.skin == view) {
            existing.cssFile = relativeCssFile;
            known = true;
        }
    }
    if (!known) {
        d->views.append(entry);
        connect(widget, &QObject::destroyed, this, [this](QObject *gone) {
            d->views.erase(std::remove_if(d->views.begin(), d->views.end(),
                                          [gone](const StyledView &v) { return v.widget == gone; }),
                           d->views.end());
        });
    }
    d->apply(entry);
}

QString TFCore::getCurrentSkinPath(const QString &relativeFile) const
{
    QMutexLocker locker(&d->mutex);
    return d->skinFile(d->currentSkin, relativeFile);
}

QString TFCore::getCurrentSkinId() const
{
    QMutexLocker locker(&d->mutex);
    return d->currentSkin;
}

QWidget *TFCore::mainWindow() const
{
    return d->mainWindow.data();
}

// "file.ini:Section/key": the ini file in the host's ini folder, the section
// and the key as QSettings spells them. A missing file, section or key gives
// the default.
QVariant TFCore::value(const QString &key, const QVariant &defaultValue) const
{
    const int colon = key.indexOf(QLatin1Char(':'));
    if (colon <= 0 || colon == key.size() - 1) {
        qWarning() << "configuration key without file and entry:" << key;
        return defaultValue;
    }
    QString directory;
    {
        QMutexLocker locker(&d->mutex);
        directory = d->iniDirectoryOrDefault();
    }
    const QString path = QDir(directory).filePath(key.left(colon));
    if (!QFile::exists(path)) {
        qDebug() << "configuration file not found:" << path;
        return defaultValue;
    }
    QSettings settings(path, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    return settings.value(key.mid(colon + 1), defaultValue);
}

QStringList TFCore::skinIds() const
{
    QString root;
    {
        QMutexLocker locker(&d->mutex);
        root = d->skinsRootOrDefault();
    }
    return QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

bool TFCore::setCurrentSkin(const QString &skinId)
{
    if (!skinIds().contains(skinId)) {
        qWarning() << "unknown skin:" << skinId << "known:" << skinIds();
        return false;
    }
    {
        QMutexLocker locker(&d->mutex);
        if (d->currentSkin == skinId)
            return true;
        d->currentSkin = skinId;
    }
    qDebug() << "skin changed to" << skinId;
    // A view may register or go away while the sheets are applied.
    const QVector<StyledView> views = d->views;
    for (const StyledView &view : views) {
        const bool stillThere = std::any_of(d->views.cbegin(), d->views.cend(), [&view](const StyledView &v) {
            return v.widget == view.widget && v.skin == view.skin;
        });
        if (stillThere)
            d->apply(view);
    }
    emit signalSkinChanged(skinId);
    return true;
}

void TFCore::setSkinsRoot(const QString &directory)
{
    QMutexLocker locker(&d->mutex);
    d->skinsRoot = directory;
}

void TFCore::setIniDirectory(const QString &directory)
{
    QMutexLocker locker(&d->mutex);
    d->iniDirectory = directory;
}

void TFCore::setMainWindow(QWidget *window)
{
    d->mainWindow = window;
}
