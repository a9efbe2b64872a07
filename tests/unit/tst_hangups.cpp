#include "canbusplayer.h"
#include "linkhealth.h"
#include "velcanbusprotocol.h"

#include <heartbeat.h>
#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <playerrig.h>
#include <recordedport.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QMutexLocker>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <algorithm>
#include <atomic>
#include <ctime>

using namespace canbus;

namespace {

constexpr int kBaud = 57600;
constexpr int kIdleMs = 40; // for thousands of repetitions
constexpr double kMaxShare = 0.05;
constexpr double kMaxHeldMs = 20;
const QByteArray kCommand = bytes("9f 02 31 93 00 a2 9f 03");

/// What goes on when the line is cut.
enum class Traffic { None, Arriving, Written, WrittenAtOnce, Full, Count };

/// The processor time of all threads while nothing is to happen any more.
class IdleTime {
public:
    void observe(int ms)
    {
        QElapsedTimer clock;
        clock.start();
        const std::clock_t before = std::clock();
        QTest::qWait(ms);
        const double usedMs = double(std::clock() - before) * 1000 / CLOCKS_PER_SEC;
        m_usedMs += usedMs;
        m_observedMs += double(clock.elapsed());
        m_greatestShare = std::max(m_greatestShare, usedMs / double(clock.elapsed()));
    }

    double share() const { return m_usedMs / m_observedMs; }
    /// Of one observation, which may have been a short one.
    double greatestShare() const { return m_greatestShare; }

private:
    double m_usedMs = 0;
    double m_observedMs = 0;
    double m_greatestShare = 0;
};

void makeTraffic(Traffic traffic, PseudoTerminal &line, RecordedPort &it)
{
    switch (traffic) {
    case Traffic::Arriving:
        line.send(QByteArray(500, '\x55'));
        break;
    case Traffic::Written:
        it.port.writeData(kCommand);
        break;
    case Traffic::Full:
        while (it.error.isEmpty())
            it.port.writeData(QByteArray(1000, '\x55'));
        it.error.clear();
        break;
    default:
        break;
    }
}

void makeTraffic(Traffic traffic, PlayerRig &rig)
{
    if (traffic == Traffic::Arriving)
        rig.line.send(QByteArray(500, '\x55'));
    if (traffic == Traffic::Written)
        Q_EMIT rig.protocol.onWritPortData(kCommand);
    for (int block = 0; traffic == Traffic::Full && block < 25; ++block)
        Q_EMIT rig.protocol.onWritPortData(QByteArray(1000, '\x55'));
    // The port has carried it out.
    QMetaObject::invokeMethod(
        rig.port(), [] {}, Qt::BlockingQueuedConnection);
}

/// Empties what all ports of the process append to.
void clearReadBuffer()
{
    const QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data.clear();
}

} // namespace

/// Lines that hang up, one after the other, and what the head unit does with them.
class HangUpsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { clearReadBuffer(); }

    void reportsEachOfAHundred();
    void leavesTheProcessorIdle();
    void reportsOnThePortsThread();
    void losesTheLinkAndComesUpOnAFreshLine();
    void keepsTheMainThreadFromWaitingForThePort();
    void opensAFreshLineInASlotOfTheLoss();

private:
    void hangUpUnderAPort(Traffic traffic, IdleTime &idle);
    void hangUpUnderAFacade(Traffic traffic, IdleTime &idle, double &leastHeldMs);
};

void HangUpsTest::reportsEachOfAHundred()
{
    constexpr int kKinds = int(Traffic::Count);
    IdleTime idle;
    QVector<double> heldMs(kKinds, kMaxHeldMs * 1000);
    int facades = 0;
    for (int round = 0; round < 100; ++round) {
        const auto traffic = Traffic(round % kKinds);
        // Each kind of traffic under four bare ports, then under a whole facade.
        if (round / kKinds % 5 == 4) {
            ++facades;
            hangUpUnderAFacade(traffic, idle, heldMs[int(traffic)]);
        } else {
            hangUpUnderAPort(traffic, idle);
        }
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("round %1").arg(round)));
    }
    QCOMPARE(facades, 20);
    QVERIFY2(idle.share() < kMaxShare, qPrintable(QString::number(idle.share())));
    QVERIFY2(idle.greatestShare() < 0.5, qPrintable(QString::number(idle.greatestShare())));
    // A virtual machine may stop for a moment: what holds the loop for another reason does so each time.
    for (const double leastMs : heldMs)
        QVERIFY2(leastMs <= kMaxHeldMs, qPrintable(QString::number(leastMs)));
}

void HangUpsTest::hangUpUnderAPort(Traffic traffic, IdleTime &idle)
{
    PseudoTerminal line;
    RecordedPort it;
    LogRecorder log;
    QVERIFY(it.port.open(line.name(), kBaud));
    makeTraffic(traffic, line, it);
    log.clear();
    line.hangUp();
    if (traffic == Traffic::WrittenAtOnce)
        it.port.writeData(kCommand);
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    it.port.writeData(kCommand);
    // A port that listens on would report hundreds more.
    idle.observe(kIdleMs);
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    QVERIFY(it.port.isOpen());
    QCOMPARE(it.disconnected.size() + it.status.size(), 0);
    QVERIFY2(log.lines().size() < 10, qPrintable(log.messages("[ERR]").join('/')));
}

/// @param leastHeldMs  becomes the time for which the main event loop was held, if that is less
void HangUpsTest::hangUpUnderAFacade(Traffic traffic, IdleTime &idle, double &leastHeldMs)
{
    PlayerRig rig;
    LogRecorder log;
    QList<int> errors;
    rig.start();
    makeTraffic(traffic, rig);
    connect(rig.port(), &SerialPort::error, &rig.player, [&](const QString &, int code) { errors += code; });
    log.clear();
    Heartbeat heartbeat;
    heartbeat.start();
    rig.line.hangUp();
    if (traffic == Traffic::WrittenAtOnce)
        Q_EMIT rig.protocol.onWritPortData(kCommand);
    QTRY_COMPARE_WITH_TIMEOUT(errors, QList<int> {9}, kLongestWaitMs);
    Q_EMIT rig.protocol.onWritPortData(kCommand);
    idle.observe(kIdleMs);
    QTRY_VERIFY_WITH_TIMEOUT(heartbeat.beats() > 0, kLongestWaitMs);
    leastHeldMs = std::min(leastHeldMs, heartbeat.longestMs());
    QCOMPARE(errors, QList<int> {9});
    QVERIFY(rig.port()->isOpen());
    QVERIFY2(log.lines().size() < 10, qPrintable(log.messages("[ERR]").join('/')));
}

void HangUpsTest::leavesTheProcessorIdle()
{
    PlayerRig rig;
    const LogRecorder quiet;
    rig.start();
    int losses = 0;
    connect(rig.port(), &SerialPort::error, &rig.player, [&] { ++losses; });
    rig.line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(losses, 1, kLongestWaitMs);
    IdleTime idle;
    idle.observe(1000);
    QVERIFY2(idle.share() < kMaxShare, qPrintable(QString::number(idle.share())));
    QCOMPARE(losses, 1);
}

void HangUpsTest::reportsOnThePortsThread()
{
    PlayerRig rig;
    const LogRecorder quiet;
    rig.start();
    std::atomic<QThread *> reportedOn {nullptr};
    connect(
        rig.port(), &SerialPort::error, rig.port(), [&] { reportedOn = QThread::currentThread(); },
        Qt::DirectConnection);
    rig.line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(reportedOn.load(), rig.thread(), kLongestWaitMs);
    QVERIFY(reportedOn != QThread::currentThread());
}

void HangUpsTest::losesTheLinkAndComesUpOnAFreshLine()
{
    PlayerRig rig;
    PseudoTerminal fresh;
    VelCanBusProtocol protocol;
    LogRecorder log;
    const auto connectBy = [&](PseudoTerminal &line) {
        return line.send(bytes("9f 02 35 01 00 00 01 35 9f 03 9f 06 35 35 9f 03"));
    };
    rig.player.setUartPort(rig.line.name(), kBaud);
    rig.player.init(&protocol);
    QVERIFY(connectBy(rig.line));
    QTRY_VERIFY_WITH_TIMEOUT(rig.player.getCanbusConnectStatus(), kLongestWaitMs);

    rig.line.hangUp();
    protocol.onSaveSendCmdData(kCommand);
    QTRY_VERIFY_WITH_TIMEOUT(!rig.player.getCanbusConnectStatus(), kLongestWaitMs);
    QCOMPARE(protocol.linkHealth()->figures().portErrors, 1U);
    QVERIFY2(log.messages("[ERR]").size() < 10, qPrintable(log.messages("[ERR]").join('/')));

    rig.player.setUartPort(fresh.name(), kBaud);
    rig.player.init(&protocol);
    QVERIFY(connectBy(fresh));
    QTRY_VERIFY_WITH_TIMEOUT(rig.player.getCanbusConnectStatus(), kLongestWaitMs);
    fresh.hangUp();
    // One for each time that it was opened.
    QTRY_COMPARE_WITH_TIMEOUT(protocol.linkHealth()->figures().portErrors, 1U + 2U, kLongestWaitMs);
}

void HangUpsTest::keepsTheMainThreadFromWaitingForThePort()
{
    QSemaphore isHeld;
    QSemaphore release;
    std::atomic<bool> wasReleased {false};
    PlayerRig rig;
    VelCanBusProtocol protocol;
    const LogRecorder quiet;
    rig.player.setUartPort(rig.line.name(), kBaud);
    rig.player.init(&protocol);
    connect(
        rig.port(), &SerialPort::error, rig.port(),
        [&] {
            isHeld.release();
            wasReleased = release.tryAcquire(1, kLongestWaitMs);
        },
        Qt::DirectConnection);
    rig.line.hangUp();
    // The port's thread is busy with the loss, for longer than any write takes.
    QVERIFY(isHeld.tryAcquire(1, kLongestWaitMs));
    for (int count = 0; count < 100; ++count)
        protocol.onSaveSendCmdData(kCommand);
    protocol.onSendTmrout();
    protocol.onRequestConnect();
    protocol.onCheckConnectTmrout();
    protocol.analyseData("1");
    rig.player.requestNormal();
    rig.player.readPortData("1");
    rig.player.setCanbusConnectStatus(true);
    rig.player.setCanbusConnectStatus(false);
    QVERIFY(protocol.linkHealth()->figures().sentFrames > 0);
    QCoreApplication::processEvents();
    // All that came back while the port was held.
    QVERIFY(!wasReleased);
    release.release();
    QTRY_VERIFY_WITH_TIMEOUT(wasReleased, kLongestWaitMs);
}

void HangUpsTest::opensAFreshLineInASlotOfTheLoss()
{
    for (int round = 0; round < 20; ++round) {
        PseudoTerminal lost;
        PseudoTerminal fresh;
        RecordedPort it;
        const LogRecorder quiet;
        QVERIFY(it.port.open(lost.name(), kBaud));
        const QMetaObject::Connection slot =
            connect(&it.port, &SerialPort::error, &it.port, [&] { it.port.open(fresh.name(), kBaud); });
        if (round % 2 == 1)
            it.port.writeData(kCommand);
        lost.hangUp();
        QTRY_COMPARE_WITH_TIMEOUT(it.connected.size(), 2, kLongestWaitMs);
        disconnect(slot);
        it.port.writeData(bytes("01 02"));
        QTRY_VERIFY_WITH_TIMEOUT(fresh.received().endsWith(bytes("01 02")), kLongestWaitMs);
        QVERIFY(fresh.send(bytes("03")));
        QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("03"), kLongestWaitMs);
        QCOMPARE(it.error.size(), 1);
    }
}

QTEST_GUILESS_MAIN(HangUpsTest)
#include "tst_hangups.moc"
