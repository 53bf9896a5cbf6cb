#pragma once

#include <QAbstractItemModel>
#include <QMap>
#include <QString>
#include <QStringList>

// One row of the sort dialog: a running number as key, a check state the
// dialog does not read, the caption of the sort field and the direction word.
struct TFSortRecord
{
    QString key;
    qint32 checked = 0;
    QString field;
    QString order;
};

// A table of records kept by key, in the order they were inserted, each of
// which can be ticked. Column 0 shows the field (and the tick), column 1 the
// direction; both are editable.
class TFSecurityTableModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column { FieldColumn, OrderColumn, ColumnCount };

    explicit TFSecurityTableModel(QObject *parent = nullptr);

    // Appends a row; false, and nothing changes, when the key is taken.
    bool insertRecord(const TFSortRecord &record);
    // False for a row outside the model.
    bool removeRecord(int row);
    void clearRecords();

    QStringList keys() const { return m_keys; }
    TFSortRecord record(int row) const;
    // The records by key: keys are texts, so "10" comes before "2".
    QList<TFSortRecord> recordsInKeyOrder() const { return m_records.values(); }
    Qt::CheckState checkState(const QString &key) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

signals:
    void signalCheckStateChanged(Qt::CheckState state);
    void signalChecked();

public slots:
    // Ticks or unticks every row.
    void slotCheckStateChanged(Qt::CheckState state);

private:
    QStringList m_keys;
    QMap<QString, Qt::CheckState> m_checkStates;
    QMap<QString, TFSortRecord> m_records;
};
