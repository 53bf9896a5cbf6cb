#include "tfrowbuilder.h"

#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfunboundexpression.h"

#include <QDateTime>
#include <QLocale>
#include <QVarLengthArray>

#include <cmath>

#include <algorithm>
#include <limits>

using TFTableModelData::tagCellValue;

namespace TFSubject {

TFRowBuilder::TFRowBuilder(const QList<TFTreeStruct*>& leaves, TFUnboundExpression* unbound,
                           ValueTypeOf valueTypeOf)
    : m_unbound(unbound)
    , m_valueTypeOf(std::move(valueTypeOf))
{
    m_templates.reserve(leaves.size());
    for (int i = 0; i < leaves.size(); ++i) {
        const HeaderFieldInfo& info = leaves.at(i)->info();
        tagCellValue cell;
        cell.fieldName = info.fieldName;
        cell.valueType = info.valueType;
        cell.textAlignment = info.textAlignment;
        cell.url = info.url;
        cell.formatString = info.formatString;
        cell.prevUnitFactor = info.prevUnitFactor;
        cell.showUnitFactor = info.showUnitFactor;
        cell.baseShowUnitFactor = info.showUnitFactor;
        cell.unitCategory = info.unitCategory;
        cell.columnType = info.columnType;
        cell.captionShowType = info.captionShowType;
        m_templates.append(cell);
        m_computed.append(info.valueType.toLower() == QLatin1String("decimal")
                          && !info.unboundExpression.isEmpty());
        m_expressions.append(info.unboundExpression);
        m_sorted.append({ info.fieldName, i });
    }
    // Rows are maps in key order; with the leaf names in the same order one
    // walk over a row finds every leaf's value and every further key.
    std::stable_sort(m_sorted.begin(), m_sorted.end(),
                     [](const Slot& a, const Slot& b) { return a.fieldName < b.fieldName; });
}

QStringList TFRowBuilder::leafFieldNames() const
{
    QStringList names;
    names.reserve(m_templates.size());
    for (const tagCellValue& cell : m_templates)
        names.append(cell.fieldName);
    return names;
}

RowData TFRowBuilder::build(const QVariantMap& row)
{
    static const QString secuIdKey = QStringLiteral("SECU_ID");
    const int leafCount = m_templates.size();
    const int slotCount = m_sorted.size();

    QVarLengthArray<const QVariant*, 64> values(leafCount);
    std::fill(values.begin(), values.end(), nullptr);
    QVarLengthArray<QVariantMap::const_iterator, 16> further;
    const QVariant* secuId = nullptr;

    int slot = 0;
    for (auto it = row.constBegin(); it != row.constEnd(); ++it) {
        const QString& key = it.key();
        if (!secuId && key == secuIdKey)
            secuId = &it.value();
        while (slot < slotCount && m_sorted.at(slot).fieldName < key)
            ++slot;
        bool isLeaf = false;
        for (int s = slot; s < slotCount && m_sorted.at(s).fieldName == key; ++s) {
            values[m_sorted.at(s).leaf] = &it.value();
            isLeaf = true;
        }
        if (!isLeaf)
            further.append(it);
    }

    const double secu = secuId ? secuId->toDouble() : 0;
    RowData cells;
    cells.reserve(leafCount + further.size());
    for (int i = 0; i < leafCount; ++i) {
        tagCellValue cell = m_templates.at(i);
        cell.secuId = secu;
        if (values[i])
            cell.value = *values[i];
        if (m_computed.at(i) && m_unbound)
            cell.value = m_unbound->evaluate(m_expressions.at(i), row);
        cells.append(cell);
    }
    for (const QVariantMap::const_iterator& it : further) {
        tagCellValue cell;
        cell.fieldName = it.key();
        cell.value = it.value();
        if (m_typeLetter) {
            cell.valueType = QString(QChar(int(it.value().type())));
        } else {
            auto known = m_furtherTypes.constFind(it.key());
            if (known == m_furtherTypes.constEnd())
                known = m_furtherTypes.insert(it.key(), m_valueTypeOf ? m_valueTypeOf(it.key()) : QString());
            cell.valueType = *known;
        }
        cells.append(cell);
    }
    return cells;
}

QList<RowData> TFRowBuilder::build(const QList<QVariantMap>& rows)
{
    QList<RowData> built;
    built.reserve(rows.size());
    for (const QVariantMap& row : rows)
        built.append(build(row));
    return built;
}

QVariant cellToPlainValue(const tagCellValue& cell)
{
    const QVariant& value = cell.value;
    if (!value.isValid())
        return QStringLiteral(" ");

    const QString type = cell.valueType.toLower();
    if (type == QLatin1String("decimal")) {
        bool ok = false;
        double number = value.toDouble(&ok);
        if (!ok)
            return value;
        int precision = 2;
        const QString format = cell.formatString.toLower();
        for (int n = 0; n <= 20; ++n) {
            if (format == QLatin1Char('n') + QString::number(n)) {
                precision = n;
                break;
            }
        }
        if (cell.columnType.compare(QLatin1String("BandedGridColumnWithUnit"), Qt::CaseInsensitive) == 0)
            number = number * cell.prevUnitFactor / cell.showUnitFactor;
        // Formatted in the default locale, then read back as the workbook's
        // locale reads it.
        const QString text = QStringLiteral("%L1").arg(number, 0, 'f', precision, QLatin1Char(' '));
        static const QLocale chinese(QLocale::Chinese, QLocale::China);
        if (precision == 0)
            return chinese.toLongLong(text);
        return chinese.toDouble(text);
    }
    if (type.contains(QLatin1String("string")))
        return value.toString().trimmed();
    if (type == QLatin1String("datetime")) {
        if (value.isNull() || !value.isValid())
            return QString();
        const QString format = cell.formatString.isEmpty() ? QStringLiteral("yyyy-MM-dd")
                                                           : cell.formatString;
        // Truncated to whole milliseconds; a number beyond any date gives
        // the invalid date's empty text.
        const double number = value.toDouble();
        const qint64 msecs = std::isfinite(number) && std::fabs(number) < 9.2e18 ? qint64(number)
                                                                                 : std::numeric_limits<qint64>::min();
        return QDateTime::fromMSecsSinceEpoch(msecs, Qt::LocalTime).toString(format);
    }
    return value;
}

} // namespace TFSubject
