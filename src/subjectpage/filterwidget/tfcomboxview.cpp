#include "filterwidget/tfcomboxview.h"

#include "filterwidget/tffocusdelegate.h"

#include <QComboBox>
#include <QHBoxLayout>

TFComboxView::TFComboxView(QWidget *parent)
    : QWidget(parent)
    , m_box(new QComboBox(this))
{
    m_box->setItemDelegate(new TFFocusDelegate(m_box));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_box);
    setFocusProxy(m_box);

    connect(m_box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            QOverload<int>::of(&TFComboxView::slotCurrentIndexChanged));
    connect(m_box, &QComboBox::currentTextChanged, this, &TFComboxView::slotCurrentTextChanged);
}

void TFComboxView::setItems(const QStringList &items)
{
    const QSignalBlocker blocker(m_box);
    m_box->clear();
    m_box->addItems(items);
}

QStringList TFComboxView::items() const
{
    QStringList texts;
    for (int i = 0; i < m_box->count(); ++i)
        texts.append(m_box->itemText(i));
    return texts;
}

QString TFComboxView::currentText() const
{
    return m_box->currentText();
}

int TFComboxView::currentIndex() const
{
    return m_box->currentIndex();
}

void TFComboxView::setCurrentText(const QString &text)
{
    m_box->setCurrentText(text);
}

void TFComboxView::slotCurrentIndexChanged(int index)
{
    emit currentIndexChanged(index);
    slotCurrentIndexChanged(m_box->itemText(index));
}

void TFComboxView::slotCurrentIndexChanged(QString text)
{
    emit currentIndexChanged(text);
}

void TFComboxView::slotCurrentTextChanged(QString text)
{
    emit currentTextChanged(text);
}
