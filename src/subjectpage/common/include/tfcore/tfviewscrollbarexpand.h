#pragma once

#include "tfcore/tfhostglobal.h"

#include <QObject>

class QAbstractItemView;

// Shows a wider scroll bar while the mouse is over an item view.
class TFHOST_EXPORT TFViewScrollbarExpand : public QObject
{
    Q_OBJECT
public:
    TFViewScrollbarExpand(QAbstractItemView *view, QObject *parent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QAbstractItemView *m_view;
};
