#include "tfrightcontainer.h"

#include <QDebug>
#include <QLabel>

TFRightContainer::TFRightContainer(QWidget *parent)
    : TFVerticalContainer(parent)
    , m_viewLabel(new QLabel(this))
{
    setObjectName(QStringLiteral("rightSubjectContainer"));
    m_viewLabel->setObjectName(QStringLiteral("mainView"));
    m_viewLabel->setAlignment(Qt::AlignCenter);
    addWidget(m_viewLabel);
    setTitleVisible(true);
}

QString TFRightContainer::viewText() const
{
    return m_viewLabel->text();
}

void TFRightContainer::refreshPage(qlonglong obj_vw_id, QString title)
{
    qDebug() << "refresh right container:" << obj_vw_id << " title:" << title;
    m_currentView = obj_vw_id;
    setTitle(title);
    m_viewLabel->setText(QStringLiteral("%1 (%2)").arg(title).arg(obj_vw_id));
}
