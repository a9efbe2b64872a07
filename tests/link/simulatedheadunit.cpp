#include "simulatedheadunit.h"

#include "link/frameformat.h"
#include "support/bytes.h"

#include <algorithm>
#include <utility>

using namespace canbus;

namespace {

int intervalOf(LinkTimer timer)
{
    switch (timer) {
    case LinkTimer::RequestConnect:
        return SendQueue::kRequestConnectIntervalMs;
    case LinkTimer::CheckConnect:
        return SendQueue::kCheckConnectIntervalMs;
    case LinkTimer::Send:
        break;
    }
    return SendQueue::kResendIntervalMs;
}

} // namespace

SimulatedHeadUnit::SimulatedHeadUnit()
{
    m_due.fill(kNever);
    startTimer(LinkTimer::RequestConnect);
}

QByteArray SimulatedHeadUnit::takeWritten()
{
    return std::exchange(m_written, QByteArray());
}

void SimulatedHeadUnit::advance(qint64 nowMs)
{
    m_nowMs = nowMs;
    m_queue.setNow(nowMs * 1000);
    receive::runPass(m_buffer, *this);
    if (isDue(LinkTimer::Send)) {
        startTimer(LinkTimer::Send);
        if (m_queue.resend(m_effects))
            m_due[int(LinkTimer::Send)] = kNever;
        carryOut();
    }
    if (isDue(LinkTimer::RequestConnect)) {
        startTimer(LinkTimer::RequestConnect);
        m_queue.requestConnect(m_effects);
        carryOut();
    }
    if (isDue(LinkTimer::CheckConnect)) {
        startTimer(LinkTimer::CheckConnect);
        m_queue.checkConnect(m_effects);
        carryOut();
    }
}

bool SimulatedHeadUnit::send(const QByteArray &frame)
{
    const bool accepted = m_queue.enqueue(frame, m_effects);
    carryOut();
    return accepted;
}

bool SimulatedHeadUnit::isStranded() const
{
    return std::all_of(m_due.begin(), m_due.end(), [](qint64 due) { return due == kNever; });
}

int SimulatedHeadUnit::onSearchDLE()
{
    const receive::Start start = receive::findStart(m_buffer);
    m_markers = start.markers;
    return start.index;
}

int SimulatedHeadUnit::onSearchDLE_ETX(int start)
{
    const receive::End end = receive::findEnd(m_buffer, start);
    if (end.escapeIsLast && m_markers.stx) {
        m_written += frame::buildAnswer(frame::kNack, m_lastId);
        ++nacksSent;
    }
    return end.index;
}

void SimulatedHeadUnit::onRemoveEscapeFrameHeaders(int start, int end)
{
    receive::unescape(m_buffer, start, end);
}

bool SimulatedHeadUnit::checkXOR(int start, int end)
{
    const receive::Check check = receive::checkFrame(m_buffer, start, end);
    m_check = check.computed;
    m_lastId.clear();
    return check.holds;
}

void SimulatedHeadUnit::onProcessingFrameData(int start, int end)
{
    m_frame = m_buffer.mid(start, end - start);
}

void SimulatedHeadUnit::onCategoryDataProcessing()
{
    const quint8 id = firstByte(m_frame);
    if (m_markers.nack)
        m_queue.answered(id, LinkHealth::Fate::Refused, m_effects);
    if (m_markers.ack)
        m_queue.answered(id, LinkHealth::Fate::Acknowledged, m_effects);
    if (m_markers.ack)
        m_queue.confirmLink(id, m_effects);
    if (m_markers.stx)
        takeData();
    carryOut();
}

void SimulatedHeadUnit::takeData()
{
    m_lastId = m_frame.left(1);
    const QByteArray payload = m_frame.mid(3, receive::payloadSize(m_frame, 3, m_check));
    const quint8 category = byteAt(m_frame, 1);
    reports.append({category, byteAt(m_frame, 2), payload});
    if (category == 0x01)
        takeVersion(m_lastId, payload);
    carryOut();
    m_written += frame::buildAnswer(frame::kAck, m_lastId);
}

void SimulatedHeadUnit::takeVersion(const QByteArray &id, const QByteArray &payload)
{
    if (byteAt(payload, 1) == 1) {
        m_queue.boxReady(id, m_effects);
        m_queue.checkConnect(m_effects);
    } else if (byteAt(payload, 1) == 0) {
        m_queue.requestConnect(m_effects);
        m_queue.boxNotReady(m_effects);
    }
}

void SimulatedHeadUnit::carryOut()
{
    for (const LinkEffect &effect : std::exchange(m_effects, {})) {
        switch (effect.kind) {
        case LinkEffect::Write:
            m_written += effect.frame;
            told.append(effect);
            break;
        case LinkEffect::StartTimer:
            startTimer(effect.timer);
            break;
        case LinkEffect::StopTimer:
            m_due[int(effect.timer)] = kNever;
            break;
        case LinkEffect::LinkUp:
            m_linkUp = true;
            break;
        case LinkEffect::LinkDown:
            linkLosses += m_linkUp ? 1 : 0;
            m_linkUp = false;
            break;
        case LinkEffect::Ended:
            told.append(effect);
            break;
        }
    }
}

bool SimulatedHeadUnit::isDue(LinkTimer timer) const
{
    const qint64 due = m_due[int(timer)];
    return due != kNever && due <= m_nowMs;
}

void SimulatedHeadUnit::startTimer(LinkTimer timer)
{
    m_due[int(timer)] = m_nowMs + intervalOf(timer);
}
