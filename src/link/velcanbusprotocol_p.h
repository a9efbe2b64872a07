#pragma once

#include "linkhealth_p.h"
#include "receivepath.h"
#include "sendqueue.h"
#include "support/locker.h"
#include "velcanbusprotocol.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QMutex>
#include <QtCore/QTimer>

#include <atomic>
#include <functional>

namespace canbus {

/// What the protocol object is made of, by the threads that touch it.
class VelCanBusProtocolPrivate {
public:
    explicit VelCanBusProtocolPrivate(VelCanBusProtocol *protocol);
    ~VelCanBusProtocolPrivate();

    /// Lets `decide(queue, effects)` change the state of sending under its lock, then carries the effects
    /// out without it. The effects of all threads go through one list, and one thread at a time works it
    /// off: so their order is that of the decisions, and nobody waits for foreign code. Nobody works for
    /// another thread without end either: what is decided elsewhere meanwhile is left to that thread or to
    /// the end of the parser's pass.
    template <class Decide>
    void act(Decide &&decide)
    {
        quint64 end = 0;
        {
            const Locker lock(&m_mutex);
            m_queue.setNow(m_clock.nsecsElapsed() / 1000);
            decide(m_queue, m_effects);
            counters().cacheHighWater.raiseTo(quint64(m_queue.cachedFrames()));
            end = decidedEffects();
            noteWhatIsLeft();
        }
        carryOutUpTo(end);
    }

    /// Carries out what has been decided until now and is left, unless another thread is at it. The parser
    /// thread asks on every tick: so nothing is locked while nothing is left.
    void carryOutTheRest()
    {
        if (m_isAnythingLeft.load(std::memory_order_relaxed))
            carryOutAll();
    }

    /// Reads the state of sending under its lock.
    template <class Read>
    auto look(Read &&read)
    {
        const Locker lock(&m_mutex);
        return std::invoke(read, m_queue);
    }

    /// An ACK or NACK with this id, or what stands for one.
    void answered(quint8 id, LinkHealth::Fate fate);

    /// Adds a connect request or connection check, counts it, and logs the first one that is left out.
    void addConnectFrame(const logging::Origin &origin, SendQueue::Appending (SendQueue::*add)(LinkEffects &),
                         Counter &made);

    /// Counts the bytes that the serial port receives, from now on.
    void countReceivedBytes();

    LinkHealthPrivate &counters() { return *health.d; }

    /// Writes a block that no answer is expected for, in order with all others.
    void writeThrough(const QByteArray &block);

    /// The bytes that the loop-back test has not compared yet.
    void addTestBytes(const QByteArray &bytes);
    QByteArray takeTestBytes();

    // Any thread.
    LinkHealth health;

    // Protocol's thread.
    QTimer checkConnectTimer;
    QTimer requestConnectTimer;
    QTimer sendTimer;

    // Parser thread, or whoever else holds the mutex of CanBusReadBuff.
    bool inPass = false;
    receive::Markers markers;
    QByteArray frameBytes;
    FrameDataFormat decoded;

    // Set in the protocol's constructor and destructor.
    CanbusTickThread *tickThread = nullptr;

private:
    quint64 decidedEffects() const { return m_begunEffects + m_effects.size(); }
    void noteWhatIsLeft() { m_isAnythingLeft.store(!m_effects.empty(), std::memory_order_relaxed); }
    void carryOutAll();
    void carryOutUpTo(quint64 end);
    void perform(const LinkEffect &effect);
    QTimer *timerFor(LinkTimer timer);

    VelCanBusProtocol *const q;
    QMetaObject::Connection m_receivedBytes;

    std::atomic<bool> m_isAnythingLeft {false}; // whether there are effects; changed under the lock

    QMutex m_mutex; // guards all below; taken by both threads, held for no call to others
    QByteArray m_testBytes;
    SendQueue m_queue;
    LinkEffects m_effects;
    QElapsedTimer m_clock;
    quint64 m_begunEffects = 0;            // those that have left the list, since the beginning
    quint64 m_end = 0;                     // how many of them the thread that is at it is to reach
    Qt::HANDLE m_carryingThread = nullptr; // the one that is at it, if any
};

} // namespace canbus
