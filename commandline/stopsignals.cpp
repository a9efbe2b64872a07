#include "stopsignals.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace canbus::stopSignals {

namespace {

int wakeDescriptor = -1;

void wake(int)
{
    const char byte = 0;
    // A pipe that is full is readable already.
    [[maybe_unused]] const auto written = ::write(wakeDescriptor, &byte, 1);
}

} // namespace

int install(std::initializer_list<int> stopping)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    wakeDescriptor = ends[1];
    struct sigaction action = {};
    action.sa_handler = wake;
    action.sa_flags = SA_RESTART;
    for (const int signal : stopping)
        ::sigaction(signal, &action, nullptr);
    return ends[0];
}

} // namespace canbus::stopSignals
