#include "virtualclock.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimerEvent>

#include <algorithm>
#include <limits>

namespace canbus::monitor {

namespace {

constexpr qint64 kNever = std::numeric_limits<qint64>::max();

qint64 microseconds(int interval)
{
    // A timer without an interval would keep the clock where it is.
    return qint64(std::max(interval, 1)) * 1000;
}

} // namespace

void VirtualClock::install()
{
    QCoreApplication::setEventDispatcher(new VirtualClock);
}

VirtualClock *VirtualClock::instance()
{
    return dynamic_cast<VirtualClock *>(QCoreApplication::eventDispatcher());
}

void VirtualClock::advanceTo(qint64 us)
{
    deliver();
    while (expireNextUntil(us))
        deliver();
    m_nowUs = std::max(m_nowUs, us);
}

void VirtualClock::deliver()
{
    QCoreApplication::sendPostedEvents();
}

bool VirtualClock::expireNextUntil(qint64 us)
{
    // The first of those that are due at the same time: the one that was started first.
    const auto next = std::min_element(m_timers.begin(), m_timers.end(),
                                       [](const Timer &a, const Timer &b) { return a.dueUs < b.dueUs; });
    if (next == m_timers.end() || next->dueUs > us)
        return false;
    m_nowUs = std::max(m_nowUs, next->dueUs);
    next->dueUs += microseconds(next->interval);
    QTimerEvent event(next->id);
    QCoreApplication::sendEvent(next->object, &event); // may end or start any timer
    return true;
}

bool VirtualClock::processEvents(QEventLoop::ProcessEventsFlags)
{
    Q_EMIT awake();
    deliver();
    return false;
}

void VirtualClock::registerTimer(int id, int interval, Qt::TimerType type, QObject *object)
{
    const qint64 due = m_standstills > 0 ? kNever : m_nowUs + microseconds(interval);
    m_timers.append({id, interval, type, object, due});
}

template <class Predicate>
bool VirtualClock::removeTimers(Predicate predicate)
{
    const auto end = std::remove_if(m_timers.begin(), m_timers.end(), predicate);
    const bool found = end != m_timers.end();
    m_timers.erase(end, m_timers.end());
    return found;
}

bool VirtualClock::unregisterTimer(int id)
{
    return removeTimers([id](const Timer &timer) { return timer.id == id; });
}

bool VirtualClock::unregisterTimers(QObject *object)
{
    return removeTimers([object](const Timer &timer) { return timer.object == object; });
}

QList<QAbstractEventDispatcher::TimerInfo> VirtualClock::registeredTimers(QObject *object) const
{
    QList<TimerInfo> found;
    for (const Timer &timer : m_timers) {
        if (timer.object == object)
            found.append(TimerInfo(timer.id, timer.interval, timer.type));
    }
    return found;
}

int VirtualClock::remainingTime(int id)
{
    for (const Timer &timer : std::as_const(m_timers)) {
        if (timer.id == id)
            return int(std::min<qint64>((timer.dueUs - m_nowUs) / 1000, std::numeric_limits<int>::max()));
    }
    return -1;
}

} // namespace canbus::monitor
