#include "tfheaderunit.h"

#include <QObject>

namespace {

QList<TFHeaderUnit> makeHeaderUnits()
{
    // The codes of category 7, the exponents of "%", "‰" and "BP", and 3001
    // follow no rule; they are as the service's configuration knows them.
    static const struct {
        int code;
        int exponent;
        const char* name;
        int category;
    } table[] = {
        { 1000, 0, "元", 1 },
        { 1002, 2, "百元", 1 },
        { 1003, 3, "千元", 1 },
        { 1004, 4, "万元", 1 },
        { 1006, 6, "百万元", 1 },
        { 1008, 8, "亿元", 1 },
        { 1009, 9, "十亿元", 1 },
        { 2000, 0, "股", 2 },
        { 2002, 2, "百股", 2 },
        { 2003, 3, "千股", 2 },
        { 2004, 4, "万股", 2 },
        { 2006, 6, "百万股", 2 },
        { 2008, 8, "亿股", 2 },
        { 2009, 9, "十亿股", 2 },
        { 3000, 0, "张", 3 },
        { 3001, 1, "手（十张）", 3 },
        { 3002, 2, "百张", 3 },
        { 3004, 4, "万张", 3 },
        { 3008, 8, "亿张", 3 },
        { 6000, 0, "份", 6 },
        { 6002, 2, "百份", 6 },
        { 6003, 3, "千份", 6 },
        { 6004, 4, "万份", 6 },
        { 6008, 8, "亿份", 6 },
        { 6009, 9, "十亿份", 6 },
        { 7002, 2, "原始值", 7 },
        { 7003, 1, "%", 7 },
        { 7004, -1, "‰", 7 },
        { 7005, -2, "BP", 7 },
        { 8000, 0, "户", 8 },
        { 8002, 2, "百户", 8 },
        { 8004, 4, "万户", 8 },
        { 8008, 8, "亿户", 8 },
        { 10000, 0, "次", 10 },
        { 13000, 0, "倍", 13 },
        { 14000, 0, "年", 14 },
        { 15000, 0, "家", 15 },
        { 16000, 0, "个", 16 },
        { 18000, 0, "元", 18 },
        { 19000, 0, "天", 19 },
        { 20000, 0, "值", 20 },
        { 21000, 0, "笔", 21 },
        { 22000, 0, "元/%", 22 },
    };
    QList<TFHeaderUnit> units;
    units.reserve(int(sizeof(table) / sizeof(table[0])));
    for (const auto& row : table)
        units.append({ row.code, row.exponent, QObject::tr(row.name), row.category });
    return units;
}

} // namespace

const QList<TFHeaderUnit>& headerUnits()
{
    static const QList<TFHeaderUnit> units = makeHeaderUnits();
    return units;
}

QList<TFHeaderUnit> unitsOfCategory(int category)
{
    QList<TFHeaderUnit> units;
    for (const TFHeaderUnit& unit : headerUnits()) {
        if (unit.unitCategory == category)
            units.append(unit);
    }
    return units;
}

int unitCodeOfName(const QString& name)
{
    for (const TFHeaderUnit& unit : headerUnits()) {
        if (unit.unitName == name)
            return unit.unitCode;
    }
    return -1;
}

QString unitNameOfCode(int code)
{
    for (const TFHeaderUnit& unit : headerUnits()) {
        if (unit.unitCode == code)
            return unit.unitName;
    }
    return QString();
}

int unitExponentOfCode(int code)
{
    for (const TFHeaderUnit& unit : headerUnits()) {
        if (unit.unitCode == code)
            return unit.exponent;
    }
    return -100;
}
