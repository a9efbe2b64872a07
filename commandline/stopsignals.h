#pragma once

#include <initializer_list>

namespace canbus::stopSignals {

/// From now on the signals that are given do not end the process but make a descriptor readable, for good.
/// @return that descriptor; -1 where none could be made, and the signals end the process as ever
int install(std::initializer_list<int> stopping);

} // namespace canbus::stopSignals
