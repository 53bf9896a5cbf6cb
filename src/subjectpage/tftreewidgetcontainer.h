#pragma once

#include "tfmenucfg.h"
#include "tfverticalcontainer.h"

#include <QJsonValue>
#include <QPair>
#include <QVariant>

class QStandardItem;
class QTreeView;
class TFSubjectTreeModel;
class TFSubjectTreeWidget;

// The left side of the main frame: the tree of topics above the tree of
// sectors. A click on a node with a view opens that view; a node with an
// address opens the web page.
class TFTreeWidgetContainer : public TFVerticalContainer
{
    Q_OBJECT
public:
    explicit TFTreeWidgetContainer(QWidget *parent = nullptr);

    // Each builds a new tree from the rows, selects a node and opens it, and
    // returns whether the rows gave a tree.
    bool loadMainTreeByName(const TFMenuCfg::MenuItem &record, const QJsonValue &rows, int rootCode,
                            const QString &text);
    bool loadMainTreeByCode(const QString &code, const QJsonValue &rows, int rootCode, const QString &text);
    // A null value keeps a block tree that has rows; anything else replaces it.
    void loadBlockTree(const QJsonValue &rows);
    // ("filterBlock", the JSON array of the checked sector codes): goes into every data request.
    QPair<QString, QVariant> blockFilter() const;

    TFSubjectTreeWidget *mainTree() const { return m_mainTree; }
    TFSubjectTreeWidget *blockTree() const { return m_blockTree; }
    QTreeView *mainTreeView() const;
    QTreeView *blockTreeView() const;
    TFSubjectTreeModel *mainTreeModel() const;
    TFSubjectTreeModel *blockTreeModel() const;

signals:
    void signalItemClicked(qlonglong obj_vw_id, QString title, QString url = QString());
    void groupChanged(QString text);

public slots:
    void setRootSector(QString rootItem);
    void slotSetSector(QString sectorNum);
    void slotMainTreeItemClicked(QStandardItem *item);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TFSubjectTreeModel *newMainModel(const QJsonValue &rows, int rootCode, bool *built);

    TFSubjectTreeWidget *m_mainTree;
    TFSubjectTreeWidget *m_blockTree;
    qint64 m_lastViewId = -1;
};
