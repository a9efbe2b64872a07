#include "boxsim/fields/fields.h"
#include "boxsim/options.h"

#include <contentof.h>

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using boxsim::Options;

namespace {

QStringList commandLine(const QStringList &arguments)
{
    return QStringList {"canbus-boxsim"} + arguments;
}

Options parsed(const QStringList &arguments)
{
    Options options;
    QString error;
    if (!boxsim::parseOptions(commandLine(arguments), &options, &error))
        options.ptyLink = QStringLiteral("(refused: %1)").arg(error);
    return options;
}

} // namespace

class TestBoxsimOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasDefaults();
    void takesEveryOption();
    void takesASpeedOfTheBuiltInDrive();
    void takesARecording();
    void takesEveryFaultByName();
    void takesTheFullNameOfAFault();
    void checksAScenarioWithoutALine();
    void printsTheSchemaWithoutALine();
    void takesADeviceAndItsBaudRate();
    void showsHelpAndVersionWithoutALine();
    void theManualPageHasEveryOptionOfTheHelp();
    void saysWhatIsWrong_data();
    void saysWhatIsWrong();
    void saysWhatIsWrongWithAFault_data();
    void saysWhatIsWrongWithAFault();
};

void TestBoxsimOptions::hasDefaults()
{
    const Options options = parsed({"--pty", "box"});

    QCOMPARE(int(options.task), int(Options::Task::Run));
    QCOMPARE(options.ptyLink, QStringLiteral("box"));
    QVERIFY(options.port.isEmpty());
    QCOMPARE(options.baudRate, 57600);
    QVERIFY(!options.json && !options.loop && !options.seed);
    QVERIFY(options.scenario.isEmpty() && options.replay.isEmpty());
    QCOMPARE(options.speed, 1.0);
    QCOMPARE(options.silentAfterMs, boxsim::kNever);
    QCOMPARE(options.restartAfterMs, boxsim::kNever);
    QCOMPARE(options.hangUpAfterMs, boxsim::kNever);
    QCOMPARE(options.hangUpForMs, 1000);
    QVERIFY(!options.faults.split && options.faults.dropAnswers == 0 && options.faults.noise == 0);
    QCOMPARE(options.faults.notReadyReplies, 0);
}

void TestBoxsimOptions::takesEveryOption()
{
    const Options options = parsed(
        {"--pty=box", "--split",         "--json",     "--silent-after",  "0",          "--not-ready",
         "3",         "--drop-answers",  "0.25",       "--corrupt",       "0.01",       "--noise",
         "12.5",      "--seed",          "4294967295", "--scenario",      "rain.json",  "--speed",
         "0.5",       "--restart-after", "5000",       "--hang-up-after", "2147483647", "--hang-up-for",
         "86400000"});

    QCOMPARE(options.ptyLink, QStringLiteral("box"));
    QVERIFY(options.json);
    QCOMPARE(options.silentAfterMs, qint64(0));
    QCOMPARE(options.restartAfterMs, qint64(5000));
    QCOMPARE(options.hangUpAfterMs, qint64(2147483647));
    QCOMPARE(options.hangUpForMs, 86400000);
    QVERIFY(options.faults.split);
    QCOMPARE(options.faults.notReadyReplies, 3);
    QCOMPARE(options.faults.dropAnswers, 0.25);
    QCOMPARE(options.faults.flipBytes, 0.01);
    QCOMPARE(options.faults.noise, 12.5);
    QCOMPARE(options.seed.value(), 4294967295U);
    QCOMPARE(options.scenario, QStringLiteral("rain.json"));
    QCOMPARE(options.speed, 0.5);
}

void TestBoxsimOptions::takesASpeedOfTheBuiltInDrive()
{
    const Options options = parsed({"--pty", "box", "--speed", "10"});

    QCOMPARE(options.ptyLink, QStringLiteral("box"));
    QCOMPARE(options.speed, 10.0);
}

void TestBoxsimOptions::takesARecording()
{
    const Options options = parsed({"--pty", "box", "--replay", "drive.pcapng", "--loop", "--speed=1000"});

    QCOMPARE(options.replay, QStringLiteral("drive.pcapng"));
    QVERIFY(options.loop);
    QCOMPARE(options.speed, 1000.0);
}

void TestBoxsimOptions::takesEveryFaultByName()
{
    QStringList arguments {"--pty", "box"};
    int count = 0;
    for (const boxsim::Field &field : boxsim::allFields()) {
        if (!field.name.startsWith("fault."))
            continue;
        const QString value = field.kind == boxsim::FieldKind::Flag ? "true" : "1";
        arguments << "--fault" << field.name.mid(6) + '=' + value;
        ++count;
    }
    const boxsim::Faults faults = parsed(arguments).faults;

    QCOMPARE(count, 17);
    QVERIFY(faults.split && faults.splitRound && faults.silence);
    for (const double share :
         {faults.dropAnswers, faults.nackAnswers, faults.wrongIds, faults.wrongChecks, faults.flipBytes,
          faults.loseBytes, faults.doubleBytes, faults.insertBytes, faults.noise})
        QCOMPARE(share, 1.0);
    for (const int number :
         {faults.dropFirstAnswers, faults.splitAt, faults.mergeMs, faults.pauseMs, faults.notReadyReplies})
        QCOMPARE(number, 1);
}

void TestBoxsimOptions::takesTheFullNameOfAFault()
{
    const Options options = parsed({"--pty", "box", "--fault", "fault.pauseMs=40"});

    QCOMPARE(options.ptyLink, QStringLiteral("box"));
    QCOMPARE(options.faults.pauseMs, 40);
}

void TestBoxsimOptions::checksAScenarioWithoutALine()
{
    const Options options = parsed({"--check", "--scenario", "rain.json"});

    QCOMPARE(int(options.task), int(Options::Task::Check));
    QCOMPARE(options.scenario, QStringLiteral("rain.json"));
}

void TestBoxsimOptions::printsTheSchemaWithoutALine()
{
    QCOMPARE(int(parsed({"--print-schema"}).task), int(Options::Task::PrintSchema));
}

void TestBoxsimOptions::takesADeviceAndItsBaudRate()
{
    const Options options = parsed({"--port", "/dev/ttyUSB0", "--baud", "115200"});

    QVERIFY(options.ptyLink.isEmpty());
    QCOMPARE(options.port, QStringLiteral("/dev/ttyUSB0"));
    QCOMPARE(options.baudRate, 115200);
}

void TestBoxsimOptions::showsHelpAndVersionWithoutALine()
{
    const Options help = parsed({"--help"});
    QCOMPARE(int(help.task), int(Options::Task::ShowHelp));
    for (const char *option : {"--pty", "--port", "--baud", "--scenario", "--replay", "--fault"})
        QVERIFY2(help.helpText.contains(QLatin1String(option)), option);
    QCOMPARE(int(parsed({"--version"}).task), int(Options::Task::ShowVersion));
}

void TestBoxsimOptions::theManualPageHasEveryOptionOfTheHelp()
{
    const QString page = QString::fromUtf8(contentOf(CANBUS_SOURCE_DIR "/docs/man/canbus-boxsim.1"));
    const QRegularExpression inHelp("^ +--([a-z-]+)", QRegularExpression::MultilineOption);
    int options = 0;
    for (auto found = inHelp.globalMatch(parsed({"--help"}).helpText); found.hasNext(); ++options) {
        const QString option = found.next().captured(1);
        // The page's macro for an option writes the first of its dashes.
        const QRegularExpression inPage(R"(^\.It Fl -)" + option + "( |$)",
                                        QRegularExpression::MultilineOption);
        QVERIFY2(inPage.match(page).hasMatch(), qPrintable(option));
    }
    QCOMPARE(options, 23);
}

void TestBoxsimOptions::saysWhatIsWrong_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");

    const QString oneLine = QStringLiteral("give either --pty LINK or --port DEVICE, and one of them");
    QTest::newRow("no line") << QStringList() << oneLine;
    QTest::newRow("two lines") << QStringList {"--pty", "a", "--port", "b"} << oneLine;
    QTest::newRow("an empty path") << QStringList {"--pty", ""}
                                   << "--pty and --port take a path, not nothing";
    QTest::newRow("an option that does not exist")
        << QStringList {"--pty", "a", "--loud"} << "Unknown option 'loud'; see --help";
    QTest::newRow("an option without its value")
        << QStringList {"--pty"} << "Missing value after '--pty'; see --help";
    QTest::newRow("a stray word") << QStringList {"--pty", "a", "b"}
                                  << "\"b\" belongs to no option; see --help";
    QTest::newRow("a baud rate for a pseudo-terminal")
        << QStringList {"--pty", "a", "--baud", "9600"}
        << "--baud goes with --port DEVICE: a pseudo-terminal has no baud rate";
    const auto row = [](const char *name, const QStringList &arguments, const char *expected) {
        QTest::newRow(name) << QStringList {"--pty", "a"} + arguments << QString(expected);
    };
    QTest::newRow("a baud rate that is no number")
        << QStringList {"--port", "a", "--baud", "fast"}
        << "--baud takes a whole number from 1 to 2147483647, not \"fast\"";
    QTest::newRow("a baud rate of 0") << QStringList {"--port", "a", "--baud", "0"}
                                      << "--baud takes a whole number from 1 to 2147483647, not \"0\"";
    const char noLine[] = "--check and --print-schema open no line: leave --pty and --port out";
    row("a check with a line", {"--check", "--scenario", "b"}, noLine);
    row("a schema with a line", {"--print-schema"}, noLine);
    QTest::newRow("a schema of a scenario") << QStringList {"--print-schema", "--scenario", "b"}
                                            << "--print-schema takes no --scenario: use --check to check one";
    QTest::newRow("a check of nothing")
        << QStringList {"--check"} << "--check goes with --scenario FILE: there is nothing else to check";
    row("a negative time", {"--silent-after=-1"},
        "--silent-after takes a whole number from 0 to 2147483647, not \"-1\"");
    row("a seed that is too long", {"--seed", "4294967296"},
        "--seed takes a whole number from 0 to 4294967295, not \"4294967296\"");
    row("a scenario and a recording", {"--scenario", "b", "--replay", "c"},
        "give either --scenario FILE or --replay FILE, and not both");
    row("an empty scenario path", {"--scenario", ""}, "--scenario takes a path, not nothing");
    row("an empty recording path", {"--replay", ""}, "--replay takes a path, not nothing");
    row("a negative time to a restart", {"--restart-after=-1"},
        "--restart-after takes a whole number from 0 to 2147483647, not \"-1\"");
    row("a time to a hang-up that is no number", {"--hang-up-after", "soon"},
        "--hang-up-after takes a whole number from 0 to 2147483647, not \"soon\"");
    row("a hang-up for no time", {"--hang-up-after", "5", "--hang-up-for", "0"},
        "--hang-up-for takes a whole number from 1 to 86400000, not \"0\"");
    row("a hang-up without a beginning", {"--hang-up-for", "5"},
        "--hang-up-for goes with --hang-up-after MS, which says when");
    row("a speed of 0", {"--replay", "b", "--speed", "0"},
        "--speed takes a number from 0.001 to 1000, not \"0\"");
    row("a speed that is no number", {"--replay", "b", "--speed", "nan"},
        "--speed takes a number from 0.001 to 1000, not \"nan\"");
    row("a scenario in a loop", {"--scenario", "b", "--loop"},
        "--loop goes with --replay FILE; a scenario says itself whether it begins again");
    row("a fault without a value", {"--fault", "silence"}, "--fault takes NAME=VALUE, not \"silence\"");
    row("a fault without a name", {"--fault", "=1"}, "--fault takes NAME=VALUE, not \"=1\"");
}

void TestBoxsimOptions::saysWhatIsWrongWithAFault_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("beginning");

    QTest::newRow("half a reply") << QStringList {"--not-ready", "0.5"}
                                  << "--not-ready: fault.notReadyReplies ";
    QTest::newRow("a share above 1") << QStringList {"--drop-answers", "1.5"}
                                     << "--drop-answers: fault.dropAnswers ";
    QTest::newRow("no share") << QStringList {"--corrupt", "much"} << "--corrupt: fault.flipBytes ";
    QTest::newRow("negative noise") << QStringList {"--noise=-1"} << "--noise: fault.noise ";
    QTest::newRow("a value out of range")
        << QStringList {"--fault", "pauseMs=-1"} << "--fault: fault.pauseMs ";
    QTest::newRow("an unknown fault") << QStringList {"--fault", "pause=1"} << "--fault: ";
    QTest::newRow("a field that is no fault") << QStringList {"--fault", "climate.mainTemp=1"} << "--fault: ";
}

void TestBoxsimOptions::saysWhatIsWrongWithAFault()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, beginning);
    Options options;
    QString error;

    QVERIFY(!boxsim::parseOptions(commandLine(QStringList {"--pty", "a"} + arguments), &options, &error));
    QVERIFY2(error.startsWith(beginning) && error.size() > beginning.size(), qPrintable(error));
    QVERIFY(!error.contains('\n'));
}

void TestBoxsimOptions::saysWhatIsWrong()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    Options options;
    QString error;

    QVERIFY(!boxsim::parseOptions(commandLine(arguments), &options, &error));
    QCOMPARE(error, expected);
}

QTEST_GUILESS_MAIN(TestBoxsimOptions)
#include "tst_boxsim_options.moc"
