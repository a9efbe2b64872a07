#include "boxsim/scenarioplayer.h"

#include <QtTest/QtTest>

using boxsim::Assignment;
using boxsim::Event;
using boxsim::Instruction;
using boxsim::ScenarioPlayer;

namespace {

QString text(const Assignment &assignment)
{
    const boxsim::Field &field = boxsim::allFields().at(assignment.field);
    const QString entry = assignment.entry < 0 ? QString() : QStringLiteral(".%1").arg(assignment.entry + 1);
    return field.name + entry + QLatin1Char('=') + assignment.value.toString();
}

QString text(const Instruction &instruction)
{
    QStringList set;
    switch (instruction.kind) {
    case Instruction::Kind::Set:
        for (const Assignment &assignment : instruction.assignments)
            set.append(text(assignment));
        return set.join(QLatin1Char(' '));
    case Instruction::Kind::SendFrame:
        return QStringLiteral("frame %1 %2 %3 %4")
            .arg(instruction.id)
            .arg(instruction.tp)
            .arg(instruction.mod)
            .arg(QString::fromLatin1(instruction.bytes.toHex(' ')));
    case Instruction::Kind::SendBytes:
        return QStringLiteral("bytes ") + QString::fromLatin1(instruction.bytes.toHex(' '));
    case Instruction::Kind::Restart:
        return QStringLiteral("restart");
    case Instruction::Kind::HangUp:
        return QStringLiteral("hang up %1").arg(instruction.ms);
    case Instruction::Kind::Note:
        return instruction.text;
    case Instruction::Kind::End:
        return QStringLiteral("end");
    case Instruction::Kind::Fail:
        return QStringLiteral("fail ") + instruction.text;
    }
    return {};
}

Event reported(Event::Kind kind)
{
    Event made;
    made.kind = kind;
    return made;
}

Event command(const char *name, const QVector<boxsim::Argument> &arguments = {})
{
    Event made = reported(Event::Kind::Command);
    made.command.name = QString::fromLatin1(name);
    made.command.arguments = arguments;
    return made;
}

Event pressed(const char *name, bool press)
{
    return command(name, {{QStringLiteral("press"), press}, {QStringLiteral("value"), 0}});
}

/// A scenario under way in virtual time.
class Run {
public:
    explicit Run(const QByteArray &json)
        : m_player(read(json))
    {
    }

    /// Lets time pass from due time to due time, and tells what came: "MS what", in order.
    QStringList until(qint64 nowMs)
    {
        QStringList lines;
        for (qint64 due = m_player.dueMs(); due != boxsim::kNever && due <= nowMs; due = m_player.dueMs())
            lines += at(due);
        return lines;
    }

    QStringList at(qint64 nowMs)
    {
        QStringList lines;
        for (const Instruction &instruction : m_player.advance(nowMs))
            lines.append(QString::number(nowMs) + QLatin1Char(' ') + text(instruction));
        return lines;
    }

    void observe(qint64 nowMs, const Event &event) { m_player.observe(event, nowMs); }

    qint64 dueMs() const { return m_player.dueMs(); }

private:
    static boxsim::Scenario read(const QByteArray &json)
    {
        boxsim::Scenario scenario;
        QString error;
        if (!boxsim::readScenario(json, QStringLiteral("test"), &scenario, &error))
            qFatal("%s", qPrintable(error));
        return scenario;
    }

    ScenarioPlayer m_player;
};

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *one : texts)
        list.append(QString::fromUtf8(one));
    return list;
}

} // namespace

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
    void waitsForACommand();
    void waitsForItsArguments();
    void isNotWokenByARetransmission();
    void waitsForAnEvent();
    void doesNotTakeWhatCameBeforeTheWait();
    void waitsForTheLink();
    void goesOnAtOnceWhenTheLinkIsThere();
    void goesOnAfterATimeout();
    void failsWithElse();
    void takesTheBranchOfWhatCame();
    void takesElseOfABranch();
    void takesTheNextStepAtOnceWhenItsTimeIsOver();
    void doesNothingAfterTheEnd();
    void endsInsideARepetition();
    void catchesUpInOrderWhenTimeJumps();
    void seesATimeoutThatPassedBeforeTheEvent();
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

void TestBoxsimScenarioPlayer::waitsForACommand()
{
    Run run(R"({"steps": [{"wait": {"command": "climate.acBtn"}, "then": [{"note": "cool"}]},
                          {"after": 5, "note": "on"}]})");

    QCOMPARE(run.until(1000), QStringList());
    QCOMPARE(run.dueMs(), boxsim::kNever);
    run.observe(1000, pressed("climate.onOff", true));
    QCOMPARE(run.dueMs(), boxsim::kNever);
    run.observe(1200, pressed("climate.acBtn", true));
    QCOMPARE(run.dueMs(), qint64(1200));
    QCOMPARE(run.until(2000), lines({"1200 cool", "1205 on"}));
}

void TestBoxsimScenarioPlayer::waitsForItsArguments()
{
    Run run(R"({"steps": [{"wait": {"command": "climate.manualTemp", "arguments": {"value": 21}}},
                          {"wait": {"command": "unknown", "arguments": {"data": "9F 00"}}}, {"note": "a"}]})");
    const auto manual = [](int value) {
        return command("climate.manualTemp",
                       {{QStringLiteral("press"), true}, {QStringLiteral("value"), value}});
    };
    const auto unknown = [](const char *data) {
        return command("unknown", {{QStringLiteral("tp"), "95"}, {QStringLiteral("data"), data}});
    };

    run.observe(10, manual(20));
    run.observe(20, unknown("9f00"));
    run.observe(30, manual(21));
    run.observe(40, unknown("9f"));
    QCOMPARE(run.until(40), QStringList());
    run.observe(50, unknown("9f00"));
    QCOMPARE(run.until(50), lines({"50 a"}));
}

void TestBoxsimScenarioPlayer::isNotWokenByARetransmission()
{
    Run run(R"({"steps": [{"wait": {"command": "climate.acBtn"}}, {"wait": {"command": "climate.acBtn"}},
                          {"note": "twice"}]})");
    Event again = pressed("climate.acBtn", true);
    again.repeated = true;

    run.observe(10, pressed("climate.acBtn", true));
    run.observe(20, again);
    QCOMPARE(run.until(100), QStringList());
    run.observe(100, pressed("climate.acBtn", true));
    QCOMPARE(run.until(100), lines({"100 twice"}));
}

void TestBoxsimScenarioPlayer::waitsForAnEvent()
{
    Run run(R"({"steps": [{"wait": {"event": "giveUp"}}, {"note": "a"}]})");

    run.observe(10, reported(Event::Kind::Resend));
    QCOMPARE(run.until(10), QStringList());
    run.observe(20, reported(Event::Kind::GiveUp));
    QCOMPARE(run.until(20), lines({"20 a"}));
}

void TestBoxsimScenarioPlayer::doesNotTakeWhatCameBeforeTheWait()
{
    Run run(R"({"steps": [{"at": 100, "wait": {"event": "ack"}}, {"note": "a"}]})");

    run.observe(99, reported(Event::Kind::Ack));
    QCOMPARE(run.until(500), QStringList());
    run.observe(500, reported(Event::Kind::Ack));
    QCOMPARE(run.until(500), lines({"500 a"}));
}

void TestBoxsimScenarioPlayer::waitsForTheLink()
{
    Run run(R"({"steps": [{"wait": {"link": "up"}}, {"note": "up"}, {"wait": {"link": "down"}},
                          {"note": "down"}]})");

    run.observe(10, reported(Event::Kind::Ack));
    QCOMPARE(run.until(10), QStringList());
    run.observe(20, reported(Event::Kind::LinkUp));
    QCOMPARE(run.until(20), lines({"20 up"}));
    run.observe(30, reported(Event::Kind::LinkDown));
    QCOMPARE(run.until(30), lines({"30 down"}));
}

void TestBoxsimScenarioPlayer::goesOnAtOnceWhenTheLinkIsThere()
{
    Run run(
        R"({"steps": [{"wait": {"link": "down"}}, {"note": "still down"}, {"at": 50, "wait": {"link": "up"}},
                          {"note": "still up"}]})");

    run.observe(10, reported(Event::Kind::LinkUp));
    QCOMPARE(run.until(1000), lines({"0 still down", "50 still up"}));
}

void TestBoxsimScenarioPlayer::goesOnAfterATimeout()
{
    Run run(R"({"steps": [{"at": 5, "wait": {"event": "ack", "timeout": 10}, "then": [{"note": "came"}],
                           "else": [{"note": "late"}, {"after": 1, "note": "later"}]}, {"note": "on"}]})");

    QCOMPARE(run.until(1000), lines({"15 late", "16 later", "16 on"}));
}

void TestBoxsimScenarioPlayer::failsWithElse()
{
    Run run(R"({"steps": [{"wait": {"link": "up", "timeout": 3000}, "else": [{"fail": "no link"}]},
                          {"note": "never"}]})");

    QCOMPARE(run.until(10000), lines({"3000 fail no link"}));
}

void TestBoxsimScenarioPlayer::takesTheBranchOfWhatCame()
{
    const QByteArray scenario = R"({"steps": [{"repeat": {"times": 2, "steps": [{"branch": {"on": [
        {"command": "climate.acBtn", "arguments": {"press": false}, "steps": [{"note": "off"}]},
        {"command": "climate.acBtn", "steps": [{"note": "on"}]},
        {"event": "linkDown", "steps": [{"fail": "gone"}]}], "timeout": 100, "else": [{"note": "none"}]}}]}}]})";
    Run run(scenario);

    run.observe(10, pressed("climate.acBtn", true));
    QCOMPARE(run.until(10), lines({"10 on"}));
    run.observe(20, pressed("climate.acBtn", false));
    QCOMPARE(run.until(1000), lines({"20 off"}));

    Run other(scenario);
    other.observe(10, reported(Event::Kind::LinkDown));
    QCOMPARE(other.until(1000), lines({"10 fail gone"}));
}

void TestBoxsimScenarioPlayer::takesElseOfABranch()
{
    Run run(R"({"steps": [{"branch": {"on": [{"event": "ack", "steps": []}], "timeout": 100,
                                      "else": [{"note": "none"}]}}]})");

    QCOMPARE(run.until(1000), lines({"100 none"}));
}

void TestBoxsimScenarioPlayer::takesTheNextStepAtOnceWhenItsTimeIsOver()
{
    Run run(R"({"steps": [{"wait": {"event": "ack"}}, {"at": 100, "note": "a"}, {"at": 900, "note": "b"}]})");

    run.observe(500, reported(Event::Kind::Ack));
    QCOMPARE(run.until(1000), lines({"500 a", "900 b"}));
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

void TestBoxsimScenarioPlayer::seesATimeoutThatPassedBeforeTheEvent()
{
    Run run(R"({"steps": [{"wait": {"event": "ack", "timeout": 100}, "then": [{"note": "in time"}],
                           "else": [{"note": "late"}]}]})");

    run.observe(101, reported(Event::Kind::Ack));
    QCOMPARE(run.dueMs(), qint64(100));
    QCOMPARE(run.at(101), lines({"101 late"}));
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
