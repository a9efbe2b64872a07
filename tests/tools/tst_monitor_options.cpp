#include "options.h"

#include <contentof.h>

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using canbus::monitor::Form;
using canbus::monitor::Options;
using canbus::monitor::parseOptions;

class tst_monitor_options : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasDefaults();
    void takesEveryOption();
    void readsARecordingInThePlaceOfAPort();
    void showsAScreenBeforeTheCalls();
    void roundsADurationUp();
    void helpAndVersionNeedNothingElseToBeRight();
    void refusesAndSaysWhatWouldBeRight_data();
    void refusesAndSaysWhatWouldBeRight();
    void helpNamesEveryOption_data();
    void helpNamesEveryOption();
    void theManualPageHasEveryOptionOfTheHelp();
};

namespace {

auto parsed(const QStringList &arguments)
{
    return parseOptions(QStringList {QStringLiteral("canbus-monitor")} + arguments);
}

} // namespace

void tst_monitor_options::hasDefaults()
{
    const auto options = parsed({});
    QVERIFY(options);
    QCOMPARE(options->port, QStringLiteral("/dev/ttyS3"));
    QCOMPARE(options->baudRate, 57600);
    QVERIFY(options->form == Form::Text);
    QVERIFY(!options->durationMs);
    QCOMPARE(options->calls, QStringList());
    QCOMPARE(options->recordFile, QString());
    QCOMPARE(options->readFile, QString());
    QVERIFY(!options->wantsStats);
    QVERIFY(!options->isVerbose);
    QVERIFY(!options->wantsHelp);
    QVERIFY(!options->wantsVersion);
}

void tst_monitor_options::takesEveryOption()
{
    const auto options = parsed({"--port", "/dev/ttyUSB0", "--baud", "9600", "--json", "--for", "2.5",
                                 "--call", "climate.acBtn", "--call=climate.manualTemp=21", "--verbose",
                                 "--record", "drive.pcapng", "--stats"});
    QVERIFY2(options, qPrintable(options.error()));
    QCOMPARE(options->port, QStringLiteral("/dev/ttyUSB0"));
    QCOMPARE(options->baudRate, 9600);
    QVERIFY(options->form == Form::Json);
    QCOMPARE(options->durationMs.value_or(0), 2500);
    QCOMPARE(options->calls, (QStringList {"climate.acBtn", "climate.manualTemp=21"}));
    QCOMPARE(options->recordFile, QStringLiteral("drive.pcapng"));
    QVERIFY(options->wantsStats);
    QVERIFY(options->isVerbose);
}

void tst_monitor_options::readsARecordingInThePlaceOfAPort()
{
    const auto options = parsed({"--read", "drive.pcapng", "--json", "--for", "2", "--stats", "--verbose"});
    QVERIFY2(options, qPrintable(options.error()));
    QCOMPARE(options->readFile, QStringLiteral("drive.pcapng"));
    QCOMPARE(options->durationMs.value_or(0), 2000);
    QVERIFY(options->wantsStats);
}

void tst_monitor_options::showsAScreenBeforeTheCalls()
{
    const auto options = parsed({"--call", "climate.acBtn", "--screen", "parking"});
    QVERIFY2(options, qPrintable(options.error()));
    QCOMPARE(options->calls, (QStringList {"host.display=76", "climate.acBtn"}));
}

void tst_monitor_options::roundsADurationUp()
{
    const auto options = parsed({"--for", "0.0001"});
    QVERIFY2(options, qPrintable(options.error()));
    QCOMPARE(options->durationMs.value_or(0), 1);
}

void tst_monitor_options::helpAndVersionNeedNothingElseToBeRight()
{
    const auto help = parsed({"--help", "--baud", "x"});
    QVERIFY2(help, qPrintable(help.error()));
    QVERIFY(help->wantsHelp);
    const auto version = parsed({"--version", "more"});
    QVERIFY2(version, qPrintable(version.error()));
    QVERIFY(version->wantsVersion);
}

void tst_monitor_options::refusesAndSaysWhatWouldBeRight_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const QString baud = QStringLiteral(": write a whole number above 0, for example 57600");
    const QString seconds =
        QStringLiteral(": write a number of seconds above 0 and up to 2147483, for example 2.5");
    QTest::newRow("unknown option") << QStringList {"--foo"}
                                    << "Unknown option 'foo': see canbus-monitor --help";
    QTest::newRow("no value") << QStringList {"--port"}
                              << "Missing value after '--port': see canbus-monitor --help";
    QTest::newRow("an argument of its own")
        << QStringList {"/dev/ttyS1"} << R"("/dev/ttyS1" is no option: see canbus-monitor --help)";
    QTest::newRow("empty device") << QStringList {"--port", ""}
                                  << "--port is empty: write a device, for example /dev/ttyS3";
    QTest::newRow("no rate") << QStringList {"--baud", "fast"} << R"(--baud "fast")" + baud;
    QTest::newRow("rate of zero") << QStringList {"--baud", "0"} << R"(--baud "0")" + baud;
    QTest::newRow("negative rate") << QStringList {"--baud=-9600"} << R"(--baud "-9600")" + baud;
    QTest::newRow("rate too high for a number")
        << QStringList {"--baud", "9999999999"} << R"(--baud "9999999999")" + baud;
    QTest::newRow("no such screen") << QStringList {
        "--screen",
        "radio"} << QStringLiteral("--screen \"radio\": write gauges, vehicle, climate, parking or other");
    QTest::newRow("no duration") << QStringList {"--for", "5s"} << R"(--for "5s")" + seconds;
    QTest::newRow("duration of zero") << QStringList {"--for", "0"} << R"(--for "0")" + seconds;
    QTest::newRow("negative duration") << QStringList {"--for=-1"} << R"(--for "-1")" + seconds;
    QTest::newRow("not a number") << QStringList {"--for", "nan"} << R"(--for "nan")" + seconds;
    QTest::newRow("for ever") << QStringList {"--for", "inf"} << R"(--for "inf")" + seconds;
    QTest::newRow("an empty file to record")
        << QStringList {"--record", ""} << "--record is empty: write a file, for example drive.pcapng";
    QTest::newRow("an empty file to read")
        << QStringList {"--read", ""} << "--read is empty: write a file, for example drive.pcapng";
    const QString noPort = QStringLiteral(" and --read: a recording is read without a port, leave one out");
    for (const char *option : {"--port", "--baud", "--record", "--call", "--screen"}) {
        QTest::newRow(qPrintable(QStringLiteral("a recording and %1").arg(option)))
            << QStringList {"--read", "drive.pcapng", option, "x"} << option + noPort;
    }
    QTest::newRow("too long") << QStringList {"--for", "2147484"} << R"(--for "2147484")" + seconds;
}

void tst_monitor_options::refusesAndSaysWhatWouldBeRight()
{
    QFETCH(QStringList, arguments);
    const auto options = parsed(arguments);
    QVERIFY(!options);
    QTEST(options.error(), "error");
}

void tst_monitor_options::helpNamesEveryOption_data()
{
    QTest::addColumn<QString>("option");
    for (const char *option : {"--port <DEVICE>", "--baud <N>", "--json", "--for <SECONDS>",
                               "--screen <NAME>", "--call <GROUP.CONTROL[=ARG,...]>", "--record <FILE>",
                               "--read <FILE>", "--stats", "--verbose", "--help", "--version"})
        QTest::newRow(option) << option;
}

void tst_monitor_options::helpNamesEveryOption()
{
    QFETCH(QString, option);
    QVERIFY2(canbus::monitor::helpText().contains(option), qPrintable(canbus::monitor::helpText()));
}

void tst_monitor_options::theManualPageHasEveryOptionOfTheHelp()
{
    const QString page = QString::fromUtf8(contentOf(CANBUS_SOURCE_DIR "/docs/man/canbus-monitor.1"));
    const QRegularExpression inHelp("^ +--([a-z-]+)", QRegularExpression::MultilineOption);
    int options = 0;
    for (auto found = inHelp.globalMatch(canbus::monitor::helpText()); found.hasNext(); ++options) {
        const QString option = found.next().captured(1).replace("-", R"(\-)");
        const QString entry = QRegularExpression::escape(R"(\-\-)" + option);
        const QRegularExpression inPage(R"(^\.TP\n\.BI? )" + entry + "( |$)",
                                        QRegularExpression::MultilineOption);
        QVERIFY2(inPage.match(page).hasMatch(), qPrintable(option));
    }
    QCOMPARE(options, 12);
}

QTEST_GUILESS_MAIN(tst_monitor_options)
#include "tst_monitor_options.moc"
