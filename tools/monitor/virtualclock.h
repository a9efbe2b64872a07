#pragma once

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QList>

namespace canbus::monitor {

/// The main thread's event dispatcher while a recording is read: a clock of its own, which stands still
/// except in advanceTo(). QTimers expire by it, without anybody waiting.
///
/// Posted events are carried out in advanceTo() and deliver(). Sockets are not watched.
class VirtualClock : public QAbstractEventDispatcher {
public:
    /// Makes it the main thread's. Call it before the application object is made, which owns it.
    static void install();

    /// The one that was installed, or null.
    static VirtualClock *instance();

    qint64 nowUs() const { return m_nowUs; }

    /// Lets the time pass: each timer that is due by then expires, in order, at its own time.
    void advanceTo(qint64 us);

    /// Carries out what is posted.
    static void deliver();

    /// As long as one lives, timers that are started never expire.
    class Standstill {
    public:
        Standstill() { ++instance()->m_standstills; }
        ~Standstill() { --instance()->m_standstills; }
        Q_DISABLE_COPY(Standstill)
    };

    bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
    bool hasPendingEvents() override { return false; }
    void registerTimer(int id, int interval, Qt::TimerType type, QObject *object) override;
    bool unregisterTimer(int id) override;
    bool unregisterTimers(QObject *object) override;
    QList<TimerInfo> registeredTimers(QObject *object) const override;
    int remainingTime(int id) override;
    // Nothing is ever waited for, so there is nothing to wake.
    void registerSocketNotifier(QSocketNotifier *) override { }
    void unregisterSocketNotifier(QSocketNotifier *) override { }
    void wakeUp() override { }
    void interrupt() override { }
    void flush() override { }

private:
    struct Timer {
        int id;
        int interval;
        Qt::TimerType type;
        QObject *object;
        qint64 dueUs;
    };

    template <class Predicate>
    bool removeTimers(Predicate predicate);
    bool expireNextUntil(qint64 us);

    QList<Timer> m_timers; // in the order of their start
    qint64 m_nowUs = 0;
    int m_standstills = 0;
};

} // namespace canbus::monitor
