#pragma once

#include "boxsim/car/gaugefaces.h"
#include "boxsim/car/parkingstate.h"
#include "boxsim/car/vehiclestate.h"

namespace boxsim {

/// What the buttons beside those of the climate system do to the simulated car.
///
/// The link gives them no meaning; this is what the box makes of them:
///
/// | button | effect |
/// |---|---|
/// | Gauge1_CenterGauge, ... Gauge5_BottomRight | that gauge shows its other face, see gaugesShowing() |
/// | gauges customControl1, customControl2 | label state 1, 2: 0 to 1, any other to 0 |
/// | checkEngine | check-engine state 0, 1, 2, 3, 0, ... |
/// | vehicle customControl1, customControl2 | label state 1, 2, likewise |
/// | parking customControl1, customControl2 | label state 1, 2, likewise |
///
/// A release changes nothing, and neither does a number that is no button.

/// A button of the gauges screen.
/// @param button  1..7
/// @param faces  which face each gauge shows; the caller shows the gauges anew when it changed
void pressGaugesButton(GaugesState &state, GaugeFaces &faces, quint8 button, bool press);

/// A button of the vehicle screen.
/// @param button  1..3
void pressVehicleButton(VehicleState &state, quint8 button, bool press);

/// A button of the parking screen.
/// @param button  1 or 2
void pressParkingButton(ParkingState &state, quint8 button, bool press);

} // namespace boxsim
