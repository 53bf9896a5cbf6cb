#pragma once

#include "tfmenucfg.h"

#include <QModelIndex>
#include <QVariantList>
#include <QWidget>

class QStandardItem;
class QTreeView;
class QVBoxLayout;
class TFSearchWidget;
class TFSubjectTreeModel;
class TFTreeFilterProxyModel;

// A search line over a navigation tree: the main tree of topics, or the
// checkable block tree of sectors.
class TFSubjectTreeWidget : public QWidget
{
    Q_OBJECT
public:
    explicit TFSubjectTreeWidget(bool block, QWidget *parent = nullptr);

    // Takes the model over and deletes the one before; null is ignored.
    void setModel(TFSubjectTreeModel *model);
    TFSubjectTreeModel *model() const { return m_model; }
    bool hasRows() const;
    QVariantList checkedCodes() const;
    void reset();

    void selectByName(const TFMenuCfg::MenuItem &record, const QString &text);
    void selectByCode(const QString &code, const QString &text);

    QTreeView *treeView() const { return m_view; }
    TFTreeFilterProxyModel *proxyModel() const { return m_proxy; }
    TFSearchWidget *searchWidget() const { return m_search; }

signals:
    void signalItemClicked(QStandardItem *item);
    void currentTopNodeTextChanged(QString text);

public slots:
    void slotSearch(QString text);
    void setRootSector(QString rootItem);
    void slotCheckItem(QString text);
    void slotItemClicked(QModelIndex index);
    void slotDoubleClicked(QModelIndex index);
    void slotExpanded(QModelIndex index);

private:
    QStandardItem *sourceItem(const QModelIndex &index) const;
    QModelIndex firstTopLevel() const;
    QModelIndex findByText(const QString &text, bool firstHit, qlonglong viewId) const;
    QModelIndex findByCode(const QString &code) const;
    QModelIndex findForCheck(const QString &text) const;
    void open(QModelIndex index, const QString &text);
    void expandSubtree(const QModelIndex &index);

    bool m_block;
    QTreeView *m_view;
    TFSubjectTreeModel *m_model = nullptr;
    TFTreeFilterProxyModel *m_proxy;
    QVBoxLayout *m_outerLayout;
    QVBoxLayout *m_innerLayout;
    TFSearchWidget *m_search;
};
