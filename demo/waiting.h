#pragma once

namespace canbus::headunit {

/// Lets the program go on for so long.
/// @return false where it was told to end: there, no loop begins any more
bool letTimePass(int ms);

} // namespace canbus::headunit
