#pragma once

class QWidget;

// Root of the host's page interfaces: every interface can hand back the
// widget that implements it.
class ITFInterface
{
public:
    virtual QWidget *getWidget() = 0;
    virtual ~ITFInterface() = default;
};
