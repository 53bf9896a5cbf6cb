#include "filterwidget/tfsortviewdelegate.h"

#include "filterwidget/tfcomboxview.h"

TFSortViewDelegate::TFSortViewDelegate(const QStringList &fields, const QStringList &orders, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_fields(fields)
    , m_orders(orders)
{
}

QWidget *TFSortViewDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                          const QModelIndex &index) const
{
    auto *editor = new TFComboxView(parent);
    editor->setItems(index.column() == 0 ? m_fields : m_orders);
    connect(editor, &TFComboxView::currentTextChanged, this, &TFSortViewDelegate::commitAndCloseEditor);
    return editor;
}

void TFSortViewDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    if (auto *list = qobject_cast<TFComboxView *>(editor)) {
        const QSignalBlocker blocker(list);
        list->setCurrentText(index.data(Qt::EditRole).toString());
    }
}

void TFSortViewDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    if (auto *list = qobject_cast<TFComboxView *>(editor))
        model->setData(index, list->currentText(), Qt::EditRole);
}

void TFSortViewDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                              const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}

void TFSortViewDelegate::commitAndCloseEditor(QString code)
{
    Q_UNUSED(code)
    auto *editor = qobject_cast<TFComboxView *>(sender());
    if (!editor)
        return;
    emit commitData(editor);
    emit closeEditor(editor);
}
