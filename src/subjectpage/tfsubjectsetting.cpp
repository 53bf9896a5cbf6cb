#include "tfsubjectsetting.h"
#include "ui_tfsubjectsetting.h"

#include "filterwidget/tffilterwidget.h"
#include "net/tfdm.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"
#include "tfframesubjectzhp.h"

#include "tfcore/tfcore.h"
#include "tfcore/tfviewscrollbarexpand.h"

#include <QDebug>
#include <QHeaderView>
#include <QTreeWidgetItem>

namespace {

const char kTopicListKey[] = "zhp.ini:Settings/list";
constexpr int kNodeRole = Qt::UserRole + 1;

TFJsonObjNode *nodeOf(const QTreeWidgetItem *item)
{
    return item ? item->data(0, kNodeRole).value<TFJsonObjNodePtr>() : nullptr;
}

} // namespace

TFSubjectSetting::TFSubjectSetting(const QString &list, QWidget *parent)
    : QFrame(parent)
    , ui(new Ui::TFSubjectSetting)
    , m_dm(nullptr)
{
    qRegisterMetaType<TFJsonObjNodePtr>("TFJsonObjNodePtr");
    // The request helper fixes the service's address and identity.
    m_dm = new TFDm(this);
    ui->setupUi(this);

    // The plain component reads its topics from the host's configuration;
    // the subclasses fix theirs. Splitting never gives an empty list, so the
    // form's own items are always replaced.
    QString topics = list;
    if (topics.isEmpty()) {
        // An ini file reads an unquoted "a:1,b:2" as a list of its parts.
        const QVariant configured = TFCore::instance()->value(QLatin1String(kTopicListKey), QString());
        topics = configured.userType() == QMetaType::QStringList
                ? configured.toStringList().join(QLatin1Char(','))
                : configured.toString();
    }
    const QStringList items = topics.split(QLatin1Char(','), Qt::KeepEmptyParts);
    ui->cbNodeCode->clear();
    ui->cbNodeCode->addItems(items);
    ui->cbNodeCode->setCurrentIndex(-1);

    connect(ui->twNavTree, &QTreeWidget::currentItemChanged, this, &TFSubjectSetting::slotCurrentItemChanged);
    connect(ui->cbNodeCode, &QComboBox::currentTextChanged, this, &TFSubjectSetting::loadTree);
    ui->cbNodeCode->setCurrentIndex(0);

    TFCore::instance()->addStyle2View(this, QStringLiteral("subject/subject.css"));
    new TFViewScrollbarExpand(ui->twNavTree, this);
}

TFSubjectSetting::~TFSubjectSetting()
{
    // Items hold plain pointers to the nodes; nothing reads them any more.
    disconnect(ui->twNavTree, nullptr, this, nullptr);
    qDeleteAll(m_nodes);
    delete m_dm;
    delete ui;
}

void TFSubjectSetting::applySkinStyle(const QVariant &style)
{
    if (style.isValid())
        setStyleSheet(style.toString());
}

void TFSubjectSetting::setVisibility(bool mainView, bool filterBar, bool childViews, bool pageBar)
{
    ui->cbHideMainView->setChecked(!mainView);
    ui->cbHideFilterBar->setChecked(!filterBar);
    ui->cbHideChildView->setChecked(!childViews);
    ui->cbHidePageBar->setChecked(!pageBar);
}

void TFSubjectSetting::setCurrentView(qint64 objVwId, const QString &caption)
{
    m_objVwId = objVwId;
    m_caption = caption;
}

void TFSubjectSetting::loadTree(const QString &text)
{
    if (text.isEmpty())
        return;
    // "name:code", or the code alone; a code that is no number asks for 0.
    const QStringList parts = text.split(QLatin1Char(':'), Qt::SkipEmptyParts);
    const int rootCode = parts.isEmpty() ? 0 : parts.last().toInt();
    m_dm->start(TFUc::navigationRowsRequest(rootCode),
                [this](bool isOk, const QByteArray &data) { onTreeReply(isOk, data); });
}

void TFSubjectSetting::onTreeReply(bool isOk, const QByteArray &data)
{
    if (!isOk) {
        qDebug() << "isOk:" << isOk << QString::fromUtf8(data);
        return;
    }
    QJsonArray rows;
    const bool parsed = TFJSP::parseNavTree(QString::fromUtf8(data), rows);
    qDebug() << "isOk:" << parsed;
    if (!parsed) {
        ui->twNavTree->clear();
        return;
    }
    QList<TFJsonObjNode *> roots;
    makeTree(rows, roots, NavigationTree, &m_nodes);
    fillTree(roots, QStringLiteral("NODE_CAP"));
    slotChangeToDefaultItem();
}

void TFSubjectSetting::makeTree(const QJsonArray &rows, QList<TFJsonObjNode *> &roots, int type,
                                QList<TFJsonObjNode *> *owner)
{
    TFJsonObjNode::makeTree(rows, roots, type, owner);
}

QTreeWidgetItem *TFSubjectSetting::makeItem(TFJsonObjNode *node, const QString &captionKey)
{
    const QString caption = node->object.value(captionKey).toString();
    auto *item = new QTreeWidgetItem(QStringList{caption, node->code, node->parentCode});
    if (captionKey == QLatin1String("SECT_NAME"))
        item->setCheckState(0, Qt::Unchecked);
    item->setData(0, kNodeRole, QVariant::fromValue<TFJsonObjNodePtr>(node));
    item->setToolTip(0, caption);
    for (TFJsonObjNode *child : qAsConst(node->children))
        item->addChild(makeItem(child, captionKey));
    return item;
}

void TFSubjectSetting::fillTree(const QList<TFJsonObjNode *> &roots, const QString &captionKey)
{
    QTreeWidget *tree = ui->twNavTree;
    tree->clear();
    if (roots.isEmpty())
        return;
    tree->setColumnCount(5);
    QList<QTreeWidgetItem *> items;
    for (TFJsonObjNode *root : roots)
        items.append(makeItem(root, captionKey));
    tree->insertTopLevelItems(0, items);
    tree->header()->hide();
    tree->hideColumn(1);
    tree->hideColumn(2);
    tree->hideColumn(3);
    // Spanning needs the item in its tree.
    QList<QTreeWidgetItem *> pending = items;
    while (!pending.isEmpty()) {
        QTreeWidgetItem *item = pending.takeFirst();
        item->setFirstColumnSpanned(true);
        for (int i = 0; i < item->childCount(); ++i)
            pending.append(item->child(i));
    }
}

void TFSubjectSetting::slotCurrentItemChanged(QTreeWidgetItem *current, QTreeWidgetItem *previous)
{
    Q_UNUSED(previous)
    if (!current || current->childCount() > 0)
        return; // a folder chooses nothing, even with a view of its own
    TFJsonObjNode *node = nodeOf(current);
    if (!node)
        return;
    qDebug() << "nav Item clicked:" << node->object;
    const qlonglong objVwId = node->object.value(QLatin1String("OBJ_VW_ID")).toVariant().toLongLong();
    const QString caption = node->object.value(QLatin1String("NODE_CAP")).toString();
    // The same form as a global argument's value, so that another component
    // can be driven by it.
    ui->lbUserSelectedTip->setText(QStringLiteral("%1|%2").arg(caption).arg(objVwId));
    emit signalObjVwIdChanged(objVwId, caption);
}

void TFSubjectSetting::slotChangeToDefaultItem()
{
    if (m_objVwId == 0 || m_caption.isEmpty())
        return;
    const QList<QTreeWidgetItem *> found =
        ui->twNavTree->findItems(m_caption, Qt::MatchRecursive | Qt::MatchFixedString, 0);
    for (QTreeWidgetItem *item : found) {
        TFJsonObjNode *node = nodeOf(item);
        if (item->childCount() > 0 || !node)
            continue;
        if (node->object.value(QLatin1String("OBJ_VW_ID")).toVariant().toLongLong() != m_objVwId)
            continue;
        ui->twNavTree->setCurrentItem(item);
        emit signalRefreashPage();
    }
}

void TFSubjectSetting::on_cbHideFilterBar_clicked(bool checked)
{
    emit signalFilterWidgetVisibleSettingChanged(!checked);
}

void TFSubjectSetting::on_cbHideMainView_clicked(bool checked)
{
    emit signalMainViewVisibleSettingChanged(!checked);
}

void TFSubjectSetting::on_cbHideChildView_clicked(bool checked)
{
    emit signalSubViewVisibleSettingChanged(!checked);
}

void TFSubjectSetting::on_cbHidePageBar_clicked(bool checked)
{
    emit signalPageBarVisibleChanged(!checked);
}

void TFSubjectSetting::on_pbBindGl_clicked()
{
    emit signalBindGlBtnClicked();
}

void TFSubjectSetting::on_pbPreView_clicked()
{
    emit signalPreviewFilters();
    qDebug() << "preview of the filter arguments:" << filterArgs();
}

// The form has no title editor, so nothing calls this.
void TFSubjectSetting::on_txtTitle_textChanged(QString arg1)
{
    emit signalTitleVisibleChanged(!arg1.isEmpty());
    emit signalTitleChanged(arg1);
}

void TFSubjectSetting::showFilterRows(QList<TFTableModelData::FilterData> rows)
{
    const QVariantMap args = m_frame ? m_frame->glFilterArgs() : QVariantMap();
    for (TFTableModelData::FilterData &row : rows) {
        const auto found = args.constFind(row.FieldName);
        if (found != args.constEnd())
            row.DefualtValue = found.value().toString();
    }
    ui->fmFilter->setFilterData(rows);
}

QMap<QString, QVariant> TFSubjectSetting::filterArgs() const
{
    return filterArgsOf(ui->fmFilter->getCntrls());
}

QMap<QString, QVariant> TFSubjectSetting::filterArgsOf(const QList<FilterParam::Cntrl> &controls)
{
    static const QStringList kNotArguments = {QStringLiteral("virtualcntrl"), QStringLiteral("simplebuttongetdata"),
                                              QStringLiteral("simplebuttonsavetoexcel")};
    QMap<QString, QVariant> args;
    for (const FilterParam::Cntrl &control : controls) {
        if (control.objName.isEmpty() || kNotArguments.contains(control.objName.toLower()))
            continue;
        if (control.multiField) {
            const QStringList keys = control.key.split(QLatin1Char(','), Qt::SkipEmptyParts);
            const QStringList values = control.value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
            if (keys.isEmpty() || values.isEmpty())
                continue;
            // With fewer keys than values the first key takes the rest, so
            // the last of them wins.
            for (int i = 0; i < values.size(); ++i)
                args.insert(i < keys.size() ? keys.at(i) : keys.first(), values.at(i));
        } else if (control.op == QLatin1String("in") && control.valueType.contains(QLatin1String("list"), Qt::CaseInsensitive)) {
            QStringList parts;
            const QVariantList list = control.value.toList();
            for (const QVariant &element : list)
                parts.append(element.userType() == QMetaType::QString ? element.toString()
                                                                      : QString::number(element.toLongLong()));
            args.insert(control.key, parts.join(QLatin1Char(',')));
        } else {
            args.insert(control.key, control.value);
        }
    }
    return args;
}
