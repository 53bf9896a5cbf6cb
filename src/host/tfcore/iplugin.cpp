#include "tfcore/iplugin.h"

#include <QDebug>

IPlugin::IPlugin() = default;

// The pool goes down in the reverse order of registration, so that an object
// registered late, which may use an earlier one, is gone first.
IPlugin::~IPlugin()
{
    const QVector<QObject *> objects = m_autoReleased;
    m_autoReleased.clear();
    for (auto it = objects.crbegin(); it != objects.crend(); ++it) {
        QObject *object = *it;
        disconnect(object, &QObject::destroyed, this, nullptr);
        delete object;
    }
}

QObject *IPlugin::remoteCommand(const QStringList &options, const QString &workingDirectory,
                                const QStringList &arguments)
{
    Q_UNUSED(options)
    Q_UNUSED(workingDirectory)
    Q_UNUSED(arguments)
    return nullptr;
}

void IPlugin::addAutoReleasedObject(QObject *object)
{
    if (!object || m_autoReleased.contains(object))
        return;
    m_autoReleased.append(object);
    // An object deleted by someone else must not be deleted again here.
    connect(object, &QObject::destroyed, this, [this, object] {
        m_autoReleased.removeAll(object);
    });
    qDebug() << "object pool: added" << object->objectName() << "from" << metaObject()->className();
}

QVector<QObject *> IPlugin::autoReleasedObjects() const
{
    return m_autoReleased;
}
