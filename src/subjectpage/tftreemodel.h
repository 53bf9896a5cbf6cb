#pragma once

#include <QAbstractItemModel>
#include <QJsonObject>
#include <QJsonValue>
#include <QSet>
#include <QStandardItem>
#include <QVariantList>

// One node of a navigation tree. The text is the node's caption; the other
// values of the row sit under the roles below.
class TFTreeItem : public QStandardItem
{
public:
    enum Role {
        CodeRole = Qt::UserRole + 2,
        ParentCodeRole = Qt::UserRole + 3,
        NodeTypeRole = Qt::UserRole + 4,
        LevelRole = Qt::UserRole + 5,
        ViewIdRole = Qt::UserRole + 6,
        UrlRole = Qt::UserRole + 7,
    };

    TFTreeItem();

    qlonglong code() const { return data(CodeRole).toLongLong(); }
    qlonglong parentCode() const { return data(ParentCodeRole).toLongLong(); }
    qlonglong level() const { return data(LevelRole).toLongLong(); }
    qlonglong viewId() const { return data(ViewIdRole).toLongLong(); }
    QString url() const { return data(UrlRole).toString(); }
};

// The navigation rows, one flat array whose rows name their parent by code,
// as a tree. The main tree of topics reads NODE_* keys; the block tree of
// sectors reads SECT_* keys and is checkable, a check reaching every
// descendant.
class TFSubjectTreeModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    explicit TFSubjectTreeModel(QObject *parent = nullptr);
    ~TFSubjectTreeModel() override;

    bool build(const QJsonValue &rows, int rootCode, bool checkable);
    void clearChecks();
    QVariantList checkedCodes() const;
    bool isCheckable() const { return m_checkable; }

    TFTreeItem *rootItem() const { return m_root; }
    TFTreeItem *itemFromIndex(const QModelIndex &index) const;

    static TFTreeItem *createTreeNode(const QJsonObject &row);
    static TFTreeItem *createBlockTreeNode(const QJsonObject &row);

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    QModelIndex indexOfItem(QStandardItem *item) const;

    TFTreeItem *m_root;
    QSet<QModelIndex> m_checked;
    bool m_checkable = false;
};
