#pragma once

#include <QtCore/QMutex>

namespace canbus {

// Three places take their lock by this name: the append to the receive buffer, the send state, the data map
// of the categories. It is QMutexLocker, except in the build that proves the check for races
// (CANBUS_PLANT_RACES): there it locks nothing, and tests/races/run.sh must find all three.
#ifdef CANBUS_PLANT_RACES
class Locker {
public:
    explicit Locker(QMutex *) { }
};
#else
using Locker = QMutexLocker;
#endif

} // namespace canbus
