#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

namespace boxsim {

/// What the box reports of the vehicle. A value that does not fit its bits on the wire loses the bits above.
struct VehicleState {
    QString title;
    QStringList labels;           ///< texts of the custom controls
    std::array<bool, 4> doors {}; ///< here true is open: front left, front right, rear left, rear right
    bool hood = false;
    bool trunk = false;
    std::array<quint8, 4> tires {}; ///< 0..3 each; in the order of the doors, here 0 is well
    quint8 checkEngine = 0;         ///< 0..3
    bool battery = false;
    quint8 labelState1 = 0; ///< 0..3
    quint8 labelState2 = 0; ///< 0..3
    QStringList tireTexts;
};

bool operator==(const VehicleState &a, const VehicleState &b);

/// The sub-type (MOD) of each vehicle frame.
enum VehicleSelector : quint8 {
    VehicleTitleSelector = 0,
    VehicleLabelsSelector = 1,
    VehicleDataSelector = 2,
};

/// Payload of VehicleTitleSelector: the title in UTF-8, closed by a zero.
QByteArray vehicleTitlePayload(const VehicleState &state);

/// Payload of VehicleLabelsSelector: each label in UTF-8, closed by a zero. No label at all is an empty
/// payload, which the head unit takes for an error.
QByteArray vehicleLabelsPayload(const VehicleState &state);

/// Payload of VehicleDataSelector: all the rest in 3 bytes, and the tire texts behind them.
QByteArray vehicleDataPayload(const VehicleState &state);

/// Takes over into `state` the items that differ between `before` and `after`, and leaves the others.
void applyChanges(VehicleState &state, const VehicleState &before, const VehicleState &after);

} // namespace boxsim
