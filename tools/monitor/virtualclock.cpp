#include "virtualclock.h"

#include <QtCore/QCoreApplication>

#include <limits>

namespace canbus::monitor {

void VirtualClock::install()
{
    QCoreApplication::setEventDispatcher(new VirtualClock);
}

VirtualClock *VirtualClock::instance()
{
    return dynamic_cast<VirtualClock *>(QCoreApplication::eventDispatcher());
}

qint64 VirtualClock::firstDueUs(int interval) const
{
    constexpr qint64 kNever = std::numeric_limits<qint64>::max();
    return m_standstills > 0 ? kNever : VirtualTimers::firstDueUs(interval);
}

} // namespace canbus::monitor
