#pragma once

#include "boxsim/scenario/jsonplace.h"
#include "boxsim/scenario/scenario.h"

namespace boxsim {

/// The members that make a condition; the last one goes with the first alone.
QStringList conditionMembers();

/// Reads the condition that an object has among its members.
Condition readCondition(const JsonPlace &object);

} // namespace boxsim
