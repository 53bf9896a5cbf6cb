#pragma once

#include "tfcore/tfhostglobal.h"

#include <QByteArray>
#include <QMap>
#include <functional>

class QWidget;

// The host's factory of components by class name. Plug-ins register their
// constructors at load time; composite screens build components by name.
template<typename T>
class TFFactory
{
public:
    using Constructor = std::function<T *(QWidget *parent)>;
    static QMap<QByteArray, Constructor> &constructors();
};

template<>
TFHOST_EXPORT QMap<QByteArray, TFFactory<QWidget>::Constructor> &TFFactory<QWidget>::constructors();
