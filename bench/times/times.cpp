// Measures times, with Google Benchmark: bench-times --benchmark_format=json. Of each case the time of its
// body; of the way to the line and from it what a head unit has to wait.

#include "cases/benchbytes.h"
#include "cases/benchcase.h"
#include "farend.h"
#include "groups/velclimategroupcmd.h"
#include "player/canbusplayer.h"
#include "samples.h"
#include "velcanbusprotocol.h"
#include "wakeups.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMutex>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtSerialPort/QSerialPort>

namespace {

using namespace bench;

constexpr int kRepetitions = 2000;
constexpr int kPresses = 400;
constexpr int kReports = 600;
constexpr int kPauseMs = 30; // until a command is acknowledged: two ticks and more
constexpr int kIdleMs = 10000;
constexpr int kLongestWaitMs = 2000;

/// A bare port on a thread of its own, as the library's is: the way to the line with a thread in between.
class PostedPort {
public:
    PostedPort()
    {
        m_port.setPortName(QString::fromStdString(end.name()));
        m_port.setBaudRate(57600);
        if (!m_port.open(QIODevice::ReadWrite))
            giveUp("the posted port does not open");
        m_port.moveToThread(&m_thread);
        m_thread.start();
    }

    ~PostedPort()
    {
        m_thread.quit();
        m_thread.wait();
    }

    void write(const QByteArray &frame)
    {
        const auto writeThere = [this, frame] {
            m_port.write(frame);
            m_port.waitForBytesWritten(100);
        };
        QMetaObject::invokeMethod(&m_port, writeThere, Qt::QueuedConnection);
    }

    FarEnd end;

private:
    QSerialPort m_port;
    QThread m_thread;
};

struct Rig {
    FarEnd box;
    FarEnd bareEnd;
    QSerialPort bare;
    PostedPort posted;

    Rig()
    {
        canbus::CanBusPlayer *const player = canbus::CanBusPlayer::instance();
        player->setUartPort(QString::fromStdString(box.name()), 57600);
        player->init(new canbus::VelCanBusProtocol);
        bare.setPortName(QString::fromStdString(bareEnd.name()));
        bare.setBaudRate(57600);
        if (!bare.open(QIODevice::ReadWrite))
            giveUp("the bare port does not open");
    }
};

Rig *rig = nullptr;

void runEvents(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

const QByteArray &bareFrame()
{
    static const QByteArray frame = bytes("9f 02 21 93 00 12 00 00 a0 9f 03");
    return frame;
}

void writePosted(Samples &heard)
{
    rig->posted.end.arm();
    const Clock::time_point begin = Clock::now();
    rig->posted.write(bareFrame());
    heard.add(microsecondsBetween(begin, rig->posted.end.waitForTheFirst()));
}

/// The bare write of as many bytes, with its wait, on the thread that wants it.
void writeBarely(Samples &heard, Samples &call)
{
    rig->bareEnd.arm();
    const Clock::time_point begin = Clock::now();
    rig->bare.write(bareFrame());
    rig->bare.waitForBytesWritten(100);
    call.add(microsecondsBetween(begin, Clock::now()));
    heard.add(microsecondsBetween(begin, rig->bareEnd.waitForTheFirst()));
}

/// A control pressed, and a bare write, in turn: so both have the same neighbours.
void controlToLine(benchmark::State &state)
{
    Samples heard, call, bareHeard, bareCall, postedHeard;
    for (auto _ : state) {
        runEvents(kPauseMs);
        rig->box.arm();
        const Clock::time_point begin = Clock::now();
        canbus::VelClimateGroupCmd::instance()->acBtn();
        call.add(microsecondsBetween(begin, Clock::now()));
        heard.add(state, microsecondsBetween(begin, rig->box.waitForTheFirst()));
        runEvents(1);
        writeBarely(bareHeard, bareCall);
        runEvents(1);
        writePosted(postedHeard);
    }
    heard.report(state);
    call.report(state, "call_");
    bareHeard.report(state, "bare_");
    bareCall.report(state, "bare_call_");
    postedHeard.report(state, "posted_");
}

QByteArray climateReport(int number)
{
    QByteArray payload = bytes("00 d7 00 dc 55 55 11 11 40 55 15 55 55 05 16");
    payload[1] = char(number % 0x80);
    return frameAround(payload);
}

/// From the last byte on the line to the slot that hears of it. The reports come at all places of a tick.
void lineToSlot(benchmark::State &state)
{
    Samples heard;
    QEventLoop loop;
    Clock::time_point slot;
    QObject listener;
    QObject::connect(canbus::VelClimateGroupCmd::instance(),
                     &canbus::VelClimateGroupCmd::updateClimateMainTemp, &listener, [&] {
                         slot = Clock::now();
                         loop.quit();
                     });
    QTimer tooLate;
    QObject::connect(&tooLate, &QTimer::timeout, [] { giveUp("no slot has heard of a report"); });
    int number = 0;
    Clock::time_point next = Clock::now();
    for (auto _ : state) {
        // Not a whole number of ticks: by and by everything between two of them.
        next = std::max(next + std::chrono::microseconds(26180), Clock::now());
        runEvents(int(microsecondsBetween(Clock::now(), next) / 1000));
        std::this_thread::sleep_until(next);
        const Clock::time_point begin = Clock::now();
        rig->box.send(climateReport(++number));
        tooLate.start(kLongestWaitMs);
        loop.exec();
        tooLate.stop();
        heard.add(state, microsecondsBetween(begin, slot));
    }
    heard.report(state);
    state.counters["tick_us"] = meanTick();
}

/// What wakes a process that has nothing to do: the library's threads and the main one, and a bare loop.
void idle(benchmark::State &state)
{
    std::atomic<bool> goesOn {true};
    std::atomic<int> bareThread {0};
    std::thread bare([&] {
        bareThread = threadNumber();
        QMutex mutex;
        const QByteArray data;
        while (goesOn) {
            mutex.lock();
            if (!data.isEmpty())
                giveUp("nobody fills this");
            mutex.unlock();
            QThread::msleep(10);
        }
    });
    runEvents(100);
    for (auto _ : state) {
        const std::set<int> others {bareThread, rig->box.thread(), rig->bareEnd.thread(),
                                    rig->posted.end.thread()};
        const Clock::time_point begin = Clock::now();
        const long before = wakeUps(others);
        const long bareBefore = wakeUpsOf(bareThread);
        runEvents(kIdleMs);
        const double seconds = microsecondsBetween(begin, Clock::now()) / 1e6;
        state.counters["wakeups"] = double(wakeUps(others) - before) / seconds;
        state.counters["bare_wakeups"] = double(wakeUpsOf(bareThread) - bareBefore) / seconds;
        state.SetIterationTime(seconds);
    }
    goesOn = false;
    bare.join();
}

void timeOf(benchmark::State &state, const Case &one)
{
    Clock::time_point from;
    Samples times;
    for (auto _ : state) {
        bench::run(
            one, 1, [&] { from = Clock::now(); },
            [&] { times.add(state, microsecondsBetween(from, Clock::now()) / one.parts); });
    }
    times.report(state);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    Rig theRig;
    rig = &theRig;
    runEvents(2500); // until the link is up
    benchmark::Initialize(&argc, argv);
    for (const auto &cases : {receiveCases, loggingCases, decodingCases, buildingCases}) {
        for (const Case &one : cases())
            benchmark::RegisterBenchmark(("case/" + one.name).c_str(), timeOf, one)
                ->UseManualTime()
                ->Iterations(kRepetitions);
    }
    benchmark::RegisterBenchmark("control to line", controlToLine)->UseManualTime()->Iterations(kPresses);
    benchmark::RegisterBenchmark("line to slot", lineToSlot)->UseManualTime()->Iterations(kReports);
    benchmark::RegisterBenchmark("idle", idle)->UseManualTime()->Iterations(1);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
