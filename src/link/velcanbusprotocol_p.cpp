#include "velcanbusprotocol_p.h"

#include <QtCore/QMetaObject>
#include <QtCore/QThread>

#include <algorithm>
#include <utility>

namespace canbus {

VelCanBusProtocolPrivate::VelCanBusProtocolPrivate(VelCanBusProtocol *protocol)
    : q(protocol)
{
    frameBytes.reserve(receive::kMaxBufferedBytes);
    m_clock.start();
}

VelCanBusProtocolPrivate::~VelCanBusProtocolPrivate()
{
    QObject::disconnect(m_receivedBytes);
}

void VelCanBusProtocolPrivate::countReceivedBytes()
{
    // The port's thread may be at it while the protocol goes: so it shares the counters and nothing else.
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    m_receivedBytes = QObject::connect(
        buffer, &CanBusReadBuff::received, buffer,
        [counters = health.d](const QByteArray &block) {
            counters->receivedBytes.add(quint64(block.size()));
        },
        Qt::DirectConnection);
}

void VelCanBusProtocolPrivate::answered(quint8 id, LinkHealth::Fate fate)
{
    act([id, fate](SendQueue &queue, LinkEffects &effects) { queue.answered(id, fate, effects); });
}

void VelCanBusProtocolPrivate::addTestBytes(const QByteArray &bytes)
{
    const Locker lock(&m_mutex);
    m_testBytes += bytes;
}

QByteArray VelCanBusProtocolPrivate::takeTestBytes()
{
    const Locker lock(&m_mutex);
    return std::exchange(m_testBytes, QByteArray());
}

void VelCanBusProtocolPrivate::addConnectFrame(const logging::Origin &origin,
                                               SendQueue::Appending (SendQueue::*add)(LinkEffects &),
                                               Counter &made)
{
    auto appending = SendQueue::Appending::Appended;
    act([&](SendQueue &queue, LinkEffects &effects) {
        appending = (queue.*add)(effects); // GCOVR_EXCL_BR_LINE: neither is virtual
        if (appending == SendQueue::Appending::Appended)
            made.add();
    });
    if (appending == SendQueue::Appending::FirstLeftOut)
        CANBUS_ERROR_AT(origin)
            << "canbus sendCacheBuffer is overfull: it takes no second frame of this kind";
}

void VelCanBusProtocolPrivate::writeThrough(const QByteArray &block)
{
    act([&block](SendQueue &, LinkEffects &effects) { effects.push_back({LinkEffect::Write, block}); });
}

void VelCanBusProtocolPrivate::carryOutAll()
{
    quint64 end = 0;
    {
        const Locker lock(&m_mutex);
        end = decidedEffects();
    }
    carryOutUpTo(end);
}

void VelCanBusProtocolPrivate::carryOutUpTo(quint64 end)
{
    const Qt::HANDLE thread = QThread::currentThreadId();
    QMutexLocker lock(&m_mutex);
    if (m_carryingThread) {
        // Further up on this thread: that loop goes on to what was decided within it.
        if (m_carryingThread == thread)
            m_end = std::max(m_end, end);
        return;
    }
    m_carryingThread = thread;
    m_end = end;
    while (m_begunEffects < m_end) {
        const LinkEffect effect = std::move(m_effects.front());
        m_effects.pop_front();
        ++m_begunEffects;
        noteWhatIsLeft();
        lock.unlock();
        perform(effect);
        lock.relock();
    }
    m_carryingThread = nullptr;
}

void VelCanBusProtocolPrivate::perform(const LinkEffect &effect)
{
    switch (effect.kind) { // GCOVR_EXCL_BR_LINE: there are no other kinds
    case LinkEffect::Write:
        counters().countWritten(effect.frame, effect.transmissions);
        Q_EMIT q->onWritPortData(effect.frame);
        break;
    case LinkEffect::StartTimer:
        // Queued: the timers belong to the protocol's thread, and this may be the parser's.
        QMetaObject::invokeMethod(timerFor(effect.timer), "start", Qt::QueuedConnection);
        break;
    case LinkEffect::StopTimer:
        QMetaObject::invokeMethod(timerFor(effect.timer), "stop", Qt::QueuedConnection);
        break;
    case LinkEffect::LinkUp:
        Q_EMIT q->notifyCanbusStatus(true);
        break;
    case LinkEffect::LinkDown:
        counters().linkLosses.add();
        Q_EMIT q->notifyCanbusStatus(false);
        break;
    case LinkEffect::Ended:
        counters().countEnded(effect.fate, effect.transmissions, effect.microseconds);
        Q_EMIT health.commandEnded(effect.frame, effect.fate, effect.transmissions, effect.microseconds);
        break;
    }
}

QTimer *VelCanBusProtocolPrivate::timerFor(LinkTimer timer)
{
    switch (timer) { // GCOVR_EXCL_BR_LINE: there are no other timers
    case LinkTimer::RequestConnect:
        return &requestConnectTimer;
    case LinkTimer::CheckConnect:
        return &checkConnectTimer;
    case LinkTimer::Send:
        break;
    }
    return &sendTimer;
}

} // namespace canbus
