#include "boxbench.h"

#include <QtTest/QTest>

using namespace boxbench;
using boxsim::Faults;

/// What the box says of itself when it is asked to connect, and unasked.
class TestBoxsimBoxReadiness : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysNotReadyAsOftenAsItIsTold();
    void saysNotReadyFromTheMomentThatItIsTold();
    void reportsAChangeOfItsReadinessUnasked();
    void answersConnectRequestsAsReadyAsItIs();
    void saysAfterARestartWhetherItIsReady();
    void leavesItsReadinessToARecording();
};

void TestBoxsimBoxReadiness::saysNotReadyAsOftenAsItIsTold()
{
    Faults faults;
    faults.notReadyReplies = 2;
    Bench bench({}, faults);

    bench.receive(0, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 40 01 00 00 00 41 9f 03")}));
    bench.receive(2000, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 00 40 9f 03")}));
    bench.receive(4000, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 42 01 00 00 01 42 9f 03")}));
}

void TestBoxsimBoxReadiness::saysNotReadyFromTheMomentThatItIsTold()
{
    Bench bench;
    bench.connectAndSettle();
    Faults faults;
    faults.notReadyReplies = 1;

    bench.setFaults(faults);
    bench.receive(1000, kConnectRequest);

    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 00 40 9f 03")}));
    QCOMPARE(bench.box.state().faults.notReadyReplies, 0);
}

void TestBoxsimBoxReadiness::reportsAChangeOfItsReadinessUnasked()
{
    Bench bench;
    bench.connectAndSettle();

    bench.setReady(false);
    bench.advance(1000);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 41 01 00 00 00 40 9f 03")});
    bench.receive(1001, "9f 06 41 41 9f 03");
    bench.setReady(false);
    bench.advance(1500);
    QCOMPARE(bench.writes(), QStringList());
    bench.setReady(true);
    bench.advance(2000);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 42 01 00 00 01 42 9f 03")});
    QVERIFY(bench.box.isLinkUp());
}

void TestBoxsimBoxReadiness::answersConnectRequestsAsReadyAsItIs()
{
    Bench bench;
    bench.setReady(false);
    bench.advance(0);
    QCOMPARE(bench.writes(), QStringList()); // nobody has been heard

    bench.receive(10, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 40 01 00 00 00 41 9f 03")}));
    bench.receive(2000, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 00 40 9f 03")}));
    bench.receive(2001, "9f 06 41 41 9f 03");
    bench.setReady(true);
    bench.advance(2100);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 42 01 00 00 01 42 9f 03")});
    bench.receive(4000, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 43 01 00 00 01 43 9f 03")}));
}

void TestBoxsimBoxReadiness::saysAfterARestartWhetherItIsReady()
{
    Bench bench;
    bench.setReady(false);

    bench.restart(0);

    QCOMPARE(bench.writes(), QStringList {wire("9f 02 40 01 00 00 00 41 9f 03")});
}

void TestBoxsimBoxReadiness::leavesItsReadinessToARecording()
{
    boxsim::BoxOptions replayed;
    replayed.saysReady = false;
    Bench bench(replayed);
    bench.receive(0, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList {wire(kAckOfRequest)});

    bench.setReady(false);
    bench.advance(1000);

    QCOMPARE(bench.writes(), QStringList());
}

QTEST_GUILESS_MAIN(TestBoxsimBoxReadiness)
#include "tst_boxsim_boxreadiness.moc"
