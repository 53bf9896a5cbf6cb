#include "tfcore/tffactory.h"

#include <QWidget>

// One map for the process: plug-ins fill it from their static initialisers,
// which may run before main(), so it is made on first use.
template<>
TFHOST_EXPORT QMap<QByteArray, TFFactory<QWidget>::Constructor> &TFFactory<QWidget>::constructors()
{
    static QMap<QByteArray, Constructor> map;
    return map;
}
