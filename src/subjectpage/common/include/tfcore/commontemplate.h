#pragma once

#include <QDebug>
#include <QString>
#include <QWidget>

// Small lookups that windows built from a form share.
class CommonTemplate
{
public:
    // The child of parent with the given object name and type, or null; a
    // missing child is logged, since the form and the code disagree then.
    template<typename T>
    static T *get(const QWidget *parent, const QString &name)
    {
        T *child = parent ? parent->findChild<T *>(name) : nullptr;
        if (!child)
            qWarning() << "not found " << name << " with typename:" << T::staticMetaObject.className();
        return child;
    }
};
