#include "payload.h"

namespace boxsim {

quint8 pairs(quint8 bits76, quint8 bits54, quint8 bits32, quint8 bits10)
{
    quint32 byte = 0;
    for (const quint8 state : {bits76, bits54, bits32, bits10})
        byte = byte << 2 | (state & 0x03U);
    return quint8(byte);
}

quint8 nibbles(quint8 high, quint8 low)
{
    return quint8((high & 0x0FU) << 4 | (low & 0x0FU));
}

quint8 flag(bool on, int bit)
{
    return quint8((on ? 1U : 0U) << bit);
}

void append(QByteArray &payload, quint8 byte)
{
    payload.append(char(byte));
}

void appendText(QByteArray &payload, const QString &text)
{
    payload += text.toUtf8();
    append(payload, 0);
}

void appendTexts(QByteArray &payload, const QStringList &texts)
{
    for (const QString &text : texts)
        appendText(payload, text);
}

QByteArray textsPayload(const QStringList &texts)
{
    QByteArray payload;
    appendTexts(payload, texts);
    return payload;
}

} // namespace boxsim
