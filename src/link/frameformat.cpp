#include "frameformat.h"

namespace canbus::frame {

namespace {

/// Marks, id, TP, MOD, CS and a short payload: most commands fit without growing.
constexpr int kUsualFrameSize = 24;

void append(QByteArray &frame, quint8 byte)
{
    frame.append(char(byte));
}

} // namespace

void appendEscaped(QByteArray &frame, quint8 byte)
{
    append(frame, byte);
    if (byte == kDle)
        append(frame, byte);
}

FrameWriter::FrameWriter(quint8 id)
{
    m_frame.reserve(kUsualFrameSize);
    append(m_frame, kDle);
    append(m_frame, kStx);
    escaped(id);
}

FrameWriter &FrameWriter::escaped(quint8 byte)
{
    appendEscaped(m_frame, byte);
    m_checkByte ^= byte;
    return *this;
}

FrameWriter &FrameWriter::escaped(const QByteArray &bytes)
{
    for (const char byte : bytes)
        escaped(quint8(byte));
    return *this;
}

FrameWriter &FrameWriter::plain(quint8 byte)
{
    append(m_frame, byte);
    m_checkByte ^= byte;
    return *this;
}

QByteArray FrameWriter::finish()
{
    appendEscaped(m_frame, m_checkByte);
    append(m_frame, kDle);
    append(m_frame, kEtx);
    return m_frame;
}

QByteArray build(quint8 id, quint8 tp, quint8 mod, const QByteArray &data)
{
    return FrameWriter(id).escaped(tp).escaped(mod).escaped(data).finish();
}

QByteArray buildAnswer(quint8 kind, const QByteArray &id)
{
    QByteArray answer;
    answer.reserve(6);
    append(answer, kDle);
    append(answer, kind);
    answer.append(id);
    answer.append(id);
    append(answer, kDle);
    append(answer, kEtx);
    return answer;
}

} // namespace canbus::frame
