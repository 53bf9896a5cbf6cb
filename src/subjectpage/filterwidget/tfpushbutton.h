#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QToolButton;

// A button of the bar, told apart by its ClassName: "SimpleButtonGetData"
// runs the query, "SimpleButtonSaveToExcel" offers the export in a menu,
// "SimpleButtonSort" asks for the sort dialog. It sets no filter.
class TFPushbutton : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFPushbutton(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

    QToolButton *button() const { return m_button; }

signals:
    void clicked();
    void clickedSaveBtn(int type);
    void clickedSaveBtn();

private:
    void updateIcon();

    QToolButton *m_button;
};
