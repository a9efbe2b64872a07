#include "vehiclestate.h"

#include "boxsim/car/payload.h"

namespace boxsim {

namespace {

template <class State>
auto itemsOf(State &s)
{
    return std::tie(s.title, s.labels, s.doors, s.hood, s.trunk, s.tires, s.checkEngine, s.battery,
                    s.labelState1, s.labelState2, s.tireTexts);
}

} // namespace

bool operator==(const VehicleState &a, const VehicleState &b)
{
    return itemsOf(a) == itemsOf(b);
}

QByteArray vehicleTitlePayload(const VehicleState &state)
{
    return textsPayload({state.title});
}

QByteArray vehicleLabelsPayload(const VehicleState &state)
{
    return textsPayload(state.labels);
}

QByteArray vehicleDataPayload(const VehicleState &s)
{
    const std::array<quint8, 3> bytes {
        quint8(flags(s.doors) | flag(s.hood, 4) | flag(s.trunk, 5)),
        pairs(s.tires[3], s.tires[2], s.tires[1], s.tires[0]),
        quint8(pairs(s.labelState2, s.labelState1, 0, s.checkEngine) | flag(s.battery, 2)),
    };
    QByteArray payload;
    append(payload, bytes);
    appendTexts(payload, s.tireTexts);
    return payload;
}

void applyChanges(VehicleState &state, const VehicleState &before, const VehicleState &after)
{
    applyItems(itemsOf(state), itemsOf(before), itemsOf(after));
}

} // namespace boxsim
