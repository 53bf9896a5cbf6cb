#include "tfheaderdatastruct.h"

#include <QDebug>
#include <QSet>

namespace {

bool isUnitBearing(const QString& columnType)
{
    return columnType.compare(QLatin1String("BandedGridColumnWithUnit"), Qt::CaseInsensitive) == 0
        || columnType.compare(QLatin1String("Band"), Qt::CaseInsensitive) == 0;
}

} // namespace

TFTreeStruct::TFTreeStruct(const QString& caption)
    : m_displayCaption(caption)
{
}

TFTreeStruct::TFTreeStruct(const HeaderFieldInfo& info)
    : m_info(info)
    , m_currentUnit(info.showUnit)
    , m_displayCaption(info.caption)
{
    updateUnit(m_info.showUnit, m_info.unitCategory);
}

TFTreeStruct::~TFTreeStruct()
{
    qDeleteAll(m_children);
}

void TFTreeStruct::addChild(TFTreeStruct* child)
{
    child->m_parent = this;
    m_children.append(child);
    m_leaves.clear();
}

void TFTreeStruct::clearChildren()
{
    qDeleteAll(m_children);
    m_children.clear();
    // The cached leaves were among the deleted nodes.
    m_leaves.clear();
}

bool TFTreeStruct::hasChildren(const TFTreeStruct* node) const
{
    return !(node ? node : this)->m_children.isEmpty();
}

int TFTreeStruct::depth() const
{
    int deepest = 0;
    for (const TFTreeStruct* child : m_children)
        deepest = qMax(deepest, child->depth());
    return 1 + deepest;
}

QList<TFTreeStruct*> TFTreeStruct::leaves() const
{
    if (m_leaves.isEmpty() && !m_children.isEmpty()) {
        for (TFTreeStruct* child : m_children) {
            if (child->m_children.isEmpty())
                m_leaves.append(child);
            else
                m_leaves.append(child->leaves());
        }
    }
    return m_leaves;
}

QList<HeaderFieldInfo*> TFTreeStruct::leafRecords() const
{
    QList<HeaderFieldInfo*> records;
    const QList<TFTreeStruct*> all = leaves();
    records.reserve(all.size());
    for (const TFTreeStruct* leaf : all)
        records.append(new HeaderFieldInfo(leaf->m_info));
    return records;
}

QStringList TFTreeStruct::leafCaptions() const
{
    QStringList captions;
    const QList<TFTreeStruct*> all = leaves();
    captions.reserve(all.size());
    for (const TFTreeStruct* leaf : all)
        captions.append(leaf->m_displayCaption);
    return captions;
}

QList<TFTreeStruct*> TFTreeStruct::nodesAtLevel(int level, int current) const
{
    if (current == level)
        return m_children;
    QList<TFTreeStruct*> nodes;
    if (current > level)
        return nodes;
    for (const TFTreeStruct* child : m_children)
        nodes.append(child->nodesAtLevel(level, current + 1));
    return nodes;
}

QString TFTreeStruct::firstUnit() const
{
    if (!m_currentUnit.isEmpty())
        return m_currentUnit;
    for (const TFTreeStruct* child : m_children) {
        const QString unit = child->firstUnit();
        if (!unit.isEmpty())
            return unit;
    }
    return QString();
}

QList<int> TFTreeStruct::hiddenLeafIndexes() const
{
    QList<int> indexes;
    const QList<TFTreeStruct*> all = leaves();
    for (int i = 0; i < all.size(); ++i) {
        if (!all.at(i)->m_info.visible)
            indexes.append(i);
    }
    return indexes;
}

TFTreeStruct* TFTreeStruct::findField(const QString& fieldName)
{
    if (m_info.fieldName == fieldName)
        return this;
    for (TFTreeStruct* child : qAsConst(m_children)) {
        if (TFTreeStruct* found = child->findField(fieldName))
            return found;
    }
    return nullptr;
}

void TFTreeStruct::updateUnit(QString unit, int unitCategory)
{
    // Descendants first, so a band is handled after its columns. The caption
    // is always rebuilt from the untouched configured one, so units never
    // stack up.
    for (TFTreeStruct* child : qAsConst(m_children))
        child->updateUnit(unit, unitCategory);

    if (!isUnitBearing(m_info.columnType))
        return;
    if (m_info.unitCategory == unitCategory && !m_info.showUnit.isEmpty()
        && (m_info.captionShowType == 1 || m_info.captionShowType == 3)) {
        m_currentUnit = unit;
        m_displayCaption = m_info.caption + QLatin1Char('(') + unit + QLatin1Char(')');
    }
}

void TFTreeStruct::updateChildUnit()
{
    if (m_children.isEmpty() || m_info.showUnitFactor == 0 || m_info.unitCategory == 0)
        return;
    qDebug() << "unit test:" << m_info.showUnitFactor << m_info.prevUnitFactor << m_info.unitCategory
             << m_displayCaption << true << m_info.fieldName << m_info.showUnit;
    setUnitFactors(m_info.showUnitFactor, m_info.prevUnitFactor, m_info.unitCategory);
}

void TFTreeStruct::setUnitFactors(qint64 showUnitFactor, qint64 prevUnitFactor, int unitCategory)
{
    m_info.showUnitFactor = showUnitFactor;
    m_info.prevUnitFactor = prevUnitFactor;
    m_info.unitCategory = unitCategory;
    for (TFTreeStruct* child : qAsConst(m_children))
        child->setUnitFactors(showUnitFactor, prevUnitFactor, unitCategory);
}

void TFTreeStruct::showBands()
{
    for (TFTreeStruct* child : qAsConst(m_children)) {
        if (!child->m_children.isEmpty())
            child->m_info.visible = true;
    }
}

namespace {

bool isAncestorOrSelf(const TFTreeStruct* candidate, const TFTreeStruct* node)
{
    for (const TFTreeStruct* n = node; n; n = n->parent()) {
        if (n == candidate)
            return true;
    }
    return false;
}

} // namespace

void buildHeaderTree(TFTreeStruct* root, const QList<HeaderFieldInfo>& fields,
                     bool isGroup, const QString& groupFields)
{
    // Hidden fields get no node: a hidden band takes its columns with it,
    // since they find no parent and are not top level.
    QList<TFTreeStruct*> nodes;
    for (const HeaderFieldInfo& field : fields) {
        if (field.visible)
            nodes.append(new TFTreeStruct(field));
    }
    if (isGroup) {
        HeaderFieldInfo group;
        group.fieldName = groupFields;
        group.caption = groupFields;
        group.visible = false;
        group.level = 1;
        nodes.append(new TFTreeStruct(group));
    }

    // Every node collects the nodes that name it as their band. A node is
    // hung under one band only, the first of that name, and never under
    // itself or its own descendants, so that duplicate or circular names in
    // a configuration still give a tree.
    const auto isTopLevel = [](const TFTreeStruct* node) {
        const QString& owner = node->info().ownerBand;
        return owner.isEmpty() || owner == QLatin1String("0");
    };
    QList<TFTreeStruct*> topLevel;
    QSet<TFTreeStruct*> attached;
    for (TFTreeStruct* node : qAsConst(nodes)) {
        if (isTopLevel(node))
            topLevel.append(node);
        for (TFTreeStruct* child : qAsConst(nodes)) {
            if (child->info().ownerBand != node->info().fieldName || isTopLevel(child)
                || attached.contains(child) || isAncestorOrSelf(child, node))
                continue;
            node->addChild(child);
            attached.insert(child);
        }
    }

    root->clearChildren();
    for (TFTreeStruct* node : qAsConst(topLevel)) {
        node->updateChildUnit();
        root->addChild(node);
    }

    // Nodes that hang under nothing that reaches the root have no column;
    // free them from the top of each such piece.
    QList<TFTreeStruct*> detached;
    for (TFTreeStruct* node : qAsConst(nodes)) {
        if (!node->parent())
            detached.append(node);
    }
    qDeleteAll(detached);
}
