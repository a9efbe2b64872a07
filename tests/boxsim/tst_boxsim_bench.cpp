#include "scriptedbench.h"

#include <QtTest/QTest>

using namespace scriptedbench;
using boxsim::BenchOptions;
using boxsim::Ending;

class TestBoxsimBench : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isABoxWithoutAScript();
    void setsEverythingOfAnInstructionAtOnce();
    void sendsAFrameOnceAsItIs();
    void sendsBytesAsTheyAre();
    void restartsTheBox();
    void reportsARemark();
    void endsWell();
    void endsWithAFailure();
    void doesNothingBehindTheEnd();
    void tellsTheScriptWhatHappens();
    void followsTheScriptsAnswerToAnEventAtOnce();
    void runsTheScriptsTimeFasterOrSlower_data();
    void runsTheScriptsTimeFasterOrSlower();
    void fallsSilentWhenItIsTime();
    void letsASilenceBeEnded();
    void restartsWhenItIsTime();
    void sendsNothingForAScriptWhileTheBoxIsSilent();
    void holdsTheBoxsFramesWhileTheScriptIsInsideOne();
    void carriesOutAnInstructionFromOutside();
};

void TestBoxsimBench::isABoxWithoutAScript()
{
    boxsim::Bench bench(options());
    const boxsim::BenchOutput output = bench.receive(bytes(boxbench::kConnectRequest), 5);

    QCOMPARE(output.line.size(), 2);
    QCOMPARE(output.line.at(0).bytes, bytes("9f 06 21 21 9f 03"));
    QCOMPARE(output.line.at(1).bytes, bytes("9f 02 40 01 00 00 01 40 9f 03"));
    QCOMPARE(output.events.size(), 1);
    QCOMPARE(bench.dueMs(), qint64(305));
}

void TestBoxsimBench::setsEverythingOfAnInstructionAtOnce()
{
    ScriptedBench bench;
    bench.script.at(2000, set("climate.manualTemp=7 climate.fanDirectValue=9 vehicle.hood=true"));
    bench.connectAndSettle();

    bench.runUntil(2000);

    QCOMPARE(bench.taken(),
             QStringList {"2000 9f 02 53 03 02 00 00 00 00 00 00 00 00 09 00 00 00 00 00 07 5c 9f 03"});
    QCOMPARE(int(bench.bench.state().car.climate.fanDirectValue), 9);
    QVERIFY(bench.bench.state().car.vehicle.hood);
}

void TestBoxsimBench::sendsAFrameOnceAsItIs()
{
    ScriptedBench bench;
    bench.script.at(10, sendFrame(0x9F, 0x33, 0x01, "9f 00"));

    bench.runUntil(5000);

    QCOMPARE(bench.taken(), QStringList {"10 9f 02 9f 9f 33 01 9f 9f 00 32 9f 03"});
    QCOMPARE(bench.events(), QStringList {"10 sent"});
}

void TestBoxsimBench::sendsBytesAsTheyAre()
{
    ScriptedBench bench;
    bench.script.at(0, sendBytes("9f 02 9f"));
    bench.script.at(30, sendBytes("03 00"));

    bench.runUntil(5000);

    QCOMPARE(bench.taken(), QStringList({"0 9f 02 9f", "30 03 00"}));
}

void TestBoxsimBench::restartsTheBox()
{
    ScriptedBench bench;
    bench.script.at(2000, instruction(Instruction::Kind::Restart));
    bench.connectAndSettle();

    bench.runUntil(2299);

    QCOMPARE(bench.events(), QStringList({"2000 restart", "2000 link down"}));
    QCOMPARE(bench.taken(), QStringList {"2000 9f 02 41 01 00 00 01 41 9f 03"});
}

void TestBoxsimBench::reportsARemark()
{
    ScriptedBench bench;
    bench.script.at(7, instruction(Instruction::Kind::Note, QStringLiteral("now it rains")));

    bench.runUntil(7);

    QCOMPARE(bench.events(), QStringList {"7 note: now it rains"});
}

void TestBoxsimBench::endsWell()
{
    ScriptedBench bench;
    bench.script.at(10, instruction(Instruction::Kind::End));
    bench.runUntil(9);
    QCOMPARE(int(bench.bench.ending()), int(Ending::None));

    bench.runUntil(10);

    QCOMPARE(int(bench.bench.ending()), int(Ending::Success));
}

void TestBoxsimBench::endsWithAFailure()
{
    ScriptedBench bench;
    bench.script.at(10, instruction(Instruction::Kind::Fail, QStringLiteral("no button came")));

    bench.runUntil(10);

    QCOMPARE(int(bench.bench.ending()), int(Ending::Failure));
    QCOMPARE(bench.bench.failure(), QStringLiteral("no button came"));
}

void TestBoxsimBench::doesNothingBehindTheEnd()
{
    ScriptedBench bench;
    bench.script.at(10, sendBytes("01"));
    bench.script.at(10, instruction(Instruction::Kind::End));
    bench.script.at(10, sendBytes("02"));
    bench.script.at(10, instruction(Instruction::Kind::Fail));
    bench.script.at(20, sendBytes("03"));

    bench.runUntil(100);
    bench.receive(30, boxbench::kConnectRequest);

    QCOMPARE(bench.taken(), QStringList {"10 01"});
    QCOMPARE(int(bench.bench.ending()), int(Ending::Success));
    QCOMPARE(bench.bench.dueMs(), boxsim::kNever);
}

void TestBoxsimBench::tellsTheScriptWhatHappens()
{
    ScriptedBench bench;
    bench.script.at(10, hangUp(5));

    bench.receive(3, boxbench::kConnectRequest);
    bench.runUntil(15);

    QCOMPARE(bench.script.observed, QStringList({"3 connection.request", "10 hang-up", "15 line back"}));
}

void TestBoxsimBench::followsTheScriptsAnswerToAnEventAtOnce()
{
    class Answering : public WrittenScript {
    public:
        void observe(const boxsim::Event &event, qint64 nowMs) override
        {
            if (event.command.name == QLatin1String("climate.acBtn"))
                at(nowMs, sendBytes("aa"));
        }
    };
    ScriptedBench bench(options(), std::make_unique<Answering>());

    bench.receive(4, boxbench::kAcButton);

    QCOMPARE(bench.taken(), QStringList({"4 9f 06 52 52 9f 03", "4 aa"}));
}

void TestBoxsimBench::runsTheScriptsTimeFasterOrSlower_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("as it is") << 1.0 << QStringList({"1 01", "1000 02", "1001 03"});
    QTest::newRow("twice as fast") << 2.0 << QStringList({"1 01", "500 02", "501 03"});
    QTest::newRow("a third as fast") << 1.0 / 3 << QStringList({"3 01", "3000 02", "3003 03"});
    QTest::newRow("hundred times as fast") << 100.0 << QStringList({"1 01", "10 02", "11 03"});
}

void TestBoxsimBench::runsTheScriptsTimeFasterOrSlower()
{
    QFETCH(double, speed);
    QFETCH(QStringList, lines);
    BenchOptions fast = options();
    fast.speed = speed;
    ScriptedBench bench(fast);
    bench.script.at(1, sendBytes("01"));
    bench.script.at(1000, sendBytes("02"));
    bench.script.at(1001, sendBytes("03"));

    bench.runUntil(10000);

    QCOMPARE(bench.taken(), lines);
}

void TestBoxsimBench::fallsSilentWhenItIsTime()
{
    BenchOptions silent = options();
    silent.silentAfterMs = 2000;
    ScriptedBench bench(silent);
    bench.connectAndSettle();
    QCOMPARE(bench.bench.dueMs(), qint64(2000));

    bench.runUntil(2000);
    bench.receive(2100, boxbench::kAcButton);

    QCOMPARE(bench.taken(), QStringList());
    QCOMPARE(bench.events(), QStringList({"2000 silent", "2100 climate.acBtn press=true value=0"}));
    QVERIFY(bench.bench.state().faults.silence);
    QCOMPARE(bench.bench.dueMs(), boxsim::kNever);
}

void TestBoxsimBench::restartsWhenItIsTime()
{
    BenchOptions timed = options();
    timed.restartAfterMs = 2000;
    ScriptedBench bench(timed);
    bench.connectAndSettle();

    bench.runUntil(2100);

    QCOMPARE(bench.taken(), QStringList {"2000 9f 02 41 01 00 00 01 41 9f 03"});
    QCOMPARE(bench.events(), QStringList({"2000 restart", "2000 link down"}));
}

void TestBoxsimBench::letsASilenceBeEnded()
{
    BenchOptions silent = options();
    silent.silentAfterMs = 10;
    ScriptedBench bench(silent);
    bench.script.at(20, set("fault.silence=off"));

    bench.runUntil(20);
    bench.receive(30, "9f 02 21 55 00 01 75 9f 03");

    QCOMPARE(bench.events(), QStringList({"10 silent", "20 speaking", "30 unknown tp=55 mod=00 data=01"}));
    QCOMPARE(bench.taken(), QStringList {"30 9f 06 21 21 9f 03"});
}

void TestBoxsimBench::sendsNothingForAScriptWhileTheBoxIsSilent()
{
    ScriptedBench bench;
    bench.script.at(10, set("fault.silence=on"));
    bench.script.at(10, sendBytes("01"));
    bench.script.at(20, sendFrame(1, 2, 3, ""));

    bench.runUntil(20);

    QCOMPARE(bench.taken(), QStringList());
    QCOMPARE(bench.events(),
             QStringList({"10 fault none: not sent, because the box is silent", "10 silent",
                          "20 fault 1: not sent, because the box is silent"}));
}

void TestBoxsimBench::holdsTheBoxsFramesWhileTheScriptIsInsideOne()
{
    ScriptedBench bench;
    bench.script.at(10, sendBytes("9f 02 50"));
    bench.script.at(30, sendBytes("03 00 53 9f 03"));
    bench.runUntil(10);
    bench.script.insideFrame = true;

    bench.receive(20, "9f 02 21 55 00 01 75 9f 03");
    QCOMPARE(bench.taken(), QStringList {"10 9f 02 50"});
    bench.script.insideFrame = false;
    bench.runUntil(30);

    QCOMPARE(bench.taken(), QStringList({"30 03 00 53 9f 03", "30 9f 06 21 21 9f 03"}));
}

void TestBoxsimBench::carriesOutAnInstructionFromOutside()
{
    ScriptedBench bench;
    bench.script.at(1990, sendBytes("01"));
    bench.connectAndSettle();

    bench.carryOut(2000, set("vehicle.hood=true fault.splitAt=3"));
    QCOMPARE(bench.taken(), QStringList({"2000 01", "2000 9f 02 63", "2000 05 02 10 00 00 74 9f 03"}));
    bench.carryOut(2010, instruction(Instruction::Kind::End));
    bench.carryOut(2020, sendBytes("02"));
    QCOMPARE(int(bench.bench.ending()), int(Ending::Success));
    QCOMPARE(bench.taken(), QStringList());
}

QTEST_GUILESS_MAIN(TestBoxsimBench)
#include "tst_boxsim_bench.moc"
