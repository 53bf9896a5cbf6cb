#include "tftoolsfunc.h"

#include <QDebug>
#include <QStringList>
#include <QVariantList>

namespace {

bool isType(const QString &type, const char *name)
{
    return type.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

// An empty or unreadable element reads as 0: toLongLong reports no error
// that a caller of a filter could act on.
QVariantList integerList(const QString &source)
{
    QStringList parts;
    if (source.contains(QLatin1Char(',')))
        parts = source.split(QLatin1Char(','), Qt::KeepEmptyParts);
    else if (source.contains(QLatin1Char(';')))
        parts = source.split(QLatin1Char(';'), Qt::KeepEmptyParts);
    else
        parts << source;

    QVariantList list;
    list.reserve(parts.size());
    for (const QString &part : qAsConst(parts))
        list << QVariant(part.toLongLong(nullptr, 10));
    return list;
}

} // namespace

QVariant TFToolsFunc::valueTrans(const QString &source, const QString &type)
{
    if (isType(type, "datetime"))
        return QVariant(QLatin1Char('[') + source + QLatin1Char(']'));
    if (isType(type, "decimal"))
        return QVariant(source.toLongLong(nullptr, 10));
    if (isType(type, "string"))
        return QVariant(source);
    if (isType(type, "intlist"))
        return QVariant(integerList(source));
    qDebug() << "value type : " << type << " source : " << source;
    return QVariant(source);
}

QVariant TFToolsFunc::valueTrans(const QVariant &source, const QString &type)
{
    qDebug() << "sourceValue:" << source << " valueType:" << type;
    if (isType(type, "intlist") || isType(type, "stringlist"))
        return source;
    return valueTrans(source.toString(), type);
}
