#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <algorithm>

/// Measures for how long the event loop of its thread is held.
///
/// A beat that comes late was held up by what ran on the thread or by what the thread waited for, or the
/// machine had no processor for it: the time for which the thread was ready and did not run is taken off.
class Heartbeat : public QObject {
public:
    Heartbeat()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { beat(); });
        m_timer.setTimerType(Qt::PreciseTimer);
    }

    void start()
    {
        m_longestMs = 0;
        m_beats = 0;
        m_clock.start();
        m_waitedNs = waitedNs();
        m_timer.start(kBeatMs);
    }

    /// The longest time for which the loop was held since start().
    double longestMs() const { return m_longestMs; }
    int beats() const { return m_beats; }

private:
    static constexpr int kBeatMs = 5;

    /// How long this thread has been ready without running, as the kernel counts it; 0 if it does not.
    static qint64 waitedNs()
    {
        QFile statistics(QStringLiteral("/proc/thread-self/schedstat"));
        if (!statistics.open(QIODevice::ReadOnly))
            return 0;
        return statistics.readAll().split(' ').value(1).toLongLong();
    }

    void beat()
    {
        const qint64 waited = waitedNs();
        const qint64 sinceLastNs = m_clock.nsecsElapsed() - (waited - m_waitedNs);
        m_clock.start();
        m_waitedNs = waited;
        m_longestMs = std::max(m_longestMs, double(sinceLastNs) / 1e6 - kBeatMs);
        ++m_beats;
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_waitedNs = 0;
    double m_longestMs = 0;
    int m_beats = 0;
};
