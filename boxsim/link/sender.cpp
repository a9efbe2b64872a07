#include "sender.h"

#include "frameformat.h"
#include "wireconstants.h"

#include <utility>

namespace boxsim {

namespace {

using canbus::Category;

constexpr int kIdsPerCategory = 8;

struct IdBlock {
    Category category;
    quint8 firstId;
};

/// Apart from the ids that the head unit uses on its own account (21 to 23), and from every control byte.
constexpr IdBlock kIdBlocks[] = {
    {Category::Version, 0x40},           {Category::ScreensInfo, 0x48},
    {Category::Climate, 0x50},           {Category::Gauges, 0x58},
    {Category::Vehicle, 0x60},           {Category::ParkingAssist, 0x68},
    {Category::ScreensTransition, 0x70}, {Category::TextScreen, 0x78},
};

/// The head unit takes a 9F with a 03 behind it for the end of a frame, also inside one, so that it can read
/// no frame whose fields have them side by side.
bool hasEndInside(const QByteArray &frame)
{
    constexpr int kMarkBytes = 2;
    return frame.chopped(kMarkBytes).contains("\x9f\x03");
}

/// For frames of a category that the head unit does not know.
constexpr quint8 kOtherIds = 0x38;

quint8 firstIdOf(quint8 tp)
{
    for (const IdBlock &block : kIdBlocks) {
        if (quint8(block.category) == tp)
            return block.firstId;
    }
    return kOtherIds;
}

} // namespace

void Sender::post(quint8 tp, quint8 mod, const QByteArray &data)
{
    for (Waiting &waiting : m_waiting) {
        if (waiting.tp == tp && waiting.mod == mod) {
            waiting.data = data;
            return;
        }
    }
    m_waiting.append({tp, mod, data});
}

void Sender::clear()
{
    m_waiting.clear();
    m_current.clear();
}

bool Sender::acknowledge(int id)
{
    if (m_current.isEmpty() || id != m_currentId)
        return false;
    m_current.clear();
    return true;
}

Sender::Step Sender::poll(qint64 nowMs)
{
    const qint64 due = dueMs();
    if (due == kNever || nowMs < due)
        return {};
    if (m_current.isEmpty())
        return sendNext(nowMs);
    if (m_transmissions == kTransmissions)
        return {Step::Kind::GaveUp, m_currentId, std::exchange(m_current, {})};
    ++m_transmissions;
    m_lastWriteMs = nowMs;
    return {Step::Kind::Resent, m_currentId, m_current};
}

qint64 Sender::dueMs() const
{
    if (!m_current.isEmpty())
        return m_lastWriteMs + kResendIntervalMs;
    return m_waiting.isEmpty() ? kNever : m_lastWriteMs + kFrameSpacingMs;
}

Sender::Step Sender::sendNext(qint64 nowMs)
{
    const Waiting next = m_waiting.takeFirst();
    int &turn = m_turns[next.tp];
    // An id that puts a check byte of 03 behind a 9F is passed over. With one in the data no id helps.
    for (int i = 0; i == 0 || (i < kIdsPerCategory && hasEndInside(m_current)); ++i) {
        m_currentId = quint8(firstIdOf(next.tp) + turn);
        turn = (turn + 1) % kIdsPerCategory;
        m_current = canbus::frame::build(m_currentId, next.tp, next.mod, next.data);
    }
    m_transmissions = 1;
    m_lastWriteMs = nowMs;
    return {Step::Kind::Sent, m_currentId, m_current};
}

quint8 categoryOfId(int id)
{
    for (const IdBlock &block : kIdBlocks) {
        if (id >= block.firstId && id < block.firstId + kIdsPerCategory)
            return quint8(block.category);
    }
    return 0;
}

} // namespace boxsim
