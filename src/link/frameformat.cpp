#include "frameformat.h"

namespace canbus::frame {

namespace {

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
    append(kDle);
    append(kStx);
    escaped(id);
}

QByteArray FrameWriter::finish()
{
    escaped(m_checkByte);
    append(kDle);
    append(kEtx);
    return QByteArray(m_frame.constData(), m_frame.size());
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
