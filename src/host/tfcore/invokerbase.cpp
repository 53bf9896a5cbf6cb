#include "tfcore/invokerbase.h"

#include <QDebug>
#include <QMetaMethod>
#include <QMetaObject>
#include <QObject>

InvokerBase::InvokerBase() = default;

namespace {

// "const QString&" and "QString&" both take a bound QString.
QByteArray baseTypeName(QByteArray type)
{
    type = QMetaObject::normalizedType(type.constData());
    if (type.startsWith("const "))
        type = type.mid(6);
    if (type.endsWith('&'))
        type.chop(1);
    return type;
}

} // namespace

// Finds the method by name and the bound types, ignoring how each parameter
// is passed, so that a caller who binds "QString" reaches a method that takes
// "QString&" and sees what it wrote.
bool InvokerBase::invoke(QObject *object, const char *method, Qt::ConnectionType type)
{
    if (!object || !method) {
        qWarning() << "invoke without object or method";
        return false;
    }
    if (m_values.size() > 10) {
        qWarning() << "invoke: at most ten arguments," << m_values.size() << "bound";
        return false;
    }
    const QByteArray name(method);
    const QMetaObject *meta = object->metaObject();
    QMetaMethod target;
    for (int i = 0; i < meta->methodCount() && !target.isValid(); ++i) {
        const QMetaMethod candidate = meta->method(i);
        if (candidate.name() != name || candidate.parameterCount() != m_values.size())
            continue;
        const QList<QByteArray> parameterTypes = candidate.parameterTypes();
        bool matches = true;
        for (int p = 0; p < parameterTypes.size() && matches; ++p)
            matches = baseTypeName(parameterTypes.at(p)) == baseTypeName(m_typeNames.at(p));
        if (matches)
            target = candidate;
    }
    if (!target.isValid()) {
        QByteArrayList bound;
        for (const QByteArray &typeName : qAsConst(m_typeNames))
            bound.append(typeName);
        qWarning() << "no method" << name + '(' + bound.join(',') + ')' << "on"
                   << meta->className();
        return false;
    }

    const QList<QByteArray> parameterTypes = target.parameterTypes();
    for (int i = 0; i < m_values.size(); ++i) {
        // A pointer to the wrong type would be read as the declared one.
        const int typeId = QMetaType::type(baseTypeName(parameterTypes.at(i)).constData());
        if (typeId == QMetaType::QVariant)
            continue;
        if (typeId == QMetaType::UnknownType || (m_values[i].userType() != typeId && !m_values[i].convert(typeId))) {
            qWarning() << "invoke: argument" << i << "of" << target.methodSignature() << "is a"
                       << m_values.at(i).typeName();
            return false;
        }
    }

    QGenericArgument arguments[10];
    for (int i = 0; i < m_values.size(); ++i) {
        // The method writes through the pointer into our variant, which is
        // how a reference argument comes back (result()).
        void *data = QMetaType::type(baseTypeName(parameterTypes.at(i)).constData()) == QMetaType::QVariant
                ? static_cast<void *>(&m_values[i])
                : m_values[i].data();
        arguments[i] = QGenericArgument(parameterTypes.at(i).constData(), data);
    }
    const bool ok = target.invoke(object, type, arguments[0], arguments[1], arguments[2], arguments[3],
                                  arguments[4], arguments[5], arguments[6], arguments[7],
                                  arguments[8], arguments[9]);
    if (!ok)
        qWarning() << "invoke of" << target.methodSignature() << "failed on" << meta->className();
    return ok;
}

QVariant InvokerBase::result(int index) const
{
    return m_values.value(index);
}
