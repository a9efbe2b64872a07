#pragma once

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QTimerEvent>

#include <algorithm>
#include <limits>

namespace canbus {

/// An event dispatcher whose QTimers run in virtual time: the clock stands still except in advanceTo(), which
/// jumps from one timer to the next without waiting. The library takes nothing of it; the tests and the
/// monitor, when it reads a recording, do.
///
/// For the main thread alone. Posted events are carried out in advanceTo() and deliver(); sockets are not
/// watched.
class VirtualTimers : public QAbstractEventDispatcher {
public:
    qint64 nowUs() const { return m_nowUs; }

    /// Lets the time pass: each timer that is due by then expires, in order, at its own time.
    void advanceTo(qint64 us)
    {
        deliver();
        while (expireNextUntil(us))
            deliver();
        m_nowUs = std::max(m_nowUs, us);
    }

    /// Carries out what is posted.
    static void deliver() { QCoreApplication::sendPostedEvents(); }

    /// Carries out what is posted, and no timer: timers expire in advanceTo() alone.
    bool processEvents(QEventLoop::ProcessEventsFlags) override
    {
        Q_EMIT awake();
        deliver();
        return false;
    }

    bool hasPendingEvents() override { return false; }

    void registerTimer(int id, int interval, Qt::TimerType type, QObject *object) override
    {
        m_timers.append({id, interval, type, object, firstDueUs(interval)});
    }

    bool unregisterTimer(int id) override
    {
        return removeTimers([id](const Timer &timer) { return timer.id == id; });
    }

    bool unregisterTimers(QObject *object) override
    {
        return removeTimers([object](const Timer &timer) { return timer.object == object; });
    }

    QList<TimerInfo> registeredTimers(QObject *object) const override
    {
        QList<TimerInfo> found;
        for (const Timer &timer : m_timers) {
            if (timer.object == object)
                found.append(TimerInfo(timer.id, timer.interval, timer.type));
        }
        return found;
    }

    int remainingTime(int id) override
    {
        const auto isIt = [id](const Timer &timer) { return timer.id == id; };
        const auto timer = std::find_if(m_timers.cbegin(), m_timers.cend(), isIt);
        if (timer == m_timers.cend())
            return -1;
        return int(std::min<qint64>((timer->dueUs - m_nowUs) / 1000, std::numeric_limits<int>::max()));
    }

    // Nothing is ever waited for, so there is nothing to wake.
    void registerSocketNotifier(QSocketNotifier *) override { }
    void unregisterSocketNotifier(QSocketNotifier *) override { }
    void wakeUp() override { }
    void interrupt() override { }
    void flush() override { }

protected:
    /// When a timer that is started now expires for the first time.
    virtual qint64 firstDueUs(int interval) const { return m_nowUs + microseconds(interval); }

private:
    struct Timer {
        int id;
        int interval;
        Qt::TimerType type;
        QObject *object;
        qint64 dueUs;
    };

    static qint64 microseconds(int interval)
    {
        // A timer without an interval would keep the clock where it is.
        return qint64(std::max(interval, 1)) * 1000;
    }

    template <class Predicate>
    bool removeTimers(Predicate predicate)
    {
        const auto end = std::remove_if(m_timers.begin(), m_timers.end(), predicate);
        const bool found = end != m_timers.end();
        m_timers.erase(end, m_timers.end());
        return found;
    }

    bool expireNextUntil(qint64 us)
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

    QList<Timer> m_timers; // in the order of their start
    qint64 m_nowUs = 0;
};

} // namespace canbus
