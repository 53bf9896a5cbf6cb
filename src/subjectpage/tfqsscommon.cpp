#include "tfqsscommon.h"

TFQssCommon *TFQssCommon::instance()
{
    static TFQssCommon common;
    return &common;
}
