#include "boxbench.h"

#include <QtTest/QTest>

using namespace boxbench;

class TestBoxsimBoxClimate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void carriesOutAButtonAndReportsTheState();
    void carriesOutARetransmissionOnce();
    void carriesOutTheSameButtonAgainWhenItsIdIsNew();
    void carriesOutTheSameBytesAgainAfterTheRetransmissionTime();
    void answersAButtonThatChangesNothing();
    void sendsThreePagesOnRequest();
    void sendsOnlyTheNewestOfAWaitingState();
    void sendsWhatWasSetAndNothingElse();
};

void TestBoxsimBoxClimate::carriesOutAButtonAndReportsTheState()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 93 00 1b 01 9f9f 44 9f 03");

    QCOMPARE(bench.events(), QStringList {"climate.manualTemp press=true value=159"});
    QCOMPARE(bench.writes(),
             QStringList({wire("9f 06 52 52 9f 03"),
                          wire("9f 02 53 03 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 9f9f cd 9f 03")}));
}

void TestBoxsimBoxClimate::carriesOutARetransmissionOnce()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, kAcButton);
    bench.receive(1010, "9f 06 53 53 9f 03");
    bench.receive(1300, kAcButton);
    bench.receive(1600, kAcButton);

    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
    QCOMPARE(
        bench.events(),
        QStringList({"climate.acBtn press=true value=0", "ack 53", "climate.acBtn press=true value=0 again",
                     "climate.acBtn press=true value=0 again"}));
    QCOMPARE(bench.writes().filter(wire("9f 06 52 52 9f 03")).size(), 3);
}

void TestBoxsimBoxClimate::carriesOutTheSameButtonAgainWhenItsIdIsNew()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, kAcButton);
    bench.receive(1050, "9f 06 53 53 9f 03  9f 02 53 93 00 12 01 00 d3 9f 03");

    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);
}

void TestBoxsimBoxClimate::carriesOutTheSameBytesAgainAfterTheRetransmissionTime()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, kAcButton);
    bench.receive(1010, "9f 06 53 53 9f 03");
    bench.receive(1899, kAcButton);
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
    bench.receive(2799, kAcButton);
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);
}

void TestBoxsimBoxClimate::answersAButtonThatChangesNothing()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 93 00 02 00 00 c3 9f 03");

    QCOMPARE(bench.events(), QStringList {"climate.rearZone press=false value=0"});
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), zeroState("53", "52")}));
}

void TestBoxsimBoxClimate::sendsThreePagesOnRequest()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 97 00 01 c4 9f 03");
    bench.receive(1020, "9f 06 53 53 9f 03");
    bench.receive(1040, "9f 06 54 54 9f 03");

    QCOMPARE(bench.writes(),
             QStringList({wire("9f 06 52 52 9f 03"), wire("9f 02 53 03 00 00 00 50 9f 03"),
                          wire("9f 02 54 03 01 56 9f 03"), zeroState("55", "54")}));
}

void TestBoxsimBoxClimate::sendsOnlyTheNewestOfAWaitingState()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.receive(1010, "9f 02 52 93 00 1b 01 01 da 9f 03");
    bench.receive(1020, "9f 02 52 93 00 1b 01 02 d9 9f 03");
    bench.writes();

    bench.receive(1100, "9f 06 53 53 9f 03");
    QCOMPARE(bench.writes(),
             QStringList {wire("9f 02 54 03 02 00 00 00 00 00 01 00 00 00 00 00 00 00 00 02 56 9f 03")});
    bench.receive(1200, "9f 06 54 54 9f 03");
    QCOMPARE(bench.writes(), QStringList());
}

void TestBoxsimBoxClimate::sendsWhatWasSetAndNothingElse()
{
    Bench bench;
    bench.connectAndSettle();

    boxsim::CarState state = bench.box.car();
    state.climate.title = QStringLiteral("A");
    bench.box.setCar(state);
    bench.advance(1000);
    bench.receive(1050, "9f 06 53 53 9f 03");
    bench.advance(1100);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 53 03 00 00 41 00 11 9f 03")});

    state.climate.labels = QStringList {"B"};
    bench.box.setCar(state);
    bench.advance(2000);
    bench.receive(2050, "9f 06 54 54 9f 03");
    bench.advance(2100);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 54 03 01 42 00 14 9f 03")});
}

QTEST_GUILESS_MAIN(TestBoxsimBoxClimate)
#include "tst_boxsim_boxclimate.moc"
