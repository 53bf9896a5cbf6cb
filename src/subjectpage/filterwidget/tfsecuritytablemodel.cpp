#include "filterwidget/tfsecuritytablemodel.h"

TFSecurityTableModel::TFSecurityTableModel(QObject *parent)
    : QAbstractItemModel(parent)
{
}

bool TFSecurityTableModel::insertRecord(const TFSortRecord &record)
{
    if (m_records.contains(record.key))
        return false;
    const int row = m_keys.size();
    beginInsertRows(QModelIndex(), row, row);
    m_keys.append(record.key);
    m_records.insert(record.key, record);
    endInsertRows();
    return true;
}

bool TFSecurityTableModel::removeRecord(int row)
{
    if (row < 0 || row >= m_keys.size())
        return false;
    beginRemoveRows(QModelIndex(), row, row);
    const QString key = m_keys.takeAt(row);
    m_records.remove(key);
    m_checkStates.remove(key);
    endRemoveRows();
    return true;
}

void TFSecurityTableModel::clearRecords()
{
    beginResetModel();
    m_keys.clear();
    m_records.clear();
    m_checkStates.clear();
    endResetModel();
}

TFSortRecord TFSecurityTableModel::record(int row) const
{
    return m_records.value(m_keys.value(row));
}

Qt::CheckState TFSecurityTableModel::checkState(const QString &key) const
{
    return m_checkStates.value(key, Qt::Unchecked);
}

QModelIndex TFSecurityTableModel::index(int row, int column, const QModelIndex &parent) const
{
    if (parent.isValid() || row < 0 || row >= m_keys.size() || column < 0 || column >= ColumnCount)
        return QModelIndex();
    return createIndex(row, column);
}

QModelIndex TFSecurityTableModel::parent(const QModelIndex &) const
{
    return QModelIndex();
}

int TFSecurityTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_keys.size();
}

int TFSecurityTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant TFSecurityTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_keys.size())
        return QVariant();
    const QString key = m_keys.at(index.row());
    const TFSortRecord record = m_records.value(key);
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return index.column() == FieldColumn ? record.field : record.order;
    if (role == Qt::CheckStateRole && index.column() == FieldColumn)
        return checkState(key);
    return QVariant();
}

bool TFSecurityTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.row() >= m_keys.size())
        return false;
    const QString key = m_keys.at(index.row());
    if (role == Qt::CheckStateRole && index.column() == FieldColumn) {
        m_checkStates.insert(key, Qt::CheckState(value.toInt()));
        emit dataChanged(index, index, {Qt::CheckStateRole});
        emit signalChecked();
        return true;
    }
    if (role != Qt::EditRole)
        return false;
    TFSortRecord &record = m_records[key];
    (index.column() == FieldColumn ? record.field : record.order) = value.toString();
    emit dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
    return true;
}

Qt::ItemFlags TFSecurityTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
    if (index.column() == FieldColumn)
        f |= Qt::ItemIsUserCheckable;
    return f;
}

QVariant TFSecurityTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractItemModel::headerData(section, orientation, role);
    if (section == FieldColumn)
        return tr("排序列");
    if (section == OrderColumn)
        return tr("排序方式");
    return QVariant();
}

void TFSecurityTableModel::slotCheckStateChanged(Qt::CheckState state)
{
    for (const QString &key : qAsConst(m_keys))
        m_checkStates.insert(key, state);
    if (!m_keys.isEmpty())
        emit dataChanged(index(0, FieldColumn), index(m_keys.size() - 1, FieldColumn), {Qt::CheckStateRole});
    emit signalCheckStateChanged(state);
}
