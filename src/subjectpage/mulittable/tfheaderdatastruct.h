#pragma once

#include "jsonparser/headerfieldinfo.h"

#include <QList>
#include <QString>
#include <QStringList>

// The band header of a table: inner nodes are bands, leaves are the data
// columns. The index of a leaf in the root's leaf list is the column index in
// the model and the cell index in a row, so the model, the view and the
// workbook writer all walk this one tree.
//
// Leaves are cached on first request and the cache is emptied only by
// addChild on the same node, so a tree is built bottom-up.
class TFTreeStruct
{
public:
    explicit TFTreeStruct(const QString& caption);
    explicit TFTreeStruct(const HeaderFieldInfo& info);
    ~TFTreeStruct();

    TFTreeStruct(const TFTreeStruct&) = delete;
    TFTreeStruct& operator=(const TFTreeStruct&) = delete;

    const HeaderFieldInfo& info() const { return m_info; }
    HeaderFieldInfo& info() { return m_info; }
    TFTreeStruct* parent() const { return m_parent; }

    void addChild(TFTreeStruct* child);
    QList<TFTreeStruct*> children() const { return m_children; }
    void clearChildren();
    bool hasChildren(const TFTreeStruct* node = nullptr) const;

    int depth() const;
    QList<TFTreeStruct*> leaves() const;
    QList<HeaderFieldInfo*> leafRecords() const;
    QStringList leafCaptions() const;
    QList<TFTreeStruct*> nodesAtLevel(int level, int current = 1) const;

    QString currentUnit() const { return m_currentUnit; }
    QString firstUnit() const;
    QList<int> hiddenLeafIndexes() const;
    TFTreeStruct* findField(const QString& fieldName);

    void updateUnit(QString unit, int unitCategory);
    void updateChildUnit();
    void setUnitFactors(qint64 showUnitFactor, qint64 prevUnitFactor, int unitCategory);
    void showBands();

    QString displayCaption() const { return m_displayCaption; }

private:
    HeaderFieldInfo m_info;
    mutable QList<TFTreeStruct*> m_leaves;
    QString m_text1;                    // reserved
    QString m_text2;                    // reserved
    TFTreeStruct* m_parent = nullptr;
    QList<TFTreeStruct*> m_children;
    QString m_currentUnit;
    QString m_displayCaption;
};

// Builds the band header from a flat field list: hidden fields get no node,
// a grouped view gets a hidden leaf for its group field at the far right,
// fields hang under the band their ownerBand names, and a top-level band
// with factors hands them down to its columns. The root's old children are
// deleted first.
void buildHeaderTree(TFTreeStruct* root, const QList<HeaderFieldInfo>& fields,
                     bool isGroup, const QString& groupFields);
