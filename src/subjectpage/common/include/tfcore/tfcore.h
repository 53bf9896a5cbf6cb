#pragma once

#include "tfcore/tfhostglobal.h"

#include <QObject>
#include <QString>
#include <QVariant>

class ITFSkin;
class QWidget;
class TFCorePrivate;

// The terminal's core: skins, the main window and the host's configuration
// values. Keys of value() join an ini file name, a colon, a section and a
// key: "zhp.ini:Settings/list".
class TFHOST_EXPORT TFCore : public QObject
{
    Q_OBJECT
public:
    static TFCore *instance();

    // Registers a style sheet file, named relative to the skin, for a skin
    // interface: applied now and again at every change of skin.
    void addStyle2View(ITFSkin *view, const QString &relativeCssFile);
    QString getCurrentSkinPath(const QString &relativeFile) const;
    QString getCurrentSkinId() const;
    QWidget *mainWindow() const;
    QVariant value(const QString &key, const QVariant &defaultValue = QVariant()) const;

    // Terminal side.
    QStringList skinIds() const;
    bool setCurrentSkin(const QString &skinId);
    void setSkinsRoot(const QString &directory);
    void setIniDirectory(const QString &directory);
    void setMainWindow(QWidget *window);

signals:
    void signalSkinChanged(const QString &skinId);

private:
    TFCore();
    ~TFCore() override;
    TFCorePrivate *d;
};
