#pragma once

#include "boxsim/scenario/jsonplace.h"
#include "boxsim/scenario/scenario.h"

namespace boxsim {

/// The times that a scenario can name end here, at a day.
constexpr qint64 kLongestMs = qint64(24) * 60 * 60 * 1000;

/// Reads an object of fields and their values.
QVector<Assignment> readAssignments(const JsonPlace &object);

/// Each of these reads a step from the member that says what it does. `every` of a ramp is read elsewhere.
Step readSet(const JsonPlace &value);
Step readRamp(const JsonPlace &value);
Step readSend(const JsonPlace &value);
Step readBytes(const JsonPlace &value);
Step readRestart(const JsonPlace &value);
Step readHangUp(const JsonPlace &value);
Step readNote(const JsonPlace &value);
Step readFail(const JsonPlace &value);
Step readEnd(const JsonPlace &value);

} // namespace boxsim
