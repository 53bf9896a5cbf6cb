#include "filterwidget/tfmultiyear.h"

#include "expression/tfcustommath.h"
#include "filterwidget/tfperiodtexts.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QRegExp>
#include <QToolButton>

TFMultiYear::TFMultiYear(const TFTableModelData::FilterData &data, bool multiple, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_button(new QToolButton(this))
    , m_menu(new QMenu(m_button))
    , m_label(new QLabel(this))
    , m_multiple(multiple)
{
    m_button->setFixedWidth(100);
    m_button->setMenu(m_menu);
    m_button->setPopupMode(QToolButton::MenuButtonPopup);
    layOutInRow({m_label, m_button}, 6);
    fill();
    applyDefault();
}

TFCustomMath *TFMultiYear::math()
{
    if (!m_math)
        m_math = TFCustomMath::instance();
    return m_math;
}

void TFMultiYear::addAction(int index, const QString &text)
{
    auto *action = m_menu->addAction(text);
    action->setData(index);
    if (m_multiple) {
        action->setCheckable(true);
        connect(action, &QAction::toggled, this, &TFMultiYear::slotActionCheckStatusChanged);
    } else {
        connect(action, &QAction::triggered, this, &TFMultiYear::slotActionClickStatusChanged);
    }
    m_indexText.insert(index, text);
    m_actions.append(action);
}

void TFMultiYear::fill()
{
    const QString nameValues = filterData().NameValues;
    bool complete = false;
    if (!nameValues.isEmpty()) {
        const QStringList parts = nameValues.split(';', Qt::SkipEmptyParts);
        QStringList bounds;
        bool allPairs = true;
        for (int index = 0; index < parts.size(); ++index) {
            const QString &part = parts.at(index);
            const QStringList pieces = part.split('=', Qt::SkipEmptyParts);
            if (pieces.size() == 2) {
                addAction(index, pieces.at(0));
                continue;
            }
            allPairs = false;
            QRegExp date(QStringLiteral("=.*(\\d+-\\d+-\\d+).*"));
            QRegExp call(QStringLiteral("([\\w,\\d]+)\\((-?\\d+)\\)"));
            if (date.indexIn(part) != -1 && date.captureCount() == 1) {
                bounds.append(date.cap(1));
            } else if (call.indexIn(part) != -1 && call.captureCount() == 2) {
                QList<QVariant> args;
                if (!call.cap(2).isEmpty())
                    args.append(call.cap(2));
                QVariant result;
                if (math()->callFunction(call.cap(1), args, result) && result.isValid())
                    bounds.append(result.toString());
            }
        }
        if (allPairs) {
            complete = true;
        } else if (bounds.size() == 2) {
            // The function reads only the service's date form, so with these
            // arguments it answers with nothing and the menu stays empty.
            QVariant years;
            math()->callFunction(QStringLiteral("getYearsBetrweemDate"),
                                 {QStringLiteral("date'%1'").arg(bounds.at(0)),
                                  QStringLiteral("date'%1'").arg(bounds.at(1))},
                                 years);
            const QStringList list = years.toString().split(',', Qt::SkipEmptyParts);
            for (int i = list.size() - 1, index = 0; i >= 0; --i, ++index)
                addAction(index, list.at(i));
            complete = true;
        }
    }
    if (!complete) {
        const QStringList years = TFPeriod::yearsDownTo(1999);
        for (int index = 0; index < years.size(); ++index)
            addAction(index, years.at(index));
    }
}

void TFMultiYear::applyDefault()
{
    const TFTableModelData::FilterData row = filterData();
    m_label->setText(row.Caption);
    if (m_indexText.isEmpty())
        return;
    QString text;
    if (row.DefualtValue.isEmpty())
        text = QString(m_indexText.first()).remove(TFPeriod::yearSuffix());
    else
        text = QString(row.DefualtValue).remove('=').left(4);
    text += TFPeriod::yearSuffix();
    m_button->setText(text);
    if (!m_multiple)
        return;
    for (auto it = m_indexText.cbegin(); it != m_indexText.cend(); ++it) {
        if (it.value() != text)
            continue;
        for (QAction *action : qAsConst(m_actions)) {
            if (action->data().toInt() == it.key()) {
                action->setChecked(true);
                break;
            }
        }
        break;
    }
    m_button->setText(chosenText());
}

QString TFMultiYear::chosenText() const
{
    QStringList texts;
    for (int index : m_chosen)
        texts.append(m_indexText.value(index));
    return texts.join(';');
}

void TFMultiYear::slotActionCheckStatusChanged(bool checked)
{
    auto *action = qobject_cast<QAction *>(sender());
    if (!action)
        return;
    const int index = action->data().toInt();
    if (checked && !m_chosen.contains(index))
        m_chosen.append(index);
    else if (!checked)
        m_chosen.removeAll(index);
    m_button->setText(chosenText());
    if (isVisible() && !m_menu->isVisible())
        m_menu->popup(m_button->mapToGlobal(QPoint(0, m_button->height())));
}

void TFMultiYear::slotActionClickStatusChanged(bool)
{
    if (auto *action = qobject_cast<QAction *>(sender()))
        m_button->setText(action->text());
}

FilterParam::Cntrl TFMultiYear::getCntrl()
{
    const TFTableModelData::FilterData row = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.key = row.FieldName;
    cntrl.caption = row.Caption;
    cntrl.multiField = false;
    if (m_multiple) {
        QStringList years;
        for (int index : qAsConst(m_chosen))
            years.append(QString(m_indexText.value(index)).remove(TFPeriod::yearSuffix()));
        cntrl.value = years;
        cntrl.op = QStringLiteral("in");
        cntrl.valueType = QStringLiteral("stringList");
    } else {
        cntrl.value = m_button->text().remove(TFPeriod::yearSuffix());
        cntrl.op = FilterParam::serviceOperator(row.Operator);
        cntrl.valueType = row.ValueType;
    }
    return cntrl;
}
