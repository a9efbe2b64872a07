#pragma once

#include "boxsim/scenario/jsonplace.h"
#include "boxsim/scenario/scenario.h"

#include <vector>

namespace boxsim {

/// The most times that a list can be repeated, if not for ever.
constexpr int kMostTimes = 1000000;

/// Reads a list of steps.
std::vector<Step> readSteps(const JsonPlace &list);

/// Whether time passes whenever these steps are gone through, whichever way they take.
bool takesTime(const std::vector<Step> &steps);

} // namespace boxsim
