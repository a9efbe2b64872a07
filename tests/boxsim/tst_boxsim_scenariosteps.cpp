#include "boxsim/scenario/scenario.h"

#include <QtTest/QTest>

namespace {

/// The one line about what is wrong, or nothing.
QString errorOf(const QByteArray &json)
{
    boxsim::Scenario scenario;
    QString error;
    const bool isScenario = boxsim::readScenario(json, QStringLiteral("drive.json"), &scenario, &error);
    return isScenario ? QString() : error;
}

/// A mistake in the third line of a scenario, in its first step.
void stepRow(const char *name, const char *step, const char *error)
{
    QTest::newRow(name) << QByteArray("{\n\"steps\": [\n") + step + "\n]}" << QString::fromUtf8(error);
}

void row(const char *name, const QByteArray &json, const char *error)
{
    QTest::newRow(name) << json << QString::fromUtf8(error);
}

} // namespace

class TestBoxsimScenarioSteps : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refusesAWrongStep_data();
    void refusesAWrongStep() { compareErrors(); }
    void refusesAWrongRamp_data();
    void refusesAWrongRamp() { compareErrors(); }
    void refusesWrongDeeds_data();
    void refusesWrongDeeds() { compareErrors(); }
    void refusesAWrongCondition_data();
    void refusesAWrongCondition() { compareErrors(); }
    void refusesAWrongEventOrTimeout_data();
    void refusesAWrongEventOrTimeout() { compareErrors(); }
    void refusesAWrongBranch_data();
    void refusesAWrongBranch() { compareErrors(); }
    void refusesLoopsInWhichNoTimePasses_data();
    void refusesLoopsInWhichNoTimePasses() { compareErrors(); }

private:
    static void compareErrors();
};

void TestBoxsimScenarioSteps::compareErrors()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);

    QCOMPARE(errorOf(json), error);
}

void TestBoxsimScenarioSteps::refusesAWrongStep_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    stepRow("a step that is no object", "7", "drive.json:3: steps[0] takes an object, not 7");
    stepRow("an empty step", "{}",
            "drive.json:3: steps[0] does nothing: it takes a time or one of set, ramp, send, bytes, restart, "
            "hangUp, note, wait, branch, repeat, end, fail");
    stepRow("two deeds in one step", R"({"note": "a", "end": true})",
            "drive.json:3: steps[0] does one thing, not note and end");
    stepRow("an unknown member", R"({"nota": "a"})",
            "drive.json:3: steps[0]: no member \"nota\": did you mean note?");
    stepRow("a member given twice", R"({"note": "a", "note": "b"})",
            "drive.json:3: steps[0]: note is given twice");
    stepRow("two times", R"({"at": 5, "after": 5})", "drive.json:3: steps[0]: after does not go with \"at\"");
    stepRow("a time that is a text", R"({"at": "soon"})",
            "drive.json:3: steps[0]: at takes a whole number from 0 to 86400000, not \"soon\"");
    stepRow("a time below 0", R"({"after": -1})",
            "drive.json:3: steps[0]: after takes a whole number from 0 to 86400000, not -1");
    stepRow("a time that is too large", R"({"after": 86400001})",
            "drive.json:3: steps[0]: after takes a whole number from 0 to 86400000, not 86400001");
    stepRow("a time before that of the step before", "{\"at\": 500},\n{\"at\": 499}",
            "drive.json:4: steps[1]: at takes at least 500, when the step before begins");
    stepRow("a time before that of several steps", "{\"at\": 500}, {\"after\": 100},\n{\"at\": 599}",
            "drive.json:4: steps[2]: at takes at least 600, when the step before begins");
    stepRow("a set of nothing", R"({"set": {}})",
            "drive.json:3: steps[0]: set takes at least one field with its value");
    stepRow("a set that is no object", R"({"set": 5})", "drive.json:3: steps[0]: set takes an object, not 5");
    stepRow("a wrong value", R"({"set": {"vehicle.hood": "ajar"}})",
            "drive.json:3: steps[0].set: vehicle.hood takes closed or open, not \"ajar\"");
}

void TestBoxsimScenarioSteps::refusesAWrongRamp_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    stepRow("a ramp without a distance", R"({"ramp": {"measured.speed": [[0, 1], [5, 2]]}})",
            "drive.json:3: steps[0] has a ramp without \"every\", the milliseconds between two values");
    stepRow("a distance of no ramp", R"({"every": 5, "note": "a"})",
            "drive.json:3: steps[0]: every goes with a ramp alone");
    stepRow("a distance of 0", R"({"every": 0, "ramp": {"measured.speed": [[0, 1], [5, 2]]}})",
            "drive.json:3: steps[0]: every takes a whole number from 1 to 86400000, not 0");
    stepRow("a ramp of nothing", R"({"every": 5, "ramp": {}})",
            "drive.json:3: steps[0]: ramp takes at least one field with its points");
    stepRow("a ramp of one point", R"({"every": 5, "ramp": {"measured.speed": [[0, 1]]}})",
            "drive.json:3: steps[0].ramp: measured.speed takes two points [ms, value] or more");
    stepRow("a ramp with a value out of range",
            "{\"every\": 5, \"ramp\": {\"measured.speed\": [[0, 1],\n[5, 301]]}}",
            "drive.json:4: steps[0].ramp: measured.speed takes a whole number from 0 to 300, not 301");
    stepRow("a ramp with a point of three numbers",
            R"({"every": 5, "ramp": {"measured.speed": [[0, 1, 2]]}})",
            "drive.json:3: steps[0].ramp: measured.speed[0] takes two numbers, [ms, value]");
    stepRow("a ramp with a point that is no list", R"({"every": 5, "ramp": {"measured.speed": [0, 1]}})",
            "drive.json:3: steps[0].ramp: measured.speed[0] takes a list, not 0");
    stepRow("a ramp that goes back", "{\"every\": 5, \"ramp\": {\"measured.speed\": [[5, 1],\n[5, 2]]}}",
            "drive.json:4: steps[0].ramp: measured.speed[1] takes a time behind that of the point before, 5");
    stepRow("a ramp of a flag", R"({"every": 5, "ramp": {"vehicle.hood": [[0, true], [5, false]]}})",
            "drive.json:3: steps[0].ramp: vehicle.hood cannot move: it is no whole number");
    stepRow("a ramp of a share", R"({"every": 5, "ramp": {"fault.noise": [[0, 1], [5, 2]]}})",
            "drive.json:3: steps[0].ramp: fault.noise cannot move: it is no whole number");
    stepRow("a ramp of a whole list", R"({"every": 5, "ramp": {"parking.rear": [[0, 1], [5, 2]]}})",
            "drive.json:3: steps[0].ramp: parking.rear takes a list of 4 values, not 1; one of them is "
            "parking.rear.1");
}

void TestBoxsimScenarioSteps::refusesWrongDeeds_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    stepRow("a frame without an id", R"({"send": {"tp": "03"}})", "drive.json:3: steps[0]: send has no id");
    stepRow("a frame without a type", R"({"send": {"id": "50"}})", "drive.json:3: steps[0]: send has no tp");
    stepRow("an id of two bytes", R"({"send": {"id": "50 51", "tp": "03"}})",
            "drive.json:3: steps[0].send: id takes one byte as hexadecimal text like \"5A\", not \"50 51\"");
    stepRow("an id as a number", R"({"send": {"id": 50, "tp": "03"}})",
            "drive.json:3: steps[0].send: id takes bytes as hexadecimal text like \"9F 06\", not 50");
    stepRow("a frame with an unknown member", R"({"send": {"id": "50", "tp": "03", "dat": ""}})",
            "drive.json:3: steps[0].send: no member \"dat\": did you mean data?");
    stepRow("half a byte", R"({"bytes": "9F 0"})",
            "drive.json:3: steps[0]: bytes takes bytes as hexadecimal text like \"9F 06\", not \"9F 0\"");
    stepRow("no hexadecimal digits", R"({"bytes": "0x9F"})",
            "drive.json:3: steps[0]: bytes takes bytes as hexadecimal text like \"9F 06\", not \"0x9F\"");
    stepRow("no bytes", R"({"bytes": ""})", "drive.json:3: steps[0]: bytes takes at least one byte");
    stepRow("a restart that is none", R"({"restart": false})",
            "drive.json:3: steps[0]: restart takes true, not false");
    stepRow("an end that is none", R"({"end": false})", "drive.json:3: steps[0]: end takes true, not false");
    stepRow("a hang-up for no time", R"({"hangUp": 0})",
            "drive.json:3: steps[0]: hangUp takes a whole number from 1 to 86400000, not 0");
    stepRow("a note that is no text", R"({"note": 5})",
            "drive.json:3: steps[0]: note takes a line of text, not 5");
    stepRow("a failure without a reason", R"({"fail": ""})",
            "drive.json:3: steps[0]: fail takes a line of text, not \"\"");
    stepRow("a repetition without steps", R"({"repeat": {"times": 2}})",
            "drive.json:3: steps[0]: repeat has no steps");
    stepRow("a repetition of no times", R"({"repeat": {"times": 0, "steps": [{"after": 1}]}})",
            "drive.json:3: steps[0].repeat: times takes a whole number from 1 to 1000000, not 0");
    stepRow("a mistake deep inside",
            "{\"repeat\": {\"times\": 2, \"steps\": [{\"after\": 1},\n{\"note\": 1}]}}",
            "drive.json:4: steps[0].repeat.steps[1]: note takes a line of text, not 1");
}

void TestBoxsimScenarioSteps::refusesAWrongCondition_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    stepRow("a wait for nothing", R"({"wait": {"timeout": 5}})",
            "drive.json:3: steps[0]: wait takes one of command, event and link, not none");
    stepRow("a wait for two things", R"({"wait": {"command": "climate.acBtn", "event": "linkUp"}})",
            "drive.json:3: steps[0]: wait takes one of command, event and link, not command and event");
    stepRow("an unknown command", R"({"wait": {"command": "climate.acBtm"}})",
            "drive.json:3: steps[0].wait: command knows no \"climate.acBtm\": did you mean climate.acBtn?");
    stepRow("a command that is no text", R"({"wait": {"command": 5}})",
            "drive.json:3: steps[0].wait: command takes a name like \"connection.request\", not 5");
    stepRow("an unknown argument", R"({"wait": {"command": "climate.acBtn", "arguments": {"pres": true}}})",
            "drive.json:3: steps[0].wait.arguments: no member \"pres\": did you mean press?");
    stepRow("an argument of a wrong type",
            R"({"wait": {"command": "climate.acBtn", "arguments": {"press": 1}}})",
            "drive.json:3: steps[0].wait.arguments: press takes true or false, not 1");
    stepRow("an argument out of range",
            R"({"wait": {"command": "climate.manualTemp", "arguments": {"value": 256}}})",
            "drive.json:3: steps[0].wait.arguments: value takes a whole number from 0 to 255, not 256");
    stepRow("the release of a control that has none",
            R"({"wait": {"command": "vehicle.checkEngine", "arguments": {"press": false}}})",
            "drive.json:3: steps[0].wait.arguments: press is always true in this command");
    stepRow("an argument that is no bytes", R"({"wait": {"command": "unknown", "arguments": {"data": "x"}}})",
            "drive.json:3: steps[0].wait.arguments: data takes bytes as hexadecimal text like \"9F 06\", not "
            "\"x\"");
    stepRow("arguments of a command without any",
            R"({"wait": {"command": "connection.check", "arguments": {"press": true}}})",
            "drive.json:3: steps[0].wait: arguments are none of connection.check's; it has no arguments");
    stepRow("arguments of an event", R"({"wait": {"event": "linkUp", "arguments": {}}})",
            "drive.json:3: steps[0].wait: arguments go with a command alone");
}

void TestBoxsimScenarioSteps::refusesAWrongEventOrTimeout_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    stepRow("an unknown event", R"({"wait": {"event": "linkup"}})",
            "drive.json:3: steps[0].wait: event knows no \"linkup\": did you mean linkUp?");
    stepRow("a link that is neither up nor down", R"({"wait": {"link": "upp"}})",
            "drive.json:3: steps[0].wait: link knows no \"upp\": did you mean up?");
    stepRow("a wait with an unknown member", R"({"wait": {"event": "ack", "timeuot": 5}})",
            "drive.json:3: steps[0].wait: no member \"timeuot\": did you mean timeout?");
    stepRow("a timeout of 0", R"({"wait": {"event": "ack", "timeout": 0}})",
            "drive.json:3: steps[0].wait: timeout takes a whole number from 1 to 86400000, not 0");
    stepRow("an else without a timeout", R"({"wait": {"event": "ack"}, "else": []})",
            "drive.json:3: steps[0]: else goes with a timeout alone");
    stepRow("a then without a wait", R"({"note": "a", "then": []})",
            "drive.json:3: steps[0]: then goes with a wait alone");
    stepRow("an else without a wait", R"({"note": "a", "else": []})",
            "drive.json:3: steps[0]: else goes with a wait alone");
    stepRow("a mistake in what goes on", R"({"wait": {"event": "ack"}, "then": [{"end": 1}]})",
            "drive.json:3: steps[0].then[0]: end takes true or false, not 1");
    stepRow("a mistake in what goes on after the timeout",
            R"({"wait": {"event": "ack", "timeout": 1}, "else": [{"fail": 1}]})",
            "drive.json:3: steps[0].else[0]: fail takes a line of text, not 1");
}

void TestBoxsimScenarioSteps::refusesAWrongBranch_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    stepRow("a branch on nothing", R"({"branch": {"timeout": 5}})",
            "drive.json:3: steps[0]: branch takes \"on\" with a list of at least one condition");
    stepRow("a branch on an empty list", R"({"branch": {"on": []}})",
            "drive.json:3: steps[0]: branch takes \"on\" with a list of at least one condition");
    stepRow("a branch without steps", R"({"branch": {"on": [{"event": "ack"}]}})",
            "drive.json:3: steps[0].branch: on[0] has no steps");
    stepRow("a mistake in a branch", R"({"branch": {"on": [{"event": "ack", "steps": [{"end": 1}]}]}})",
            "drive.json:3: steps[0].branch.on[0].steps[0]: end takes true or false, not 1");
    stepRow("a branch on an unknown event", R"({"branch": {"on": [{"event": "giveup", "steps": []}]}})",
            "drive.json:3: steps[0].branch.on[0]: event knows no \"giveup\": did you mean giveUp?");
    stepRow("a branch's else without a timeout",
            R"({"branch": {"on": [{"event": "ack", "steps": []}], "else": []}})",
            "drive.json:3: steps[0].branch: else goes with a timeout alone");
}

void TestBoxsimScenarioSteps::refusesLoopsInWhichNoTimePasses_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    const char *const forEver =
        "drive.json:3: steps[0]: repeat takes steps in which time passes, or at most 1000 times";
    row("a loop of nothing", "{\n\"loop\": true, \"steps\": []}",
        "drive.json:2: loop takes steps in which time passes");
    row("a loop at one moment", "{\n\"loop\": true, \"steps\": [{\"note\": \"a\"}]}",
        "drive.json:2: loop takes steps in which time passes");
    row("a loop with a pause", "{\"loop\": true, \"steps\": [{\"note\": \"a\", \"after\": 1}]}", "");
    stepRow("a repetition at one moment", R"({"repeat": {"steps": [{"note": "a"}]}})", forEver);
    stepRow("many times at one moment", R"({"repeat": {"times": 1001, "steps": [{"note": "a"}]}})", forEver);
    stepRow("a few times at one moment", R"({"repeat": {"times": 1000, "steps": [{"note": "a"}]}})", "");
    stepRow("a time", R"({"repeat": {"steps": [{"note": "a", "at": 5}]}})", "");
    stepRow("a time of 0", R"({"repeat": {"steps": [{"note": "a", "at": 0}]}})", forEver);
    stepRow("a ramp",
            R"({"repeat": {"steps": [{"every": 1, "ramp": {"measured.speed": [[0, 1], [5, 2]]}}]}})", "");
    stepRow("a command", R"({"repeat": {"steps": [{"wait": {"command": "climate.acBtn"}}]}})", "");
    stepRow("an event of the head unit's", R"({"repeat": {"steps": [{"wait": {"event": "ack"}}]}})", "");
    stepRow("an event that the scenario makes itself",
            R"({"repeat": {"steps": [{"wait": {"event": "note"}}, {"note": "a"}]}})", forEver);
    stepRow("a link that may be up already", R"({"repeat": {"steps": [{"wait": {"link": "up"}}]}})", forEver);
    stepRow("a link that may be up already, and a pause",
            R"({"repeat": {"steps": [{"wait": {"link": "up"}, "then": [{"after": 9}]}]}})", "");
    stepRow("a branch of which one way takes no time",
            R"({"repeat": {"steps": [{"branch": {"on": [{"event": "ack", "steps": []},
                                                        {"link": "up", "steps": []}]}}]}})",
            forEver);
    stepRow("a repetition within",
            R"({"repeat": {"steps": [{"repeat": {"times": 2, "steps": [{"after": 1}]}}]}})", "");
    stepRow("an end", R"({"repeat": {"steps": [{"end": true}]}})", "");
}

QTEST_GUILESS_MAIN(TestBoxsimScenarioSteps)
#include "tst_boxsim_scenariosteps.moc"
