#include "wirereader.h"

#include "frameformat.h"

#include <utility>

namespace boxsim {

namespace {

using canbus::frame::kAck;
using canbus::frame::kDle;
using canbus::frame::kEtx;
using canbus::frame::kNack;
using canbus::frame::kStx;

/// The head unit's longest frame has some twenty bytes: what goes on this long has lost its end.
constexpr int kLongestRun = 4096;

/// id, TP, MOD and the check byte.
constexpr int kShortestBody = 4;

bool beginsFrame(quint8 byte)
{
    return byte == kStx || byte == kAck || byte == kNack;
}

quint8 at(const QByteArray &bytes, int index)
{
    return quint8(bytes.at(index));
}

QString hex(quint8 byte)
{
    return QString::number(byte, 16).rightJustified(2, QLatin1Char('0'));
}

quint8 xorOf(const QByteArray &bytes)
{
    quint8 sum = 0;
    for (const char byte : bytes)
        sum ^= quint8(byte);
    return sum;
}

/// How many bytes at the end of `wire` may belong to the next frame: its mark, or the first half of it.
int startOfNext(const QByteArray &wire)
{
    const int size = wire.size();
    if (size >= 2 && at(wire, size - 2) == kDle && beginsFrame(at(wire, size - 1)))
        return 2;
    return size >= 1 && at(wire, size - 1) == kDle ? 1 : 0;
}

} // namespace

QVector<WireFrame> WireReader::feed(const QByteArray &bytes)
{
    m_frames.clear();
    for (const char byte : bytes)
        take(quint8(byte));
    return std::exchange(m_frames, {});
}

void WireReader::take(quint8 byte)
{
    m_wire.append(char(byte));
    switch (m_state) {
    case State::Outside:
        return takeOutside(byte);
    case State::Data:
        return takeData(byte);
    case State::Answer:
        return takeAnswer(byte);
    }
}

void WireReader::takeOutside(quint8 byte)
{
    if (m_escape && beginsFrame(byte))
        return begin(byte);
    m_escape = byte == kDle;
    if (m_wire.size() >= kLongestRun)
        abandon(QStringLiteral("bytes outside a frame"));
}

void WireReader::takeData(quint8 byte)
{
    if (m_escape && byte == kEtx)
        return finishData();
    if (m_escape && byte != kDle)
        return abandon(QStringLiteral("a single DLE before %1 in a frame").arg(hex(byte)));
    if (m_escape || byte != kDle)
        m_body.append(char(byte));
    m_escape = !m_escape && byte == kDle;
    if (m_wire.size() >= kLongestRun)
        abandon(QStringLiteral("no end of frame within %1 bytes").arg(kLongestRun));
}

void WireReader::takeAnswer(quint8 byte)
{
    m_body.append(char(byte));
    const int size = m_body.size();
    const bool closed = size % 2 == 0 && at(m_body, size - 2) == kDle && byte == kEtx;
    const bool idTwice = size == 2 && at(m_body, 0) == byte;
    const bool closing = size == 3 && byte == kDle;
    if (closed)
        finishAnswer(size == 4 ? at(m_body, 0) : kNoId);
    else if (size > 1 && !idTwice && !closing)
        abandon(QStringLiteral("an answer that is not id, id, DLE, ETX"));
}

void WireReader::begin(quint8 mark)
{
    const QByteArray before = m_wire.chopped(2);
    if (!before.isEmpty())
        reportBad(before, QStringLiteral("bytes outside a frame"));
    m_wire = m_wire.right(2);
    m_body.clear();
    m_mark = mark;
    m_escape = false;
    m_state = mark == kStx ? State::Data : State::Answer;
}

void WireReader::finishData()
{
    if (m_body.size() < kShortestBody)
        return abandon(
            QStringLiteral("a frame of %1 bytes, shorter than id, TP, MOD, check").arg(m_body.size()));
    const quint8 expected = xorOf(m_body.chopped(1));
    const quint8 found = at(m_body, m_body.size() - 1);
    if (found != expected)
        return abandon(QStringLiteral("the check byte is %1, not %2").arg(hex(found), hex(expected)));
    WireFrame frame;
    frame.kind = WireFrame::Kind::Data;
    frame.id = at(m_body, 0);
    frame.tp = at(m_body, 1);
    frame.mod = at(m_body, 2);
    frame.data = m_body.mid(3).chopped(1);
    finish(frame);
}

void WireReader::finishAnswer(int id)
{
    WireFrame frame;
    frame.kind = m_mark == kAck ? WireFrame::Kind::Ack : WireFrame::Kind::Nack;
    frame.id = id;
    finish(frame);
}

void WireReader::finish(WireFrame frame)
{
    frame.bytes = std::exchange(m_wire, {});
    m_frames.append(frame);
    m_escape = false;
    m_state = State::Outside;
}

void WireReader::abandon(const QString &reason)
{
    const int kept = startOfNext(m_wire);
    reportBad(m_wire.chopped(kept), reason);
    m_wire = m_wire.right(kept);
    m_state = State::Outside;
    m_escape = kept == 1;
    if (kept == 2)
        begin(at(m_wire, 1));
}

void WireReader::reportBad(const QByteArray &bytes, const QString &reason)
{
    WireFrame frame;
    frame.bytes = bytes;
    frame.reason = reason;
    m_frames.append(frame);
}

} // namespace boxsim
