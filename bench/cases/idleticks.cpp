#include "idleticks.h"

#include "headunitrig.h"

#include <QtCore/QMutex>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <atomic>
#include <ctime>
#include <optional>
#include <thread>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

namespace bench {

namespace {

/// Takes the place of the waits of one thread.
struct Ticking {
    Loop loop;
    int left;
    std::function<void()> begin;
    std::function<void()> end;
    QSemaphore done {};
    bool hasBegun = false;
};

std::atomic<Ticking *> armed {nullptr};
thread_local std::optional<Loop> runs;

/// What the bare minimum is: what the parser thread does, and nobody to do it for.
void loopBarely(QMutex &mutex, const QByteArray &data, const std::atomic<bool> &goesOn)
{
    runs = Loop::Bare;
    while (goesOn) {
        mutex.lock();
        if (!data.isEmpty())
            qFatal("nobody fills this");
        mutex.unlock();
        QThread::msleep(10);
    }
}

/// One of the ticks that are measured, if this thread's are. @return whether it is
bool tick()
{
    Ticking *const ticking = armed;
    if (!ticking || runs != ticking->loop)
        return false;
    if (!std::exchange(ticking->hasBegun, true)) {
        ticking->begin();
    } else if (--ticking->left == 0) {
        ticking->end();
        armed = nullptr;
        ticking->done.release();
    }
    return true;
}

void arm(Ticking &ticking)
{
    armed = &ticking;
    ticking.done.acquire();
}

} // namespace

bool tickInsteadOfSleeping()
{
    if (!runs && QThread::currentThread()->objectName() == QLatin1String("CanbusTickThread"))
        runs = Loop::Library;
    return runs && tick();
}

void runIdleTicks(Loop loop, int ticks, const std::function<void()> &begin, const std::function<void()> &end)
{
    Ticking ticking {loop, ticks, begin, end};
    if (loop == Loop::Library) {
        HeadUnitRig::instance();
        arm(ticking);
        return;
    }
    QMutex mutex;
    const QByteArray data;
    std::atomic<bool> goesOn {true};
    std::thread thread([&] { loopBarely(mutex, data, goesOn); });
    arm(ticking);
    goesOn = false;
    thread.join();
}

} // namespace bench

/// Takes the C library's place: the thread whose ticks are measured sleeps only when they are not.
extern "C" int nanosleep(const timespec *time, timespec *left)
{
    if (bench::tickInsteadOfSleeping())
        return 0;
    return int(::syscall(SYS_nanosleep, time, left));
}
