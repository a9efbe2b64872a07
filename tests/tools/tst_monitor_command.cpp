#include "command.h"
#include "longestwait.h"
#include "pseudoterminal.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <csignal>

class tst_monitor_command : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysThatThePortIsOpen();
    void saysInOneLineWhyThePortDoesNotOpen_data();
    void saysInOneLineWhyThePortDoesNotOpen();
    void saysWhereItLookedForANameWithoutAFolder();
    void refusesLinesThatAreNone();
    void refusesWrongArgumentsBeforeItStarts_data();
    void refusesWrongArgumentsBeforeItStarts();
    void endsWhenItIsTold_data();
    void endsWhenItIsTold();
    void endsAfterItsTime();
    void endsQuietlyWhenNobodyReads();
    void goesOnAfterTheEndOfItsInput();
    void makesCallsFromItsInputAtOnce();
    void answersImpossibleCallsAndGoesOn();
    void listsWhatCanBeCalled();
    void namesTheCallsThatWereNotMade();
    void writesTheLibrarysLogOnlyWhenAsked();
    void callsOnceTheLinkIsUpAndPrintsWhatTheBoxReports();
    void printsJson();
    void endsInTheMiddleOfTraffic();
};

void tst_monitor_command::saysThatThePortIsOpen()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name(), "--baud", "9600"});
    const QByteArray expected = "host portOpened device=\"" + line.name().toUtf8() + "\" baud=9600";
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine(expected), kLongestWaitMs);
    const termios settings = line.settings();
    QCOMPARE(::cfgetospeed(&settings), speed_t(B9600));
}

void tst_monitor_command::saysInOneLineWhyThePortDoesNotOpen_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("missing") << "/dev/there-is-no-such-device" << QByteArray("No such file or directory");
    QTest::newRow("no serial line") << "/dev/null" << QByteArray("Inappropriate ioctl for device");
    QTest::newRow("folder") << "/tmp" << QByteArray("Is a directory");
    QTest::newRow("missing in this folder") << "./no-such-device" << QByteArray("No such file or directory");
}

void tst_monitor_command::saysInOneLineWhyThePortDoesNotOpen()
{
    QFETCH(QString, device);
    QFETCH(QByteArray, reason);
    Command monitor({"--port", device});
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(monitor.errors(),
             "canbus-monitor: cannot open " + device.toUtf8() + " at 57600 baud: " + reason
                 + ": name the box's device with --port\n");
    QCOMPARE(monitor.output(), QByteArray());
}

void tst_monitor_command::saysWhereItLookedForANameWithoutAFolder()
{
    Command monitor({"--port", "no-such-device"});
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(
        monitor.errors(),
        QByteArray("canbus-monitor: cannot open no-such-device (tried /dev/no-such-device) at 57600 baud: "
                   "No such file or directory: name the box's device with --port\n"));
}

void tst_monitor_command::refusesLinesThatAreNone()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name()});
    monitor.type("climate.acBtn\xff");
    monitor.type(QByteArray(5000, 'x'));
    monitor.type("quit");
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(
        monitor.errors(),
        QByteArray("canbus-monitor: a line of standard input is not UTF-8: write it in that encoding\n"
                   "canbus-monitor: a line of standard input has more than 4096 bytes: write it shorter\n"));
}

void tst_monitor_command::refusesWrongArgumentsBeforeItStarts_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("an unknown option")
        << QStringList {"--foo"}
        << QByteArray("canbus-monitor: Unknown option 'foo': see canbus-monitor --help\n");
    QTest::newRow("an impossible call among possible ones")
        << QStringList {"--call", "climate.acBtn", "--call", "climate.acBtnn"}
        << QByteArray("canbus-monitor: --call climate.acBtnn: climate has no call \"acBtnn\": did you mean "
                      "acBtn?\n");
}

void tst_monitor_command::refusesWrongArgumentsBeforeItStarts()
{
    QFETCH(QStringList, arguments);
    const PseudoTerminal line;
    Command monitor(QStringList {"--port", line.name()} + arguments);
    QCOMPARE(monitor.waitForEnd(), 2);
    QTEST(monitor.errors(), "error");
    QCOMPARE(monitor.output(), QByteArray());
}

void tst_monitor_command::endsWhenItIsTold_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("quit") << 0;
}

void tst_monitor_command::endsWhenItIsTold()
{
    QFETCH(int, signal);
    const PseudoTerminal line;
    Command monitor({"--port", line.name()});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kLongestWaitMs);
    if (signal == 0)
        monitor.type("quit");
    else
        monitor.sendSignal(signal);
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.errors(), QByteArray());
}

void tst_monitor_command::endsAfterItsTime()
{
    const PseudoTerminal line;
    QElapsedTimer clock;
    clock.start();
    Command monitor({"--port", line.name(), "--for", "0.3"});
    QCOMPARE(monitor.waitForEnd(), 0);
    QVERIFY(clock.elapsed() >= 300);
    QVERIFY(monitor.hasLineWith("host portOpened"));
}

void tst_monitor_command::endsQuietlyWhenNobodyReads()
{
    const PseudoTerminal line;
    Command shell("{ \"$@\"; echo status $? >&2; } | head -n 1", {"--port", line.name()});
    const auto hasEndedAfterAnotherLine = [&shell] {
        shell.type("player.getCanbusConnectStatus");
        return shell.process.state() == QProcess::NotRunning;
    };
    QTRY_VERIFY_WITH_TIMEOUT(shell.hasLineWith("host portOpened"), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(hasEndedAfterAnotherLine(), kLongestWaitMs);
    QCOMPARE(shell.errors(), QByteArray("status 0\n"));
}

void tst_monitor_command::goesOnAfterTheEndOfItsInput()
{
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kLongestWaitMs);
    Command monitor({"--port", box.link});
    monitor.type("player.getCanbusConnectStatus");
    monitor.process.closeWriteChannel();
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("player getCanbusConnectStatus -> false"), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("player canbusConnectStatus status=true"), kLongestWaitMs);
}

void tst_monitor_command::makesCallsFromItsInputAtOnce()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name()});
    monitor.type("climate.manualTemp=200\nplayer.getCanbusConnectStatus");
    // The id is 0 as long as the box has reported nothing; 93 00 1b 01 c8, and 41 checks it.
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("player sendCmdData data=9f020093001b01c8419f03"),
                             kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("player getCanbusConnectStatus -> false"), kLongestWaitMs);
}

void tst_monitor_command::answersImpossibleCallsAndGoesOn()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name()});
    monitor.type("climate.rearZone=2\n\nplayer.getCanbusConnectStatus");
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("player getCanbusConnectStatus -> false"), kLongestWaitMs);
    QTRY_COMPARE_WITH_TIMEOUT(
        monitor.errors(),
        QByteArray("canbus-monitor: climate.rearZone, isPress: \"2\" is no bool: true, false, 1 or 0\n"),
        kLongestWaitMs);
}

void tst_monitor_command::listsWhatCanBeCalled()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name()});
    monitor.type("help");
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("host.needsync(bool needed)"), kLongestWaitMs);
    QVERIFY(monitor.hasLine("player.getCanbusConnectStatus() -> bool"));
    QVERIFY(monitor.hasLine("climate.onSendDataSort(char Type[, bool isPress[, char value]])"));
    QVERIFY(monitor.hasLine("climate.manualTemp(char value)"));
    QVERIFY(monitor.hasLine("gauges.Gauge1_CenterGauge(bool isPress)"));
    QVERIFY(monitor.hasLine("vehicle.checkEngine()"));
    QVERIFY(monitor.hasLine("parking.requestParkInfo()"));
    QVERIFY(monitor.hasLine("host.display(int state)"));
    QVERIFY(monitor.hasLine("host.reverse(bool engaged)"));
}

void tst_monitor_command::namesTheCallsThatWereNotMade()
{
    const PseudoTerminal line; // on which no box answers
    Command monitor({"--port", line.name(), "--for", "0.2", "--call", "climate.acBtn"});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.errors(),
             QByteArray("canbus-monitor: climate.acBtn was not called: the link was not up in this time\n"));
    QVERIFY(!monitor.output().contains("sendCmdData"));
}

void tst_monitor_command::writesTheLibrarysLogOnlyWhenAsked()
{
    const PseudoTerminal line;
    Command quiet({"--port", line.name(), "--for", "0.2"});
    QCOMPARE(quiet.waitForEnd(), 0);
    QCOMPARE(quiet.errors(), QByteArray());
    Command verbose({"--port", line.name(), "--for", "0.2", "--verbose"});
    QCOMPARE(verbose.waitForEnd(), 0);
    QVERIFY2(verbose.errors().startsWith("[DBG] "), verbose.errors().constData());
}

void tst_monitor_command::callsOnceTheLinkIsUpAndPrintsWhatTheBoxReports()
{
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kLongestWaitMs);
    Command monitor(
        {"--port", box.link, "--call", "player.getCanbusConnectStatus", "--call", "climate.manualTemp=200"});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLine("player getCanbusConnectStatus -> true"), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("climate updateClimateMainTemp value="), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(box.command.output().contains("climate.manualTemp press=true value=200"),
                             kLongestWaitMs);
    const QList<QByteArray> lines = monitor.lines();
    const auto linkIsUp = lines.indexOf("player canbusConnectStatus status=true");
    QVERIFY(linkIsUp >= 0);
    QVERIFY(linkIsUp < lines.indexOf("player getCanbusConnectStatus -> true"));
}

void tst_monitor_command::printsJson()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name(), "--json"});
    monitor.type("player.getCanbusConnectStatus\nclimate.getClimateInfo\nhelp\nquit");
    QCOMPARE(monitor.waitForEnd(), 0);
    QStringList climateSignals;
    QByteArrayList lines = monitor.lines();
    QCOMPARE(lines.takeLast(), QByteArray()); // behind the last line end
    for (const QByteArray &text : qAsConst(lines)) {
        const QJsonObject object = QJsonDocument::fromJson(text).object();
        QVERIFY2(!object.isEmpty(), text.constData());
        if (object["object"] == "climate" && object.contains("signal"))
            climateSignals << object["signal"].toString();
        if (object["call"] == "getCanbusConnectStatus")
            QCOMPARE(object["result"], QJsonValue(false));
    }
    QCOMPARE(climateSignals.size(), 15);
    QCOMPARE(climateSignals.first(), QStringLiteral("updateClimateType"));
    QVERIFY(lines.first().contains(R"(,"object":"host","signal":"portOpened","args":{"device":)"));
}

void tst_monitor_command::endsInTheMiddleOfTraffic()
{
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kLongestWaitMs);
    Command monitor({"--port", box.link});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("climate updateClimateMainTemp"), kLongestWaitMs);
    for (int i = 0; i < 200; ++i)
        monitor.type("climate.requestClimateInfo");
    const int before = monitor.lines().size();
    QTRY_VERIFY_WITH_TIMEOUT(monitor.lines().size() > before, kLongestWaitMs);
    monitor.sendSignal(SIGINT);
    QCOMPARE(monitor.waitForEnd(), 0);
}

QTEST_GUILESS_MAIN(tst_monitor_command)
#include "tst_monitor_command.moc"
