#include "parkingstate.h"

#include "boxsim/car/payload.h"

namespace boxsim {

namespace {

template <class State>
auto itemsOf(State &s)
{
    return std::tie(s.title, s.labels, s.front, s.rear, s.left, s.right, s.labelState1, s.labelState2,
                    s.sensors);
}

} // namespace

bool operator==(const ParkingState &a, const ParkingState &b)
{
    return itemsOf(a) == itemsOf(b);
}

QByteArray parkingTitlePayload(const ParkingState &state)
{
    return textsPayload({state.title});
}

QByteArray parkingLabelsPayload(const ParkingState &state)
{
    return textsPayload(state.labels);
}

QByteArray parkingDataPayload(const ParkingState &s)
{
    QByteArray payload;
    for (const ParkingZones &side : {s.front, s.rear, s.left, s.right})
        append(payload, side);
    append(payload, quint8(pairs(0, 0, s.labelState2, s.labelState1) | flags(s.sensors, 4)));
    return payload;
}

void applyChanges(ParkingState &state, const ParkingState &before, const ParkingState &after)
{
    applyItems(itemsOf(state), itemsOf(before), itemsOf(after));
}

} // namespace boxsim
