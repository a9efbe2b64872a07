#include "scriptedbench.h"

#include "boxsim/scenario/builtindrive.h"
#include "boxsim/scenario/scenarioplayer.h"

#include <QtTest/QTest>

using namespace scriptedbench;

namespace {

/// A bench that plays the built-in drive.
class DrivenBench : public LedBench {
public:
    DrivenBench()
        : LedBench(options(), std::make_unique<boxsim::ScenarioPlayer>(boxsim::builtinDrive()))
    {
    }

    const boxsim::CarState &car() const { return bench.state().car; }

    QString centerText() const { return car().gauges.valueTexts.at(0); }
};

} // namespace

class TestBoxsimBenchDrive : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sendsNothingOfTheDriveBeforeTheHeadUnitHasConnected();
    void reportsTheClimateAsTheDriveChangesIt();
    void keepsTheGaugesAlive();
    void keepsWhatAButtonChangedUntilTheDriveChangesIt();
    void keepsATurnedGaugeTurned();
};

void TestBoxsimBenchDrive::sendsNothingOfTheDriveBeforeTheHeadUnitHasConnected()
{
    DrivenBench bench;

    bench.runUntil(5000);

    QCOMPARE(bench.taken(), QStringList());
    QVERIFY(!bench.car().climate.title.isEmpty());
}

void TestBoxsimBenchDrive::reportsTheClimateAsTheDriveChangesIt()
{
    DrivenBench bench;
    bench.connectAndSettle();
    bench.runAcknowledging(1001, 1999);

    const QStringList climate = bench.runAcknowledging(2000, 2200).filter(" 03 02 ");

    QCOMPARE(climate.size(), 1);
    QCOMPARE(int(bench.car().climate.manualTemp), 31);
}

void TestBoxsimBenchDrive::keepsTheGaugesAlive()
{
    DrivenBench bench;
    bench.connectAndSettle();
    bench.runAcknowledging(1001, 19999);

    const int frames = bench.runAcknowledging(20000, 21999).filter(" 04 05 ").size();

    QVERIFY2(frames >= 6 && frames <= 8, qPrintable(QString::number(frames)));
}

void TestBoxsimBenchDrive::keepsWhatAButtonChangedUntilTheDriveChangesIt()
{
    DrivenBench bench;
    bench.connectAndSettle();

    bench.receive(1100, "9f 02 52 93 00 1b 01 63 b8 9f 03");
    QCOMPARE(int(bench.car().climate.manualTemp), 0x63);
    bench.advance(1999);
    QCOMPARE(int(bench.car().climate.manualTemp), 0x63);
    bench.advance(2000);
    QCOMPARE(int(bench.car().climate.manualTemp), 31);
}

void TestBoxsimBenchDrive::keepsATurnedGaugeTurned()
{
    DrivenBench bench;
    bench.connectAndSettle();
    bench.runAcknowledging(1001, 15000);
    QVERIFY(bench.centerText().endsWith(" km/h"));

    bench.receive(15001, "9f 02 5d 94 00 01 01 c9 9f 03");
    QVERIFY(bench.centerText().endsWith(" ×1000/min"));
    QCOMPARE(bench.car().gauges.centerTexts, QStringList({"Engine", "×1000/min"}));
    const QString before = bench.centerText();
    bench.runAcknowledging(15002, 18000);
    QVERIFY(bench.centerText().endsWith(" ×1000/min"));
    QVERIFY(bench.centerText() != before);
}

QTEST_GUILESS_MAIN(TestBoxsimBenchDrive)
#include "tst_boxsim_benchdrive.moc"
