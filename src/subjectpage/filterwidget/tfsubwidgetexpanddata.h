#pragma once

#include <QWidget>

// The layer between QWidget and the filter controls. It adds nothing of its
// own: the controls' common state lives one level down, in
// TFBaseFilterWidget.
class TFSubWidgetExpandData : public QWidget
{
    Q_OBJECT
public:
    explicit TFSubWidgetExpandData(QWidget *parent = nullptr);
};
