#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "timerwatch.h"

#include <QtCore/QLoggingCategory>
#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kReady = bytes("9f 02 31 01 00 00 01 31 9f 03");
const QByteArray kNotReady = bytes("9f 02 31 01 00 00 00 30 9f 03");
const QByteArray kAckRequest = bytes("9f 06 21 21 9f 03");
const QByteArray kAckCheck = bytes("9f 06 31 31 9f 03");
const QByteArray kCommand = bytes("9f 02 41 93 00 d2 9f 03");
const QByteArray kOther = bytes("9f 02 42 94 00 d6 9f 03");

const QString kRequest = "write 9f022101000000209f03";
const QString kCheck = "write 9f023101000001319f03";
const QString kAckReady = "write 9f0631319f03";
const QString kWriteCommand = "write 9f02419300d29f03";
const QString kWriteOther = "write 9f02429400d69f03";

/// The box is ready, has acknowledged the first check, and nothing is under way.
void connectLink(HandDrivenProtocol &protocol)
{
    QCOMPARE(protocol.passOver(kReady), (QStringList {kCheck, kAckReady}));
    QCOMPARE(protocol.passOver(kAckCheck), QStringList {"status true"});
    protocol.runQueuedCalls();
}

/// Sends the command and lets two of its periods go by.
void sendInVain(HandDrivenProtocol &protocol, const QByteArray &command)
{
    protocol->onSaveSendCmdData(command);
    protocol->onSendTmrout();
    protocol->onSendTmrout();
    protocol.takeEvents();
}

} // namespace

class VelCanBusProtocolHandshakeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requestsAConnection();
    void queuesRequestsBehindOneAnother();
    void losesNothingInTheHandshake();
    void endsTheHandshakeWithAReadyBox();
    void takesTheConnectionsIdFromEachReadyReply();
    void checksWithAnEscapeAsId();
    void startsTheHandshakeAnewWithABoxThatIsNotReady();
    void losesNothingAfterABoxThatIsNotReady();
    void reportsTheLinkWithEachAcknowledgedCheck();
    void reportsTheLinkBehindTheNextFrame();
    void reportsNothingForANegativeAcknowledgement();
    void reportsTheLinkForIdZeroBeforeAnyReadyReply();

    void losesTheLinkWithAFrameThatIsGivenUp();
    void losesTheLinkWithACheckThatIsGivenUp();
    void changesTheTimersBeforeItReportsTheLoss();
    void startsTheRequestsAnewWithEachFrameThatIsGivenUp();
    void losesNothingOnceItHasRequestedAgain();
    void connectsAgain();

    void requestsAndChecksWhenTheTimersExpire();
    void logsTheCheck();
    void doesTheSameWithDebugLinesSwitchedOff();
    void logsNoExpiryInTheHandshake();
};

void VelCanBusProtocolHandshakeTest::requestsAConnection()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onRequestConnect();
    QCOMPARE(protocol.takeEvents(), QStringList {kRequest});
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), QList<int> {300});
    QCOMPARE(protocol.passOver(kAckRequest), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolHandshakeTest::queuesRequestsBehindOneAnother()
{
    HandDrivenProtocol protocol;
    protocol->onRequestConnect();
    protocol->onRequestConnect();
    QCOMPARE(protocol.takeEvents(), (QStringList {kRequest, kRequest}));
    QCOMPARE(protocol.passOver(kAckRequest), QStringList {kRequest});
    QCOMPARE(protocol.passOver(kAckRequest), QStringList());
}

void VelCanBusProtocolHandshakeTest::losesNothingInTheHandshake()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onRequestConnect();
    protocol->onSaveSendCmdData(kCommand);
    QCOMPARE(protocol.takeEvents(), (QStringList {kRequest, kRequest}));
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kRequest});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    sendInVain(protocol, kOther);
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), (QList<int> {300, 300, 300}));
}

void VelCanBusProtocolHandshakeTest::endsTheHandshakeWithAReadyBox()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onRequestConnect();
    protocol.passOver(kAckRequest);
    protocol.runQueuedCalls();
    timers.takeCalled();

    // The check follows at once, ahead of the acknowledgement; the link is not reported yet.
    QCOMPARE(protocol.passOver(kReady), (QStringList {kCheck, kAckReady}));
    QCOMPARE(timers.takeCalled(), QList<int>());
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), (QList<int> {2000, 15000, 300}));
    QVERIFY(!timers.isRunning(2000));
    QVERIFY(timers.isRunning(15000));
    QVERIFY(timers.isRunning(300));
}

void VelCanBusProtocolHandshakeTest::takesTheConnectionsIdFromEachReadyReply()
{
    HandDrivenProtocol protocol;
    connectLink(protocol);
    QCOMPARE(protocol.passOver(bytes("9f 02 35 01 00 00 01 35 9f 03")),
             (QStringList {"write 9f023501000001359f03", "write 9f0635359f03"}));
    QCOMPARE(protocol.passOver(kAckCheck), QStringList());
    QCOMPARE(protocol.passOver(bytes("9f 06 35 35 9f 03")), QStringList {"status true"});
    protocol->onCheckConnectTmrout();
    QCOMPARE(protocol.takeEvents(), QStringList {"write 9f023501000001359f03"});
}

void VelCanBusProtocolHandshakeTest::checksWithAnEscapeAsId()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 02 9f9f 01 00 00 01 9f9f 9f 03")),
             (QStringList {"write 9f029f9f010000019f9f9f03", "write 9f069f9f9f03"}));
    QCOMPARE(protocol.passOver(bytes("9f 06 9f9f 9f9f 9f 03")), QStringList {"status true"});
}

void VelCanBusProtocolHandshakeTest::startsTheHandshakeAnewWithABoxThatIsNotReady()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    connectLink(protocol);
    timers.takeCalled();
    QCOMPARE(protocol.passOver(kNotReady), (QStringList {kRequest, kAckReady}));
    QVERIFY(timers.isRunning(15000));
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), (QList<int> {300, 15000}));
    QVERIFY(!timers.isRunning(15000));
    // The requests' own timer stays as it was.
    QVERIFY(!timers.isRunning(2000));
}

void VelCanBusProtocolHandshakeTest::losesNothingAfterABoxThatIsNotReady()
{
    HandDrivenProtocol protocol;
    connectLink(protocol);
    protocol.passOver(kNotReady);
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kRequest});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kRequest});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolHandshakeTest::reportsTheLinkWithEachAcknowledgedCheck()
{
    HandDrivenProtocol protocol;
    connectLink(protocol);
    protocol->onCheckConnectTmrout();
    QCOMPARE(protocol.takeEvents(), QStringList {kCheck});
    QCOMPARE(protocol.passOver(kAckCheck), QStringList {"status true"});
    // The id alone counts, whether a check is under way or not.
    QCOMPARE(protocol.passOver(kAckCheck), QStringList {"status true"});
    protocol->onSaveSendCmdData(kCommand);
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(bytes("9f 06 41 41 9f 03")), QStringList());
}

void VelCanBusProtocolHandshakeTest::reportsTheLinkBehindTheNextFrame()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    protocol->onSaveSendCmdData(kCommand);
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(kAckCheck), (QStringList {kWriteCommand, "status true"}));
}

void VelCanBusProtocolHandshakeTest::reportsNothingForANegativeAcknowledgement()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    QCOMPARE(protocol.passOver(bytes("9f 15 31 31 9f 03")), QStringList());
    // It has taken the check off all the same.
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolHandshakeTest::reportsTheLinkForIdZeroBeforeAnyReadyReply()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 06 00 00 9f 03")), QStringList {"status true"});
    QCOMPARE(protocol.passOver(bytes("9f 15 00 00 9f 03")), QStringList());
    connectLink(protocol);
    QCOMPARE(protocol.passOver(bytes("9f 06 00 00 9f 03")), QStringList());
}

void VelCanBusProtocolHandshakeTest::losesTheLinkWithAFrameThatIsGivenUp()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    connectLink(protocol);
    sendInVain(protocol, kCommand);
    protocol.runQueuedCalls();
    timers.takeCalled();

    QCOMPARE(protocol.sendTimerExpires(), QStringList {"status false"});
    QVERIFY(timers.isRunning(15000));
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), (QList<int> {15000, 2000}));
    QVERIFY(!timers.isRunning(15000));
    QVERIFY(timers.isRunning(2000));
}

void VelCanBusProtocolHandshakeTest::losesTheLinkWithACheckThatIsGivenUp()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kCheck});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kCheck});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {"status false"});
}

void VelCanBusProtocolHandshakeTest::changesTheTimersBeforeItReportsTheLoss()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    connectLink(protocol);
    sendInVain(protocol, kCommand);
    bool requesting = false;
    bool checking = true;
    connect(protocol.get(), &CanbusProtocol::notifyCanbusStatus, protocol.get(), [&] {
        protocol.runQueuedCalls();
        requesting = timers.isRunning(2000);
        checking = timers.isRunning(15000);
    });
    QCOMPARE(protocol.sendTimerExpires(), QStringList {"status false"});
    QVERIFY(requesting);
    QVERIFY(!checking);
}

void VelCanBusProtocolHandshakeTest::startsTheRequestsAnewWithEachFrameThatIsGivenUp()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    connectLink(protocol);
    protocol->onSaveSendCmdData(kOther);
    sendInVain(protocol, kCommand);
    protocol.runQueuedCalls();
    timers.takeCalled();

    // Two commands: the first is given up by now, and the second is under way.
    QCOMPARE(timers.isRunning(2000), true);
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteCommand});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteCommand});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteCommand});
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), QList<int>());
    QCOMPARE(protocol.sendTimerExpires(), QStringList {"status false"});
    protocol.runQueuedCalls();
    QCOMPARE(timers.takeCalled(), (QList<int> {15000, 2000}));
    QVERIFY(timers.isRunning(2000));
}

void VelCanBusProtocolHandshakeTest::losesNothingOnceItHasRequestedAgain()
{
    HandDrivenProtocol protocol;
    connectLink(protocol);
    protocol->onSaveSendCmdData(kOther);
    protocol->onRequestConnect();
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteOther, kWriteOther}));
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kWriteOther});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kRequest});
}

void VelCanBusProtocolHandshakeTest::connectsAgain()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    connectLink(protocol);
    sendInVain(protocol, kCommand);
    QCOMPARE(protocol.sendTimerExpires(), QStringList {"status false"});
    protocol.runQueuedCalls();
    QVERIFY(timers.expire(2000));
    QCOMPARE(protocol.takeEvents(), QStringList {kRequest});
    QCOMPARE(protocol.passOver(kAckRequest), QStringList());
    QCOMPARE(protocol.passOver(kReady), (QStringList {kCheck, kAckReady}));
    QCOMPARE(protocol.passOver(kAckCheck), QStringList {"status true"});
    protocol.runQueuedCalls();
    QVERIFY(!timers.isRunning(2000));
    QVERIFY(timers.isRunning(15000));
    QVERIFY(!timers.isRunning(300));
}

void VelCanBusProtocolHandshakeTest::requestsAndChecksWhenTheTimersExpire()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    connectLink(protocol);
    QVERIFY(timers.expire(15000));
    QCOMPARE(protocol.takeEvents(), QStringList {kCheck});
    QVERIFY(timers.isRunning(15000));
    protocol.passOver(kAckCheck);
    QVERIFY(timers.expire(2000));
    QCOMPARE(protocol.takeEvents(), QStringList {kRequest});
}

void VelCanBusProtocolHandshakeTest::logsTheCheck()
{
    HandDrivenProtocol protocol;
    protocol->onCheckConnectTmrout();
    QCOMPARE(protocol.log().messages("[DBG]"), QStringList {"0 9f020001000001009f03"});
    protocol.passOver(bytes("9f 02 0e 01 00 00 01 0e 9f 03"));
    QCOMPARE(protocol.log().messages("[DBG]").last(), QString("e 9f020e010000010e9f03"));
}

void VelCanBusProtocolHandshakeTest::doesTheSameWithDebugLinesSwitchedOff()
{
    HandDrivenProtocol protocol;
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, false);
    connectLink(protocol);
    protocol->onCheckConnectTmrout();
    QCOMPARE(protocol.takeEvents(), QStringList {kCheck});
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kCheck});
    QCOMPARE(protocol.log().lines().size(), 0);
}

void VelCanBusProtocolHandshakeTest::logsNoExpiryInTheHandshake()
{
    HandDrivenProtocol protocol;
    connectLink(protocol);
    protocol->onRequestConnect();
    protocol.log().clear();
    for (int i = 0; i < 4; ++i)
        protocol->onSendTmrout();
    QCOMPARE(protocol.log().lines().size(), 0);
}

QTEST_GUILESS_MAIN(VelCanBusProtocolHandshakeTest)
#include "tst_velcanbusprotocol_handshake.moc"
