#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

namespace boxsim {

/// Four zones of one side; this box counts in centimetres, and 255 is nothing in reach.
using ParkingZones = std::array<quint8, 4>;

/// What the box reports of the parking assist. A value that does not fit its bits on the wire loses the bits
/// above.
struct ParkingState {
    QString title;
    QStringList labels; ///< texts of the custom controls
    ParkingZones front {};
    ParkingZones rear {};
    ParkingZones left {};
    ParkingZones right {};
    quint8 labelState1 = 0;         ///< 0..3
    quint8 labelState2 = 0;         ///< 0..3
    std::array<bool, 4> sensors {}; ///< here true is measuring: front, rear, left, right
};

bool operator==(const ParkingState &a, const ParkingState &b);

/// The sub-type (MOD) of each parking frame.
enum ParkingSelector : quint8 {
    ParkingTitleSelector = 0,
    ParkingLabelsSelector = 1,
    ParkingDataSelector = 2,
};

/// Payload of ParkingTitleSelector: the title in UTF-8, closed by a zero.
QByteArray parkingTitlePayload(const ParkingState &state);

/// Payload of ParkingLabelsSelector: each label in UTF-8, closed by a zero. No label at all is an empty
/// payload, which the head unit takes for an error.
QByteArray parkingLabelsPayload(const ParkingState &state);

/// Payload of ParkingDataSelector: all the rest, in 17 bytes.
QByteArray parkingDataPayload(const ParkingState &state);

/// Takes over into `state` the items that differ between `before` and `after`, and leaves the others.
void applyChanges(ParkingState &state, const ParkingState &before, const ParkingState &after);

} // namespace boxsim
