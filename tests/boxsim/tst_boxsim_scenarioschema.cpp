#include "boxsim/scenario/scenario.h"
#include "boxsim/scenario/scenarioschema.h"

#include <contentof.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <memory>

namespace {

const QString kFolder = QStringLiteral(CANBUS_SOURCE_DIR "/scenarios");

QStringList scenarioFiles()
{
    QStringList files;
    QDirIterator folder(kFolder, {QStringLiteral("*.json")}, QDir::Files, QDirIterator::Subdirectories);
    while (folder.hasNext()) {
        const QString path = folder.next();
        if (!path.endsWith(QLatin1String(".schema.json")))
            files.append(path);
    }
    files.sort();
    return files;
}

void stepRow(const char *name, const char *step)
{
    QTest::newRow(name) << QByteArray(R"({"steps": [{"after": 1}, )") + step + "]}";
}

} // namespace

class TestBoxsimScenarioSchema : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void isTheCommittedFile();
    void acceptsEachScenario_data();
    void acceptsEachScenario();
    void acceptsEachKindOfStep_data();
    void acceptsEachKindOfStep();
    void refusesWhatTheReaderRefuses_data();
    void refusesWhatTheReaderRefuses() { compareRefusals(); }
    void refusesTheDeedsThatTheReaderRefuses_data();
    void refusesTheDeedsThatTheReaderRefuses() { compareRefusals(); }

private:
    QString refusalOf(const QByteArray &json) const;
    void compareRefusals() const;

    std::unique_ptr<rapidjson::SchemaDocument> m_schema;
};

void TestBoxsimScenarioSchema::initTestCase()
{
    rapidjson::Document schema;
    schema.Parse(boxsim::scenarioSchema().constData());
    QVERIFY(!schema.HasParseError());
    m_schema = std::make_unique<rapidjson::SchemaDocument>(schema);
}

/// Where and how the schema refuses the scenario, or nothing.
QString TestBoxsimScenarioSchema::refusalOf(const QByteArray &json) const
{
    rapidjson::Document document;
    document.Parse(json.constData());
    if (document.HasParseError())
        return QStringLiteral("no JSON");
    rapidjson::SchemaValidator validator(*m_schema);
    if (document.Accept(validator))
        return {};
    rapidjson::StringBuffer place;
    validator.GetInvalidDocumentPointer().StringifyUriFragment(place);
    return QString::fromUtf8(place.GetString()) + QLatin1Char(' ')
        + QString::fromUtf8(validator.GetInvalidSchemaKeyword());
}

void TestBoxsimScenarioSchema::isTheCommittedFile()
{
    QVERIFY2(contentOf(kFolder + "/scenario.schema.json") == boxsim::scenarioSchema(),
             "write it anew: canbus-boxsim --print-schema > scenarios/scenario.schema.json");
}

void TestBoxsimScenarioSchema::acceptsEachScenario_data()
{
    QTest::addColumn<QString>("path");

    const QStringList files = scenarioFiles();
    QVERIFY(!files.isEmpty());
    for (const QString &path : files)
        QTest::newRow(qPrintable(QDir(kFolder).relativeFilePath(path))) << path;
}

void TestBoxsimScenarioSchema::acceptsEachScenario()
{
    QFETCH(QString, path);

    boxsim::Scenario scenario;
    QString error;
    QVERIFY2(boxsim::loadScenario(path, &scenario, &error), qPrintable(error));
    QVERIFY(!scenario.about.isEmpty());
    QCOMPARE(refusalOf(contentOf(path)), QString());
    const QString schema =
        QJsonDocument::fromJson(contentOf(path)).object().value(QStringLiteral("$schema")).toString();
    QCOMPARE(QDir::cleanPath(QFileInfo(path).path() + '/' + schema), kFolder + "/scenario.schema.json");
}

void TestBoxsimScenarioSchema::acceptsEachKindOfStep_data()
{
    QTest::addColumn<QByteArray>("json");

    stepRow("a pause", R"({"about": "why", "at": 5})");
    stepRow("values", R"({"set": {"vehicle.door.1": "open", "vehicle.door": [true, "closed", "on", "0"],
        "climate.title": "Klima", "climate.labels": ["a"], "fault.flipBytes": 0.5, "measured.outside": -4}})");
    stepRow("a ramp", R"({"at": 1, "every": 50, "ramp": {"parking.rear.4": [[0, 1], [5, 2]]}})");
    stepRow("a frame", R"({"send": {"id": "5A", "tp": "03", "mod": "02", "data": "9f 00 Ff01"}})");
    stepRow("a frame without a payload", R"({"send": {"id": "5A", "tp": "03", "data": ""}})");
    stepRow("bytes", R"({"bytes": "9F06"})");
    stepRow("a restart", R"({"restart": true})");
    stepRow("a hang-up", R"({"hangUp": 100})");
    stepRow("a note", R"({"note": "Öl"})");
    stepRow("an end", R"({"end": true})");
    stepRow("a failure", R"({"fail": "why"})");
    stepRow("a wait for a command",
            R"({"wait": {"command": "climate.acBtn", "arguments": {"press": true}, "timeout": 5},
                "then": [{"note": "a"}], "else": [{"end": true}]})");
    stepRow("a wait for a control without a release",
            R"({"wait": {"command": "vehicle.checkEngine", "arguments": {"press": true}}})");
    stepRow("a wait for an unknown command",
            R"({"wait": {"command": "unknown", "arguments": {"tp": "95"}}})");
    stepRow("a wait for a command without arguments", R"({"wait": {"command": "connection.check"}})");
    stepRow("a wait for an event", R"({"wait": {"event": "linkUp"}})");
    stepRow("a wait for the link", R"({"wait": {"link": "down"}, "then": []})");
    stepRow("a branch", R"({"branch": {"on": [{"event": "ack", "steps": []},
        {"command": "climate.manualTemp", "arguments": {"value": 21}, "steps": [{"note": "a"}]}],
        "timeout": 5, "else": []}})");
    stepRow("repetitions", R"({"repeat": {"times": 2, "steps": [{"repeat": {"steps": [{"after": 1}]}}]}})");
}

void TestBoxsimScenarioSchema::acceptsEachKindOfStep()
{
    QFETCH(QByteArray, json);

    boxsim::Scenario scenario;
    QString error;
    QVERIFY2(boxsim::readScenario(json, QStringLiteral("test"), &scenario, &error), qPrintable(error));
    QCOMPARE(refusalOf(json), QString());
}

void TestBoxsimScenarioSchema::refusesWhatTheReaderRefuses_data()
{
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("no object") << QByteArray("[]");
    QTest::newRow("no steps") << QByteArray("{}");
    QTest::newRow("steps that are no list") << QByteArray(R"({"steps": {}})");
    QTest::newRow("an unknown member") << QByteArray(R"({"steps": [], "lop": true})");
    QTest::newRow("a seed below 0") << QByteArray(R"({"steps": [], "seed": -1})");
    QTest::newRow("a loop that is no flag") << QByteArray(R"({"steps": [{"after": 1}], "loop": 1})");
    QTest::newRow("an about of nothing") << QByteArray(R"({"steps": [], "about": ""})");
    QTest::newRow("an unknown field") << QByteArray(R"({"steps": [], "start": {"climate.mainTmp": 4}})");
    QTest::newRow("an entry that there is not")
        << QByteArray(R"({"steps": [], "start": {"vehicle.door.5": true}})");
    stepRow("an empty step", "{}");
    stepRow("a set of nothing", R"({"set": {}})");
    stepRow("two deeds", R"({"note": "a", "end": true})");
    stepRow("an about alone", R"({"about": "a"})");
    stepRow("an unknown member of a step", R"({"after": 1, "nota": "a"})");
    stepRow("two times", R"({"at": 5, "after": 5})");
    stepRow("a time below 0", R"({"after": -1})");
    stepRow("a time that is a text", R"({"after": "1"})");
    stepRow("a value out of range", R"({"set": {"climate.mainUnit": 4}})");
    stepRow("a number with decimals", R"({"set": {"measured.speed": 1.5}})");
    stepRow("a wrong word", R"({"set": {"vehicle.hood": "ajar"}})");
    stepRow("a list that is too short", R"({"set": {"vehicle.door": [true]}})");
    stepRow("a text as a list", R"({"set": {"climate.labels": "a"}})");
    stepRow("a share above 1", R"({"set": {"fault.flipBytes": 1.01}})");
    stepRow("a ramp without a distance", R"({"ramp": {"measured.speed": [[0, 1], [5, 2]]}})");
    stepRow("a distance of no ramp", R"({"every": 5, "note": "a"})");
    stepRow("a ramp of nothing", R"({"every": 5, "ramp": {}})");
    stepRow("a ramp of one point", R"({"every": 5, "ramp": {"measured.speed": [[0, 1]]}})");
    stepRow("a ramp of a flag", R"({"every": 5, "ramp": {"vehicle.hood": [[0, true], [5, false]]}})");
    stepRow("a ramp of a whole list", R"({"every": 5, "ramp": {"parking.rear": [[0, 1], [5, 2]]}})");
    stepRow("a ramp with a value out of range",
            R"({"every": 5, "ramp": {"measured.speed": [[0, 1], [5, 301]]}})");
    stepRow("a point of three numbers", R"({"every": 5, "ramp": {"measured.speed": [[0, 1, 2], [5, 2]]}})");
}

void TestBoxsimScenarioSchema::refusesTheDeedsThatTheReaderRefuses_data()
{
    QTest::addColumn<QByteArray>("json");

    stepRow("a frame without an id", R"({"send": {"tp": "03"}})");
    stepRow("an id of two bytes", R"({"send": {"id": "50 51", "tp": "03"}})");
    stepRow("half a byte", R"({"bytes": "9F 0"})");
    stepRow("no bytes", R"({"bytes": ""})");
    stepRow("no hexadecimal digits", R"({"bytes": "0x9F"})");
    stepRow("a restart that is none", R"({"restart": false})");
    stepRow("a hang-up for no time", R"({"hangUp": 0})");
    stepRow("a hang-up for more than a day", R"({"hangUp": 86400001})");
    stepRow("a note that is no text", R"({"note": 5})");
    stepRow("a wait for nothing", R"({"wait": {"timeout": 5}})");
    stepRow("a wait for two things", R"({"wait": {"command": "climate.acBtn", "event": "linkUp"}})");
    stepRow("a wait for an unknown command", R"({"wait": {"command": "climate.acBtm"}})");
    stepRow("an unknown argument", R"({"wait": {"command": "climate.acBtn", "arguments": {"pres": true}}})");
    stepRow("an argument out of range",
            R"({"wait": {"command": "climate.manualTemp", "arguments": {"value": 256}}})");
    stepRow("a release that there is not",
            R"({"wait": {"command": "vehicle.checkEngine", "arguments": {"press": false}}})");
    stepRow("arguments of a command without any",
            R"({"wait": {"command": "connection.check", "arguments": {"press": true}}})");
    stepRow("arguments of an event", R"({"wait": {"event": "linkUp", "arguments": {}}})");
    stepRow("an unknown event", R"({"wait": {"event": "linkup"}})");
    stepRow("a link that is neither", R"({"wait": {"link": "sideways"}})");
    stepRow("an else without a timeout", R"({"wait": {"event": "ack"}, "else": []})");
    stepRow("a then without a wait", R"({"note": "a", "then": []})");
    stepRow("a branch on nothing", R"({"branch": {"on": []}})");
    stepRow("a branch without steps", R"({"branch": {"on": [{"event": "ack"}]}})");
    stepRow("a branch's else without a timeout",
            R"({"branch": {"on": [{"event": "ack", "steps": []}], "else": []}})");
    stepRow("a repetition of no times", R"({"repeat": {"times": 0, "steps": [{"after": 1}]}})");
    stepRow("a mistake deep inside", R"({"repeat": {"steps": [{"after": 1}, {"note": 1}]}})");
}

void TestBoxsimScenarioSchema::compareRefusals() const
{
    QFETCH(QByteArray, json);

    boxsim::Scenario scenario;
    QString error;
    QVERIFY(!boxsim::readScenario(json, QStringLiteral("test"), &scenario, &error));
    QVERIFY(!refusalOf(json).isEmpty());
}

QTEST_GUILESS_MAIN(TestBoxsimScenarioSchema)
#include "tst_boxsim_scenarioschema.moc"
