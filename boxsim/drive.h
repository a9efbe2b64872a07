#pragma once

#include "boxsim/carstate.h"
#include "boxsim/gaugefaces.h"

namespace boxsim {

/// One round of the built-in drive; after it the same round begins again.
constexpr qint64 kDriveRoundMs = 60000;

/// The drive changes its state at whole multiples of this. Only the gauges change that often.
constexpr qint64 kDriveStepMs = 250;

/// The whole car at a moment of the built-in drive: the same for the same time, always.
///
/// In one round every item changes: the car is entered and started, warms up, is driven with a soft tire and
/// a warning of the engine, shows other gauges for a while, is reversed into a parking space, and is left.
/// In between it moves through its menu and asks once for each move to another screen.
/// @param nowMs  time since the drive began, 0 or more
/// @param turned  1 for each gauge that shows the other face than the drive would have it
CarState driveAt(qint64 nowMs, const GaugeFaces &turned = {});

/// The climate system of driveAt(), which changes at whole seconds.
///
/// In one round each of the 20 buttons shows all four states. Texts come in four scripts, and some values are
/// 9F, which the link has to escape.
ClimateState climateDriveAt(qint64 nowMs);

} // namespace boxsim
