#include "boxbench.h"

#include <QtTest/QTest>

using namespace boxbench;
using boxsim::Box;
using boxsim::Output;

class TestBoxsimBox : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersAConnectRequestWithReady();
    void answersAConnectRequestThatComesBeforeTheAcknowledgement();
    void sendsNothingBeforeTheHeadUnitHasConnected();
    void bringsTheLinkUpWithTheConnectionCheckAndSendsItsState();
    void acknowledgesEachConnectionCheck();
    void beginsAnewWithAConnectRequest();
    void sendsOneFrameAtATime();
    void leavesTheHeadUnitTimeBetweenFrames();
    void resendsTwiceAndGivesUp();
    void dropsWhatWaitsWhenItGivesUp();
    void comesBackWithAConnectionCheckAfterGivingUp();
    void stopsResendingWhenAcknowledged();
    void takesNoOtherIdForAnAcknowledgement();
    void keepsItsFrameUnderWayWhenItIsRefused();
    void acknowledgesWhatItDoesNotKnow();
    void doublesTheIdInTheAcknowledgementOf9F();
    void doesNotAnswerABadFrame();
    void usesEightIdsInTurn();
    void passesOverAnIdThatTheHeadUnitCouldNotRead();
    void sendsDataThatTheHeadUnitCannotReadAllTheSame();
    void readsTheHandshakeHoweverItIsCut();
    void tellsWhoseIdACommandCarries();
};

void TestBoxsimBox::answersAConnectRequestWithReady()
{
    Bench bench;
    bench.receive(0, kConnectRequest);

    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 40 01 00 00 01 40 9f 03")}));
    QCOMPARE(bench.events(), QStringList {"connection.request"});
    QVERIFY(!bench.box.isLinkUp());
}

void TestBoxsimBox::answersAConnectRequestThatComesBeforeTheAcknowledgement()
{
    boxsim::Faults faults;
    faults.notReadyReplies = 1;
    Bench bench({}, faults);
    bench.receive(0, kConnectRequest);
    bench.writes();

    bench.receive(10, "9f 02 21 01 00 00 00 20 9f 03  9f 06 40 40 9f 03");
    bench.advance(20);

    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 01 41 9f 03")}));
}

void TestBoxsimBox::sendsNothingBeforeTheHeadUnitHasConnected()
{
    Bench bench;

    bench.run(0, 5000);
    QCOMPARE(bench.writes(), QStringList());

    bench.receive(5000, "9f 02 00 93 00 12 01 00 80 9f 03");
    bench.run(5001, 6000);
    QCOMPARE(bench.writes(), QStringList {wire("9f 06 00 00 9f 03")});
}

void TestBoxsimBox::bringsTheLinkUpWithTheConnectionCheckAndSendsItsState()
{
    Bench bench;
    bench.receive(0, kConnectRequest);
    bench.writes();
    bench.events();

    bench.receive(100, "9f 06 40 40 9f 03  9f 02 40 01 00 00 01 40 9f 03");
    QVERIFY(bench.box.isLinkUp());
    QCOMPARE(bench.events(), QStringList({"ack 40", "connection.check", "link up"}));
    bench.runAcknowledging(101, 5000);

    const QStringList expected {
        wire("9f 06 40 40 9f 03"),
        wire("9f 02 48 02 00 1f 55 9f 03"),
        wire("9f 02 50 03 00 00 00 53 9f 03"),
        wire("9f 02 51 03 01 53 9f 03"),
        zeroState("52", "53"),
        wire("9f 02 58 04 00 00 00 5c 9f 03"),
        wire("9f 02 59 04 01 5c 9f 03"),
        wire("9f 02 5a 04 02 0000 5c 9f 03"),
        wire("9f 02 5b 04 03 5c 9f 03"),
        wire("9f 02 5c 04 04 5c 9f 03"),
        wire("9f 02 5d 04 05 000000000000 000000000000 00 5c 9f 03"),
        wire("9f 02 60 05 00 00 65 9f 03"),
        wire("9f 02 61 05 01 65 9f 03"),
        wire("9f 02 62 05 02 000000 65 9f 03"),
        wire("9f 02 68 06 00 00 6e 9f 03"),
        wire("9f 02 69 06 01 6e 9f 03"),
        wire("9f 02 6a 06 02 00000000 00000000 00000000 00000000 00 6e 9f 03"),
        wire("9f 02 78 11 00 00000000 00 69 9f 03"),
    };
    QCOMPARE(bench.writes(), expected);
}

void TestBoxsimBox::acknowledgesEachConnectionCheck()
{
    Bench bench;
    bench.connectAndSettle();

    for (const qint64 now : {15100, 30100, 45100}) {
        bench.receive(now, "9f 02 40 01 00 00 01 40 9f 03");
        QCOMPARE(bench.writes(), QStringList {wire("9f 06 40 40 9f 03")});
        QCOMPARE(bench.events(), QStringList {"connection.check"});
    }
}

void TestBoxsimBox::beginsAnewWithAConnectRequest()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(700, "9f 02 52 97 00 01 c4 9f 03");
    bench.writes();
    bench.events();

    bench.receive(800, kConnectRequest);
    bench.run(801, 1050);

    QVERIFY(!bench.box.isLinkUp());
    QCOMPARE(bench.events(), QStringList({"connection.request", "link down"}));
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 01 41 9f 03")}));
}

void TestBoxsimBox::sendsOneFrameAtATime()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(700, "9f 02 52 97 00 01 c4 9f 03");
    bench.run(701, 999);
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), wire("9f 02 53 03 00 00 00 50 9f 03")}));

    bench.receive(999, "9f 06 53 53 9f 03");
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 54 03 01 56 9f 03")});
}

void TestBoxsimBox::leavesTheHeadUnitTimeBetweenFrames()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(700, "9f 02 52 97 00 01 c4 9f 03");
    bench.writes();

    bench.receive(701, "9f 06 53 53 9f 03");
    bench.run(702, 719);
    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.box.dueMs(), qint64(720));
    bench.advance(720);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 54 03 01 56 9f 03")});
}

void TestBoxsimBox::resendsTwiceAndGivesUp()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    const QString frame = wire("9f 02 53 03 02 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 53 9f 03");
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), frame}));
    bench.events();

    bench.run(1001, 1299);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1300);
    QCOMPARE(bench.writes(), QStringList {frame});
    bench.run(1301, 1599);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1600);
    QCOMPARE(bench.writes(), QStringList {frame});
    QCOMPARE(bench.events(), QStringList({"resend 53", "resend 53"}));
    bench.run(1601, 1899);
    QVERIFY(bench.box.isLinkUp());
    bench.run(1900, 9000);
    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList({"give up 53", "link down"}));
}

void TestBoxsimBox::dropsWhatWaitsWhenItGivesUp()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 52 97 00 01 c4 9f 03");
    bench.run(1001, 9000);

    const QString page = wire("9f 02 53 03 00 00 00 50 9f 03");
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 52 52 9f 03"), page, page, page}));
}

void TestBoxsimBox::comesBackWithAConnectionCheckAfterGivingUp()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.run(1001, 2000);
    bench.writes();
    bench.events();

    bench.receive(15100, "9f 02 40 01 00 00 01 40 9f 03");

    QCOMPARE(bench.events(), QStringList({"connection.check", "link up"}));
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 40 40 9f 03"), wire("9f 02 49 02 00 1f 54 9f 03")}));
}

void TestBoxsimBox::stopsResendingWhenAcknowledged()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.advance(1300);
    bench.writes();
    bench.events();

    bench.receive(1310, "9f 06 53 53 9f 03");
    bench.run(1311, 5000);

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList {"ack 53"});
}

void TestBoxsimBox::takesNoOtherIdForAnAcknowledgement()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.writes();
    bench.events();

    bench.receive(1010, "9f 06 52 52 9f 03  9f 06 9f 03");
    bench.advance(1300);

    QCOMPARE(bench.writes().size(), 1);
    QCOMPARE(bench.events(),
             QStringList({"ack 52: no frame with this id is under way",
                          "ack none: no frame with this id is under way", "resend 53"}));
}

void TestBoxsimBox::keepsItsFrameUnderWayWhenItIsRefused()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.writes();
    bench.events();

    bench.receive(1010, "9f 15 53 53 9f 03  9f 15 9f 03");
    QCOMPARE(bench.events(), QStringList({"nack 53", "nack none"}));
    bench.run(1011, 1299);
    QCOMPARE(bench.writes(), QStringList());
    bench.advance(1300);
    QCOMPARE(bench.events(), QStringList {"resend 53"});
    bench.receive(1310, "9f 06 53 53 9f 03");
    QCOMPARE(bench.events(), QStringList {"ack 53"});
}

void TestBoxsimBox::acknowledgesWhatItDoesNotKnow()
{
    Bench bench;
    bench.receive(0, "9f 02 21 55 00 01 75 9f 03");

    QCOMPARE(bench.writes(), QStringList {wire("9f 06 21 21 9f 03")});
    QCOMPARE(bench.events(), QStringList {"unknown tp=55 mod=00 data=01"});
}

void TestBoxsimBox::doublesTheIdInTheAcknowledgementOf9F()
{
    Bench bench;
    bench.receive(0, "9f 02 9f9f 97 00 01 09 9f 03");

    QCOMPARE(bench.writes(), QStringList {wire("9f 06 9f9f 9f9f 9f 03")});
}

void TestBoxsimBox::doesNotAnswerABadFrame()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, "9f 02 52 93 00 12 01 00 d3 9f 03");

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList {"bad frame: the check byte is d3, not d2"});
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);
}

void TestBoxsimBox::usesEightIdsInTurn()
{
    Bench bench;
    QStringList ids;
    for (int i = 0; i < 9; ++i) {
        bench.receive(2000 * i, kConnectRequest);
        ids.append(bench.writes().at(1).mid(6, 2));
    }

    QCOMPARE(ids, QStringList({"40", "41", "42", "43", "44", "45", "46", "47", "40"}));
}

void TestBoxsimBox::passesOverAnIdThatTheHeadUnitCouldNotRead()
{
    Bench bench;
    bench.connectAndSettle();
    boxsim::CarState car = bench.box.car();

    // With the id 53 the check byte would be 03, right behind the 9F.
    car.climate.fanDirectValue = 0xCE;
    car.climate.manualTemp = 0x9F;
    bench.box.setCar(car);
    bench.runAcknowledging(1000, 2000);

    QCOMPARE(bench.writes(),
             QStringList {wire("9f 02 54 03 02 00000000 0000 0000 ce 00 00 00 00 00 9f9f 04 9f 03")});
}

void TestBoxsimBox::sendsDataThatTheHeadUnitCannotReadAllTheSame()
{
    Bench bench;
    bench.connectAndSettle();
    boxsim::CarState car = bench.box.car();

    car.climate.mainTemp = 0x9F03;
    bench.box.setCar(car);
    bench.runAcknowledging(1000, 2000);

    const QStringList writes = bench.writes();
    QCOMPARE(writes.size(), 1);
    QVERIFY2(writes.at(0).contains(" 03 02 9f 9f 03 00 "), qPrintable(writes.at(0)));
}

void TestBoxsimBox::readsTheHandshakeHoweverItIsCut()
{
    const QByteArray all = bytes("9f 02 21 01 00 00 00 20 9f 03  9f 06 40 40 9f 03");
    for (int cut = 0; cut <= all.size(); ++cut) {
        Box box;
        Output first = box.receive(all.left(cut), 0);
        const Output second = box.receive(all.mid(cut), 1);

        QCOMPARE((first.events + second.events).size(), 2);
        QCOMPARE((first.writes + second.writes),
                 QVector<QByteArray>({bytes("9f 06 21 21 9f 03"), bytes("9f 02 40 01 00 00 01 40 9f 03")}));
    }
}

void TestBoxsimBox::tellsWhoseIdACommandCarries()
{
    Box box;
    const Output output = box.receive(
        bytes("9f 02 57 92 00 00 c5 9f 03  9f 02 40 01 00 00 01 40 9f 03  9f 02 21 92 00 00 b3 9f 03"), 0);

    QCOMPARE(output.events.size(), 4);
    QCOMPARE(int(output.events.at(0).category), 3);
    QCOMPARE(int(output.events.at(1).category), 1);
    QCOMPARE(int(output.events.at(3).category), 0);
}

QTEST_GUILESS_MAIN(TestBoxsimBox)
#include "tst_boxsim_box.moc"
