#pragma once

#include "tfmenucfg.h"
#include "tfverticalcontainer.h"

#include <QJsonValue>
#include <QPair>
#include <QVariant>

class QStandardItem;
class QStandardItemModel;
class QTreeView;

// The left side of the main frame: the tree of topics above the tree of
// sectors. A click on a node with a view opens that view; a node with an
// address opens the web page.
//
// This is the frame's working form of the tree: plain item models built from
// the navigation rows, without the search line, the filter proxy and the row
// painting that the full tree widget adds.
class TFTreeWidgetContainer : public TFVerticalContainer
{
    Q_OBJECT
public:
    enum Role {
        CodeRole = Qt::UserRole + 2,
        ParentCodeRole = Qt::UserRole + 3,
        NodeTypeRole = Qt::UserRole + 4,
        LevelRole = Qt::UserRole + 5,
        ViewIdRole = Qt::UserRole + 6,
        UrlRole = Qt::UserRole + 7,
    };

    explicit TFTreeWidgetContainer(QWidget *parent = nullptr);

    // Each builds a new tree from the rows, selects a node and opens it;
    // false when the rows give no tree.
    bool loadMainTreeByName(const TFMenuCfg::MenuItem &record, const QJsonValue &rows, int rootCode,
                            const QString &text);
    bool loadMainTreeByCode(const QString &code, const QJsonValue &rows, int rootCode, const QString &text);
    // A null value keeps a block tree that has rows; anything else replaces it.
    void loadBlockTree(const QJsonValue &rows);
    // ("filterBlock", the JSON array of the checked sector codes).
    QPair<QString, QVariant> blockFilter() const;

    QTreeView *mainTreeView() const { return m_mainView; }
    QTreeView *blockTreeView() const { return m_blockView; }
    QStandardItemModel *mainTreeModel() const { return m_mainModel; }
    QStandardItemModel *blockTreeModel() const { return m_blockModel; }

signals:
    void signalItemClicked(qlonglong obj_vw_id, QString title, QString url = QString());
    void groupChanged(QString text);

public slots:
    void setRootSector(QString rootItem);
    void slotSetSector(QString sectorNum);
    void slotMainTreeItemClicked(QStandardItem *item);

private:
    bool buildMainModel(const QJsonValue &rows, int rootCode);
    QModelIndex findByText(const QString &text, bool firstHit, qlonglong viewId) const;
    QModelIndex findByCode(const QString &code) const;
    QModelIndex findBlockForCheck(const QString &text) const;
    void open(QModelIndex index, const QString &text);
    void mainTreeClicked(const QModelIndex &index);
    void resetBlockTree();

    QTreeView *m_mainView;
    QTreeView *m_blockView;
    QStandardItemModel *m_mainModel = nullptr;
    QStandardItemModel *m_blockModel = nullptr;
    qint64 m_lastViewId = -1;
};
