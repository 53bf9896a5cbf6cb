#include "filterwidget/tfsubwidgetexpanddata.h"

TFSubWidgetExpandData::TFSubWidgetExpandData(QWidget *parent)
    : QWidget(parent)
{
}
