#include "climatestate.h"

#include <initializer_list>

namespace boxsim {

namespace {

/// Puts four 2-bit states into a byte, the first into the highest bits.
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

template <class T>
void applyChange(T &state, const T &before, const T &after)
{
    if (before != after)
        state = after;
}

} // namespace

QByteArray climateTypePayload(const ClimateState &state)
{
    QByteArray payload;
    append(payload, state.type);
    appendText(payload, state.title);
    return payload;
}

QByteArray climateLabelsPayload(const ClimateState &state)
{
    QByteArray payload;
    for (const QString &label : state.labels)
        appendText(payload, label);
    return payload;
}

QByteArray climateDataPayload(const ClimateState &s)
{
    const auto &b = s.buttons;
    const std::array<quint8, 15> bytes {
        quint8(s.mainTemp >> 8),
        quint8(s.mainTemp & 0xFF),
        quint8(s.secondTemp >> 8),
        quint8(s.secondTemp & 0xFF),
        pairs(s.mainUnit, s.secondUnit, b[0], b[1]),
        pairs(b[2], b[3], b[4], b[5]),
        nibbles(s.leftHeatedSeat, s.rightHeatedSeat),
        nibbles(s.leftCooledSeat, s.rightCooledSeat),
        s.fanDirectValue,
        pairs(s.fanSpeedStatus, b[6], b[7], b[8]),
        nibbles(s.ventPosition, pairs(0, 0, b[9], b[10])),
        pairs(b[11], b[12], b[13], b[14]),
        pairs(b[15], b[16], b[17], s.fanDirect),
        // The last two entries stand the other way round than all others.
        quint8(flag(s.driverSeat, 5) | flag(s.systemOn, 4) | pairs(0, 0, b[19], b[18])),
        s.manualTemp,
    };
    QByteArray payload;
    for (const quint8 byte : bytes)
        append(payload, byte);
    return payload;
}

void applyChanges(ClimateState &state, const ClimateState &before, const ClimateState &after)
{
    applyChange(state.type, before.type, after.type);
    applyChange(state.title, before.title, after.title);
    applyChange(state.labels, before.labels, after.labels);
    applyChange(state.mainTemp, before.mainTemp, after.mainTemp);
    applyChange(state.secondTemp, before.secondTemp, after.secondTemp);
    applyChange(state.mainUnit, before.mainUnit, after.mainUnit);
    applyChange(state.secondUnit, before.secondUnit, after.secondUnit);
    applyChange(state.leftHeatedSeat, before.leftHeatedSeat, after.leftHeatedSeat);
    applyChange(state.rightHeatedSeat, before.rightHeatedSeat, after.rightHeatedSeat);
    applyChange(state.leftCooledSeat, before.leftCooledSeat, after.leftCooledSeat);
    applyChange(state.rightCooledSeat, before.rightCooledSeat, after.rightCooledSeat);
    applyChange(state.fanDirectValue, before.fanDirectValue, after.fanDirectValue);
    applyChange(state.fanSpeedStatus, before.fanSpeedStatus, after.fanSpeedStatus);
    applyChange(state.ventPosition, before.ventPosition, after.ventPosition);
    applyChange(state.fanDirect, before.fanDirect, after.fanDirect);
    applyChange(state.systemOn, before.systemOn, after.systemOn);
    applyChange(state.driverSeat, before.driverSeat, after.driverSeat);
    applyChange(state.manualTemp, before.manualTemp, after.manualTemp);
    for (std::size_t i = 0; i < state.buttons.size(); ++i)
        applyChange(state.buttons[i], before.buttons[i], after.buttons[i]);
}

} // namespace boxsim
