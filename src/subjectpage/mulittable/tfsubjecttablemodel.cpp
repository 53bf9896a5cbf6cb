#include "tfsubjecttablemodel.h"

#include "tfcellstyleengine.h"
#include "tfheaderdatastruct.h"
#include "tfqsscommon.h"

#include "tfcore/tfcore.h"

#include <QColor>
#include <QDateTime>
#include <QDebug>
#include <QLocale>

#include <cmath>
#include <limits>

using TFTableModelData::tagCellValue;

namespace {

// "n0" to "n20", in any case, give their number of decimals; anything else
// gives two.
int precisionOf(const QString& formatString)
{
    const int size = formatString.size();
    if (size < 2 || size > 3)
        return 2;
    const QChar n = formatString.at(0);
    if (n != QLatin1Char('n') && n != QLatin1Char('N'))
        return 2;
    const QChar first = formatString.at(1);
    if (first < QLatin1Char('0') || first > QLatin1Char('9'))
        return 2;
    if (size == 2)
        return first.digitValue();
    const QChar second = formatString.at(2);
    if (first == QLatin1Char('0') || second < QLatin1Char('0') || second > QLatin1Char('9'))
        return 2;
    const int digits = first.digitValue() * 10 + second.digitValue();
    return digits <= 20 ? digits : 2;
}

bool isUnitColumn(const QString& columnType)
{
    return columnType.compare(QLatin1String("BandedGridColumnWithUnit"), Qt::CaseInsensitive) == 0;
}

const HeaderFieldInfo& emptyRecord()
{
    static const HeaderFieldInfo record;
    return record;
}

} // namespace

TFSubjectTableModel::TFSubjectTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
    TFTableModelData::registerRowDataType();
    // Every model writes the skin into the one engine, now and on each
    // change of skin.
    TFCore* core = TFCore::instance();
    TFCellStyleEngine::instance()->setSkin(core->getCurrentSkinId());
    connect(core, &TFCore::signalSkinChanged, this, [](const QString& skinId) {
        TFCellStyleEngine::instance()->setSkin(skinId);
    });
}

TFSubjectTableModel::~TFSubjectTableModel() = default;

int TFSubjectTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int TFSubjectTableModel::columnCount(const QModelIndex& parent) const
{
    if (parent.isValid() || !m_header)
        return 0;
    return m_captions.size();
}

QVariant TFSubjectTableModel::data(const QModelIndex& index, int role) const
{
    if (role == HoverColorRole)
        return TFQssCommon::instance()->highlightColor;

    const int row = index.row();
    const int column = index.column();
    if (!index.isValid() || row < 0 || row >= m_rows.size())
        return QVariant();
    const RowData& cells = m_rows.at(row);
    if (column < 0 || column >= cells.size())
        return QVariant();
    const tagCellValue& cell = cells.at(column);

    switch (role) {
    case Qt::DisplayRole:
        return displayText(cell, column);
    case Qt::ToolTipRole: {
        const QString text = displayText(cell, column).toString();
        if (text.isEmpty())
            return QVariant();
        return QStringLiteral("<p style='color:#0060E3'>%1</p>").arg(text);
    }
    case Qt::TextAlignmentRole:
        return textAlignment(cell);
    case Qt::ForegroundRole:
        return textColor(row, column);
    case FieldNameRole:
        return cell.fieldName;
    case RowDataRole:
        return QVariant::fromValue(cells);
    case LinkRole:
        return cell.url;
    case RawValueRole:
        return cell.value;
    case SecuIdRole:
        return cell.secuId;
    case SortValueRole:
        return sortValue(cell);
    default:
        return QVariant();
    }
}

QVariant TFSubjectTableModel::displayText(const tagCellValue& cell, int column) const
{
    const QVariant& value = cell.value;
    if (!value.isValid() || int(value.type()) == QMetaType::Nullptr)
        return QVariant();

    // The column's settings come from the tree, not from the cell, so that a
    // change of unit needs no rebuild of the rows.
    const QList<TFTreeStruct*> leaves = m_header ? m_header->leaves() : QList<TFTreeStruct*>();
    const HeaderFieldInfo& record = column < leaves.size() ? leaves.at(column)->info() : emptyRecord();

    switch (kindOf(cell.valueType)) {
    case DecimalValue: {
        bool ok = false;
        double number = value.toDouble(&ok);
        if (!ok)
            return value;
        const ColumnFormat& format = formatOf(column, record);
        if (format.unitColumn) {
            if (m_unitFactor == 0 && m_unitCategory == 0 && record.showUnitFactor != 0)
                number = number * record.prevUnitFactor / record.showUnitFactor;
            else if (record.unitCategory == m_unitCategory && m_unitFactor != 0)
                number = number * record.prevUnitFactor / m_unitFactor;
        }
        // What "%L1" with width 0, 'f' and a blank fill gives: the default
        // locale's digits and group separators.
        return QLocale().toString(number, 'f', format.precision);
    }
    case StringValue:
        return value.toString().trimmed();
    case DateTimeValue: {
        const QString format = record.formatString.isEmpty() ? QStringLiteral("yyyy-MM-dd")
                                                             : record.formatString;
        return dateText(value.toLongLong(), format, column);
    }
    case OtherValue:
        break;
    }
    return value;
}

TFSubjectTableModel::ValueKind TFSubjectTableModel::kindOf(const QString& valueType) const
{
    for (const KindOfType& known : qAsConst(m_kinds)) {
        if (known.type.constData() == valueType.constData() && known.type.size() == valueType.size())
            return known.kind;
    }
    ValueKind kind = OtherValue;
    if (valueType.compare(QLatin1String("decimal"), Qt::CaseInsensitive) == 0)
        kind = DecimalValue;
    else if (valueType.contains(QLatin1String("string"), Qt::CaseInsensitive))
        kind = StringValue;
    else if (valueType.compare(QLatin1String("datetime"), Qt::CaseInsensitive) == 0)
        kind = DateTimeValue;
    if (m_kinds.size() >= 64)
        m_kinds.clear();
    m_kinds.append({ valueType, kind });
    return kind;
}

const TFSubjectTableModel::ColumnFormat& TFSubjectTableModel::formatOf(int column, const HeaderFieldInfo& record) const
{
    if (column >= m_formats.size())
        m_formats.resize(column + 1);
    ColumnFormat& format = m_formats[column];
    if (format.columnType.constData() != record.columnType.constData()
        || format.columnType.size() != record.columnType.size()
        || format.formatString.constData() != record.formatString.constData()
        || format.formatString.size() != record.formatString.size()) {
        format.columnType = record.columnType;
        format.formatString = record.formatString;
        format.unitColumn = isUnitColumn(record.columnType);
        format.precision = precisionOf(record.formatString);
    }
    return format;
}

QString TFSubjectTableModel::dateText(qint64 msecs, const QString& format, int column) const
{
    if (column >= m_dateTexts.size())
        m_dateTexts.resize(column + 1);
    DateTexts& cache = m_dateTexts[column];
    if (cache.format != format) {
        cache.format = format;
        cache.texts.clear();
    }
    const auto it = cache.texts.constFind(msecs);
    if (it != cache.texts.constEnd())
        return *it;
    if (cache.texts.size() >= 100000)
        cache.texts.clear();
    const QString text = QDateTime::fromMSecsSinceEpoch(msecs, Qt::LocalTime).toString(format);
    cache.texts.insert(msecs, text);
    return text;
}

QVariant TFSubjectTableModel::textAlignment(const tagCellValue& cell) const
{
    const int left = Qt::AlignLeft | Qt::AlignVCenter;
    const int right = Qt::AlignRight | Qt::AlignVCenter;
    const int centre = Qt::AlignCenter;
    switch (cell.textAlignment) {
    case 0: {
        static const QSet<QString> numeric = {
            QStringLiteral("Decimal"), QStringLiteral("Double"), QStringLiteral("Int16"),
            QStringLiteral("Int32"), QStringLiteral("Int64"), QStringLiteral("UInt16"),
            QStringLiteral("UInt32"), QStringLiteral("UInt64"),
        };
        if (numeric.contains(cell.valueType))
            return right;
        if (cell.valueType == QLatin1String("String"))
            return left;
        return centre;
    }
    case 1:
        return left;
    case 3:
        return right;
    default:
        return centre;
    }
}

QVariant TFSubjectTableModel::textColor(int row, int column) const
{
    if (column >= m_colorColumns.size() || m_colorColumns.at(column).expression.isEmpty())
        return QVariant();
    const ColorColumn& colorColumn = m_colorColumns.at(column);
    const RowData& cells = m_rows.at(row);
    TFCellStyleEngine* engine = TFCellStyleEngine::instance();

    const bool keep = colorColumn.keepable && cells.size() >= colorColumn.cellsNeeded;
    const quint64 key = (quint64(quint32(row)) << 32) | quint32(column);
    if (keep) {
        if (m_colorGeneration != engine->generation()) {
            m_colors.clear();
            m_colorGeneration = engine->generation();
        }
        const auto it = m_colors.constFind(key);
        if (it != m_colors.constEnd())
            return *it;
    }

    const QVariant color = engine->textColor(this, cells, m_publishNames, colorColumn.expression);
    if (keep && m_colorGeneration == engine->generation())
        m_colors.insert(key, color);
    return color;
}

void TFSubjectTableModel::forgetKeptValues()
{
    m_colors.clear();
    m_dateTexts.clear();
}

QVariant TFSubjectTableModel::sortValue(const tagCellValue& cell) const
{
    const QString& type = cell.valueType;
    if (type.compare(QLatin1String("decimal"), Qt::CaseInsensitive) == 0
        || type.compare(QLatin1String("datetime"), Qt::CaseInsensitive) == 0) {
        if (cell.fieldName == QLatin1String("BVPS"))
            qDebug() << "11===>cellVal:" << cell.value;
        return cell.value.toDouble();
    }
    if (type.contains(QLatin1String("string"), Qt::CaseInsensitive))
        return cell.value.toString().left(10);
    return cell.value;
}

QVariant TFSubjectTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignCenter);
    if (!m_header)
        return 0;
    if (section < 0 || section >= m_captions.size())
        return QVariant();
    if (role == Qt::DisplayRole)
        return m_captions.at(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags TFSubjectTableModel::flags(const QModelIndex& index) const
{
    Q_UNUSED(index)
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled;
}

void TFSubjectTableModel::setHeader(TFTreeStruct* header)
{
    m_header = nullptr;
    m_captions.clear();
    m_leafRecords.clear();
    m_publishNames.clear();
    m_colorColumns.clear();
    forgetKeptValues();
    emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    if (!header)
        return;

    m_header = header;
    m_captions = header->leafCaptions();
    const QList<TFTreeStruct*> leaves = header->leaves();
    for (int i = 0; i < leaves.size(); ++i)
        m_leafRecords.insert(i, leaves.at(i)->info());

    // Cells are published under "$" + the field name of the leaf record at
    // their index; cells beyond the records all go to "$".
    m_publishNames.reserve(leaves.size());
    for (int i = 0; i < leaves.size(); ++i)
        m_publishNames.append(QStringLiteral("$%1").arg(m_leafRecords.value(i).fieldName));

    m_colorColumns.resize(leaves.size());
    for (int i = 0; i < leaves.size(); ++i) {
        ColorColumn& column = m_colorColumns[i];
        column.expression = m_leafRecords.value(i).cellStyleExpression;
        if (column.expression.isEmpty())
            continue;
        const TFCellStyleEngine::ExpressionInfo info = TFCellStyleEngine::inspect(column.expression);
        // A kept colour is right only if everything the expression reads is
        // published from the row itself, or is the skin.
        column.keepable = info.pure;
        for (const QString& name : info.globals) {
            int index = m_publishNames.indexOf(name);
            if (index < 0 && name == QLatin1String("$"))
                index = m_publishNames.size();
            if (index < 0) {
                if (name != QLatin1String("$skin"))
                    column.keepable = false;
                continue;
            }
            // Every cell but the last is published.
            column.cellsNeeded = qMax(column.cellsNeeded, index + 2);
        }
    }
    emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void TFSubjectTableModel::setRows(const QList<RowData>& rows)
{
    m_rows = rows;
    forgetKeptValues();
    emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), QVector<int>());
}

void TFSubjectTableModel::clear()
{
    beginResetModel();
    m_rows.clear();
    forgetKeptValues();
    endResetModel();
}

void TFSubjectTableModel::setUnit(int exponent, int unitCategory)
{
    // Computed in floating point and truncated: "‰" and "BP" give 0, which
    // leaves their columns unscaled.
    const double factor = std::pow(10.0, exponent);
    m_unitFactor = factor >= double(std::numeric_limits<int>::max()) ? std::numeric_limits<int>::max()
                                                                     : int(factor);
    m_unitCategory = unitCategory;
    if (!m_rows.isEmpty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1),
                         QVector<int>{ Qt::DisplayRole });
}

void TFSubjectTableModel::getAllSelectedData(QList<QList<QVariant>>* const list)
{
    if (!list)
        return;
    const int columns = columnCount();
    for (const RowData& cells : qAsConst(m_rows)) {
        const int n = qMin(columns, cells.size());
        QList<QVariant> values;
        values.reserve(n);
        for (int column = 0; column < n; ++column)
            values.append(displayText(cells.at(column), column));
        list->append(values);
    }
}
