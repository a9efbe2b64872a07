#include "anotherthread.h"
#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "playerrig.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <functional>
#include <memory>

using namespace canbus;

namespace {

/// What the player has told its listeners, in order.
QList<bool> told(const QSignalSpy &status)
{
    QList<bool> all;
    for (const QList<QVariant> &arguments : status)
        all += arguments.at(0).toBool();
    return all;
}

} // namespace

/// The parser thread reports that the link is up, the main thread that it is lost.
class CanBusPlayerLinkStatusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsAtOnceWhatIsReportedOnItsThread();
    void tellsLaterWhatIsReportedOnAnotherThread();
    void hearsALossBehindAnEarlierReport();
    void hearsTheProtocolsOwnReportsInOrder();
    void tellsEveryListenerInOrder();
    void dropsReportsForAPlayerThatIsGone();
};

void CanBusPlayerLinkStatusTest::tellsAtOnceWhatIsReportedOnItsThread()
{
    PlayerRig rig;
    rig.start();
    Q_EMIT rig.protocol.notifyCanbusStatus(true);
    QVERIFY(rig.player.getCanbusConnectStatus());
    Q_EMIT rig.protocol.notifyCanbusStatus(false);
    QVERIFY(!rig.player.getCanbusConnectStatus());
}

void CanBusPlayerLinkStatusTest::tellsLaterWhatIsReportedOnAnotherThread()
{
    PlayerRig rig;
    rig.start();
    QThread *toldOn = nullptr;
    connect(
        &rig.player, &CanBusPlayer::canbusConnectStatus, &rig.player,
        [&] { toldOn = QThread::currentThread(); }, Qt::DirectConnection);
    QVERIFY(onAnotherThread([&] { Q_EMIT rig.protocol.notifyCanbusStatus(true); }));
    QVERIFY(!rig.player.getCanbusConnectStatus());
    QCoreApplication::sendPostedEvents();
    QVERIFY(rig.player.getCanbusConnectStatus());
    QCOMPARE(toldOn, QThread::currentThread());
}

void CanBusPlayerLinkStatusTest::hearsALossBehindAnEarlierReport()
{
    PlayerRig rig;
    rig.start();
    QSignalSpy status(&rig.player, &CanBusPlayer::canbusConnectStatus);
    QVERIFY(onAnotherThread([&] { Q_EMIT rig.protocol.notifyCanbusStatus(true); }));
    Q_EMIT rig.protocol.notifyCanbusStatus(false);
    QCOMPARE(told(status), (QList<bool> {true, false}));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(told(status), (QList<bool> {true, false}));
    QVERIFY(!rig.player.getCanbusConnectStatus());
}

void CanBusPlayerLinkStatusTest::hearsTheProtocolsOwnReportsInOrder()
{
    PlayerRig rig;
    HandDrivenProtocol protocol;
    rig.player.setUartPort(rig.line.name(), 57600);
    rig.player.init(protocol.get());
    QSignalSpy status(&rig.player, &CanBusPlayer::canbusConnectStatus);
    protocol.passOver(bytes("9f 02 35 01 00 00 01 35 9f 03"));
    QVERIFY(onAnotherThread([&] { protocol.passOver(bytes("9f 06 35 35 9f 03")); }));
    // The link's first command finds it lost before the main thread has come to its events.
    protocol->onSaveSendCmdData(bytes("9f 02 31 93 00 a2 9f 03"));
    for (int expiry = 0; expiry < 3; ++expiry)
        protocol->onSendTmrout();
    QCoreApplication::sendPostedEvents(&rig.player, QEvent::MetaCall);
    QCOMPARE(told(status), (QList<bool> {true, false}));
    QVERIFY(!rig.player.getCanbusConnectStatus());
}

void CanBusPlayerLinkStatusTest::tellsEveryListenerInOrder()
{
    PlayerRig rig;
    rig.start();
    connect(&rig.player, &CanBusPlayer::canbusConnectStatus, &rig.player, [&](bool isUp) {
        if (isUp)
            Q_EMIT rig.protocol.notifyCanbusStatus(false);
    });
    QSignalSpy late(&rig.player, &CanBusPlayer::canbusConnectStatus);
    Q_EMIT rig.protocol.notifyCanbusStatus(true);
    QCOMPARE(told(late), (QList<bool> {true, false}));
    QVERIFY(!rig.player.getCanbusConnectStatus());
}

void CanBusPlayerLinkStatusTest::dropsReportsForAPlayerThatIsGone()
{
    PlayedProtocol protocol;
    {
        PlayerRig rig;
        rig.player.setUartPort(rig.line.name(), 57600);
        rig.player.init(&protocol);
        QVERIFY(onAnotherThread([&] { Q_EMIT protocol.notifyCanbusStatus(true); }));
        QCOMPARE(protocol.connections().at(1), 1);
    }
    QCoreApplication::sendPostedEvents();
    Q_EMIT protocol.notifyCanbusStatus(true);
    QCOMPARE(protocol.connections().at(1), 0);
}

QTEST_GUILESS_MAIN(CanBusPlayerLinkStatusTest)
#include "tst_canbusplayer_linkstatus.moc"
