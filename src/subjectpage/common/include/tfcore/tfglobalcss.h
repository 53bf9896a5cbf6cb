#pragma once

#include "tfcore/tfhostglobal.h"

#include <QColor>

// Colours of the current skin that are not in style sheets.
class TFHOST_EXPORT TFGlobalCss
{
public:
    // 0: tip background, 1: link, 2: visited link.
    static QColor getTipsColorByIndex(int index);
};
