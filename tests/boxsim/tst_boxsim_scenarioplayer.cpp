#include "scenariorun.h"

#include <QtTest/QTest>

using namespace scenariorun;

class TestBoxsimScenarioPlayer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void beginsWithTheStartInOneInstruction();
    void takesStepsAtTheirTimes();
    void countsAfterFromTheEndOfTheStepBefore();
    void doesEachKindOfDeed();
    void setsInOneInstructionWhatIsDueAtOneMoment();
    void keepsOtherDeedsBetweenTwoSets();
    void movesAFieldEvenlyBetweenPoints();
    void roundsTowardsThePointBefore();
    void beginsARampAtItsFirstPointAndEndsAtItsLast();
    void setsOnlyWhatARampHasChanged();
    void goesOnBesideARamp();
    void waitsForTheEndOfARampBeforeAfter();
    void setsAfterARampAtTheSameMoment();
    void repeatsAsOftenAsTold();
    void repeatsForEver();
    void countsTheTimesOfAnInnerListFromItsBeginning();
    void beginsTheNextRoundWhenTheLastStepHasEnded();
    void setsTheStartOnceOnly();
    void doesNothingAfterTheEnd();
    void endsInsideARepetition();
    void catchesUpInOrderWhenTimeJumps();
    void keepsItsPaceWhenItIsCalledLate();
    void hasNothingDueWhenItIsOver();
};

void TestBoxsimScenarioPlayer::beginsWithTheStartInOneInstruction()
{
    Run run(R"({"start": {"climate.mainTemp": 215, "vehicle.door.2": "open"}, "steps": [{"note": "a"}]})");

    QCOMPARE(run.dueMs(), qint64(0));
    QCOMPARE(run.until(100), lines({"0 climate.mainTemp=215 vehicle.door.2=true", "0 a"}));
}

void TestBoxsimScenarioPlayer::takesStepsAtTheirTimes()
{
    Run run(R"({"steps": [{"at": 5, "note": "a"}, {"at": 100, "note": "b"}, {"at": 100, "note": "c"}]})");

    QCOMPARE(run.dueMs(), qint64(5));
    QCOMPARE(run.at(4), QStringList());
    QCOMPARE(run.until(1000), lines({"5 a", "100 b", "100 c"}));
}

void TestBoxsimScenarioPlayer::countsAfterFromTheEndOfTheStepBefore()
{
    Run run(R"({"steps": [{"after": 5, "note": "a"}, {"after": 10}, {"after": 20, "note": "b"},
                          {"note": "c"}]})");

    QCOMPARE(run.until(1000), lines({"5 a", "35 b", "35 c"}));
}

void TestBoxsimScenarioPlayer::doesEachKindOfDeed()
{
    Run run(R"({"steps": [
        {"set": {"fault.silence": true}}, {"send": {"id": "5A", "tp": "03", "mod": "02", "data": "9f 00Ff"}},
        {"send": {"id": "01", "tp": "11"}}, {"bytes": "9F 06"}, {"restart": true}, {"hangUp": 1500},
        {"note": "so far"}, {"fail": "too hot"}]})");

    QCOMPARE(run.until(0),
             lines({"0 fault.silence=true", "0 frame 90 3 2 9f 00 ff", "0 frame 1 17 0 ", "0 bytes 9f 06",
                    "0 restart", "0 hang up 1500", "0 so far", "0 fail too hot"}));
}

void TestBoxsimScenarioPlayer::setsInOneInstructionWhatIsDueAtOneMoment()
{
    Run run(R"({"steps": [{"at": 5, "set": {"vehicle.hood": true}}, {"at": 5, "set": {"vehicle.trunk": true}},
                          {"at": 6, "set": {"vehicle.hood": false}}]})");

    QCOMPARE(run.at(5), lines({"5 vehicle.hood=true vehicle.trunk=true"}));
    QCOMPARE(run.at(6), lines({"6 vehicle.hood=false"}));
}

void TestBoxsimScenarioPlayer::keepsOtherDeedsBetweenTwoSets()
{
    Run run(R"({"steps": [{"set": {"vehicle.hood": true}}, {"restart": true},
                          {"set": {"vehicle.trunk": true}}]})");

    QCOMPARE(run.at(0), lines({"0 vehicle.hood=true", "0 restart", "0 vehicle.trunk=true"}));
}

void TestBoxsimScenarioPlayer::movesAFieldEvenlyBetweenPoints()
{
    Run run(R"({"steps": [{"at": 1000, "every": 50,
                           "ramp": {"measured.speed": [[0, 0], [100, 20], [200, 10]]}}]})");

    QCOMPARE(run.until(5000),
             lines({"1000 measured.speed=0", "1050 measured.speed=10", "1100 measured.speed=20",
                    "1150 measured.speed=15", "1200 measured.speed=10"}));
}

void TestBoxsimScenarioPlayer::roundsTowardsThePointBefore()
{
    Run run(R"({"steps": [{"every": 1, "ramp": {"measured.outside": [[0, -1], [4, 1], [8, -2]]}}]})");

    QCOMPARE(run.until(100),
             lines({"0 measured.outside=-1", "2 measured.outside=0", "4 measured.outside=1",
                    "6 measured.outside=0", "7 measured.outside=-1", "8 measured.outside=-2"}));
}

void TestBoxsimScenarioPlayer::beginsARampAtItsFirstPointAndEndsAtItsLast()
{
    Run run(R"({"steps": [{"every": 100, "ramp": {"measured.speed": [[150, 1], [250, 9]],
                                                  "measured.fuel": [[0, 5], [100, 6]]}}]})");

    QCOMPARE(
        run.until(1000),
        lines({"0 measured.fuel=5", "100 measured.fuel=6", "200 measured.speed=5", "250 measured.speed=9"}));
}

void TestBoxsimScenarioPlayer::setsOnlyWhatARampHasChanged()
{
    Run run(R"({"steps": [{"every": 10, "ramp": {"measured.speed": [[0, 7], [30, 7]],
                                                 "parking.rear.2": [[0, 0], [30, 3]]}}]})");

    QCOMPARE(run.until(1000),
             lines({"0 measured.speed=7 parking.rear.2=0", "10 parking.rear.2=1", "20 parking.rear.2=2",
                    "30 parking.rear.2=3"}));
}

void TestBoxsimScenarioPlayer::goesOnBesideARamp()
{
    Run run(R"({"steps": [{"every": 100, "ramp": {"measured.speed": [[0, 0], [200, 2]]}},
                          {"at": 50, "note": "a"}, {"after": 100, "note": "b"}]})");

    QCOMPARE(run.until(1000),
             lines({"0 measured.speed=0", "50 a", "100 measured.speed=1", "150 b", "200 measured.speed=2"}));
}

void TestBoxsimScenarioPlayer::waitsForTheEndOfARampBeforeAfter()
{
    Run run(R"({"steps": [{"every": 200, "ramp": {"measured.speed": [[0, 0], [200, 2]]}}, {"note": "a"},
                          {"after": 5, "note": "b"}]})");

    QCOMPARE(run.until(1000), lines({"0 measured.speed=0", "200 measured.speed=2", "200 a", "205 b"}));
}

void TestBoxsimScenarioPlayer::setsAfterARampAtTheSameMoment()
{
    Run run(R"({"steps": [{"every": 10, "ramp": {"measured.speed": [[0, 0], [20, 2]]}},
                          {"at": 10, "set": {"measured.speed": 99}}]})");

    QCOMPARE(run.until(10), lines({"0 measured.speed=0", "10 measured.speed=1 measured.speed=99"}));
}

void TestBoxsimScenarioPlayer::repeatsAsOftenAsTold()
{
    Run run(
        R"({"steps": [{"repeat": {"times": 3, "steps": [{"note": "a"}, {"after": 10}]}}, {"note": "b"}]})");

    QCOMPARE(run.until(1000), lines({"0 a", "10 a", "20 a", "30 b"}));
}

void TestBoxsimScenarioPlayer::repeatsForEver()
{
    Run run(R"({"steps": [{"repeat": {"steps": [{"after": 10, "note": "a"}]}}, {"note": "never"}]})");

    const QStringList came = run.until(10000);
    QCOMPARE(came.size(), 1000);
    QCOMPARE(came.last(), QStringLiteral("10000 a"));
}

void TestBoxsimScenarioPlayer::countsTheTimesOfAnInnerListFromItsBeginning()
{
    Run run(R"({"steps": [{"at": 100, "repeat": {"times": 2, "steps": [{"at": 5, "note": "a"}, {"at": 7}]}},
                          {"at": 120, "note": "b"}]})");

    QCOMPARE(run.until(1000), lines({"105 a", "112 a", "120 b"}));
}

void TestBoxsimScenarioPlayer::beginsTheNextRoundWhenTheLastStepHasEnded()
{
    Run run(R"({"loop": true, "steps": [{"every": 50, "ramp": {"measured.speed": [[0, 0], [100, 2]]}},
                                        {"at": 10, "note": "a"}]})");

    QCOMPARE(run.until(110),
             lines({"0 measured.speed=0", "10 a", "50 measured.speed=1",
                    "100 measured.speed=2 measured.speed=0", "110 a"}));
}

void TestBoxsimScenarioPlayer::setsTheStartOnceOnly()
{
    Run run(R"({"loop": true, "start": {"vehicle.hood": true}, "steps": [{"at": 10, "note": "a"}]})");

    QCOMPARE(run.until(30), lines({"0 vehicle.hood=true", "10 a", "20 a", "30 a"}));
}

void TestBoxsimScenarioPlayer::doesNothingAfterTheEnd()
{
    Run run(R"({"loop": true, "steps": [{"every": 10, "ramp": {"measured.speed": [[0, 0], [100, 100]]}},
                                        {"at": 15, "end": true}, {"note": "never"}]})");

    QCOMPARE(run.until(1000), lines({"0 measured.speed=0", "10 measured.speed=10", "15 end"}));
    QCOMPARE(run.dueMs(), boxsim::kNever);
}

void TestBoxsimScenarioPlayer::endsInsideARepetition()
{
    Run run(R"({"steps": [{"repeat": {"steps": [{"after": 5, "repeat": {"steps": [{"after": 1},
                                                                                  {"end": true}]}}]}}]})");

    QCOMPARE(run.until(1000), lines({"6 end"}));
}

void TestBoxsimScenarioPlayer::catchesUpInOrderWhenTimeJumps()
{
    Run run(R"({"steps": [{"every": 100, "ramp": {"measured.speed": [[0, 0], [300, 3]]}},
                          {"at": 150, "note": "a"}, {"at": 200, "set": {"vehicle.hood": true}},
                          {"at": 250, "repeat": {"times": 2, "steps": [{"after": 20, "note": "b"}]}}]})");

    QCOMPARE(run.at(100000),
             lines({"100000 measured.speed=0", "100000 measured.speed=1", "100000 a",
                    "100000 measured.speed=2 vehicle.hood=true", "100000 b", "100000 b",
                    "100000 measured.speed=3"}));
}

void TestBoxsimScenarioPlayer::keepsItsPaceWhenItIsCalledLate()
{
    Run run(R"({"steps": [{"repeat": {"steps": [{"after": 100, "note": "a"}]}}]})");

    QCOMPARE(run.at(130), lines({"130 a"}));
    QCOMPARE(run.dueMs(), qint64(200));
    QCOMPARE(run.at(299), lines({"299 a"}));
    QCOMPARE(run.dueMs(), qint64(300));
}

void TestBoxsimScenarioPlayer::hasNothingDueWhenItIsOver()
{
    Run run(R"({"steps": []})");

    QCOMPARE(run.until(1000), QStringList());
    QCOMPARE(run.dueMs(), boxsim::kNever);
    run.observe(5000, pressed("climate.acBtn", true));
    QCOMPARE(run.at(6000), QStringList());
}

QTEST_GUILESS_MAIN(TestBoxsimScenarioPlayer)
#include "tst_boxsim_scenarioplayer.moc"
