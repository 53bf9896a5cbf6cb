#include "filterwidget/tfperiodtexts.h"

#include "expression/tfcustommath.h"
#include "filterwidget/tffocusdelegate.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QMap>

namespace TFPeriod {

QString yearSuffix()
{
    return QCoreApplication::translate("TFPeriod", "年");
}

QString monthSuffix()
{
    return QCoreApplication::translate("TFPeriod", "月");
}

QString yearText(int year)
{
    return QString::number(year) + yearSuffix();
}

QString monthText(int month)
{
    return QString::number(month) + monthSuffix();
}

QString bare(const QString &text)
{
    QString t = text;
    return t.remove(yearSuffix()).remove(monthSuffix());
}

int currentYear()
{
    return TFCustomMath::instance()->now().date().year();
}

QStringList yearsDownTo(int last)
{
    QStringList years;
    for (int year = currentYear(); year >= last; --year)
        years.append(yearText(year));
    return years;
}

QStringList months()
{
    QStringList texts;
    for (int month = 1; month <= 12; ++month)
        texts.append(monthText(month));
    return texts;
}

int monthsOfPeriod(const QString &name)
{
    static const QMap<QString, int> table = {
        {QStringLiteral("一季度"), 3}, {QStringLiteral("二季度"), 6}, {QStringLiteral("半年报"), 6},
        {QStringLiteral("三季度"), 9}, {QStringLiteral("四季度"), 12}, {QStringLiteral("年度"), 12}};
    return table.value(name, 0);
}

void useFocusDelegate(QComboBox *box)
{
    box->setItemDelegate(new TFFocusDelegate(box));
}

} // namespace TFPeriod
