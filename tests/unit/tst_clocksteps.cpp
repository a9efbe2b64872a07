#include "linkhealth.h"
#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <atomic>
#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

using namespace canbus;

namespace {

std::atomic<long> g_stepSeconds {0};
std::atomic<int> g_readings {0};

bool isWallClock(clockid_t clock)
{
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE || clock == CLOCK_TAI;
}

constexpr long kHours = 3600;

} // namespace

// These stand before the C library's own: a head unit whose clock is set, by hours, again and again.

extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && isWallClock(clock)) {
        ++g_readings;
        time->tv_sec += g_stepSeconds;
    }
    return int(result);
}

extern "C" int gettimeofday(timeval *time, void *) noexcept
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    time->tv_sec = now.tv_sec;
    time->tv_usec = now.tv_nsec / 1000;
    return 0;
}

extern "C" time_t time(time_t *time) noexcept
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (time)
        *time = now.tv_sec;
    return now.tv_sec;
}

namespace {

/// Sets the clock every few milliseconds: hours ahead, hours back, far back.
class RestlessClock : public QObject {
public:
    RestlessClock()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            static const long steps[] = {5 * kHours, -5 * kHours, 0, -100000 * kHours, 24 * kHours};
            g_stepSeconds = steps[m_next++ % std::size(steps)];
        });
        m_timer.start(7);
    }

    ~RestlessClock() override { g_stepSeconds = 0; }

private:
    QTimer m_timer;
    std::size_t m_next = 0;
};

} // namespace

class ClockStepsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setsTheClockOfThisProcess();
    void keepsTheTimesOfTheLink();
    void keepsTheTimesOfAnswers();
    void keepsTheTimeOfAWrite();
};

void ClockStepsTest::setsTheClockOfThisProcess()
{
    const QDateTime before = QDateTime::currentDateTime();
    g_stepSeconds = 5 * kHours;
    const qint64 byQt = before.secsTo(QDateTime::currentDateTime());
    const std::time_t byC = std::time(nullptr);
    g_stepSeconds = 0;
    QVERIFY2(byQt >= 5 * kHours && byQt < 5 * kHours + 60, qPrintable(QString::number(byQt)));
    QVERIFY(byC - std::time(nullptr) > 4 * kHours);
    QVERIFY(g_readings > 0);
}

void ClockStepsTest::keepsTheTimesOfTheLink()
{
    const LogRecorder quiet;
    const RestlessClock restless;
    QElapsedTimer clock;
    clock.start(); // before the protocol starts its own timers, and may have to wait for the processor
    VelCanBusProtocol protocol;
    QList<qint64> times;
    connect(&protocol, &CanbusProtocol::onWritPortData, this, [&] { times += clock.elapsed(); });
    g_readings = 0;
    // A silent box: the request goes out three times, and the next one two seconds after it.
    QTRY_VERIFY_WITH_TIMEOUT(times.size() >= 4, kLongestWaitMs);
    QVERIFY(times.at(0) >= 1890);
    QVERIFY(times.at(1) - times.at(0) >= 280);
    QVERIFY(times.at(2) - times.at(0) >= 560);
    QVERIFY(times.at(3) >= 2 * 1890);
    // Nobody has asked what time it is, so nobody can be wrong.
    QCOMPARE(g_readings.load(), 0);
}

void ClockStepsTest::keepsTheTimesOfAnswers()
{
    const LogRecorder quiet;
    const RestlessClock restless;
    VelCanBusProtocol protocol;
    QElapsedTimer clock;
    qint64 givenUpUs = -1;
    connect(
        protocol.linkHealth(), &LinkHealth::commandEnded, this,
        [&](const QByteArray &, LinkHealth::Fate, int, qint64 microseconds) { givenUpUs = microseconds; });
    g_readings = 0;
    clock.start();
    protocol.onSaveSendCmdData(bytes("9f 02 31 93 00 a2 9f 03"));
    QTRY_VERIFY_WITH_TIMEOUT(givenUpUs != -1, kLongestWaitMs);
    QVERIFY2(givenUpUs >= 840000 && givenUpUs <= (clock.elapsed() + 1) * 1000,
             qPrintable(QString::number(givenUpUs)));
    QCOMPARE(g_readings.load(), 0);
}

void ClockStepsTest::keepsTheTimeOfAWrite()
{
    PseudoTerminal line;
    RecordedPort it;
    const LogRecorder quiet;
    QVERIFY(it.port.open(line.name(), 57600));
    while (it.error.isEmpty())
        it.port.writeData(QByteArray(1000, '\x55'));
    // The clock is set from another thread while the write waits.
    std::atomic<bool> isOver {false};
    std::unique_ptr<QThread> setter(QThread::create([&] {
        while (!isOver) {
            g_stepSeconds = g_stepSeconds == 0 ? 5 * kHours : 0;
            QThread::msleep(1);
        }
        g_stepSeconds = 0;
    }));
    setter->start();
    QElapsedTimer clock;
    clock.start();
    it.port.writeData(bytes("01"));
    const qint64 waitedMs = clock.elapsed();
    isOver = true;
    QVERIFY(setter->wait(kLongestWaitMs));
    QVERIFY2(waitedMs >= 90 && waitedMs < kLongestWaitMs, qPrintable(QString::number(waitedMs)));
}

QTEST_GUILESS_MAIN(ClockStepsTest)
#include "tst_clocksteps.moc"
