#include "idleticks.h"

#include "headunitrig.h"

#include <QtCore/QMutex>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <atomic>
#include <ctime>
#include <thread>

#include <sys/syscall.h>
#include <unistd.h>

namespace bench {

namespace {

/// Takes the place of the waits of one thread.
struct Ticking {
    Loop loop;
    int ticks;
    std::function<void()> begin;
    std::function<void()> end;
    QSemaphore done {};
    int slept = 0;
};

std::atomic<Ticking *> armed {nullptr};
thread_local Loop runs = Loop::None;

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

/// Before the first of the ticks that are measured, and after the last.
void beginOrEnd(Ticking &ticking)
{
    if (ticking.slept == 1) {
        ticking.begin();
        return;
    }
    ticking.end();
    armed = nullptr;
    ticking.done.release();
}

/// Takes part in what is measured. It is measured too, in place of the C library's wait: so it does little.
void tick(Ticking &ticking)
{
    const int slept = ++ticking.slept;
    if (slept == 1 || slept > ticking.ticks)
        beginOrEnd(ticking);
}

void arm(Ticking &ticking)
{
    armed = &ticking;
    ticking.done.acquire();
}

bool tickInsteadOfSleeping()
{
    Ticking *const ticking = armed;
    if (!ticking)
        return false;
    if (runs == Loop::None && QThread::currentThread()->objectName() == QLatin1String("CanbusTickThread"))
        runs = Loop::Library;
    if (runs != ticking->loop)
        return false;
    tick(*ticking);
    return true;
}

} // namespace

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
