#pragma once

#include "virtualtimers.h"

namespace canbus::monitor {

/// The main thread's event dispatcher while a recording is read: a clock of its own, by which QTimers expire
/// without anybody waiting.
class VirtualClock : public VirtualTimers {
public:
    /// Makes it the main thread's. Call it before the application object is made, which owns it.
    static void install();

    /// The one that was installed, or null.
    static VirtualClock *instance();

    /// As long as one lives, timers that are started never expire.
    class Standstill {
    public:
        Standstill() { ++instance()->m_standstills; }
        ~Standstill() { --instance()->m_standstills; }
        Q_DISABLE_COPY(Standstill)
    };

protected:
    qint64 firstDueUs(int interval) const override;

private:
    int m_standstills = 0;
};

} // namespace canbus::monitor
