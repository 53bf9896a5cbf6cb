#pragma once

#include "tfcore/tfhostglobal.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#define TFAppPlugin_iid "TFAppPlugin"

// Base of every plug-in the terminal loads. The terminal calls initialize()
// and then extensionsInitialized(); objects handed to addAutoReleasedObject()
// join the host's object pool, where the terminal finds them, and are deleted
// with the plug-in.
class TFHOST_EXPORT IPlugin : public QObject
{
    Q_OBJECT
public:
    enum ShutdownFlag { SynchronousShutdown, AsynchronousShutdown };

    IPlugin();
    ~IPlugin() override;

    virtual bool initialize(const QStringList &arguments, QString *errorString) = 0;
    virtual void extensionsInitialized() = 0;
    virtual bool delayedInitialize() { return false; }
    virtual ShutdownFlag aboutToShutdown() { return SynchronousShutdown; }
    virtual QObject *remoteCommand(const QStringList &options, const QString &workingDirectory,
                                   const QStringList &arguments);
    virtual QVector<QObject *> createTestObjects() const { return {}; }

    void addAutoReleasedObject(QObject *object);
    QVector<QObject *> autoReleasedObjects() const;

signals:
    void asynchronousShutdownFinished();

private:
    QVector<QObject *> m_autoReleased;
};

Q_DECLARE_INTERFACE(IPlugin, TFAppPlugin_iid)
