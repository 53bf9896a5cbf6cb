#pragma once

#include "tfcore/tfhostglobal.h"

#include <QByteArray>
#include <QVariant>
#include <QVector>

class QObject;

// Calls a named method of an object with arguments bound beforehand, each
// with its type's name as the meta-object system spells it:
//   InvokerBase invoker; invoker.arg<QString>(url, "QString");
//   invoker.invoke(mainWindow, "openStringUrl");
// A QString argument bound by reference comes back changed when the method
// writes to it (result()).
class TFHOST_EXPORT InvokerBase
{
public:
    InvokerBase();

    template<typename T>
    InvokerBase &arg(const T &value, const char *typeName)
    {
        m_values.append(QVariant::fromValue(value));
        m_typeNames.append(QByteArray(typeName));
        return *this;
    }

    bool invoke(QObject *object, const char *method,
                Qt::ConnectionType type = Qt::DirectConnection);
    QVariant result(int index) const;

private:
    QVector<QVariant> m_values;
    QVector<QByteArray> m_typeNames;
};
