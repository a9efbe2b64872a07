#include "scenariorun.h"

#include <QtTest/QTest>

using boxsim::Event;
using namespace scenariorun;

class TestBoxsimScenarioWaits : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
    void seesATimeoutThatPassedBeforeTheEvent();
};

void TestBoxsimScenarioWaits::waitsForACommand()
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

void TestBoxsimScenarioWaits::waitsForItsArguments()
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

void TestBoxsimScenarioWaits::isNotWokenByARetransmission()
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

void TestBoxsimScenarioWaits::waitsForAnEvent()
{
    Run run(R"({"steps": [{"wait": {"event": "giveUp"}}, {"note": "a"}]})");

    run.observe(10, reported(Event::Kind::Resend));
    QCOMPARE(run.until(10), QStringList());
    run.observe(20, reported(Event::Kind::GiveUp));
    QCOMPARE(run.until(20), lines({"20 a"}));
}

void TestBoxsimScenarioWaits::doesNotTakeWhatCameBeforeTheWait()
{
    Run run(R"({"steps": [{"at": 100, "wait": {"event": "ack"}}, {"note": "a"}]})");

    run.observe(99, reported(Event::Kind::Ack));
    QCOMPARE(run.until(500), QStringList());
    run.observe(500, reported(Event::Kind::Ack));
    QCOMPARE(run.until(500), lines({"500 a"}));
}

void TestBoxsimScenarioWaits::waitsForTheLink()
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

void TestBoxsimScenarioWaits::goesOnAtOnceWhenTheLinkIsThere()
{
    Run run(
        R"({"steps": [{"wait": {"link": "down"}}, {"note": "still down"}, {"at": 50, "wait": {"link": "up"}},
                          {"note": "still up"}]})");

    run.observe(10, reported(Event::Kind::LinkUp));
    QCOMPARE(run.until(1000), lines({"0 still down", "50 still up"}));
}

void TestBoxsimScenarioWaits::goesOnAfterATimeout()
{
    Run run(R"({"steps": [{"at": 5, "wait": {"event": "ack", "timeout": 10}, "then": [{"note": "came"}],
                           "else": [{"note": "late"}, {"after": 1, "note": "later"}]}, {"note": "on"}]})");

    QCOMPARE(run.until(1000), lines({"15 late", "16 later", "16 on"}));
}

void TestBoxsimScenarioWaits::failsWithElse()
{
    Run run(R"({"steps": [{"wait": {"link": "up", "timeout": 3000}, "else": [{"fail": "no link"}]},
                          {"note": "never"}]})");

    QCOMPARE(run.until(10000), lines({"3000 fail no link"}));
}

void TestBoxsimScenarioWaits::takesTheBranchOfWhatCame()
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

void TestBoxsimScenarioWaits::takesElseOfABranch()
{
    Run run(R"({"steps": [{"branch": {"on": [{"event": "ack", "steps": []}], "timeout": 100,
                                      "else": [{"note": "none"}]}}]})");

    QCOMPARE(run.until(1000), lines({"100 none"}));
}

void TestBoxsimScenarioWaits::takesTheNextStepAtOnceWhenItsTimeIsOver()
{
    Run run(R"({"steps": [{"wait": {"event": "ack"}}, {"at": 100, "note": "a"}, {"at": 900, "note": "b"}]})");

    run.observe(500, reported(Event::Kind::Ack));
    QCOMPARE(run.until(1000), lines({"500 a", "900 b"}));
}

void TestBoxsimScenarioWaits::seesATimeoutThatPassedBeforeTheEvent()
{
    Run run(R"({"steps": [{"wait": {"event": "ack", "timeout": 100}, "then": [{"note": "in time"}],
                           "else": [{"note": "late"}]}]})");

    run.observe(101, reported(Event::Kind::Ack));
    QCOMPARE(run.dueMs(), qint64(100));
    QCOMPARE(run.at(101), lines({"101 late"}));
}

QTEST_GUILESS_MAIN(TestBoxsimScenarioWaits)
#include "tst_boxsim_scenariowaits.moc"
