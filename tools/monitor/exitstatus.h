#pragma once

namespace canbus::monitor {

/// How the command ends.
enum ExitStatus { kSuccess = 0, kFailure = 1, kWrongArguments = 2 };

} // namespace canbus::monitor
