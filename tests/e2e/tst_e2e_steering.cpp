#include "bench.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <sys/stat.h>

// The box as a bench that is steered: by lines on its standard input, by scenarios, and by its options; and
// with which status it ends.

namespace {

constexpr int kLimitMs = 30000;
constexpr int kLossMs = 15000 + 900 + 10000; // the next connection check, its loss, and a slow machine

auto isEvent(const QString &name)
{
    return [name](const QJsonObject &line) { return line["event"] == name; };
}

auto isAnswer(const QString &text)
{
    return [text](const QJsonObject &line) { return line["answer"] == text; };
}

auto isMainTemp(int value)
{
    return [value](const QJsonObject &line) {
        return line["signal"] == QLatin1String("updateClimateMainTemp")
            && line["args"].toObject()["value"] == value;
    };
}

} // namespace

class EndToEndSteering : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void setsWhatTheHeadUnitShows();
    void answersAndComplainsAndGoesOn();
    void endsWithTheWordQuit();
    void outlivesTheEndOfItsInput();
    void fallsSilentAndSpeaksAgain();
    void hangsUpAndLetsTheHeadUnitBackIn();
    void endsAsTheScenarioSays_data();
    void endsAsTheScenarioSays();
    void refusesFaultyFilesBeforeItOpensAnything_data();
    void refusesFaultyFilesBeforeItOpensAnything();
    void saysThatAScenarioIsCorrect();
    void printsTheSchemaOfScenarios();
    void tellsTheSeedThatItDraws();
    void keepsQuietAboutAGivenSeed();

private:
    QString fileWith(const QByteArray &content);

    std::unique_ptr<QTemporaryDir> m_folder;
};

void EndToEndSteering::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QString EndToEndSteering::fileWith(const QByteArray &content)
{
    QFile file(m_folder->filePath("file"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s", qPrintable(file.errorString()));
    return file.fileName();
}

void EndToEndSteering::setsWhatTheHeadUnitShows()
{
    Bench bench({"--scenario", fileWith(R"({"steps":[{"after":0,"note":"nothing moves"}]})")});
    QVERIFY(bench.startBox());
    bench.startMonitor();
    QVERIFY(bench.waitForLink());

    bench.box->writeLine("climate.mainTemp=215");

    QTRY_VERIFY_WITH_TIMEOUT(bench.monitor->hasObject(isMainTemp(215)), kLimitMs);
}

void EndToEndSteering::answersAndComplainsAndGoesOn()
{
    Bench bench;
    QVERIFY(bench.startBox());

    bench.box->writeLine("climate.mainTemp=warm");
    bench.box->writeLine("note gr\xfc\xdf");
    bench.box->writeLine("note " + QByteArray(5000, 'x'));
    bench.box->writeLine(QByteArray("fault.pause\0Ms=7", 16));
    bench.box->writeLine("fault.pauseMs=7");
    bench.box->writeLine("fault.pauseMs");
    QTRY_VERIFY_WITH_TIMEOUT(bench.box->hasObject(isAnswer("fault.pauseMs=7")), kLimitMs);
    bench.box->writeLine("quit");
    QCOMPARE(bench.box->exitStatus(), 0);

    const QList<QByteArray> complaints = bench.box->complaints();
    QCOMPARE(complaints.size(), 4);
    QVERIFY2(complaints.at(0).startsWith("canbus-boxsim: climate.mainTemp "), complaints.at(0).constData());
    QVERIFY2(complaints.at(1).contains(" is not UTF-8"), complaints.at(1).constData());
    QVERIFY2(complaints.at(2).contains(" more than 4096 bytes"), complaints.at(2).constData());
    QVERIFY2(complaints.at(3).contains("\"fault.pause\\x00Ms\""), complaints.at(3).constData());
}

void EndToEndSteering::endsWithTheWordQuit()
{
    Bench bench;
    QVERIFY(bench.startBox());

    bench.box->writeLine("quit");

    QCOMPARE(bench.box->exitStatus(), 0);
    QVERIFY(!QFileInfo(bench.link()).isSymLink());
}

void EndToEndSteering::outlivesTheEndOfItsInput()
{
    Bench bench;
    QVERIFY(bench.startBox());

    bench.box->closeInput();
    bench.startMonitor();

    QVERIFY(bench.waitForLink());
    QVERIFY(bench.box->isRunning());
    const long before = bench.box->processorTicks();
    bench.monitor->signal(SIGINT);
    QVERIFY(bench.monitor->endsWell());
    QVERIFY(bench.box->processorTicks() - before < sysconf(_SC_CLK_TCK));
}

void EndToEndSteering::fallsSilentAndSpeaksAgain()
{
    Bench bench;
    QVERIFY(bench.startBox());
    bench.startMonitor();
    QVERIFY(bench.waitForLink());

    bench.box->writeLine("fault.silence");
    QVERIFY(bench.waitForLink(false, kLossMs));
    QVERIFY(bench.box->hasObject(isEvent("silent")));
    const int before = bench.monitor->count(Bench::isStatus(true));
    bench.box->writeLine("fault.silence=off");

    QTRY_VERIFY_WITH_TIMEOUT(bench.monitor->count(Bench::isStatus(true)) > before, kLimitMs);
    QVERIFY(bench.box->hasObject(isEvent("speaking")));
}

void EndToEndSteering::hangsUpAndLetsTheHeadUnitBackIn()
{
    Bench bench;
    QVERIFY(bench.startBox());
    bench.startMonitor();
    QVERIFY(bench.waitForLink());

    bench.box->writeLine("hangup 10");
    QTRY_VERIFY_WITH_TIMEOUT(bench.box->hasObject(isEvent("lineBack")), kLimitMs);
    bench.startMonitor();

    QVERIFY(bench.waitForLink());
    QVERIFY(bench.box->isRunning());
}

void EndToEndSteering::endsAsTheScenarioSays_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<int>("status");
    QTest::addColumn<QList<QByteArray>>("complaints");

    QTest::newRow("well") << QByteArray(R"({"steps":[{"after":50,"end":true}]})") << 0 << QList<QByteArray>();
    QTest::newRow("with a failure") << QByteArray(R"({"steps":[{"after":50,"fail":"no head unit came"}]})")
                                    << 1 << QList<QByteArray> {"canbus-boxsim: no head unit came"};
}

void EndToEndSteering::endsAsTheScenarioSays()
{
    QFETCH(QByteArray, scenario);
    QFETCH(int, status);
    QFETCH(QList<QByteArray>, complaints);
    Bench bench({"--scenario", fileWith(scenario)});
    QVERIFY(bench.startBox());

    QCOMPARE(bench.box->exitStatus(), status);
    QCOMPARE(bench.box->complaints(), complaints);
}

void EndToEndSteering::refusesFaultyFilesBeforeItOpensAnything_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("a scenario that is no JSON") << "--scenario" << QByteArray("steps");
    QTest::newRow("a scenario with an unknown field")
        << "--scenario" << QByteArray(R"({"steps":[{"set":{"climate.warmth":1}}]})");
    QTest::newRow("a recording that is none") << "--replay" << QByteArray("\x0a\x0d", 2);
    QTest::newRow("an empty recording") << "--replay" << QByteArray();
}

void EndToEndSteering::refusesFaultyFilesBeforeItOpensAnything()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, content);
    const QString link = m_folder->filePath("box");
    const QString file = fileWith(content);
    const QString pipe = m_folder->filePath("pipe");
    QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
    for (const QString &path : {file, m_folder->filePath("missing"), pipe}) {
        Program box("canbus-boxsim", {"--pty", link, option, path});

        QCOMPARE(box.exitStatus(), 2);
        const QList<QByteArray> complaints = box.complaints();
        QCOMPARE(complaints.size(), 1);
        QVERIFY2(complaints.at(0).contains(path.toUtf8()), complaints.at(0).constData());
        QCOMPARE(box.lines(), QVector<QByteArray>());
        QVERIFY(!QFileInfo(link).isSymLink());
    }
}

void EndToEndSteering::saysThatAScenarioIsCorrect()
{
    const QString path = fileWith(
        R"({"steps":[{"repeat":{"times":3,"steps":[{"note":"a"},{"after":5,"note":"b"}]}},{"end":true}]})");
    Program box("canbus-boxsim", {"--check", "--scenario", path});

    QCOMPARE(box.exitStatus(), 0);
    QCOMPARE(box.lines(), QVector<QByteArray> {path.toUtf8() + ": 4 steps, correct"});
}

void EndToEndSteering::printsTheSchemaOfScenarios()
{
    Program box("canbus-boxsim", {"--print-schema"});

    QCOMPARE(box.exitStatus(), 0);
    const QJsonObject schema = QJsonDocument::fromJson(box.lines().toList().join('\n')).object();
    QVERIFY(schema["properties"].toObject().contains("steps"));
}

void EndToEndSteering::tellsTheSeedThatItDraws()
{
    Bench bench({"--corrupt", "0.01"});
    QVERIFY(bench.startBox());

    QTRY_VERIFY_WITH_TIMEOUT(bench.box->hasObject(isEvent("seed")), kLimitMs);
    QCOMPARE(bench.box->objects().at(1)["event"].toString(), QStringLiteral("seed"));
    bool isNumber = false;
    bench.box->objects().at(1)["reason"].toString().toUInt(&isNumber);
    QVERIFY(isNumber);
}

void EndToEndSteering::keepsQuietAboutAGivenSeed()
{
    Bench bench({"--corrupt", "0.01", "--seed", "7"});
    QVERIFY(bench.startBox());
    bench.box->writeLine("fault.flipBytes");
    QTRY_VERIFY_WITH_TIMEOUT(bench.box->hasObject(isAnswer("fault.flipBytes=0.01")), kLimitMs);

    QVERIFY(!bench.box->hasObject(isEvent("seed")));
}

QTEST_GUILESS_MAIN(EndToEndSteering)
#include "tst_e2e_steering.moc"
