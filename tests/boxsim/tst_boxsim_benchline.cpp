#include "scriptedbench.h"

#include <QtTest/QTest>

using namespace scriptedbench;
using boxsim::BenchOptions;
using boxsim::Faults;

/// The bench's line: that it can go, and what is done to the bytes on it.
class TestBoxsimBenchLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hangsUpAndReturns();
    void losesWhatComesWhileTheLineIsGone();
    void staysAwayLongerWhenItHangsUpAgain();
    void hangsUpOnceWhenItIsTime();
    void writesWhatIsDueBeforeItHangsUp();
    void reportsWhatTheLineDoesToTheBytes();
    void tellsTheSeedOnceWhenSomethingIsDrawnFromIt();
    void keepsAGivenSeedToItself();
    void repeatsARunFromItsSeed();
};

void TestBoxsimBenchLine::hangsUpAndReturns()
{
    ScriptedBench bench;
    bench.script.at(10, hangUp(50));
    bench.script.at(30, sendBytes("01"));
    bench.script.at(60, sendBytes("02"));

    bench.runUntil(100);

    QCOMPARE(bench.taken(), QStringList({"10 hang-up", "60 return", "60 02"}));
    QCOMPARE(bench.events(),
             QStringList(
                 {"10 hang-up", "30 fault none: lost, because the line is gone", "60 line back", "60 sent"}));
}

void TestBoxsimBenchLine::losesWhatComesWhileTheLineIsGone()
{
    Faults noisy;
    noisy.noise = 1000;
    ScriptedBench bench(options(noisy));
    bench.script.at(10, hangUp(50));
    bench.runUntil(10);
    bench.taken();
    bench.events();

    bench.receive(20, boxbench::kConnectRequest);
    bench.runUntil(59);
    QCOMPARE(bench.taken(), QStringList());
    QCOMPARE(bench.events(), QStringList());
    bench.runUntil(65);
    QVERIFY(bench.taken().size() > 1);
}

void TestBoxsimBenchLine::staysAwayLongerWhenItHangsUpAgain()
{
    ScriptedBench bench;
    bench.script.at(10, hangUp(50));
    bench.script.at(40, hangUp(50));

    bench.runUntil(100);

    QCOMPARE(bench.taken(), QStringList({"10 hang-up", "90 return"}));
}

void TestBoxsimBenchLine::hangsUpOnceWhenItIsTime()
{
    BenchOptions timed = options();
    timed.hangUpAfterMs = 30;
    timed.hangUpForMs = 40;
    ScriptedBench bench(timed);

    bench.runUntil(500);

    QCOMPARE(bench.taken(), QStringList({"30 hang-up", "70 return"}));
}

void TestBoxsimBenchLine::writesWhatIsDueBeforeItHangsUp()
{
    Faults paused;
    paused.splitAt = 1;
    paused.pauseMs = 10;
    ScriptedBench bench(options(paused));
    bench.script.at(10, sendBytes("01 02"));
    bench.script.at(10, hangUp(50));

    bench.runUntil(100);

    QCOMPARE(bench.taken(), QStringList({"10 01", "10 hang-up", "60 return"}));
}

void TestBoxsimBenchLine::reportsWhatTheLineDoesToTheBytes()
{
    Faults losing;
    losing.loseBytes = 1;
    ScriptedBench bench(options(losing));
    bench.script.at(10, sendBytes("01 9f"));

    bench.runUntil(10);

    QCOMPARE(bench.events(),
             QStringList({"10 sent", "10 fault none: byte 0 lost: 01", "10 fault none: byte 1 lost: 9f"}));
    QCOMPARE(bench.taken(), QStringList());
}

void TestBoxsimBenchLine::tellsTheSeedOnceWhenSomethingIsDrawnFromIt()
{
    BenchOptions drawn = options();
    drawn.box.seed = 4711;
    drawn.tellsSeed = true;
    ScriptedBench bench(drawn);
    bench.script.at(10, set("fault.pauseMs=0 fault.dropFirstAnswers=1"));
    bench.script.at(20, set("fault.flipBytes=0.5"));
    bench.script.at(30, set("fault.dropAnswers=0.5"));

    bench.runUntil(100);

    QCOMPARE(bench.events(), QStringList {"20 seed: 4711"});
}

void TestBoxsimBenchLine::keepsAGivenSeedToItself()
{
    Faults faults;
    faults.flipBytes = 0.5;
    ScriptedBench bench(options(faults));

    bench.advance(0);

    QCOMPARE(bench.events(), QStringList());
}

void TestBoxsimBenchLine::repeatsARunFromItsSeed()
{
    const auto run = [](quint32 seed) {
        Faults faults;
        faults.flipBytes = 0.02;
        faults.loseBytes = 0.02;
        faults.dropAnswers = 0.2;
        faults.noise = 20;
        BenchOptions drawn = options(faults);
        drawn.box.seed = seed;
        ScriptedBench bench(drawn);
        for (qint64 now = 0; now < 60000; now += 2000) {
            bench.runUntil(now);
            bench.receive(now, boxbench::kConnectRequest);
        }
        return bench.taken() + bench.events();
    };

    QCOMPARE(run(5), run(5));
    QVERIFY(run(5) != run(6));
}

QTEST_GUILESS_MAIN(TestBoxsimBenchLine)
#include "tst_boxsim_benchline.moc"
