#include "boxbench.h"

#include <QtTest/QTest>

using namespace boxbench;
using boxsim::CarState;

namespace {

void row(const char *name, const char *button, const QStringList &answers)
{
    QTest::newRow(name) << bytes(button).toHex() << answers;
}

} // namespace

class TestBoxsimBoxCategories : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersARequestWithAllFramesOfItsCategory_data();
    void answersARequestWithAllFramesOfItsCategory();
    void onlyAcknowledgesWhatAsksForNothing_data();
    void onlyAcknowledgesWhatAsksForNothing();
    void answersAButton_data();
    void answersAButton();
    void sendsEveryTextThatATurnedGaugeChanges();
    void movesTheMenu();
    void doesNotCarryOutARetransmittedPressAgain();
    void sendsWhatChangedAndNothingElse();
    void asksForATransitionOnce();
    void doesNotReportATransitionToANewHeadUnit();
};

void TestBoxsimBoxCategories::answersARequestWithAllFramesOfItsCategory_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QStringList>("answers");

    row("gauges", "9f 02 5d 97 00 02 c8 9f 03",
        {wire("9f 06 5d 5d 9f 03"), wire("9f 02 5e 04 00 00 00 5a 9f 03"), wire("9f 02 5f 04 01 5a 9f 03"),
         wire("9f 02 58 04 02 0000 5e 9f 03"), wire("9f 02 59 04 03 5e 9f 03"),
         wire("9f 02 5a 04 04 5a 9f 03"), wire("9f 02 5b 04 05 000000000000 000000000000 00 5a 9f 03")});
    row("vehicle", "9f 02 62 97 00 03 f6 9f 03",
        {wire("9f 06 62 62 9f 03"), wire("9f 02 63 05 00 00 66 9f 03"), wire("9f 02 64 05 01 60 9f 03"),
         wire("9f 02 65 05 02 000000 62 9f 03")});
    row("parking", "9f 02 6a 97 00 04 f9 9f 03",
        {wire("9f 06 6a 6a 9f 03"), wire("9f 02 6b 06 00 00 6d 9f 03"), wire("9f 02 6c 06 01 6b 9f 03"),
         wire("9f 02 6d 06 02 00000000 00000000 00000000 00000000 00 69 9f 03")});
}

void TestBoxsimBoxCategories::answersARequestWithAllFramesOfItsCategory()
{
    QFETCH(QByteArray, button);
    QFETCH(QStringList, answers);
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, button);
    bench.runAcknowledging(1001, 2000);

    QCOMPARE(bench.writes(), answers);
}

void TestBoxsimBoxCategories::onlyAcknowledgesWhatAsksForNothing_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QStringList>("answers");

    row("requestNormal", "9f 02 22 97 00 00 b5 9f 03", {wire("9f 06 22 22 9f 03")});
    row("settings", "9f 02 5d 92 00 00 cf 9f 03", {wire("9f 06 5d 5d 9f 03")});
    row("the clock", "9f 02 23 98 00 22 0c 05 06 14 1a 01 99 9f 03", {wire("9f 06 23 23 9f 03")});
}

void TestBoxsimBoxCategories::onlyAcknowledgesWhatAsksForNothing()
{
    QFETCH(QByteArray, button);
    QFETCH(QStringList, answers);
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, button);
    bench.runAcknowledging(1001, 2000);

    QCOMPARE(bench.writes(), answers);
}

void TestBoxsimBoxCategories::answersAButton_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QStringList>("answers");

    const char zones[] = "00000000 00000000 00000000 00000000 ";
    row("gauges customControl1", "9f 02 5d 94 00 06 01 ce 9f 03",
        {wire("9f 06 5d 5d 9f 03"), wire("9f 02 5e 04 05 0000 40 000000 000000000000 00 1f 9f 03")});
    row("gauges customControl2", "9f 02 5d 94 00 07 01 cf 9f 03",
        {wire("9f 06 5d 5d 9f 03"), wire("9f 02 5e 04 05 0000 00 01 0000 000000000000 00 5e 9f 03")});
    row("the release of a gauge changes nothing", "9f 02 5d 94 00 01 00 c8 9f 03",
        {wire("9f 06 5d 5d 9f 03"), wire("9f 02 5e 04 05 000000000000 000000000000 00 5f 9f 03")});
    row("checkEngine", "9f 02 62 95 00 01 01 f7 9f 03",
        {wire("9f 06 62 62 9f 03"), wire("9f 02 63 05 02 000001 65 9f 03")});
    row("vehicle customControl1", "9f 02 62 95 00 02 01 f4 9f 03",
        {wire("9f 06 62 62 9f 03"), wire("9f 02 63 05 02 000010 74 9f 03")});
    row("vehicle customControl2", "9f 02 62 95 00 03 01 f5 9f 03",
        {wire("9f 06 62 62 9f 03"), wire("9f 02 63 05 02 000040 24 9f 03")});
    row("parking customControl1", "9f 02 6a 96 00 01 01 fc 9f 03",
        {wire("9f 06 6a 6a 9f 03"),
         wire((QByteArray("9f 02 6b 06 02") + zones + "01 6e 9f 03").constData())});
    row("parking customControl2", "9f 02 6a 96 00 02 01 ff 9f 03",
        {wire("9f 06 6a 6a 9f 03"),
         wire((QByteArray("9f 02 6b 06 02") + zones + "04 6b 9f 03").constData())});
    row("a menu that does not exist", "9f 02 78 91 00 09 00 00 e0 9f 03",
        {wire("9f 06 78 78 9f 03"), wire("9f 02 79 11 00 00000000 00 68 9f 03")});
}

void TestBoxsimBoxCategories::answersAButton()
{
    QFETCH(QByteArray, button);
    QFETCH(QStringList, answers);
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, button);
    bench.runAcknowledging(1001, 2000);

    QCOMPARE(bench.writes(), answers);
}

void TestBoxsimBoxCategories::sendsEveryTextThatATurnedGaugeChanges()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 5d 94 00 03 01 cb 9f 03");
    bench.runAcknowledging(1001, 2000);

    QCOMPARE(bench.events().first(), QStringLiteral("gauges.Gauge3_TopRight press=true"));
    const QStringList writes = bench.writes();
    QCOMPARE(writes.size(), 3);
    QCOMPARE(writes.at(1), wire("9f 02 5e 04 03 436f6f6c616e74 00 4f696c207072657373757265 00 62 9f 03"));
    QVERIFY2(writes.at(2).startsWith("9f 02 5f 04 05 "), qPrintable(writes.at(2)));
    QCOMPARE(bench.box.car().gauges.valueTexts.at(2), QStringLiteral("0.0 bar"));
    QVERIFY(bench.box.car().gauges.formats[2]);
}

void TestBoxsimBoxCategories::movesTheMenu()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 78 91 00 01 00 00 e8 9f 03");
    bench.runAcknowledging(1001, 1100);

    QCOMPARE(bench.events().first(), QStringLiteral("player.onMenuPress menu=1 item=0 action=0"));
    const QStringList writes = bench.writes();
    QCOMPARE(writes.size(), 2);
    QVERIFY2(writes.at(1).startsWith("9f 02 79 11 00 01 00 02 05 03 4c 69 67 68 74 73 00 "),
             qPrintable(writes.at(1)));
}

void TestBoxsimBoxCategories::doesNotCarryOutARetransmittedPressAgain()
{
    Bench bench;
    bench.connectAndSettle();

    bench.receive(1000, "9f 02 62 95 00 01 01 f7 9f 03");
    bench.receive(1300, "9f 02 62 95 00 01 01 f7 9f 03");
    QCOMPARE(int(bench.box.car().vehicle.checkEngine), 1);
    bench.receive(1400, "9f 02 63 95 00 01 01 f6 9f 03");
    QCOMPARE(int(bench.box.car().vehicle.checkEngine), 2);
}

void TestBoxsimBoxCategories::sendsWhatChangedAndNothingElse()
{
    Bench bench;
    bench.connectAndSettle();
    CarState car = bench.box.car();

    car.vehicle.hood = true;
    car.parking.title = QStringLiteral("A");
    car.screens.supported[0] = false;
    car.textScreen.plus = true;
    bench.box.setCar(car);
    bench.runAcknowledging(1000, 2000);

    QCOMPARE(
        bench.writes(),
        QStringList({wire("9f 02 49 02 00 1e 55 9f 03"), wire("9f 02 63 05 02 100000 74 9f 03"),
                     wire("9f 02 6b 06 00 41 00 2c 9f 03"), wire("9f 02 79 11 00 00000000 02 6a 9f 03")}));
}

void TestBoxsimBoxCategories::asksForATransitionOnce()
{
    Bench bench;
    bench.connectAndSettle();
    CarState car = bench.box.car();

    car.transition = 4;
    bench.box.setCar(car);
    bench.box.setCar(car);
    bench.runAcknowledging(1000, 2000);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 70 07 00 04 73 9f 03")});

    car.transition = boxsim::kNoTransition;
    bench.box.setCar(car);
    bench.runAcknowledging(2001, 3000);
    QCOMPARE(bench.writes(), QStringList());

    car.transition = 0;
    bench.box.setCar(car);
    bench.runAcknowledging(3001, 4000);
    QCOMPARE(bench.writes(), QStringList {wire("9f 02 71 07 00 00 76 9f 03")});
}

void TestBoxsimBoxCategories::doesNotReportATransitionToANewHeadUnit()
{
    Bench bench;
    CarState car;
    car.transition = 2;
    bench.box.setCar(car);

    bench.receive(0, kConnectRequest);
    bench.receive(100, "9f 06 40 40 9f 03  9f 02 40 01 00 00 01 40 9f 03");
    bench.runAcknowledging(101, 2000);

    const QStringList writes = bench.writes();
    QVERIFY(!writes.filter("9f 02 78 11 ").isEmpty());
    QCOMPARE(writes.filter("9f 02 70 "), QStringList());
}

QTEST_GUILESS_MAIN(TestBoxsimBoxCategories)
#include "tst_boxsim_boxcategories.moc"
