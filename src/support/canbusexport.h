#pragma once

#include <QtCore/qglobal.h>

/// Marks the classes that make up the library's interface: everything else stays hidden.
#ifdef CANBUS_BUILDING_LIBRARY
#define CANBUS_EXPORT Q_DECL_EXPORT
#else
#define CANBUS_EXPORT Q_DECL_IMPORT
#endif
