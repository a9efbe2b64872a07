#include "boxsim/setup.h"

#include "hexbytes.h"

#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using boxsim::Options;
using boxsim::Setup;

namespace {

// A recording: a section header, an interface of link type USER0, and packets. A word is written with the
// least significant byte first.
constexpr char kSection[] = "0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000";
constexpr char kInterface[] = "01000000 14000000 9300 0000 00000000 14000000";
// Ready, from the box: 10 bytes and 2 to fill up, with the flags "inbound".
constexpr char kReady[] = "06000000 38000000 00000000 00000000 40420f00 0a000000 0a000000 "
                          "9f024001000001409f03 0000 0200 0400 01000000 00000000 38000000";
// A text screen, from the box: 13 bytes and 3 to fill up.
constexpr char kTextScreen[] = "06000000 3c000000 00000000 00000000 40420f00 0d000000 0d000000 "
                               "9f0278110000000000 00 699f03 000000 0200 0400 01000000 00000000 3c000000";

} // namespace

class TestBoxsimSetup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void playsTheBuiltInDriveWithoutAFile();
    void takesWhatTheOptionsSay();
    void drawsASeedAndTellsItWhenNoneIsGiven();
    void prefersAGivenSeedToTheScenarios();
    void leavesEverythingToARecordingWithAHandshake();
    void answersConnectRequestsForARecordingWithoutAHandshake();
    void saysWhatIsWrongWithAFile_data();
    void saysWhatIsWrongWithAFile();
    void countsTheStepsOfACorrectScenario_data();
    void countsTheStepsOfACorrectScenario();

private:
    QString fileWith(const QByteArray &content);
    Setup made(const Options &options);

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestBoxsimSetup::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QString TestBoxsimSetup::fileWith(const QByteArray &content)
{
    QFile file(m_folder->filePath("file"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s", qPrintable(file.errorString()));
    return file.fileName();
}

Setup TestBoxsimSetup::made(const Options &options)
{
    Setup setup;
    QString error;
    if (!boxsim::setUp(options, &setup, &error))
        qFatal("%s", qPrintable(error));
    return setup;
}

void TestBoxsimSetup::playsTheBuiltInDriveWithoutAFile()
{
    Setup setup = made({});

    QVERIFY(setup.script);
    boxsim::Bench bench(setup.bench, std::move(setup.script));
    bench.advance(0);
    QVERIFY(!bench.state().car.climate.title.isEmpty());
    QVERIFY(setup.bench.box.reportsState && setup.bench.box.saysReady);
}

void TestBoxsimSetup::takesWhatTheOptionsSay()
{
    Options options;
    options.seed = 99;
    options.speed = 2.5;
    options.silentAfterMs = 1234;
    options.restartAfterMs = 2345;
    options.hangUpAfterMs = 3456;
    options.hangUpForMs = 4567;
    options.faults.noise = 3;
    options.scenario = fileWith(R"({"steps":[{"note":"a"}]})");

    const Setup setup = made(options);

    QCOMPARE(setup.bench.box.seed, 99U);
    QVERIFY(!setup.bench.tellsSeed);
    QCOMPARE(setup.bench.speed, 2.5);
    QCOMPARE(setup.bench.silentAfterMs, qint64(1234));
    QCOMPARE(setup.bench.restartAfterMs, qint64(2345));
    QCOMPARE(setup.bench.hangUpAfterMs, qint64(3456));
    QCOMPARE(setup.bench.hangUpForMs, 4567);
    QCOMPARE(setup.bench.faults.noise, 3.0);
}

void TestBoxsimSetup::drawsASeedAndTellsItWhenNoneIsGiven()
{
    QSet<quint32> seeds;
    for (int i = 0; i < 4; ++i) {
        const Setup setup = made({});
        QVERIFY(setup.bench.tellsSeed);
        seeds.insert(setup.bench.box.seed);
    }
    QVERIFY(seeds.size() > 1);
}

void TestBoxsimSetup::prefersAGivenSeedToTheScenarios()
{
    Options options;
    options.scenario = fileWith(R"({"seed":12,"steps":[{"note":"a"}]})");
    const Setup ofScenario = made(options);
    QCOMPARE(ofScenario.bench.box.seed, 12U);
    QVERIFY(!ofScenario.bench.tellsSeed);

    options.seed = 13;
    QCOMPARE(made(options).bench.box.seed, 13U);
}

void TestBoxsimSetup::leavesEverythingToARecordingWithAHandshake()
{
    Options options;
    options.replay = fileWith(bytes(kSection) + bytes(kInterface) + bytes(kReady));

    const Setup setup = made(options);

    QVERIFY(setup.script);
    QVERIFY(!setup.bench.box.reportsState);
    QVERIFY(!setup.bench.box.saysReady);
}

void TestBoxsimSetup::answersConnectRequestsForARecordingWithoutAHandshake()
{
    Options options;
    options.replay = fileWith(bytes(kSection) + bytes(kInterface) + bytes(kTextScreen));

    const Setup setup = made(options);

    QVERIFY(setup.script);
    QVERIFY(!setup.bench.box.reportsState);
    QVERIFY(setup.bench.box.saysReady);
}

void TestBoxsimSetup::saysWhatIsWrongWithAFile_data()
{
    QTest::addColumn<bool>("isReplay");
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("no scenario") << false << QByteArray("[]");
    QTest::newRow("no recording") << true << QByteArray("[]");
    QTest::newRow("a recording with nothing in it") << true << bytes(kSection) + bytes(kInterface);
    QTest::newRow("a recording that is cut")
        << true << bytes(kSection) + bytes(kInterface) + bytes(kReady) + bytes(kTextScreen).chopped(1);
}

void TestBoxsimSetup::saysWhatIsWrongWithAFile()
{
    QFETCH(bool, isReplay);
    QFETCH(QByteArray, content);
    const QString path = fileWith(content);
    Options options;
    (isReplay ? options.replay : options.scenario) = path;
    Setup setup;
    QString error;

    QVERIFY(!boxsim::setUp(options, &setup, &error));

    QVERIFY2(error.contains(path) && error.size() > path.size() + 5, qPrintable(error));
    QVERIFY(!error.contains('\n'));
}

void TestBoxsimSetup::countsTheStepsOfACorrectScenario_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<QString>("report");

    QTest::newRow("one") << QByteArray(R"({"steps":[{"note":"a"}]})") << "1 step, correct";
    QTest::newRow("steps within steps")
        << QByteArray(R"({"steps":[{"repeat":{"times":2,"steps":[{"note":"a"},{"note":"b"}]}},)"
                      R"({"wait":{"link":"up","timeout":5},"then":[{"note":"c"}],"else":[{"end":true}]}]})")
        << "6 steps, correct";
}

void TestBoxsimSetup::countsTheStepsOfACorrectScenario()
{
    QFETCH(QByteArray, scenario);
    QFETCH(QString, report);
    Options options;
    options.scenario = fileWith(scenario);
    QString told;
    QString error;

    QVERIFY2(boxsim::checkScenario(options, &told, &error), qPrintable(error));

    QCOMPARE(told, options.scenario + ": " + report);
}

QTEST_GUILESS_MAIN(TestBoxsimSetup)
#include "tst_boxsim_setup.moc"
