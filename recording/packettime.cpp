#include "recording/packettime.h"

#include <algorithm>
#include <limits>

namespace canbus::recording {

namespace {

constexpr qint64 kMicrosecondsPerSecond = 1000000;
// Far beyond every clock, and small enough that sums and differences of times hold.
constexpr qint64 kLatestTimeUs = std::numeric_limits<qint64>::max() / 4;

qint64 capped(quint64 us)
{
    return qint64(std::min(us, quint64(kLatestTimeUs)));
}

/// The time in units of 10^-exponent seconds.
qint64 decimalUs(quint64 time, int exponent)
{
    for (; exponent > pcapng::kMicroseconds; --exponent)
        time /= 10;
    for (; exponent < pcapng::kMicroseconds; ++exponent) {
        if (time > quint64(kLatestTimeUs) / 10)
            return kLatestTimeUs;
        time *= 10;
    }
    return capped(time);
}

/// The time in units of 2^-exponent seconds.
qint64 binaryUs(quint64 time, int exponent)
{
    constexpr int kKept = 32; // bits behind the point: finer than a nanosecond
    if (exponent > kKept) {
        const int dropped = exponent - kKept;
        return dropped < 64 ? binaryUs(time >> dropped, kKept) : 0;
    }
    const quint64 seconds = time >> exponent;
    const quint64 fraction = time - (seconds << exponent);
    if (seconds > quint64(kLatestTimeUs / kMicrosecondsPerSecond))
        return kLatestTimeUs;
    return capped(seconds * kMicrosecondsPerSecond + ((fraction * kMicrosecondsPerSecond) >> exponent));
}

} // namespace

qint64 microseconds(quint64 time, const Clock &clock)
{
    constexpr quint8 kIsBinary = 0x80;
    constexpr qint64 kMostSeconds = kLatestTimeUs / kMicrosecondsPerSecond;
    const int exponent = clock.resolution & ~kIsBinary;
    const bool isBinary = (clock.resolution & kIsBinary) != 0;
    const qint64 us = isBinary ? binaryUs(time, exponent) : decimalUs(time, exponent);
    const qint64 offset = std::clamp(clock.offsetSeconds, -kMostSeconds, kMostSeconds);
    return std::clamp<qint64>(us + offset * kMicrosecondsPerSecond, 0, kLatestTimeUs);
}

} // namespace canbus::recording
