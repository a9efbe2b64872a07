#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "timerwatch.h"

#include "canbusplayer.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");
const QByteArray kThird = bytes("9f 02 33 95 00 a6 9f 03");

const QString kWriteFirst = "write 9f02319300a29f03";
const QString kWriteSecond = "write 9f02329400a69f03";
const QString kWriteThird = "write 9f02339500a69f03";

const QByteArray kAckFirst = bytes("9f 06 31 31 9f 03");
const QByteArray kAckSecond = bytes("9f 06 32 32 9f 03");
const QByteArray kNackFirst = bytes("9f 15 31 31 9f 03");

} // namespace

class VelCanBusProtocolSendingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sendsTheFacadesCommands();
    void writesAFrameThreeTimesAndGivesItUp();
    void sendsTheHeadAgainForEachCommand();
    void sendsTheHeadAgainOnRequest();
    void refusesThe66thCommand();
    void appendsConnectFramesBeyondTheBound();
    void movesOnWithAnAcknowledgement();
    void movesOnWithANegativeAcknowledgement();
    void countsTheNextFrameFromOne();
    void ignoresAnswersWithAnotherId();
    void ignoresAnswersWithoutAFrame();
    void matchesAnEscapeAsId();
    void takesOffTheFrameWithTheId();
    void leavesTheFrameBehindToTheNextExpiry();

    void startsAndStopsTheSendTimerByQueuedCalls();
    void stopsTheSendTimerDirectlyAtItsExpiry();
    void stopsTheSendTimerOfAnEmptyCacheAtItsExpiry();
    void resendsWhenTheSendTimerExpires();

    void logsAnswersWithTheIdUnderWay();
    void logsEachExpiryOfAConnectedLink();
};

void VelCanBusProtocolSendingTest::sendsTheFacadesCommands()
{
    HandDrivenProtocol protocol;
    Q_EMIT CanBusPlayer::instance()->sendCmdData(kFirst);
    QCOMPARE(protocol.takeEvents(), QStringList {kWriteFirst});
}

void VelCanBusProtocolSendingTest::writesAFrameThreeTimesAndGivesItUp()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    QCOMPARE(protocol.takeEvents(), QStringList {kWriteFirst});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteFirst});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteFirst});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList());

    // Given up for good: the next command is the only one.
    protocol->onSaveSendCmdData(kSecond);
    QCOMPARE(protocol.takeEvents(), QStringList {kWriteSecond});
}

void VelCanBusProtocolSendingTest::sendsTheHeadAgainForEachCommand()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteFirst, kWriteFirst}));
    // The second command has cost the first one of its transmissions.
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteFirst});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteSecond});
}

void VelCanBusProtocolSendingTest::sendsTheHeadAgainOnRequest()
{
    HandDrivenProtocol protocol;
    protocol->restartSendTmr();
    QCOMPARE(protocol.takeEvents(), QStringList());
    protocol->onSaveSendCmdData(kFirst);
    protocol->restartSendTmr();
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteFirst, kWriteFirst}));
}

void VelCanBusProtocolSendingTest::refusesThe66thCommand()
{
    HandDrivenProtocol protocol;
    for (int i = 0; i < 65; ++i)
        protocol->onSaveSendCmdData(kFirst);
    QCOMPARE(protocol.takeEvents().size(), 65);
    QCOMPARE(protocol.log().messages("[ERR]"), QStringList());

    protocol->onSaveSendCmdData(kFirst);
    QCOMPARE(protocol.takeEvents(), QStringList());
    QCOMPARE(protocol.log().messages("[ERR]"), QStringList {"canbus sendCacheBuffer is full !!!"});
    QCOMPARE(protocol.log().lines().last().type, QtCriticalMsg);
}

void VelCanBusProtocolSendingTest::appendsConnectFramesBeyondTheBound()
{
    HandDrivenProtocol protocol;
    for (int i = 0; i < 65; ++i)
        protocol->onSaveSendCmdData(kFirst);
    protocol.takeEvents();
    protocol->onRequestConnect();
    protocol->onCheckConnectTmrout();
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteFirst, kWriteFirst}));
    QCOMPARE(protocol.log().messages("[ERR]"), QStringList());

    for (int i = 0; i < 65; ++i)
        protocol->removeSendCmdData(0x31);
    QStringList events = protocol.takeEvents();
    QCOMPARE(events.size(), 65);
    QCOMPARE(events.last(), QString("write 9f022101000000209f03"));
    protocol->removeSendCmdData(0x21);
    QCOMPARE(protocol.takeEvents(), QStringList {"write 9f020001000001009f03"});
}

void VelCanBusProtocolSendingTest::movesOnWithAnAcknowledgement()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(kAckFirst), QStringList {kWriteSecond});
    QCOMPARE(protocol.passOver(kAckSecond), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolSendingTest::movesOnWithANegativeAcknowledgement()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(kNackFirst), QStringList {kWriteSecond});
    QCOMPARE(protocol.passOver(bytes("9f 15 32 32 9f 03")), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolSendingTest::countsTheNextFrameFromOne()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    protocol->onSaveSendCmdData(kThird);
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(kAckFirst), QStringList {kWriteSecond});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteSecond});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteSecond});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteThird});
}

void VelCanBusProtocolSendingTest::ignoresAnswersWithAnotherId()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(kAckSecond), QStringList());
    QCOMPARE(protocol.passOver(bytes("9f 15 32 32 9f 03")), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteFirst});
    QCOMPARE(protocol.passOver(kAckFirst), QStringList {kWriteSecond});
}

void VelCanBusProtocolSendingTest::ignoresAnswersWithoutAFrame()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(kAckFirst), QStringList());
    QCOMPARE(protocol.passOver(kNackFirst), QStringList());
    QCOMPARE(protocol.passOver(bytes("9f 15 00 00 9f 03")), QStringList());
}

void VelCanBusProtocolSendingTest::matchesAnEscapeAsId()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(bytes("9f 02 9f9f 93 00 0c 9f 03"));
    protocol->onSaveSendCmdData(kSecond);
    protocol.takeEvents();
    // The box doubles nothing in its answers: the id and its repetition look like one doubled byte, and
    // the answer fails its check.
    QCOMPARE(protocol.passOver(bytes("9f 06 9f 9f 9f 03")), QStringList());
    QCOMPARE(protocol.passOver(bytes("9f 06 9f9f 9f9f 9f 03")), QStringList {kWriteSecond});
}

void VelCanBusProtocolSendingTest::takesOffTheFrameWithTheId()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(bytes("9f 02 fe 93 00 6d 9f 03"));
    protocol->onSaveSendCmdData(kSecond);
    protocol.takeEvents();
    protocol->removeSendCmdData(0x7e);
    QCOMPARE(protocol.takeEvents(), QStringList());
    protocol->removeSendCmdData(char(0xfe));
    QCOMPARE(protocol.takeEvents(), QStringList {kWriteSecond});
}

void VelCanBusProtocolSendingTest::leavesTheFrameBehindToTheNextExpiry()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    protocol.sendTimerExpires();
    protocol.runQueuedCalls();
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QVERIFY(timers.isRunning(300));
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteSecond});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteSecond});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteSecond});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QVERIFY(!timers.isRunning(300));
}

void VelCanBusProtocolSendingTest::startsAndStopsTheSendTimerByQueuedCalls()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onSaveSendCmdData(kFirst);
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), QList<int> {300});
    QVERIFY(timers.isRunning(300));

    protocol->onSaveSendCmdData(kSecond);
    protocol.passOver(kAckFirst);
    QCOMPARE(timers.takeCalled(), QList<int>());
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), (QList<int> {300, 300}));
    QVERIFY(timers.isRunning(300));

    protocol.passOver(kAckSecond);
    QVERIFY(timers.isRunning(300));
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), QList<int> {300});
    QVERIFY(!timers.isRunning(300));
}

void VelCanBusProtocolSendingTest::stopsTheSendTimerDirectlyAtItsExpiry()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onSaveSendCmdData(kFirst);
    protocol.runQueuedCalls();
    protocol.sendTimerExpires();
    protocol.sendTimerExpires();
    QVERIFY(timers.isRunning(300));
    timers.takeCalled();
    protocol.sendTimerExpires();
    QVERIFY(!timers.isRunning(300));
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), QList<int>());
}

void VelCanBusProtocolSendingTest::stopsTheSendTimerOfAnEmptyCacheAtItsExpiry()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onSaveSendCmdData(kFirst);
    protocol.runQueuedCalls();
    // The answer's queued stop has not come through when the timer expires.
    protocol.passOver(kAckFirst);
    QVERIFY(timers.isRunning(300));
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QVERIFY(!timers.isRunning(300));
}

void VelCanBusProtocolSendingTest::resendsWhenTheSendTimerExpires()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onSaveSendCmdData(kFirst);
    protocol.runQueuedCalls();
    protocol.takeEvents();
    QVERIFY(timers.expire(300));
    QCOMPARE(protocol.takeEvents(), QStringList {kWriteFirst});
}

void VelCanBusProtocolSendingTest::logsAnswersWithTheIdUnderWay()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(bytes("9f 02 0a 93 00 99 9f 03"));
    protocol->onSaveSendCmdData(kSecond);
    protocol.passOver(bytes("9f 06 31 31 9f 03"));
    protocol.passOver(bytes("9f 06 0a 0a 9f 03"));
    protocol.passOver(bytes("9f 15 32 32 9f 03"));
    QCOMPARE(protocol.log().messages("[DBG]").filter("id---"),
             (QStringList {"ack id--- 31 a", "ack id--- a a", "nack id--- 32 32"}));
}

void VelCanBusProtocolSendingTest::logsEachExpiryOfAConnectedLink()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol.sendTimerExpires();
    QCOMPARE(protocol.log().lines().size(), 0);

    protocol.passOver(bytes("9f 02 31 01 00 00 01 31 9f 03"));
    protocol.log().clear();
    protocol.sendTimerExpires();
    QCOMPARE(protocol.log().messages("[DBG]"), QStringList {"3 false 2"});
    protocol.sendTimerExpires();
    protocol.sendTimerExpires();
    QCOMPARE(protocol.log().messages("[DBG]"), (QStringList {"3 false 2", "0 false 1", "1 false 1"}));
    protocol->removeSendCmdData(0x31);
    protocol.log().clear();
    protocol.sendTimerExpires();
    QCOMPARE(protocol.log().messages("[DBG]"), QStringList {"0 true 0"});
}

QTEST_GUILESS_MAIN(VelCanBusProtocolSendingTest)
#include "tst_velcanbusprotocol_sending.moc"
