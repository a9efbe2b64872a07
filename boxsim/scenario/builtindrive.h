#pragma once

#include "boxsim/scenario/scenario.h"

namespace boxsim {

/// The drive of a minute that the box plays when it is told nothing else, in a loop:
/// scenarios/builtin-drive.json.
Scenario builtinDrive();

} // namespace boxsim
