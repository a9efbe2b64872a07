#include "canbusplayer.h"
#include "linkhealth.h"
#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <playerrig.h>
#include <recordedport.h>

#include <QtCore/QSemaphore>
#include <QtTest/QtTest>

#include <atomic>
#include <ctime>

using namespace canbus;

namespace {

constexpr int kBaud = 57600;
constexpr int kLongestWaitMs = 20000;
const QByteArray kCommand = bytes("9f 02 31 93 00 a2 9f 03");

/// What goes on when the line is cut.
enum class Traffic { None, Arriving, Written, WrittenAtOnce, Full, Count };

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
};

void HangUpsTest::reportsEachOfAHundred()
{
    for (int round = 0; round < 100; ++round) {
        const auto traffic = Traffic(round % int(Traffic::Count));
        PseudoTerminal line;
        RecordedPort it;
        LogRecorder log;
        QVERIFY(it.port.open(line.name(), kBaud));
        makeTraffic(traffic, line, it);
        log.clear();
        line.hangUp();
        if (traffic == Traffic::WrittenAtOnce)
            it.port.writeData(kCommand);
        QTRY_COMPARE(it.error.size(), 1);
        it.port.writeData(kCommand);
        // Passes of the event loop in which a port that listens on would report hundreds more.
        for (int pass = 0; pass < 20; ++pass)
            QCoreApplication::processEvents();
        QCOMPARE(it.error.size(), 1);
        QCOMPARE(it.error.at(0).at(1).toInt(), 9);
        QVERIFY(it.port.isOpen());
        QCOMPARE(it.disconnected.size() + it.status.size(), 0);
        QVERIFY2(log.lines().size() < 10, qPrintable(log.messages("[ERR]").join('/')));
    }
}

void HangUpsTest::leavesTheProcessorIdle()
{
    constexpr int kObservedMs = 1000;
    PlayerRig rig;
    const LogRecorder quiet;
    rig.start();
    int losses = 0;
    connect(rig.port(), &SerialPort::error, &rig.player, [&] { ++losses; });
    rig.line.hangUp();
    QTRY_COMPARE(losses, 1);
    QElapsedTimer clock;
    clock.start();
    const std::clock_t before = std::clock();
    QTest::qWait(kObservedMs);
    const double usedMs = double(std::clock() - before) * 1000 / CLOCKS_PER_SEC;
    const double share = usedMs / double(clock.elapsed());
    QVERIFY2(share < 0.05, qPrintable(QString::number(share)));
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
        QTRY_COMPARE(it.connected.size(), 2);
        disconnect(slot);
        it.port.writeData(bytes("01 02"));
        QTRY_VERIFY(fresh.received().endsWith(bytes("01 02")));
        QVERIFY(fresh.send(bytes("03")));
        QTRY_COMPARE(it.allRead(), bytes("03"));
        QCOMPARE(it.error.size(), 1);
    }
}

QTEST_GUILESS_MAIN(HangUpsTest)
#include "tst_hangups.moc"
