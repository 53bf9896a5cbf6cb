#pragma once

#include "jsonparser/tffilterjsontable.h"

class TFBaseFilterWidget;
class TFFilterWidget;

// Makes the control of one configuration row, chosen by its ClassName, and
// wires the controls the bar listens to.
class TFFilterCtlFactory
{
public:
    // The control for the row, a child of the bar; null for an empty or
    // unknown ClassName. The tests on the name run in a fixed order: the
    // first that holds decides.
    static TFBaseFilterWidget *createWidget(const TFTableModelData::FilterData &data, TFFilterWidget *bar);

    // Connects a control to the bar by its object name: the three buttons
    // and the unit list. Any other control stays unconnected.
    static void connectToBar(TFBaseFilterWidget *control, TFFilterWidget *bar);
};
