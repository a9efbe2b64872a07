#pragma once

#include <set>

namespace bench {

/// The kernel's number of the calling thread.
int threadNumber();

/// How often the threads of this process have gone to sleep and been woken so far, but for these.
long wakeUps(const std::set<int> &besides);

/// As above, of one thread.
long wakeUpsOf(int thread);

/// The mean time from one tick of the parser thread to the next, in microseconds, since it began.
double meanTick();

} // namespace bench
