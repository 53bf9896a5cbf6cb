#include "tfverticalcontainer.h"

#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

TFVerticalContainer::TFVerticalContainer(QWidget *parent)
    : QFrame(parent)
    , m_splitter(new QSplitter(Qt::Vertical, this))
    , m_layout(new QVBoxLayout(this))
    , m_titleLabel(new QLabel(this))
{
    m_splitter->setObjectName(QStringLiteral("Splitter"));
    m_splitter->setChildrenCollapsible(false);
    m_layout->setSpacing(0);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_titleLabel->setObjectName(QStringLiteral("subjectTitle"));
    m_titleLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_titleLabel->hide();
    m_layout->addWidget(m_titleLabel);
    m_layout->addWidget(m_splitter);
}

void TFVerticalContainer::addWidget(QWidget *widget)
{
    if (widget)
        m_splitter->addWidget(widget);
}

void TFVerticalContainer::setSizes(const QList<int> &sizes)
{
    m_splitter->setSizes(sizes);
}

void TFVerticalContainer::setTitle(const QString &title)
{
    m_titleLabel->setText(title);
    setWindowTitle(title);
}

QString TFVerticalContainer::title() const
{
    return m_titleLabel->text();
}

void TFVerticalContainer::setTitleVisible(bool visible)
{
    m_titleLabel->setVisible(visible);
}

bool TFVerticalContainer::isTitleVisible() const
{
    return !m_titleLabel->isHidden();
}
