#include "sendqueue.h"

#include "frameformat.h"
#include "support/bytes.h"
#include "wireconstants.h"

#include <utility>

namespace canbus {

namespace {

constexpr int kIdIndex = 2;

void start(LinkEffects &effects, LinkTimer timer)
{
    effects.push_back({LinkEffect::StartTimer, {}, timer});
}

void stop(LinkEffects &effects, LinkTimer timer)
{
    effects.push_back({LinkEffect::StopTimer, {}, timer});
}

void end(LinkEffects &effects, const QByteArray &frame, LinkHealth::Fate fate, int transmissions = 0,
         qint64 microseconds = 0)
{
    effects.push_back({LinkEffect::Ended, frame, {}, transmissions, fate, microseconds});
}

QByteArray connectionFrame(quint8 id, quint8 purpose)
{
    return frame::FrameWriter(id)
        .escaped(quint8(Command::Connection))
        .escaped(0)
        .escaped(0)
        .escaped(purpose)
        .finish();
}

} // namespace

bool SendQueue::enqueue(const QByteArray &frame, LinkEffects &effects)
{
    if (m_cache.size() >= kCacheBound) {
        end(effects, frame, LinkHealth::Fate::NotAccepted);
        return false;
    }
    m_hasLeftOut = false;
    m_cache.append(frame);
    restart(effects);
    return true;
}

void SendQueue::restart(LinkEffects &effects)
{
    if (m_cache.isEmpty())
        return;
    takeHead();
    // Its count is not reset: a head that is restarted by each command behind it is given up the sooner.
    transmit(effects);
    start(effects, LinkTimer::Send);
}

bool SendQueue::resend(LinkEffects &effects)
{
    if (m_cache.isEmpty()) {
        dropCurrent();
        return true;
    }
    if (m_transmissions < kMaxTransmissions) {
        transmit(effects);
        return false;
    }
    endCurrent(LinkHealth::Fate::GivenUp, effects);
    if (!m_handshaking) {
        stop(effects, LinkTimer::CheckConnect);
        start(effects, LinkTimer::RequestConnect);
        effects.push_back({LinkEffect::LinkDown});
    }
    if (m_cache.isEmpty())
        return true;
    // Not sent here: the next expiry does it, as the first transmission.
    takeHead();
    return false;
}

void SendQueue::answered(quint8 id, LinkHealth::Fate fate, LinkEffects &effects)
{
    if (id != m_currentId)
        return;
    if (m_cache.isEmpty())
        dropCurrent();
    else
        endCurrent(fate, effects);
    if (m_cache.isEmpty())
        stop(effects, LinkTimer::Send);
    else
        restart(effects);
}

void SendQueue::confirmLink(quint8 id, LinkEffects &effects) const
{
    if (id == connectionId())
        effects.push_back({LinkEffect::LinkUp});
}

SendQueue::Appending SendQueue::requestConnect(LinkEffects &effects)
{
    m_handshaking = true;
    return appendConnectFrame(connectionFrame(kConnectRequestId, kConnectRequest), effects);
}

void SendQueue::boxReady(const QByteArray &id, LinkEffects &effects)
{
    m_handshaking = false;
    m_connectionId = id;
    stop(effects, LinkTimer::RequestConnect);
    start(effects, LinkTimer::CheckConnect);
}

void SendQueue::boxNotReady(LinkEffects &effects) const
{
    stop(effects, LinkTimer::CheckConnect);
}

SendQueue::Appending SendQueue::checkConnect(LinkEffects &effects)
{
    return appendConnectFrame(connectionCheck(connectionId()), effects);
}

SendQueue::Appending SendQueue::appendConnectFrame(const QByteArray &frame, LinkEffects &effects)
{
    if (m_cache.size() < kCacheBound)
        m_hasLeftOut = false;
    Appending appending = Appending::Appended;
    if (m_cache.size() >= kOverfull && m_cache.contains(frame))
        appending = std::exchange(m_hasLeftOut, true) ? Appending::LeftOut : Appending::FirstLeftOut;
    else
        m_cache.append(frame);
    restart(effects);
    return appending;
}

QByteArray SendQueue::connectionCheck(quint8 id)
{
    return connectionFrame(id, kConnectionCheck);
}

quint8 SendQueue::connectionId() const
{
    return firstByte(m_connectionId);
}

void SendQueue::takeHead()
{
    m_current = m_cache.first();
    m_currentId = byteAt(m_current, kIdIndex);
}

void SendQueue::transmit(LinkEffects &effects)
{
    if (m_transmissions == 0)
        m_firstSentUs = m_nowUs;
    ++m_transmissions;
    effects.push_back({LinkEffect::Write, m_current, {}, m_transmissions});
}

/// The current frame is the cache's head, so of several equal frames it is the first that goes.
void SendQueue::endCurrent(LinkHealth::Fate fate, LinkEffects &effects)
{
    end(effects, m_current, fate, m_transmissions, m_transmissions > 0 ? m_nowUs - m_firstSentUs : 0);
    m_cache.removeOne(m_current);
    dropCurrent();
}

void SendQueue::dropCurrent()
{
    m_current.clear();
    m_currentId = 0;
    m_transmissions = 0;
}

} // namespace canbus
