#pragma once

#include "boxsim/jsonplace.h"
#include "boxsim/scenario.h"

#include <vector>

namespace boxsim {

/// Reads a list of steps.
std::vector<Step> readSteps(const JsonPlace &list);

/// Whether time passes whenever these steps are gone through, whichever way they take.
bool takesTime(const std::vector<Step> &steps);

} // namespace boxsim
