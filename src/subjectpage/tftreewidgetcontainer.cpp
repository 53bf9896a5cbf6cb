#include "tftreewidgetcontainer.h"

#include "tfsubjecttreewidget.h"
#include "tftreemodel.h"

#include <QDebug>
#include <QJsonArray>
#include <QPainter>
#include <QSplitter>
#include <QStyleOption>

TFTreeWidgetContainer::TFTreeWidgetContainer(QWidget *parent)
    : TFVerticalContainer(parent)
    , m_mainTree(new TFSubjectTreeWidget(false, this))
    , m_blockTree(new TFSubjectTreeWidget(true, this))
{
    m_mainTree->setObjectName(QStringLiteral("SubjectTree"));
    m_blockTree->setObjectName(QStringLiteral("BlockTree"));
    setObjectName(QStringLiteral("TreeContainer"));
    addWidget(m_mainTree);
    addWidget(m_blockTree);
    m_blockTree->hide();
    connect(m_mainTree, &TFSubjectTreeWidget::signalItemClicked, this,
            &TFTreeWidgetContainer::slotMainTreeItemClicked);
    connect(m_mainTree, &TFSubjectTreeWidget::currentTopNodeTextChanged, this,
            &TFTreeWidgetContainer::groupChanged);
}

QTreeView *TFTreeWidgetContainer::mainTreeView() const
{
    return m_mainTree->treeView();
}

QTreeView *TFTreeWidgetContainer::blockTreeView() const
{
    return m_blockTree->treeView();
}

TFSubjectTreeModel *TFTreeWidgetContainer::mainTreeModel() const
{
    return m_mainTree->model();
}

TFSubjectTreeModel *TFTreeWidgetContainer::blockTreeModel() const
{
    return m_blockTree->model();
}

TFSubjectTreeModel *TFTreeWidgetContainer::newMainModel(const QJsonValue &rows, int rootCode, bool *built)
{
    auto *model = new TFSubjectTreeModel;
    *built = model->build(rows, rootCode, false);
    m_mainTree->setModel(model);
    return model;
}

bool TFTreeWidgetContainer::loadMainTreeByName(const TFMenuCfg::MenuItem &record, const QJsonValue &rows,
                                               int rootCode, const QString &text)
{
    bool built = false;
    newMainModel(rows, rootCode, &built);
    m_mainTree->selectByName(record, text);
    return built;
}

bool TFTreeWidgetContainer::loadMainTreeByCode(const QString &code, const QJsonValue &rows, int rootCode,
                                               const QString &text)
{
    bool built = false;
    newMainModel(rows, rootCode, &built);
    m_mainTree->selectByCode(code, text);
    return built;
}

void TFTreeWidgetContainer::loadBlockTree(const QJsonValue &rows)
{
    if (rows.isNull() && m_blockTree->hasRows())
        return;
    auto *model = new TFSubjectTreeModel;
    model->build(rows, 0, true);
    m_blockTree->setModel(model);
}

QPair<QString, QVariant> TFTreeWidgetContainer::blockFilter() const
{
    return qMakePair(QStringLiteral("filterBlock"),
                     QVariant::fromValue(QJsonArray::fromVariantList(m_blockTree->checkedCodes())));
}

void TFTreeWidgetContainer::setRootSector(QString rootItem)
{
    if (!m_blockTree->hasRows())
        return;
    m_blockTree->show();
    m_blockTree->setRootSector(rootItem);
}

void TFTreeWidgetContainer::slotSetSector(QString sectorNum)
{
    if (!m_blockTree->hasRows())
        return;
    m_blockTree->show();
    m_blockTree->reset();
    m_blockTree->slotCheckItem(sectorNum);
}

void TFTreeWidgetContainer::slotMainTreeItemClicked(QStandardItem *item)
{
    if (!item)
        return;
    const qint64 id = item->data(TFTreeItem::ViewIdRole).toLongLong();
    const QString text = item->text();
    QString url = item->data(TFTreeItem::UrlRole).toString();
    qDebug() << "main tree item clicked obj_vm_id:" << id << " previewId:" << m_lastViewId << " cap:" << text
             << url;
    if (!url.isEmpty()) {
        // A web page opens every time, even the same node again.
        qDebug() << "in here--------->1";
        m_lastViewId = id;
    } else {
        // A folder without a view, or the page that is already open, does nothing.
        if (id == 0 || id == m_lastViewId)
            return;
        qDebug() << "in here--------->2";
        m_lastViewId = id;
        m_blockTree->hide();
        m_blockTree->reset();
        url = QString();
    }
    emit signalItemClicked(id, text, url);
}

void TFTreeWidgetContainer::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    const int blockHeight = height() / 3;
    splitter()->setSizes({2 * blockHeight, blockHeight});
}
