#include "simulatedclock.h"

#include <virtualtime.h>

#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr qint64 kNsPerMs = 1000000;
constexpr qint64 kNsPerS = 1000 * kNsPerMs;

bool followsVirtualTime = false;
qint64 startNs = 0;

int machineTime(clockid_t clock, timespec *time)
{
    return int(syscall(SYS_clock_gettime, clock, time));
}

} // namespace

void simulatedclock::follow()
{
    timespec start = {};
    machineTime(CLOCK_MONOTONIC, &start);
    startNs = start.tv_sec * kNsPerS + start.tv_nsec - VirtualTime::now() * kNsPerMs;
    followsVirtualTime = true;
}

// The program's symbol wins over the C library's, also for Qt.
extern "C" int clock_gettime(clockid_t clock, timespec *time)
{
    if (!followsVirtualTime || clock != CLOCK_MONOTONIC)
        return machineTime(clock, time);
    const qint64 ns = startNs + VirtualTime::now() * kNsPerMs;
    time->tv_sec = time_t(ns / kNsPerS);
    time->tv_nsec = long(ns % kNsPerS);
    return 0;
}
