#pragma once

#include <QStringList>
#include <QStyledItemDelegate>

// Edits the sort dialog's cells with lists: the field captions in the first
// column, the two direction words in the second. A choice is written to the
// model at once.
class TFSortViewDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    TFSortViewDelegate(const QStringList &fields, const QStringList &orders, QObject *parent = nullptr);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

public slots:
    void commitAndCloseEditor(QString code);

private:
    QStringList m_fields;
    QStringList m_orders;
};
