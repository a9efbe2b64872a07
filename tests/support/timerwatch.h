#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <utility>

/// Sees the calls that are queued for the main thread's timers, and knows the timers from then on by their
/// intervals.
class TimerWatch : public QObject {
public:
    TimerWatch() { QCoreApplication::instance()->installEventFilter(this); }

    /// The intervals of the timers that got queued calls since the last call, in order.
    QList<int> takeCalled() { return std::exchange(m_called, QList<int>()); }

    /// Whether the timer with this interval is known and running.
    bool isRunning(int interval) const
    {
        const QTimer *timer = m_timers.value(interval);
        return timer && timer->isActive();
    }

    /// Lets the timer with this interval expire at once. @return whether it is known
    bool expire(int interval) const
    {
        QTimer *timer = m_timers.value(interval);
        return timer && QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
    }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        auto *timer = qobject_cast<QTimer *>(receiver);
        if (timer && event->type() == QEvent::MetaCall) {
            m_timers[timer->interval()] = timer;
            m_called += timer->interval();
        }
        return false;
    }

private:
    QMap<int, QPointer<QTimer>> m_timers;
    QList<int> m_called;
};
