#pragma once

#include <QDate>
#include <QStringList>

class QComboBox;

// Texts shared by the period controls: a year is shown with "年" and a month
// with "月"; the suffix goes again before a value is reported.
namespace TFPeriod {

QString yearSuffix();
QString monthSuffix();
QString yearText(int year);
QString monthText(int month);
// text less the year and month suffixes
QString bare(const QString &text);

// The current year by the clock of the function library.
int currentYear();
// this year, the year before, ... down to and including last, each with "年"
QStringList yearsDownTo(int last);
// "1月" to "12月"
QStringList months();

// A period's name to the months from the start of the year to its end:
// "一季度" 3, "二季度" 6, "半年报" 6, "三季度" 9, "四季度" 12, "年度" 12; 0 for
// any other name.
int monthsOfPeriod(const QString &name);

// Draws the box's list without focus frames.
void useFocusDelegate(QComboBox *box);

} // namespace TFPeriod
