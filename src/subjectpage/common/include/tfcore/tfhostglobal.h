#pragma once

#include <QtCore/qglobal.h>

// The host's interfaces are implemented in libtfhost; the plug-in links it as
// it would link the terminal's core library.
#if defined(TFHOST_LIBRARY)
#  define TFHOST_EXPORT Q_DECL_EXPORT
#else
#  define TFHOST_EXPORT Q_DECL_IMPORT
#endif
