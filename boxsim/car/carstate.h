#pragma once

#include "boxsim/car/climatestate.h"
#include "boxsim/car/gaugesstate.h"
#include "boxsim/car/parkingstate.h"
#include "boxsim/car/screens.h"
#include "boxsim/car/textscreen.h"
#include "boxsim/car/vehiclestate.h"

#include <QtCore/QVector>

namespace boxsim {

/// All that the box reports.
struct CarState {
    ClimateState climate;
    GaugesState gauges;
    VehicleState vehicle;
    ParkingState parking;
    TextScreen textScreen;
    Screens screens;
    /// The move to another screen that is asked for at the moment, 0..4, or kNoTransition. It is sent when it
    /// becomes another one; it is no part of the state that a head unit gets when it connects.
    int transition = kNoTransition;
};

bool operator==(const CarState &a, const CarState &b);

/// What one frame reports.
struct CategoryFrame {
    quint8 tp;
    quint8 mod;
    QByteArray payload;
};

/// The frames that report the whole state, in the order in which a new head unit gets them: the supported
/// screens, climate, gauges, vehicle, parking assist, the text screen. Always the same number and order.
QVector<CategoryFrame> framesOf(const CarState &state);

/// Takes over into `state` the items that differ between `before` and `after`, and leaves the others.
void applyChanges(CarState &state, const CarState &before, const CarState &after);

} // namespace boxsim
