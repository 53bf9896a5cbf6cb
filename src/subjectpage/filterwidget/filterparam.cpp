#include "filterwidget/filterparam.h"

#include <QDateTime>
#include <QHash>
#include <QRegExp>
#include <QTime>
#include <QTimeZone>

namespace FilterParam {

QString serviceOperator(const QString &configOperator)
{
    static const QHash<QString, QString> table = {
        {QStringLiteral(">="), QStringLiteral(">=")},
        {QStringLiteral(">"), QStringLiteral(">")},
        {QStringLiteral("<"), QStringLiteral("<")},
        {QStringLiteral("<="), QStringLiteral("<=")},
        {QStringLiteral("="), QStringLiteral("==")},
        {QStringLiteral("<>"), QStringLiteral("!=")},
        {QStringLiteral("LIKE"), QStringLiteral("like")},
        {QStringLiteral("IN"), QStringLiteral("in")},
        {QStringLiteral("NotIn"), QStringLiteral("nin")},
        {QStringLiteral("and"), QStringLiteral("&&")},
        {QStringLiteral("or"), QStringLiteral("||")},
    };
    return table.value(configOperator, QStringLiteral("=="));
}

QString serviceDateText(const QDateTime &dateTime)
{
    const int offset = QTimeZone::systemTimeZone().offsetFromUtc(dateTime);
    const QString sign = offset < 0 ? QStringLiteral("-") : QStringLiteral("+");
    const QString zone = QTime(0, 0, 0).addSecs(qAbs(offset)).toString(QStringLiteral("hhmm"));
    return QStringLiteral("/Date(%1%2%3)").arg(dateTime.toMSecsSinceEpoch()).arg(sign, zone);
}

bool readDynamicDefault(const QString &text, QString *function, QString *caption)
{
    QRegExp pattern(QStringLiteral("^(=\\$)(\\w+)\\(\\[(.+)\\]\\)"));
    if (pattern.indexIn(text) < 0 || pattern.captureCount() < 3)
        return false;
    if (function)
        *function = pattern.cap(2);
    if (caption)
        *caption = pattern.cap(3);
    return true;
}

} // namespace FilterParam
