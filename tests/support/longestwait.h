#pragma once

/// How long a test waits for what has to come, in milliseconds. It comes at once, or late where the machine
/// is busy: the limit is there so that the test ends when it does not come at all.
constexpr int kLongestWaitMs = 60000;
