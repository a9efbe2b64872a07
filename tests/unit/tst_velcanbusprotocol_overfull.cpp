#include "figurechanges.h"
#include "handdrivenprotocol.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kNotReady = bytes("9f 02 35 01 00 00 00 34 9f 03");
const QByteArray kReady = bytes("9f 02 35 01 00 00 01 35 9f 03");
const QByteArray kAckRequest = bytes("9f 06 21 21 9f 03");
const QByteArray kAckCheck = bytes("9f 06 35 35 9f 03");

/// Calls posted to the timers are carried out as they are while the main thread lives.
void notReady(HandDrivenProtocol &protocol, int times)
{
    for (int i = 0; i < times; ++i) {
        protocol.passOver(kNotReady);
        HandDrivenProtocol::runQueuedCalls();
    }
}

} // namespace

/// A box that says on every pass that it is not ready.
class VelCanBusProtocolOverfullTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cachesABoundedNumberOfRequests();
    void logsAFloodOnce();
    void comesUpBehindAFlood();
    void logsTheControlThatWasLeftOut();
};

void VelCanBusProtocolOverfullTest::cachesABoundedNumberOfRequests()
{
    HandDrivenProtocol protocol;
    notReady(protocol, 1024);
    QCOMPARE(protocol->linkHealth()->figures().cacheHighWater, 1024U);
    QCOMPARE(protocol->linkHealth()->figures().connectRequests, 1024U);
    notReady(protocol, 2000);
    QCOMPARE(protocol->linkHealth()->figures().cacheHighWater, 1024U);
    // Counted are those that are cached; all the same each report had the head sent again.
    QCOMPARE(protocol->linkHealth()->figures().connectRequests, 1024U);
    QCOMPARE(protocol->linkHealth()->figures().retransmissions, 3023U);
}

void VelCanBusProtocolOverfullTest::logsAFloodOnce()
{
    HandDrivenProtocol protocol;
    notReady(protocol, 1024);
    QCOMPARE(protocol.log().messages("[ERR]"), QStringList());
    notReady(protocol, 500);
    for (int round = 0; round < 100; ++round) {
        protocol.passOver(kAckRequest);
        notReady(protocol, 2);
    }
    const QString line = "canbus sendCacheBuffer is overfull: it takes no second frame of this kind";
    QCOMPARE(protocol.log().messages("[ERR]"), QStringList {line});
}

void VelCanBusProtocolOverfullTest::comesUpBehindAFlood()
{
    HandDrivenProtocol protocol;
    notReady(protocol, 3000);
    protocol.passOver(kReady);
    int answered = 0;
    // The box acknowledges each request and then the check.
    QStringList events = protocol.passOver(kAckRequest);
    for (++answered; events != QStringList {"write 9f023501000001359f03"} && answered < 2000; ++answered)
        events = protocol.passOver(kAckRequest);
    QCOMPARE(answered, 1024);
    QCOMPARE(protocol.passOver(kAckCheck), QStringList {"status true"});
}

void VelCanBusProtocolOverfullTest::logsTheControlThatWasLeftOut()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    for (int i = 0; i < 1024; ++i)
        protocol->onCheckConnectTmrout();
    QVERIFY(protocol.log().lines().last().text.startsWith("[ERR] "));
    QVERIFY(protocol.log().lines().last().text.contains(
        " void canbus::VelCanBusProtocol::onCheckConnectTmrout() "));
}

QTEST_GUILESS_MAIN(VelCanBusProtocolOverfullTest)
#include "tst_velcanbusprotocol_overfull.moc"
