#include "tfsubjecttreewidget.h"

#include "tfrowdelegate.h"
#include "tfsearchwidget.h"
#include "tftreefilterproxymodel.h"
#include "tftreemodel.h"

#include <QHeaderView>
#include <QRegularExpression>
#include <QTreeView>
#include <QVBoxLayout>

TFSubjectTreeWidget::TFSubjectTreeWidget(bool block, QWidget *parent)
    : QWidget(parent)
    , m_block(block)
    , m_view(new QTreeView(this))
    , m_proxy(new TFTreeFilterProxyModel(this))
    , m_outerLayout(new QVBoxLayout(this))
    , m_innerLayout(new QVBoxLayout)
    , m_search(new TFSearchWidget(this))
{
    m_outerLayout->addWidget(m_search);
    m_outerLayout->addLayout(m_innerLayout);
    m_innerLayout->addWidget(m_view);
    m_innerLayout->setSpacing(0);
    m_innerLayout->setContentsMargins(12, 0, 12, 0);
    m_outerLayout->setSpacing(0);
    m_outerLayout->setContentsMargins(0, 0, 0, 1);
    setObjectName(QStringLiteral("TreeWidget"));

    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setAnimated(true);
    m_view->header()->hide();
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_view->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_view->setObjectName(block ? QStringLiteral("BlockTreeView") : QStringLiteral("SubjectTreeView"));
    m_view->setItemDelegate(new TFRowDelegate(block, m_view));

    connect(m_search, &TFSearchWidget::signalSearch, this, &TFSubjectTreeWidget::slotSearch);
    connect(m_view, &QTreeView::clicked, this, &TFSubjectTreeWidget::slotItemClicked);
    connect(m_view, &QTreeView::doubleClicked, this, &TFSubjectTreeWidget::slotDoubleClicked);
    connect(m_view, &QTreeView::expanded, this, &TFSubjectTreeWidget::slotExpanded);
}

void TFSubjectTreeWidget::setModel(TFSubjectTreeModel *model)
{
    if (!model)
        return;
    TFSubjectTreeModel *old = m_model;
    m_model = model;
    m_model->setParent(this);
    m_proxy->setSourceModel(m_model);
    m_proxy->setFilterKeyColumn(0);
    m_proxy->setFilterRole(Qt::DisplayRole);
    m_view->setModel(m_proxy);
    delete old;
}

bool TFSubjectTreeWidget::hasRows() const
{
    return m_model && m_model->rowCount() > 0;
}

QVariantList TFSubjectTreeWidget::checkedCodes() const
{
    return m_model ? m_model->checkedCodes() : QVariantList();
}

void TFSubjectTreeWidget::reset()
{
    if (m_model)
        m_model->clearChecks();
    m_view->collapseAll();
}

QStandardItem *TFSubjectTreeWidget::sourceItem(const QModelIndex &index) const
{
    if (!m_model || !index.isValid())
        return nullptr;
    const QModelIndex source = index.model() == m_proxy ? m_proxy->mapToSource(index) : index;
    return m_model->itemFromIndex(source);
}

QModelIndex TFSubjectTreeWidget::firstTopLevel() const
{
    QAbstractItemModel *model = m_view->model();
    return model ? model->index(0, 0) : QModelIndex();
}

void TFSubjectTreeWidget::slotSearch(QString text)
{
    // The text is a pattern, and its last character may repeat: "ab" also finds "abb".
    const QRegularExpression filter = text.isEmpty()
        ? QRegularExpression()
        : QRegularExpression(text + QLatin1Char('+'), QRegularExpression::CaseInsensitiveOption);
    m_proxy->setFilterRegularExpression(filter);
    m_view->collapseAll();

    // Every search, an empty one too, opens the first leaf that is left.
    QModelIndex last;
    for (QModelIndex walk = firstTopLevel(); walk.isValid(); walk = walk.model()->index(0, 0, walk)) {
        m_view->expand(walk);
        last = walk;
    }
    m_view->setCurrentIndex(last);
    slotItemClicked(last);
}

QModelIndex TFSubjectTreeWidget::findForCheck(const QString &text) const
{
    QAbstractItemModel *model = m_view->model();
    const QModelIndex start = firstTopLevel();
    if (!model || !start.isValid())
        return QModelIndex();
    QModelIndexList hits = model->match(start, Qt::DisplayRole, text, -1,
                                        Qt::MatchFixedString | Qt::MatchRecursive);
    if (hits.isEmpty()) // a sector may be named by its code
        hits = model->match(start, TFTreeItem::CodeRole, text.toInt(), -1, Qt::MatchRecursive);
    return hits.value(0);
}

void TFSubjectTreeWidget::setRootSector(QString rootItem)
{
    if (rootItem.isEmpty())
        return;
    const QModelIndex index = findForCheck(rootItem);
    if (index.isValid())
        m_view->setRootIndex(index);
}

void TFSubjectTreeWidget::slotCheckItem(QString text)
{
    if (text.isEmpty() || !m_model)
        return;
    QModelIndex index = findForCheck(text);
    if (index.isValid())
        m_view->model()->setData(index, Qt::Checked, Qt::CheckStateRole);
    for (; index.isValid(); index = index.parent())
        m_view->expand(index);
    // The walk ends on an invalid index, which leaves the view with no current row.
    m_view->setCurrentIndex(index);
}

void TFSubjectTreeWidget::slotItemClicked(QModelIndex index)
{
    QStandardItem *item = sourceItem(index);
    if (item)
        emit signalItemClicked(item);
    if (item && item->hasChildren())
        return;
    for (QModelIndex parent = index.parent(); parent.isValid(); parent = parent.parent()) {
        QStandardItem *ancestor = sourceItem(parent);
        if (!ancestor)
            return;
        if (ancestor->data(TFTreeItem::LevelRole).toLongLong() == 1) {
            emit currentTopNodeTextChanged(ancestor->text());
            return;
        }
    }
}

void TFSubjectTreeWidget::slotDoubleClicked(QModelIndex index)
{
    if (!index.isValid() || m_view->isExpanded(index))
        return;
    QStandardItem *item = sourceItem(index);
    if (item && item->data(TFTreeItem::LevelRole).toLongLong() == 1)
        expandSubtree(index);
}

void TFSubjectTreeWidget::slotExpanded(QModelIndex index)
{
    if (!index.isValid())
        return;
    QStandardItem *item = sourceItem(index);
    if (item && item->data(TFTreeItem::LevelRole).toLongLong() == 1)
        expandSubtree(index);
}

void TFSubjectTreeWidget::expandSubtree(const QModelIndex &index)
{
    // Opening a top-level group opens everything below it at once.
    const QAbstractItemModel *model = index.model();
    for (int row = 0; row < model->rowCount(index); ++row) {
        const QModelIndex child = model->index(row, 0, index);
        if (model->hasChildren(child))
            expandSubtree(child);
    }
    if (!m_view->isExpanded(index))
        m_view->expand(index);
}

QModelIndex TFSubjectTreeWidget::findByText(const QString &text, bool firstHit, qlonglong viewId) const
{
    QAbstractItemModel *model = m_view->model();
    const QModelIndex start = firstTopLevel();
    if (text.isEmpty() || !model || !start.isValid())
        return QModelIndex();
    const QModelIndexList hits = model->match(start, Qt::DisplayRole, text, -1,
                                              Qt::MatchExactly | Qt::MatchRecursive);
    if (firstHit)
        return hits.value(0);
    for (const QModelIndex &hit : hits) {
        QStandardItem *item = sourceItem(hit);
        if (item && item->data(TFTreeItem::ViewIdRole).toLongLong() == viewId)
            return hit;
    }
    return QModelIndex();
}

QModelIndex TFSubjectTreeWidget::findByCode(const QString &code) const
{
    QAbstractItemModel *model = m_view->model();
    const QModelIndex start = firstTopLevel();
    if (!model || !start.isValid())
        return QModelIndex();
    return model->match(start, TFTreeItem::CodeRole, QVariant(code), -1, Qt::MatchRecursive).value(0);
}

void TFSubjectTreeWidget::selectByName(const TFMenuCfg::MenuItem &record, const QString &text)
{
    QModelIndex index;
    if (hasRows()) {
        index = findByText(record.itemName, false, record.obj_vw_id);
        if (!index.isValid())
            index = findByText(record.sectorName, true, 0);
    }
    open(index, text);
}

void TFSubjectTreeWidget::selectByCode(const QString &code, const QString &text)
{
    QModelIndex index;
    if (hasRows())
        index = findByCode(code);
    open(index, text);
}

void TFSubjectTreeWidget::open(QModelIndex index, const QString &text)
{
    if (!index.isValid())
        index = firstTopLevel();
    if (!index.isValid())
        return; // an empty tree opens nothing
    // Go down to the child captioned with the text, or else by first children to a leaf.
    QModelIndex target = index;
    for (;;) {
        const QAbstractItemModel *model = target.model();
        QModelIndex named;
        if (!text.isEmpty()) {
            for (int row = 0; row < model->rowCount(target); ++row) {
                const QModelIndex child = model->index(row, 0, target);
                if (child.data(Qt::DisplayRole).toString() == text) {
                    named = child;
                    break;
                }
            }
        }
        if (named.isValid()) {
            target = named;
            break;
        }
        const QModelIndex first = model->index(0, 0, target);
        if (!first.isValid())
            break;
        target = first;
    }
    for (QModelIndex walk = target; walk.isValid(); walk = walk.parent())
        m_view->expand(walk);
    m_view->setCurrentIndex(target);
    slotItemClicked(target);
}
