#include "framesplitter.h"

#include "link/frameformat.h"
#include "link/receivepath.h"

namespace canbus::qml {

namespace {

bool isOpening(quint8 byte)
{
    return byte == frame::kStx || byte == frame::kAck || byte == frame::kNack;
}

} // namespace

QList<QByteArray> FrameSplitter::add(const QByteArray &bytes)
{
    QList<QByteArray> ended;
    for (const char byte : bytes)
        take(byte, ended);
    return ended;
}

void FrameSplitter::clear()
{
    m_pending.clear();
    m_isEscaped = false;
}

void FrameSplitter::take(char byte, QList<QByteArray> &ended)
{
    const bool isMark = m_isEscaped;
    m_isEscaped = !isMark && quint8(byte) == frame::kDle;
    m_pending.append(byte);
    if (isMark && isOpening(quint8(byte)) && m_pending.size() > 2) {
        ended.append(m_pending.chopped(2));
        m_pending = m_pending.right(2);
    } else if ((isMark && quint8(byte) == frame::kEtx) || m_pending.size() >= receive::kMaxBufferedBytes) {
        ended.append(m_pending);
        m_pending.clear();
    }
}

} // namespace canbus::qml
