#pragma once

namespace canbus {

/// How a command ends.
enum ExitStatus { kSuccess = 0, kFailure = 1, kWrongArguments = 2 };

} // namespace canbus
