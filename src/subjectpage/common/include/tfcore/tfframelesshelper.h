#pragma once

#include "tfcore/tfhostglobal.h"

#include <QObject>

class QWidget;
class TFFramelessHelperPrivate;

// Makes frameless windows movable by dragging and, if wanted, resizable at
// their edges.
class TFHOST_EXPORT TFFramelessHelper : public QObject
{
    Q_OBJECT
public:
    explicit TFFramelessHelper(QObject *parent = nullptr);
    ~TFFramelessHelper() override;

    void activateOn(QWidget *window);
    void setWidgetMovable(bool movable, int titleHeight = 30);
    void setWidgetResizable(bool resizable);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    TFFramelessHelperPrivate *d;
};
