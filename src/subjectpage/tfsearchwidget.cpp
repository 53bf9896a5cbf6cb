#include "tfsearchwidget.h"

#include "tfcore/tfcore.h"

#include <QAction>
#include <QHBoxLayout>
#include <QIcon>
#include <QLineEdit>

TFSearchWidget::TFSearchWidget(QWidget *parent)
    : QWidget(parent)
    , m_layout(new QHBoxLayout(this))
    , m_line(new QLineEdit(this))
    , m_action(new QAction(this))
{
    setObjectName(QStringLiteral("SearchWidget"));
    m_line->setObjectName(QStringLiteral("SearchLine"));
    m_line->addAction(m_action, QLineEdit::TrailingPosition);
    m_layout->setContentsMargins(12, 5, 12, 0);
    m_layout->addWidget(m_line);
    updateIcon();
    connect(TFCore::instance(), &TFCore::signalSkinChanged, this, &TFSearchWidget::updateIcon);
    connect(m_line, &QLineEdit::editingFinished, this, [this] { emit signalSearch(m_line->text()); });
    connect(m_action, &QAction::triggered, this, [this] { emit signalSearch(m_line->text()); });
}

void TFSearchWidget::updateIcon()
{
    m_action->setIcon(QIcon(TFCore::instance()->getCurrentSkinPath(QStringLiteral("subject/search.png"))));
}
