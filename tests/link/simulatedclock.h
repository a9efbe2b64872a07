#pragma once

/// The clock by which the library measures how long an answer took, in the place of the machine's.
namespace simulatedclock {

/// From now on the monotonic clock of this process follows VirtualTime. For processes of one thread.
void follow();

} // namespace simulatedclock
