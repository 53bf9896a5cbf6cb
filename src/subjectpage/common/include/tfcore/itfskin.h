#pragma once

#include "tfcore/itfinterface.h"

#include <QVariant>

// Something that takes the skin's style sheet. The host calls applySkinStyle
// with the sheet's text now and at every change of skin.
class ITFSkin : public ITFInterface
{
public:
    ~ITFSkin() override = default;
    virtual void applySkinStyle(const QVariant &style) = 0;
};
