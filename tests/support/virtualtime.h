#pragma once

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QTimerEvent>

#include <algorithm>

/// The event dispatcher of a test whose QTimers run in virtual time: the clock stands still except in
/// advance(), which jumps from one timer to the next without waiting.
///
/// For tests on the main thread alone. Use VIRTUAL_TIME_TEST_MAIN in the place of QTEST_GUILESS_MAIN; what
/// waits for real time to pass (QTRY_*, qWait) does not work in such a program.
class VirtualTime : public QAbstractEventDispatcher {
public:
    /// Makes virtual time the main thread's. Call it before the application object is made, which owns it.
    static void install() { QCoreApplication::setEventDispatcher(new VirtualTime); }

    /// Lets this many milliseconds pass: each timer that is due in them expires, in order, at its own time.
    static void advance(int milliseconds) { current()->run(milliseconds); }

    /// The milliseconds that have passed so far.
    static qint64 now() { return current()->m_now; }

    /// Carries out what is posted, and no timer: timers expire in advance() alone.
    bool processEvents(QEventLoop::ProcessEventsFlags) override
    {
        Q_EMIT awake();
        QCoreApplication::sendPostedEvents();
        return false;
    }

    bool hasPendingEvents() override { return false; }

    void registerTimer(int id, int interval, Qt::TimerType type, QObject *object) override
    {
        m_timers.append({id, interval, type, object, m_now + interval});
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
        for (const Timer &timer : m_timers) {
            if (timer.id == id)
                return int(timer.due - m_now);
        }
        return -1;
    }

    // Nothing is ever waited for, so there is nothing to wake, and no socket to watch.
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
        qint64 due;
    };

    static VirtualTime *current() { return static_cast<VirtualTime *>(instance()); }

    template <class Predicate>
    bool removeTimers(Predicate predicate)
    {
        const auto end = std::remove_if(m_timers.begin(), m_timers.end(), predicate);
        const bool found = end != m_timers.end();
        m_timers.erase(end, m_timers.end());
        return found;
    }

    void run(int milliseconds)
    {
        const qint64 end = m_now + milliseconds;
        QCoreApplication::sendPostedEvents();
        while (expireNextUntil(end))
            QCoreApplication::sendPostedEvents();
        m_now = end;
    }

    bool expireNextUntil(qint64 end)
    {
        // The first of those that are due at the same time: the one that was started first.
        const auto next = std::min_element(m_timers.begin(), m_timers.end(),
                                           [](const Timer &a, const Timer &b) { return a.due < b.due; });
        if (next == m_timers.end() || next->due > end)
            return false;
        m_now = next->due;
        // A timer without an interval would keep the clock where it is.
        next->due += std::max(next->interval, 1);
        QTimerEvent event(next->id);
        QCoreApplication::sendEvent(next->object, &event); // may end or start any timer
        return true;
    }

    QList<Timer> m_timers; // in the order of their start
    qint64 m_now = 0;
};

/// The main() of a test program that runs in virtual time.
#define VIRTUAL_TIME_TEST_MAIN(TestClass)                                                                    \
    int main(int argc, char *argv[])                                                                         \
    {                                                                                                        \
        VirtualTime::install();                                                                              \
        QCoreApplication application(argc, argv);                                                            \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
