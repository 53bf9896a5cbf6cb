#include "filterwidget/tfsortview.h"
#include "ui_tfsortview.h"

#include "filterwidget/tfcustomsortfilterproxymodel.h"
#include "filterwidget/tfsecuritytablemodel.h"
#include "filterwidget/tfsortviewdelegate.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMessageBox>
#include <QSet>

TFSortView::TFSortView(const QStringList &fields, QWidget *parent)
    : QDialog(parent)
    , m_ui(new Ui::TFSortView)
    , m_model(new TFSecurityTableModel(this))
    , m_proxy(new TFCustomSortFilterProxyModel(this))
    , m_delegate(new TFSortViewDelegate(fields, {ascending(), descending()}, this))
    , m_fields(fields)
{
    m_ui->setupUi(this);
    m_proxy->setSourceModel(m_model);
    m_ui->tableView->setModel(m_proxy);
    m_ui->tableView->setItemDelegate(m_delegate);
    m_ui->tableView->horizontalHeader()->setStretchLastSection(true);
    m_ui->tableView->verticalHeader()->hide();
}

TFSortView::~TFSortView()
{
    delete m_ui;
}

QString TFSortView::ascending()
{
    return tr("升序");
}

QString TFSortView::descending()
{
    return tr("降序");
}

QAbstractItemView *TFSortView::view() const
{
    return m_ui->tableView;
}

int TFSortView::currentRow() const
{
    const QModelIndexList rows = m_ui->tableView->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return -1;
    return m_proxy->mapToSource(rows.first()).row();
}

void TFSortView::selectRow(int row)
{
    QItemSelectionModel *selection = m_ui->tableView->selectionModel();
    selection->clearSelection();
    const QModelIndex index = m_proxy->mapFromSource(m_model->index(row, 0));
    if (index.isValid())
        selection->select(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void TFSortView::on_pushButton_2_clicked()
{
    TFSortRecord record;
    record.key = QString::number(m_number);
    record.field = m_fields.value(0);
    record.order = ascending();
    m_model->insertRecord(record);
    updateEditorStatus();
    selectRow(m_model->rowCount() - 1);
    ++m_number;
}

void TFSortView::on_pushButton_3_clicked()
{
    if (m_model->rowCount() == 0)
        return;
    const int row = currentRow();
    if (row < 0)
        return;
    m_model->removeRecord(row);
    updateEditorStatus();
    selectRow(0);
}

void TFSortView::on_pushButton_6_clicked()
{
    QList<QPair<int, bool>> columns;
    QSet<int> seen;
    for (const TFSortRecord &record : m_model->recordsInKeyOrder()) {
        const int position = m_fields.indexOf(record.field);
        if (seen.contains(position)) {
            columns.clear();
            break;
        }
        seen.insert(position);
        columns.append(qMakePair(position, !record.order.contains(ascending())));
    }
    if (columns.isEmpty()) {
        if (!m_warning) {
            m_warning = new QMessageBox(QMessageBox::Warning, tr("Warning"),
                                        tr("排序列重复出现\n请清空重复排序列后重试!"), QMessageBox::Ok, this);
            m_warning->setAttribute(Qt::WA_DeleteOnClose);
        }
        m_warning->open();
        // A message box fixes its own size when it shows; the width is set behind that.
        m_warning->setFixedWidth(300);
        return;
    }
    m_sortColumns = columns;
    accept();
}

void TFSortView::on_pushButton_7_clicked()
{
    m_model->clearRecords();
}

void TFSortView::on_moveUp_clicked()
{
    updateCurSeleted(true);
}

void TFSortView::on_moveDown_clicked()
{
    updateCurSeleted(false);
}

void TFSortView::updateCurSeleted(bool up)
{
    const int count = m_model->rowCount();
    const int row = currentRow();
    if (count == 0 || row < 0)
        return;
    int next = up ? row - 1 : row + 1;
    if (next >= count)
        next = 0;
    else if (next < 0)
        next = count - 1;
    selectRow(next);
}

void TFSortView::updateCurSeleted()
{
    updateCurSeleted(false);
}

void TFSortView::updateEditorStatus()
{
    QAbstractItemView *view = m_ui->tableView;
    for (int row = 0; row < m_proxy->rowCount(); ++row) {
        for (int column = 0; column < m_proxy->columnCount(); ++column) {
            const QModelIndex index = m_proxy->index(row, column);
            view->closePersistentEditor(index);
            view->openPersistentEditor(index);
        }
    }
}

void TFSortView::on_closeBtn_clicked()
{
    reject();
}
