#include "filterwidget/tfcheckcombox.h"

#include "filterwidget/tfremotelist.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>

namespace {

constexpr int kTextRoom = 210;
constexpr int kRowHeight = 30;
constexpr int kMaxListHeight = 510;

QStringList splitList(const QString &text)
{
    return text.split(text.contains(';') ? QLatin1Char(';') : QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

TFCheckCombox::TFCheckCombox(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_button(new QToolButton(this))
    , m_menu(new QMenu(m_button))
    , m_action(new QWidgetAction(m_menu))
    , m_list(new QListWidget(m_menu))
    , m_label(new QLabel(this))
    , m_dm(this)
{
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_action->setDefaultWidget(m_list);
    m_menu->addAction(m_action);
    m_button->setMenu(m_menu);
    m_button->setPopupMode(QToolButton::MenuButtonPopup);
    layOutInRow({m_label, m_button}, 6);
    setMaximumWidth(300);

    connect(m_list, &QListWidget::itemPressed, this, &TFCheckCombox::slotItemPressed);
    connect(m_list, &QListWidget::itemClicked, this, &TFCheckCombox::slotItemClicked);
    connect(this, &TFCheckCombox::signalItemCheckStatusChanged, this, &TFCheckCombox::slotCheckStatusChanged);
    connect(this, &TFCheckCombox::signalItemDataUpdate, this, &TFCheckCombox::slotOnItemDataUpdate);
    // Neither end exists on this class: the toolkit warns and nothing is connected.
    connect(this, SIGNAL(signalInitItems(QJsonDocument)), this, SLOT(slotInitItems(QJsonDocument)));

    fill();
    applyDefault();
    setObjectName(QStringLiteral("CustomCheckCombobox"));
}

void TFCheckCombox::fill()
{
    const TFTableModelData::FilterData row = filterData();
    if (!row.DataSourceName.isEmpty()) {
        requestRemoteList(m_dm, row, [this](const QMap<QString, QString> &entries) {
            emit signalItemDataUpdate(entries);
        });
        return;
    }
    if (row.NameValues.isEmpty())
        return;
    QMap<QString, QString> entries;
    for (const QString &part : row.NameValues.split(';', Qt::SkipEmptyParts)) {
        const QStringList pieces = part.split('=', Qt::SkipEmptyParts);
        if (pieces.size() == 2)
            entries.insert(pieces.at(1), pieces.at(0));
    }
    emit signalItemDataUpdate(entries);
}

void TFCheckCombox::applyDefault()
{
    const TFTableModelData::FilterData row = filterData();
    if (row.NameValues.isEmpty())
        return;
    const QStringList values = splitList(row.NameValues);
    const QStringList defaults = splitList(row.DefualtValue);
    if (row.DefualtValue.isEmpty() || values.size() == defaults.size()) {
        checkAll(true);
    } else {
        // What the list has ticked already stays ticked.
        for (const QString &value : defaults) {
            for (int i = 1; i < m_list->count(); ++i) {
                QListWidgetItem *item = m_list->item(i);
                if (keyOfText(item->text()) == value) {
                    item->setCheckState(Qt::Checked);
                    m_checked.append(item->data(Qt::UserRole).toInt());
                    break;
                }
            }
        }
    }
    updateText();
}

void TFCheckCombox::slotOnItemDataUpdate(QMap<QString, QString> data)
{
    if (m_list) {
        m_allItem = new QListWidgetItem(tr("All"), m_list);
        m_allItem->setData(Qt::UserRole, m_allIndex);
        m_allItem->setCheckState(Qt::Unchecked);
        m_allItem->setFlags(m_allItem->flags() & ~Qt::ItemIsUserCheckable);
    }
    int index = 0;
    for (auto it = data.cbegin(); it != data.cend(); ++it, ++index) {
        auto *item = new QListWidgetItem(it.key(), m_list);
        item->setData(Qt::UserRole, index);
        item->setCheckState(Qt::Unchecked);
        // The press flips the tick; the view must not flip it back on release.
        item->setFlags(item->flags() & ~Qt::ItemIsUserCheckable);
        m_indexText.insert(index, it.key());
        m_textValue.insert(it.key(), it.value());
    }
    m_list->setMinimumHeight(qMin(kRowHeight * (data.size() + 2), kMaxListHeight));
    m_label->setText(filterData().Caption);
    if (!m_indexText.isEmpty()) {
        checkAll(true);
        updateText();
    }
}

void TFCheckCombox::checkAll(bool checked)
{
    for (int i = 0; i < m_list->count(); ++i)
        m_list->item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    m_checked.clear();
    if (checked)
        m_checked = m_indexText.keys();
}

void TFCheckCombox::slotItemPressed(QListWidgetItem *item)
{
    const bool checked = item->checkState() != Qt::Checked;
    item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    emit signalItemCheckStatusChanged(item, checked);
}

void TFCheckCombox::slotItemClicked(QListWidgetItem *item)
{
    emit signalItemCheckStatusChanged(item, item->checkState() == Qt::Checked);
}

void TFCheckCombox::slotCheckStatusChanged(QListWidgetItem *item, bool status)
{
    const int index = item->data(Qt::UserRole).toInt();
    if (item == m_allItem || index == m_allIndex) {
        checkAll(status);
    } else {
        if (status && !m_checked.contains(index))
            m_checked.append(index);
        else if (!status)
            m_checked.removeAll(index);
        bool all = true;
        for (int i = 0; i < m_list->count(); ++i) {
            if (m_list->item(i) != m_allItem && m_list->item(i)->checkState() != Qt::Checked)
                all = false;
        }
        if (m_allItem)
            m_allItem->setCheckState(all ? Qt::Checked : Qt::Unchecked);
    }
    updateText();
    showMenuAgain();
}

void TFCheckCombox::showMenuAgain()
{
    if (isVisible() && !m_menu->isVisible())
        m_menu->popup(m_button->mapToGlobal(QPoint(0, m_button->height())));
}

void TFCheckCombox::updateText()
{
    QString text;
    if (m_checked.size() == m_indexText.size()) {
        text = QStringLiteral("All");
    } else {
        QStringList texts;
        for (int index : qAsConst(m_checked))
            texts.append(m_indexText.value(index));
        text = texts.join(';');
    }
    m_fullText = text;
    const QFontMetrics metrics(m_button->font());
    if (metrics.horizontalAdvance(text) >= kTextRoom)
        text = metrics.elidedText(text, Qt::ElideRight, kTextRoom);
    m_button->setText(text);
}

QString TFCheckCombox::keyOfText(const QString &text) const
{
    for (auto it = m_textValue.cbegin(); it != m_textValue.cend(); ++it) {
        if (it.value() == text)
            return it.key();
    }
    return QString();
}

FilterParam::Cntrl TFCheckCombox::getCntrl()
{
    FilterParam::Cntrl cntrl;
    QStringList texts;
    for (int index : qAsConst(m_checked))
        texts.append(m_indexText.value(index));
    if (texts.isEmpty())
        return cntrl;
    const TFTableModelData::FilterData row = filterData();
    const bool decimal = row.ValueType.toLower() == QLatin1String("decimal");
    QVariantList values;
    for (const QString &text : texts.join(';').split(';')) {
        const QString key = keyOfText(text);
        values.append(decimal ? QVariant(key.toDouble()) : QVariant(key.isNull() ? QStringLiteral("") : key));
    }
    cntrl.value = values;
    cntrl.valueType = decimal ? QStringLiteral("intlist") : QStringLiteral("stringList");
    cntrl.key = row.FieldName;
    cntrl.caption = row.Caption;
    cntrl.op = FilterParam::serviceOperator(row.Operator);
    return cntrl;
}
