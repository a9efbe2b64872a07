#pragma once

#include <functional>

namespace bench {

/// Whose idle loop is measured.
enum class Loop {
    None,
    Library, ///< the parser thread
    Bare,    ///< lock, look, unlock, sleep 10 ms
};

/// Lets an idle loop tick so many times without the wait in between: `begin` and `end` are called on its
/// thread, around these ticks.
void runIdleTicks(Loop loop, int ticks, const std::function<void()> &begin, const std::function<void()> &end);

} // namespace bench
