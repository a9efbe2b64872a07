#include "wakeups.h"

#include "farend.h"

#include <QtCore/QThread>

#include <filesystem>
#include <fstream>
#include <string>

#include <sys/syscall.h>
#include <unistd.h>

namespace bench {

namespace {

std::atomic<long> ticks {0};
std::atomic<Clock::rep> firstTick {0};
std::atomic<Clock::rep> lastTick {0};

void noteTick()
{
    static thread_local const bool isParser =
        QThread::currentThread()->objectName() == QLatin1String("CanbusTickThread");
    if (!isParser)
        return;
    lastTick = Clock::now().time_since_epoch().count();
    if (ticks++ == 0)
        firstTick = lastTick.load();
}

} // namespace

int threadNumber()
{
    return int(::syscall(SYS_gettid));
}

long wakeUpsOf(int thread)
{
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    const std::string label = "voluntary_ctxt_switches:";
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, label.size(), label) == 0)
            return std::stol(line.substr(label.size()));
    }
    return 0;
}

long wakeUps(const std::set<int> &besides)
{
    long all = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/task")) {
        const int thread = std::stoi(entry.path().filename());
        if (besides.count(thread) == 0)
            all += wakeUpsOf(thread);
    }
    return all;
}

double meanTick()
{
    const Clock::duration all(lastTick - firstTick);
    return std::chrono::duration<double, std::micro>(all).count() / double(ticks - 1);
}

} // namespace bench

/// Takes the C library's place, to see when the parser thread ticks.
extern "C" int nanosleep(const timespec *time, timespec *left)
{
    bench::noteTick();
    return int(::syscall(SYS_nanosleep, time, left));
}
