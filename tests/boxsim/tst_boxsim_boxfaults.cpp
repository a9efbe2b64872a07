#include "boxbench.h"

#include <QtTest/QTest>

using namespace boxbench;
using boxsim::BoxOptions;
using boxsim::Faults;

namespace {

constexpr char kPageOfClimate[] = "9f 02 52 97 00 01 c4 9f 03";

Faults silence(bool on)
{
    Faults faults;
    faults.silence = on;
    return faults;
}

/// What a box with these faults does with 200 presses of a button, a line for each event of a fault.
QStringList faultsOfAnswers(const Faults &faults, quint32 seed)
{
    BoxOptions options;
    options.seed = seed;
    Bench bench(options, faults);
    for (int i = 0; i < 200; ++i)
        bench.receive(i * 1000, i % 2 == 0 ? "9f 02 52 93 00 12 01 00 d2 9f 03" : kPageOfClimate);
    return bench.events().filter("fault");
}

} // namespace

class TestBoxsimBoxFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dropsTheFirstAnswersAndCarriesTheCommandOut();
    void dropsAllAnswers();
    void answersNegatively();
    void answersWithAnotherId();
    void drawsAShareOfTheAnswersFromTheSeed();
    void hearsAndSaysNothingWhileItIsSilent();
    void goesOnWhereItWasWhenTheSilenceEnds();
    void carriesOutAfterTheSilenceWhatItHeardInIt();
    void forgetsTheLinkWhenItHearsAConnectRequestInTheSilence();
    void saysReadyAfterARestart();
    void forgetsWhatItWasAboutToSendInARestart();
    void forgetsWhatItHeardInARestart();
    void keepsTheCarsStateInARestart();
    void waitsWithTheRestartsWordUntilTheSilenceEnds();
    void onlyAnswersWhereARecordingSpeaksForIt();
    void saysReadyForARecordingThatDoesNot();
};

void TestBoxsimBoxFaults::dropsTheFirstAnswersAndCarriesTheCommandOut()
{
    Bench bench;
    bench.connectAndSettle();
    Faults faults;
    faults.dropFirstAnswers = 1;
    bench.setFaults(faults);

    bench.receive(1000, kAcButton);
    QCOMPARE(bench.events(), QStringList({"climate.acBtn press=true value=0", "fault 52: answer dropped"}));
    QCOMPARE(bench.writes(),
             QStringList {wire("9f 02 53 03 02 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 53 9f 03")});
    QCOMPARE(bench.box.state().faults.dropFirstAnswers, 0);

    bench.receive(1300, "9f 06 53 53 9f 03  9f 02 52 93 00 12 01 00 d2 9f 03");
    QCOMPARE(bench.events(), QStringList({"ack 53", "climate.acBtn press=true value=0 again"}));
    QCOMPARE(bench.writes(), QStringList {wire("9f 06 52 52 9f 03")});
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
}

void TestBoxsimBoxFaults::dropsAllAnswers()
{
    Bench bench;
    Faults faults;
    faults.dropAnswers = 1;
    bench.setFaults(faults);

    bench.receive(0, "9f 02 21 55 00 01 75 9f 03  9f 02 22 55 00 01 76 9f 03");

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events().filter("answer dropped").size(), 2);
    const boxsim::Output output = bench.box.receive(bytes("9f 02 23 55 00 01 77 9f 03"), 10);
    QVERIFY(!output.events.at(0).acknowledged);
}

void TestBoxsimBoxFaults::answersNegatively()
{
    Bench bench;
    Faults faults;
    faults.nackAnswers = 1;
    bench.setFaults(faults);

    const boxsim::Output output = bench.box.receive(bytes("9f 02 21 01 00 00 00 20 9f 03"), 0);

    QCOMPARE(output.writes,
             QVector<QByteArray>({bytes("9f 15 21 21 9f 03"), bytes("9f 02 40 01 00 00 01 40 9f 03")}));
    QCOMPARE(output.events.size(), 2);
    QVERIFY(!output.events.at(0).acknowledged);
    QCOMPARE(output.events.at(1).reason, QStringLiteral("negative answer"));
    QCOMPARE(output.events.at(1).bytes, bytes("9f 15 21 21 9f 03"));
}

void TestBoxsimBoxFaults::answersWithAnotherId()
{
    Bench bench;
    Faults faults;
    faults.wrongIds = 1;
    bench.setFaults(faults);

    for (int i = 0; i < 300; ++i) {
        const boxsim::Output output = bench.box.receive(bytes("9f 02 21 55 00 01 75 9f 03"), i * 1000);
        QCOMPARE(output.writes.size(), 1);
        const QByteArray answer = output.writes.at(0);
        QVERIFY(answer.startsWith(bytes("9f 06")) && answer.endsWith(bytes("9f 03")));
        const QByteArray id = answer.mid(2, (answer.size() - 4) / 2);
        QCOMPARE(answer.mid(2 + id.size(), id.size()), id);
        QVERIFY2(id != bytes("21"), answer.toHex().constData());
        QVERIFY2(id.size() == 1 ? id != bytes("9f") : id == bytes("9f9f"), answer.toHex().constData());
        QVERIFY(!output.events.at(0).acknowledged);
        QCOMPARE(output.events.at(1).reason, QStringLiteral("answer with another id"));
    }
}

void TestBoxsimBoxFaults::drawsAShareOfTheAnswersFromTheSeed()
{
    Faults faults;
    faults.dropAnswers = 0.25;
    faults.nackAnswers = 0.25;
    const QStringList told = faultsOfAnswers(faults, 7);

    const int dropped = told.filter("dropped").size();
    const int negative = told.filter("negative").size();
    QVERIFY2(dropped > 30 && dropped < 70, qPrintable(QString::number(dropped)));
    QVERIFY2(negative > 20 && negative < 60, qPrintable(QString::number(negative)));
    QCOMPARE(faultsOfAnswers(faults, 7), told);
    QVERIFY(faultsOfAnswers(faults, 8) != told);
}

void TestBoxsimBoxFaults::hearsAndSaysNothingWhileItIsSilent()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.writes();
    bench.events();

    bench.setFaults(silence(true));
    bench.run(1001, 1500);
    bench.receive(1500, kPageOfClimate);
    bench.run(1501, 3000);

    QCOMPARE(bench.writes(), QStringList());
    QCOMPARE(bench.events(), QStringList({"silent", "climate.requestClimateInfo"}));
    QCOMPARE(bench.box.dueMs(), boxsim::kNever);
    QVERIFY(bench.box.isSilent() && bench.box.isLinkUp());
}

void TestBoxsimBoxFaults::goesOnWhereItWasWhenTheSilenceEnds()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.setFaults(silence(true));
    bench.run(1001, 1200);
    bench.writes();
    bench.events();

    bench.setFaults(silence(false));
    bench.run(1201, 1300);

    QCOMPARE(bench.events(), QStringList({"speaking", "resend 53"}));
    QCOMPARE(bench.writes(),
             QStringList {wire("9f 02 53 03 02 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 53 9f 03")});
}

void TestBoxsimBoxFaults::carriesOutAfterTheSilenceWhatItHeardInIt()
{
    Bench bench;
    bench.connectAndSettle();
    bench.setFaults(silence(true));
    bench.receive(1000, kAcButton);
    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 0);

    bench.setFaults(silence(false));
    bench.receive(1300, kAcButton);

    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
    QCOMPARE(bench.events(),
             QStringList({"silent", "climate.acBtn press=true value=0", "speaking",
                          "climate.acBtn press=true value=0"}));
}

void TestBoxsimBoxFaults::forgetsTheLinkWhenItHearsAConnectRequestInTheSilence()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);
    bench.setFaults(silence(true));
    bench.receive(1100, kConnectRequest);
    bench.writes();

    QCOMPARE(bench.events().mid(1), QStringList({"silent", "connection.request", "link down"}));
    bench.setFaults(silence(false));
    bench.run(1101, 3000);
    QCOMPARE(bench.writes(), QStringList());
    bench.receive(3100, kConnectRequest);
    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 41 01 00 00 01 41 9f 03")}));
}

void TestBoxsimBoxFaults::saysReadyAfterARestart()
{
    Bench bench;
    bench.connectAndSettle();

    bench.restart(1000);

    QCOMPARE(bench.events(), QStringList({"restart", "link down"}));
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 41 01 00 00 01 41 9f 03")});
    bench.receive(1010, "9f 06 41 41 9f 03  9f 02 41 01 00 00 01 41 9f 03");
    QCOMPARE(bench.events(), QStringList({"ack 41", "connection.check", "link up"}));
    bench.advance(1020);
    QCOMPARE(bench.writes(), QStringList({wire("9f 06 41 41 9f 03"), wire("9f 02 49 02 00 1f 54 9f 03")}));
}

void TestBoxsimBoxFaults::forgetsWhatItWasAboutToSendInARestart()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kPageOfClimate);
    bench.receive(1005, "9f 02 52 97");
    bench.writes();

    bench.restart(1010);
    bench.receive(1015, " 00 01 c4 9f 03");
    bench.run(1016, 1100);

    QCOMPARE(bench.writes(), QStringList {wire("9f 02 41 01 00 00 01 41 9f 03")});
}

void TestBoxsimBoxFaults::forgetsWhatItHeardInARestart()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, "9f 02 62 95 00 01 01 f7 9f 03");
    QCOMPARE(int(bench.box.car().vehicle.checkEngine), 1);

    bench.restart(1100);
    bench.receive(1300, "9f 02 62 95 00 01 01 f7 9f 03");

    QCOMPARE(int(bench.box.car().vehicle.checkEngine), 2);
}

void TestBoxsimBoxFaults::keepsTheCarsStateInARestart()
{
    Bench bench;
    bench.connectAndSettle();
    bench.receive(1000, kAcButton);

    bench.restart(1100);

    QCOMPARE(int(bench.box.climate().buttons[boxsim::LampAirConditioning]), 1);
}

void TestBoxsimBoxFaults::waitsWithTheRestartsWordUntilTheSilenceEnds()
{
    Bench bench;
    bench.setFaults(silence(true));
    bench.restart(1000);
    bench.run(1001, 2000);
    QCOMPARE(bench.writes(), QStringList());

    bench.setFaults(silence(false));
    bench.advance(2001);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 40 01 00 00 01 40 9f 03")});
}

void TestBoxsimBoxFaults::onlyAnswersWhereARecordingSpeaksForIt()
{
    BoxOptions options;
    options.reportsState = false;
    options.saysReady = false;
    Bench bench(options);

    bench.receive(0, kConnectRequest);
    bench.receive(100, "9f 02 40 01 00 00 01 40 9f 03");
    bench.receive(200, kAcButton);
    bench.run(201, 2000);

    QCOMPARE(bench.writes(),
             QStringList({wire(kAckOfRequest), wire("9f 06 40 40 9f 03"), wire("9f 06 52 52 9f 03")}));
    QVERIFY(bench.box.isLinkUp());
}

void TestBoxsimBoxFaults::saysReadyForARecordingThatDoesNot()
{
    BoxOptions options;
    options.reportsState = false;
    Bench bench(options);

    bench.receive(0, kConnectRequest);

    QCOMPARE(bench.writes(), QStringList({wire(kAckOfRequest), wire("9f 02 40 01 00 00 01 40 9f 03")}));
}

QTEST_GUILESS_MAIN(TestBoxsimBoxFaults)
#include "tst_boxsim_boxfaults.moc"
