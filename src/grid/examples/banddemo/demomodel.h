#pragma once

#include <QAbstractTableModel>
#include <QVector>

// Made-up quotes of a few dozen securities, enough to show the grid.
class DemoModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Code, Name, Industry, Close, Change, ChangePct, Volume, Amount, Pe, Pb,
                  Report, Memo, ColumnCount };
    explicit DemoModel(int rows, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        QString code, name, industry;
        double close, change, volume, amount, pe, pb;
    };
    QVector<Row> m_rows;
};
