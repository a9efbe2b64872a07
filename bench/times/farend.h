#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSemaphore>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double microsecondsBetween(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double, std::micro>(to - from).count();
}

/// A pseudo-terminal whose other end is a thread of its own. It waits for bytes, notes when the first comes,
/// and answers frames as the box does: so the link comes up, and every command ends at once.
class FarEnd {
public:
    FarEnd();
    ~FarEnd();

    /// The device to open.
    std::string name() const { return m_name; }

    /// The kernel's number of the other end's thread.
    int thread() const { return m_number; }

    /// From now on the next byte counts as the first.
    void arm() { m_isArmed = true; }

    /// Sleeps until the first byte has come. @return when it came
    Clock::time_point waitForTheFirst();

    /// Usable on every thread.
    void send(const QByteArray &data) const;

private:
    void listen();
    void answerAll();
    void answer(const QByteArray &frame) const;

    int m_master;
    std::string m_name;
    QByteArray m_received;
    std::atomic<bool> m_ends {false};
    std::atomic<bool> m_isArmed {false};
    std::atomic<int> m_number {0};
    Clock::time_point m_heardAt;
    QSemaphore m_heard;
    std::thread m_thread;
};

} // namespace bench
