#pragma once

#include <QList>
#include <QString>

// One unit of the header unit list: the shown number is the delivered one
// divided by ten to the exponent. Units of one category replace one another.
struct TFHeaderUnit
{
    int unitCode = 0;
    int exponent = 0;
    QString unitName;
    int unitCategory = 0;
};

// The whole list, in its fixed order; built once, read-only afterwards.
const QList<TFHeaderUnit>& headerUnits();

// The units of one category, in list order (what a unit combo box offers).
QList<TFHeaderUnit> unitsOfCategory(int category);
// The code of the first unit of that name, or -1. "元" is listed twice and
// always resolves to 1000.
int unitCodeOfName(const QString& name);
// The name of the first unit of that code, or an empty text.
QString unitNameOfCode(int code);
// The exponent of the first unit of that code, or -100, whose factor is 0.
int unitExponentOfCode(int code);
