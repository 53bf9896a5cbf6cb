#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

// The host's persistence of a component: it stores what save() writes with
// the composite screen and hands it back to restore().
class ITFMemory
{
public:
    virtual ~ITFMemory() = default;
    virtual void save(QMap<QString, QVariant> &state) = 0;
    virtual void restore(const QMap<QString, QVariant> &state) = 0;
};
