#pragma once

#include "boxsim/climatestate.h"

namespace boxsim {

/// One round of the built-in drive; after it the same round begins again.
constexpr qint64 kDriveRoundMs = 60000;

/// The drive changes its state at whole multiples of this.
constexpr qint64 kDriveStepMs = 1000;

/// The climate system at a moment of the built-in drive: the same for the same time, always.
///
/// In one round every item changes, and each of the 20 buttons shows all four states. Texts come in four
/// scripts, and some values are 9F, which the link has to escape.
/// @param nowMs  time since the drive began, 0 or more
ClimateState climateDriveAt(qint64 nowMs);

} // namespace boxsim
