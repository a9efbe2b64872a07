#include "boxsim/options.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

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
    void takesADeviceAndItsBaudRate();
    void showsHelpAndVersionWithoutALine();
    void theManualPageHasEveryOptionOfTheHelp();
    void saysWhatIsWrong_data();
    void saysWhatIsWrong();
};

void TestBoxsimOptions::hasDefaults()
{
    const Options options = parsed({"--pty", "box"});

    QCOMPARE(int(options.task), int(Options::Task::Run));
    QCOMPARE(options.ptyLink, QStringLiteral("box"));
    QVERIFY(options.port.isEmpty());
    QCOMPARE(options.baudRate, 57600);
    QVERIFY(!options.split && !options.json);
    QCOMPARE(options.silentAfterMs, boxsim::kNever);
    QCOMPARE(options.faults.notReadyReplies, 0);
}

void TestBoxsimOptions::takesEveryOption()
{
    const Options options =
        parsed({"--pty=box", "--split", "--json", "--silent-after", "0", "--not-ready", "3"});

    QCOMPARE(options.ptyLink, QStringLiteral("box"));
    QVERIFY(options.split && options.json);
    QCOMPARE(options.silentAfterMs, qint64(0));
    QCOMPARE(options.faults.notReadyReplies, 3);
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
    for (const char *option : {"--pty", "--port", "--baud", "--split", "--silent-after", "--not-ready"})
        QVERIFY2(help.helpText.contains(QLatin1String(option)), option);
    QCOMPARE(int(parsed({"--version"}).task), int(Options::Task::ShowVersion));
}

void TestBoxsimOptions::theManualPageHasEveryOptionOfTheHelp()
{
    QFile file(CANBUS_SOURCE_DIR "/docs/man/canbus-boxsim.1");
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QString page = QString::fromUtf8(file.readAll());
    const QRegularExpression inHelp("^ +--([a-z-]+)", QRegularExpression::MultilineOption);
    int options = 0;
    for (auto found = inHelp.globalMatch(parsed({"--help"}).helpText); found.hasNext(); ++options) {
        const QString option = found.next().captured(1);
        // The page's macro for an option writes the first of its dashes.
        const QRegularExpression inPage(R"(^\.It Fl -)" + option + "( |$)",
                                        QRegularExpression::MultilineOption);
        QVERIFY2(inPage.match(page).hasMatch(), qPrintable(option));
    }
    QCOMPARE(options, 9);
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
    QTest::newRow("a baud rate that is no number") << QStringList {"--port", "a", "--baud", "fast"}
                                                   << "--baud takes a whole number from 1, not \"fast\"";
    QTest::newRow("a baud rate of 0")
        << QStringList {"--port", "a", "--baud", "0"} << "--baud takes a whole number from 1, not \"0\"";
    QTest::newRow("a negative time") << QStringList {"--pty", "a", "--silent-after=-1"}
                                     << "--silent-after takes a whole number from 0, not \"-1\"";
    QTest::newRow("half a reply") << QStringList {"--pty", "a", "--not-ready", "0.5"}
                                  << "--not-ready takes a whole number from 0, not \"0.5\"";
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
