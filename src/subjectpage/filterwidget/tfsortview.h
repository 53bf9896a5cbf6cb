#pragma once

#include <QDialog>
#include <QMessageBox>
#include <QList>
#include <QPair>
#include <QPointer>
#include <QStringList>


class QAbstractItemView;
class TFCustomSortFilterProxyModel;
class TFSecurityTableModel;
class TFSortViewDelegate;

namespace Ui {
class TFSortView;
}

// The sort dialog: the user lists sort columns, each ascending or
// descending, and confirms. The result is, per row, the position of the
// chosen field among the dialog's captions and whether it is descending; a
// field chosen twice is refused with a warning and the dialog stays open.
class TFSortView : public QDialog
{
    Q_OBJECT
public:
    explicit TFSortView(const QStringList &fields, QWidget *parent = nullptr);
    ~TFSortView() override;

    TFSecurityTableModel *model() const { return m_model; }
    QAbstractItemView *view() const;
    // The first selected row of the model, or -1.
    int currentRow() const;
    // What the last confirmation accepted: (field position, descending).
    QList<QPair<int, bool>> sortColumns() const { return m_sortColumns; }
    // The open warning, if any.
    QMessageBox *warning() const { return m_warning.data(); }

    static QString ascending();
    static QString descending();

public slots:
    void on_pushButton_2_clicked();     // add a row
    void on_pushButton_3_clicked();     // remove the selected row
    void on_pushButton_6_clicked();     // confirm
    void on_pushButton_7_clicked();     // remove every row
    void on_moveUp_clicked();
    void on_moveDown_clicked();
    void updateCurSeleted(bool up);
    void updateCurSeleted();
    void updateEditorStatus();
    void on_closeBtn_clicked();

private:
    void selectRow(int row);

    Ui::TFSortView *m_ui;
    TFSecurityTableModel *m_model;
    TFCustomSortFilterProxyModel *m_proxy;
    TFSortViewDelegate *m_delegate;
    QStringList m_fields;
    int m_number = 0;
    QList<QPair<int, bool>> m_sortColumns;
    QPointer<QMessageBox> m_warning;
};
