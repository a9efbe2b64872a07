#pragma once

namespace canbus::monitor::stopSignals {

/// From now on SIGINT and SIGTERM do not end the process but make a descriptor readable, for good.
/// @return that descriptor; -1 where none could be made, and the signals end the process as ever
int install();

} // namespace canbus::monitor::stopSignals
