#include "headunitreading.h"

namespace {

constexpr int kMostBytes = 2048;

quint8 at(const QByteArray &bytes, int index)
{
    return quint8(bytes.at(index));
}

} // namespace

HeadUnitReading::Pass HeadUnitReading::pass()
{
    Pass pass;
    if (m_buffer.size() > kMostBytes) {
        pass.found = Found::Discarded;
        pass.discarded = m_buffer.size();
        m_buffer.clear();
        return pass;
    }
    const int from = start();
    if (from < 0)
        return pass;
    const int escapedEnd = end(from);
    if (escapedEnd < 0) {
        pass.awaitsEnd = m_mark == Mark::Data && endsInEscape(from);
        pass.awaiting = m_lastId;
        return pass;
    }
    const int removed = unescape(from, escapedEnd);
    const int to = end(from);
    pass.reachedBeyond = removed > escapedEnd - to;
    pass.skipped = from - 2;
    m_lastId.clear();
    quint8 check = 0;
    for (int i = from; i < to - 3; ++i)
        check = quint8(check ^ at(m_buffer, i));
    pass.found = Found::Broken;
    if (m_buffer.size() >= 4 && check == at(m_buffer, to - 3))
        decode(m_buffer.mid(from, to - from), check, pass);
    m_buffer = m_buffer.mid(to);
    return pass;
}

int HeadUnitReading::start()
{
    for (int i = 0; i + 1 < m_buffer.size(); ++i) {
        if (at(m_buffer, i) != 0x9f)
            continue;
        const quint8 mark = at(m_buffer, i + 1);
        m_mark = mark == 0x02 ? Mark::Data
            : mark == 0x06    ? Mark::Ack
            : mark == 0x15    ? Mark::Nack
                              : Mark::None;
        if (m_mark != Mark::None)
            return i + 2;
    }
    return -1;
}

int HeadUnitReading::end(int from) const
{
    for (int i = from; i + 1 < m_buffer.size(); ++i) {
        if (at(m_buffer, i) == 0x9f && at(m_buffer, i + 1) == 0x03)
            return i + 2;
    }
    return -1;
}

bool HeadUnitReading::endsInEscape(int from) const
{
    return m_buffer.size() > from && at(m_buffer, m_buffer.size() - 1) == 0x9f;
}

/// @return how many bytes have gone
int HeadUnitReading::unescape(int from, int to)
{
    int removed = 0;
    for (int i = from; i < to && i + 1 < m_buffer.size(); ++i) {
        if (at(m_buffer, i) != 0x9f || at(m_buffer, i + 1) != 0x9f)
            continue;
        m_buffer.remove(i, 1);
        ++removed;
    }
    return removed;
}

/// @param frame  from its id to its closing mark
void HeadUnitReading::decode(const QByteArray &frame, quint8 check, Pass &pass)
{
    pass.id = frame.left(1);
    if (m_mark != Mark::Data) {
        pass.found = m_mark == Mark::Ack ? Found::Ack : Found::Nack;
        return;
    }
    pass.found = Found::Data;
    pass.tp = frame.mid(1, 1);
    pass.mod = frame.mid(2, 1);
    const QByteArray closing = QByteArray(1, char(check)) + "\x9f\x03";
    for (int i = 3; i < frame.size() && frame.mid(i) != closing; ++i)
        pass.payload += frame.at(i);
    m_lastId = pass.id;
}
