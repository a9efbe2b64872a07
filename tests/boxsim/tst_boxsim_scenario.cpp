#include "boxsim/scenario/scenario.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <sys/stat.h>

using boxsim::Scenario;

namespace {

/// The one line about what is wrong, or nothing.
QString errorOf(const QByteArray &json)
{
    Scenario scenario;
    QString error;
    const bool isScenario = boxsim::readScenario(json, QStringLiteral("drive.json"), &scenario, &error);
    return isScenario ? QString() : error;
}

void row(const char *name, const QByteArray &json, const char *error)
{
    QTest::newRow(name) << json << QString::fromUtf8(error);
}

Scenario read(const QByteArray &json)
{
    Scenario scenario;
    QString error;
    if (!boxsim::readScenario(json, QStringLiteral("drive.json"), &scenario, &error))
        qWarning("%s", qPrintable(error));
    return scenario;
}

} // namespace

class TestBoxsimScenario : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesLineAndFieldOfAMistake_data();
    void namesLineAndFieldOfAMistake() { compareErrors(); }
    void namesLineAndColumnOfWhatIsNoJson_data();
    void namesLineAndColumnOfWhatIsNoJson() { compareErrors(); }
    void reportsTheFirstMistakeOfSeveral();
    void keepsAMistakeToOneLine();
    void leavesTheScenarioAloneWhenThereIsAMistake();
    void readsWhatStandsAroundTheSteps();
    void readsAFileWithAByteOrderMark();
    void saysWhyAFileCannotBeRead_data();
    void saysWhyAFileCannotBeRead();
    void waitsForNoPipe();
    void refusesAFileThatIsTooLarge();
    void namesAFileWithALineBreakOnOneLine();
    void readsDeepNestingUpToItsLimit();

private:
    static void compareErrors();
};

void TestBoxsimScenario::compareErrors()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);

    QCOMPARE(errorOf(json), error);
}

void TestBoxsimScenario::namesLineAndFieldOfAMistake_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    row("a wrong type of a value",
        "{\n\"steps\": [\n{\"note\": \"a\"},\n{\"set\": {\n  \"climate.systemOn\": true,\n"
        "  \"climate.mainTemp\": \"warm\"}}]}",
        "drive.json:6: steps[1].set: climate.mainTemp takes a whole number from 0 to 65535, not \"warm\"");
    row("a value out of range", "{\"start\":\n{\"climate.mainUnit\": 4}, \"steps\": []}",
        "drive.json:2: start: climate.mainUnit takes a whole number from 0 to 3, not 4");
    row("a number with decimals", "{\"start\":\n{\"measured.speed\": 1.5}, \"steps\": []}",
        "drive.json:2: start: measured.speed takes a whole number from 0 to 300, not 1.5");
    row("an unknown field", "{\"start\":\n{\"climate.mainTmp\": 4}, \"steps\": []}",
        "drive.json:2: start: no field \"climate.mainTmp\": did you mean climate.mainTemp?");
    row("an entry that there is not", "{\"start\":\n{\"vehicle.door.5\": true}, \"steps\": []}",
        "drive.json:2: start: vehicle.door has the entries 1 to 4, not 5");
    row("a list that is too short", "{\"start\":\n{\"vehicle.door\": [true]}, \"steps\": []}",
        "drive.json:2: start: vehicle.door takes a list of 4 values, not 1");
    row("an entry of a wrong type", "{\"start\":\n{\"parking.rear\": [1, 2, 3, true]}, \"steps\": []}",
        "drive.json:2: start: parking.rear.4 takes a whole number from 0 to 255, not true");
    row("nothing as a value", "{\"start\":\n{\"climate.title\": null}, \"steps\": []}",
        "drive.json:2: start: climate.title takes a text, not null");
    row("an object as a value", "{\"start\":\n{\"climate.title\": {}}, \"steps\": []}",
        "drive.json:2: start: climate.title takes a text, not an object");
    row("a field given twice",
        "{\"start\": {\"vehicle.hood\": true,\n\"vehicle.hood\": false}, \"steps\": []}",
        "drive.json:2: start: vehicle.hood is given twice");
    row("a start that is no object", "{\n\"start\": 5, \"steps\": []}",
        "drive.json:2: start takes an object, not 5");
    row("no object at all", "\n[]", "drive.json:2: the scenario takes an object, not a list");
    row("no steps", "\n{}", "drive.json:2: the scenario has no steps");
    row("steps that are no list", "{\n\"steps\": {}}", "drive.json:2: steps takes a list, not an object");
    row("an unknown member", "{\"steps\": [],\n\"lop\": true}",
        "drive.json:2: no member \"lop\": did you mean loop?");
    row("an unknown member like no other", "{\"steps\": [],\n\"xyzzy\": 1}",
        "drive.json:2: no member \"xyzzy\": there are $schema, about, seed, start, loop, steps");
    row("a member given twice", "{\"steps\": [],\n\"steps\": []}", "drive.json:2: steps is given twice");
    row("a seed below 0", "{\n\"seed\": -1, \"steps\": []}",
        "drive.json:2: seed takes a whole number from 0 to 4294967295, not -1");
    row("a loop that is no flag", "{\n\"loop\": 1, \"steps\": [{\"after\": 1}]}",
        "drive.json:2: loop takes true or false, not 1");
    row("an about of two lines", "{\n\"about\": \"a\\nb\", \"steps\": []}",
        "drive.json:2: about takes a line of text, not \"a\\nb\"");
    row("an about of nothing", "{\n\"about\": \"\", \"steps\": []}",
        "drive.json:2: about takes a line of text, not \"\"");
}

void TestBoxsimScenario::namesLineAndColumnOfWhatIsNoJson_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");

    row("nothing", "", "drive.json:1:1: there is nothing in it");
    row("blanks alone", " \n ", "drive.json:2:2: there is nothing in it");
    row("no value", "{\n  \"steps\": }", "drive.json:2:12: neither a value nor a bracket that fits");
    row("a wrong word", "{\n  \"loop\": yes}", "drive.json:2:11: neither a value nor a bracket that fits");
    row("no comma between members", "{\"loop\": true\n \"steps\": []}",
        "drive.json:2:2: a comma or } after a member is missing");
    row("no comma between items", "[1\n2]", "drive.json:2:1: a comma or ] after an item is missing");
    row("no colon", "{\"steps\" []}", "drive.json:1:10: a colon after a member's name is missing");
    row("a comma behind the last member", "{\"steps\": [],\n}",
        "drive.json:2:1: a member's name in quotation marks is missing");
    row("a name without quotation marks", "{\nsteps: []}",
        "drive.json:2:1: a member's name in quotation marks is missing");
    row("an end that is missing", "{\"steps\": [",
        "drive.json:1:12: neither a value nor a bracket that fits");
    row("something behind the end", "{}\n{}", "drive.json:2:1: something follows after the end");
    row("a text without its end", "{\"steps", "drive.json:1:8: a text has no closing quotation mark");
    row("a wrong escape", "[\"\\q\"]", "drive.json:1:3: a \\ with a character that it does not go with");
    row("a wrong \\u", "[\"\\u12x4\"]", "drive.json:1:3: \\u takes four hexadecimal digits");
    row("half a character", "[\"\\ud800\"]", "drive.json:1:3: \\u names half a character");
    row("a zero character", "[\n\"a\\u0000b\"]",
        "drive.json:2:11: a text cannot contain the character \\u0000");
    row("a text that is no UTF-8", "[\n \"caf\xe9\"]", "drive.json:2:6: a text that is no UTF-8");
    row("a line break in a text", "[\"a\nb\"]",
        "drive.json:1:4: a line break or another control character in a text");
    row("a column behind other scripts", "[\"\u7a7a\u8c03\" 1]",
        "drive.json:1:7: a comma or ] after an item is missing");
    row("a zero byte at the end", QByteArray("{\"steps\": []}\n\0", 15),
        "drive.json:2:1: a zero byte, which no text file has");
    row("a zero byte in between", QByteArray("{\"steps\": \0 []}", 15),
        "drive.json:1:11: a zero byte, which no text file has");
    row("a number that is too large", "[1e999]", "drive.json:1:2: a number that is too large");
    row("a number with a point alone", "[1.]", "drive.json:1:4: a number without digits after its point");
    row("a number with an e alone", "[1e]", "drive.json:1:4: a number without digits after its e");
    row("lists in one another without an end", QByteArray(100000, '['),
        "drive.json:1:41: more than 40 lists and objects in one another");
}

void TestBoxsimScenario::reportsTheFirstMistakeOfSeveral()
{
    QCOMPARE(
        errorOf("{\"steps\": [\n{\"after\": 1,\n\"note\": 5},\n{\"note\": 6}],\n\"start\": 1,\n\"lop\": 2}"),
        QString("drive.json:3: steps[0]: note takes a line of text, not 5"));
}

void TestBoxsimScenario::keepsAMistakeToOneLine()
{
    QCOMPARE(errorOf(R"({"start": {"vehicle.hood": "a\nb"}, "steps": []})"),
             QString("drive.json:1: start: vehicle.hood takes closed or open, not \"a\\nb\""));
    QCOMPARE(errorOf(R"({"st\u001b\r\nps": []})"),
             QString("drive.json:1: no member \"st\\x1b\\r\\nps\": there are $schema, about, seed, start, "
                     "loop, steps"));
}

void TestBoxsimScenario::leavesTheScenarioAloneWhenThereIsAMistake()
{
    Scenario scenario;
    scenario.about = QStringLiteral("as it was");
    QString error;

    QVERIFY(!boxsim::readScenario("{\"about\": \"new\", \"steps\": [{}]}", "a", &scenario, &error));
    QCOMPARE(scenario.about, QStringLiteral("as it was"));
}

void TestBoxsimScenario::readsWhatStandsAroundTheSteps()
{
    const Scenario scenario = read(R"({
        "$schema": "scenario.schema.json", "about": "one line", "seed": 4294967295, "loop": true,
        "start": {"climate.mainTemp": 215, "vehicle.door.2": "open"},
        "steps": [{"about": "a pause", "after": 1}]})");

    QCOMPARE(scenario.about, QStringLiteral("one line"));
    QVERIFY(scenario.hasSeed);
    QCOMPARE(scenario.seed, 4294967295U);
    QVERIFY(scenario.loop);
    QCOMPARE(scenario.steps.size(), std::size_t(1));
    QCOMPARE(scenario.start.size(), 2);
    QCOMPARE(boxsim::allFields().at(scenario.start.at(0).field).name, QStringLiteral("climate.mainTemp"));
    QCOMPARE(scenario.start.at(0).entry, -1);
    QCOMPARE(scenario.start.at(0).value, QVariant(215));
    QCOMPARE(boxsim::allFields().at(scenario.start.at(1).field).name, QStringLiteral("vehicle.door"));
    QCOMPARE(scenario.start.at(1).entry, 1);
    QCOMPARE(scenario.start.at(1).value, QVariant(true));
    QVERIFY(!read("{\"steps\": []}").hasSeed);
    QVERIFY(!read("{\"steps\": []}").loop);
}

void TestBoxsimScenario::readsAFileWithAByteOrderMark()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\xef\xbb\xbf{\"about\": \"marked\", \"steps\": []}\r\n");
    file.close();
    Scenario scenario;
    QString error;

    QVERIFY2(boxsim::loadScenario(file.fileName(), &scenario, &error), qPrintable(error));
    QCOMPARE(scenario.about, QStringLiteral("marked"));
}

void TestBoxsimScenario::saysWhyAFileCannotBeRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("error");

    QTest::newRow("no file") << "/nowhere/a.json"
                             << "cannot read /nowhere/a.json: No such file or directory";
    QTest::newRow("a folder") << "/proc"
                              << "cannot read /proc: it is a folder";
}

void TestBoxsimScenario::saysWhyAFileCannotBeRead()
{
    QFETCH(QString, path);
    QFETCH(QString, error);

    Scenario scenario;
    QString said;
    QVERIFY(!boxsim::loadScenario(path, &scenario, &said));
    QCOMPARE(said, error);
}

void TestBoxsimScenario::waitsForNoPipe()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("pipe");
    QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    Scenario scenario;
    QString error;

    QVERIFY(!boxsim::loadScenario(path, &scenario, &error));
    QCOMPARE(error, "cannot read " + path + ": it is no regular file");
}

void TestBoxsimScenario::refusesAFileThatIsTooLarge()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("large.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(1048577));
    Scenario scenario;
    QString error;

    QVERIFY(!boxsim::loadScenario(file.fileName(), &scenario, &error));
    QCOMPARE(error, file.fileName() + " is larger than 1 MiB, which no scenario is");
}

void TestBoxsimScenario::namesAFileWithALineBreakOnOneLine()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("two\nlines.json"));
    Scenario scenario;
    QString error;

    QVERIFY(!boxsim::loadScenario(file.fileName(), &scenario, &error));
    QCOMPARE(error, "cannot read " + folder.filePath("two\\nlines.json") + ": No such file or directory");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("steps");
    file.close();
    QVERIFY(!boxsim::loadScenario(file.fileName(), &scenario, &error));
    QVERIFY2(error.startsWith(folder.filePath("two\\nlines.json:1:1: ")), qPrintable(error));
}

void TestBoxsimScenario::readsDeepNestingUpToItsLimit()
{
    const auto nested = [](int times) {
        return "{\"steps\": [" + QByteArray("{\"repeat\": {\"steps\": [").repeated(times) + "{\"after\": 1}"
            + QByteArray("]}}").repeated(times) + "]}";
    };

    QCOMPARE(errorOf(nested(12)), QString());
    QCOMPARE(errorOf(nested(13)), QString("drive.json:1:297: more than 40 lists and objects in one another"));
}

QTEST_GUILESS_MAIN(TestBoxsimScenario)
#include "tst_boxsim_scenario.moc"
