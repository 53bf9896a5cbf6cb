#pragma once

#include "tfverticalcontainer.h"

class QLabel;

// The data page on the right of the tree. In this form it shows which view
// the tree chose, by caption and identifier; building the view from its
// configuration comes with the main view.
class TFRightContainer : public TFVerticalContainer
{
    Q_OBJECT
public:
    explicit TFRightContainer(QWidget *parent = nullptr);

    qint64 currentView() const { return m_currentView; }
    QString viewText() const;

signals:
    void sigSectorNumChanged(QString sectorNum, QString rootItem);
    void sigSectorNumChanged(QString sectorNum);
    void signalDataChanged();

public slots:
    void refreshPage(qlonglong obj_vw_id, QString title);

private:
    QLabel *m_viewLabel;
    qint64 m_currentView = -1;
};
