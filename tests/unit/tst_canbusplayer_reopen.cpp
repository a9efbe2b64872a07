#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <playerrig.h>
#include <pseudoterminal.h>

#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <atomic>

using namespace canbus;

/// A second init(), as after a lost line, on the thread of the user interface.
class CanBusPlayerReopenTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opensAnotherLineWithoutWaitingForBlocksThatWait();
    void writesWhatWaitsToALineThatTakesIt();
};

void CanBusPlayerReopenTest::opensAnotherLineWithoutWaitingForBlocksThatWait()
{
    const LogRecorder quiet;
    PlayerRig rig;
    rig.start();
    std::atomic<int> late {0};
    rig.letBlocksWait(late);

    PseudoTerminal other;
    rig.player.setUartPort(other.name(), 57600);
    QElapsedTimer clock;
    clock.start();
    rig.player.init(nullptr);
    // All three hundred would take half a minute.
    QVERIFY2(clock.elapsed() < 15000, qPrintable(QString::number(clock.elapsed())));

    Q_EMIT rig.protocol.onWritPortData(bytes("9f 06 42 42 9f 03"));
    QTRY_COMPARE_WITH_TIMEOUT(other.received(), bytes("9f 06 42 42 9f 03"), kLongestWaitMs);
}

void CanBusPlayerReopenTest::writesWhatWaitsToALineThatTakesIt()
{
    PlayerRig rig;
    rig.start();
    PseudoTerminal other;
    rig.player.setUartPort(other.name(), 57600);
    Q_EMIT rig.protocol.onWritPortData(bytes("9f 06 21 21 9f 03"));
    rig.player.init(nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(rig.line.received(), bytes("9f 06 21 21 9f 03"), kLongestWaitMs);
    QCOMPARE(other.received(), QByteArray());
}

QTEST_GUILESS_MAIN(CanBusPlayerReopenTest)
#include "tst_canbusplayer_reopen.moc"
