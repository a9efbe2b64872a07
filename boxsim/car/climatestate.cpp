#include "climatestate.h"

#include "boxsim/car/payload.h"

namespace boxsim {

namespace {

template <class State>
auto itemsOf(State &s)
{
    return std::tie(s.type, s.title, s.labels, s.mainTemp, s.secondTemp, s.mainUnit, s.secondUnit,
                    s.leftHeatedSeat, s.rightHeatedSeat, s.leftCooledSeat, s.rightCooledSeat,
                    s.fanDirectValue, s.fanSpeedStatus, s.ventPosition, s.fanDirect, s.systemOn, s.driverSeat,
                    s.manualTemp, s.buttons);
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
    return textsPayload(state.labels);
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
    append(payload, bytes);
    return payload;
}

bool operator==(const ClimateState &a, const ClimateState &b)
{
    return itemsOf(a) == itemsOf(b);
}

void applyChanges(ClimateState &state, const ClimateState &before, const ClimateState &after)
{
    applyItems(itemsOf(state), itemsOf(before), itemsOf(after));
}

} // namespace boxsim
