#include "command.h"
#include "longestwait.h"
#include "pseudoterminal.h"
#include "recordedfiles.h"

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <sys/stat.h>

using canbus::recording::Block;
using canbus::recording::Recording;

namespace {

Recording readBack(const QString &file)
{
    Recording recording;
    QString error;
    if (!canbus::recording::read(file, &recording, &error))
        qWarning("%s", qPrintable(error));
    return recording;
}

QByteArrayList linesOf(Command &command, const char *object)
{
    QByteArrayList lines;
    const QByteArrayList all = command.lines();
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(lines),
                 [object](const QByteArray &line) { return line.startsWith(object); });
    return lines;
}

} // namespace

/// A live line: what is recorded of it, and what its figures tell.
class tst_monitor_recordings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordsBothDirections();
    void readsWhatItHasRecorded();
    void namesItselfAndThePortInTheRecording();
    void keepsTheFileThatIsThere();
    void leavesNoRecordingOfAPortThatDoesNotOpen();
    void endsWhenTheDiskIsFull();
    void aKilledMonitorLeavesAWholeRecording();
    void printsTheFiguresOfALine();
    void printsTheFatesOfCommandsOnlyWithFigures();
    void hintsAtAWrongBaudRate();
    void hintsAtASilentLine();
    void endsWhenItsPortIsGone_data();
    void endsWhenItsPortIsGone();
    void findsItsPortGoneAtTheEndOfItsTime();
    void showsTheLibrarysLinesOfAPortOnlyWhenAsked();
    void recordsIntoNoPipe();
};

void tst_monitor_recordings::recordsBothDirections()
{
    const Files files;
    PseudoTerminal line;
    Command monitor({"--port", line.name(), "--record", files.path("new.pcapng")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kLongestWaitMs);
    QVERIFY(line.send(bytes("9f02 51 02 00 1f 4c 9f03")));
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("player updateScreenInfo"), kLongestWaitMs);
    monitor.type("quit");
    QCOMPARE(monitor.waitForEnd(), 0);
    QByteArray received;
    QByteArrayList sent;
    qint64 before = 0;
    const QVector<Block> blocks = readBack(files.path("new.pcapng")).blocks;
    for (const Block &block : blocks) {
        QVERIFY(block.timeUs >= before);
        before = block.timeUs;
        if (block.direction == kReceived)
            received += block.bytes;
        else
            sent << block.bytes;
    }
    QCOMPARE(received, bytes("9f02 51 02 00 1f 4c 9f03"));
    QVERIFY(sent.contains(bytes("9f06 51 51 9f03")));
    const qint64 nowUs = QDateTime::currentMSecsSinceEpoch() * 1000;
    QVERIFY(before <= nowUs + 1000000 && before > nowUs - qint64(kLongestWaitMs) * 2000);
}

void tst_monitor_recordings::readsWhatItHasRecorded()
{
    const Files files;
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kLongestWaitMs);
    Command live({"--port", box.link, "--record", files.path("new.pcapng"), "--call", "climate.acBtn"});
    QTRY_VERIFY_WITH_TIMEOUT(live.hasLineWith("climate updateClimateMainTemp"), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(live.hasLineWith("vehicle updateVehicle"), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(live.hasLineWith("parking updatePark"), kLongestWaitMs);
    live.type("quit");
    QCOMPARE(live.waitForEnd(), 0);
    Command again({"--read", files.path("new.pcapng")});
    QCOMPARE(again.waitForEnd(), 0);
    QCOMPARE(again.errors(), QByteArray());
    for (const char *object : {"player", "climate", "vehicle", "parking"}) {
        const QByteArrayList then = linesOf(live, object);
        // What the library had still before it at the end is read too.
        QCOMPARE(linesOf(again, object).mid(0, then.size()), then);
    }
}

void tst_monitor_recordings::namesItselfAndThePortInTheRecording()
{
    const Files files;
    const PseudoTerminal line;
    Command monitor({"--port", line.name(), "--record", files.path("new.pcapng"), "--for", "0.1"});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(readBack(files.path("new.pcapng")).comment, "canbus-monitor 1.0.0 on " + line.name());
}

void tst_monitor_recordings::keepsTheFileThatIsThere()
{
    const Files files;
    const PseudoTerminal line;
    const QString path = files.write(kLinkComesUp);
    const qint64 size = QFileInfo(path).size();
    Command monitor({"--port", line.name(), "--record", path});
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(monitor.errors(),
             "canbus-monitor: --record: " + path.toUtf8() + ": there and not empty: name a new file\n");
    QCOMPARE(monitor.output(), QByteArray());
    QCOMPARE(QFileInfo(path).size(), size);
}

void tst_monitor_recordings::leavesNoRecordingOfAPortThatDoesNotOpen()
{
    const Files files;
    Command monitor({"--port", "/dev/there-is-no-such-device", "--record", files.path("new.pcapng")});
    QCOMPARE(monitor.waitForEnd(), 1);
    QVERIFY(monitor.errors().startsWith("canbus-monitor: cannot open "));
    QCOMPARE(monitor.errors().count('\n'), 1);
    QVERIFY(!QFileInfo::exists(files.path("new.pcapng")));
}

void tst_monitor_recordings::endsWhenTheDiskIsFull()
{
    const Files files;
    PseudoTerminal line;
    const QString path = files.path("new.pcapng");
    // Files of the shell's children may have 512 bytes.
    Command shell("ulimit -f 1; exec \"$@\"", {"--port", line.name(), "--record", path});
    const auto ends = [&] {
        line.send(QByteArray(16, 'x'));
        return shell.process.state() == QProcess::NotRunning;
    };
    QTRY_VERIFY_WITH_TIMEOUT(shell.hasLineWith("host portOpened"), kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(ends(), kLongestWaitMs);
    QCOMPARE(shell.waitForEnd(), 1);
    const QByteArray error =
        "canbus-monitor: --record: " + path.toUtf8() + ": cannot be written any further: ";
    QVERIFY2(shell.errors().contains(error), shell.errors().constData());
    QCOMPARE(shell.errors().count("--record"), 1);
    Recording recording;
    QString fault;
    QVERIFY2(canbus::recording::read(path, &recording, &fault), qPrintable(fault));
    QVERIFY(!recording.blocks.isEmpty());
}

void tst_monitor_recordings::aKilledMonitorLeavesAWholeRecording()
{
    const Files files;
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kLongestWaitMs);
    Command monitor({"--port", box.link, "--record", files.path("new.pcapng")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("climate updateClimateMainTemp"), kLongestWaitMs);
    monitor.sendSignal(SIGKILL);
    monitor.waitForEnd();
    Recording recording;
    QString fault;
    QVERIFY2(canbus::recording::read(files.path("new.pcapng"), &recording, &fault), qPrintable(fault));
    QVERIFY(recording.blocks.size() > 5);
}

void tst_monitor_recordings::printsTheFiguresOfALine()
{
    PseudoTerminal line;
    Command monitor({"--port", line.name(), "--stats", "--json"});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains("portOpened"), kLongestWaitMs);
    QVERIFY(line.send(bytes("9f02 51 02 00 1f 4c 9f03")));
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains("updateScreenInfo"), kLongestWaitMs);
    QVERIFY(!monitor.output().contains("\"stats\""));
    monitor.type("stats");
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains(R"("stats":{"receivedBytes":9,"receivedFrames":1,)"),
                             kLongestWaitMs);
    monitor.type("quit");
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output().count("\"stats\""), 2);
}

void tst_monitor_recordings::printsTheFatesOfCommandsOnlyWithFigures()
{
    const PseudoTerminal line;
    Command with({"--port", line.name(), "--stats"});
    with.type("climate.manualTemp=200");
    const QByteArray fate =
        "link commandEnded frame=9f020093001b01c8419f03 fate=GivenUp transmissions=3 microseconds=";
    QTRY_VERIFY_WITH_TIMEOUT(with.hasLineWith(fate), kLongestWaitMs);
    const PseudoTerminal otherLine;
    Command without({"--port", otherLine.name(), "--for", "1.5"});
    without.type("climate.manualTemp=200\nstats");
    QCOMPARE(without.waitForEnd(), 0);
    QVERIFY(without.hasLine("  commands"));
    QVERIFY(!without.output().contains("commandEnded"));
}

void tst_monitor_recordings::hintsAtAWrongBaudRate()
{
    PseudoTerminal line;
    Command monitor({"--port", line.name()});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kLongestWaitMs);
    QVERIFY(line.send(QByteArray(40, 'x')));
    const auto hasCome = [&] {
        monitor.type("stats");
        return QRegularExpression("received\n +bytes +40\n").match(monitor.output()).hasMatch();
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasCome(), kLongestWaitMs);
    monitor.type("quit");
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.errors(),
             QByteArray("canbus-monitor: hint: bytes but no frames: check the baud rate\n"));
}

void tst_monitor_recordings::hintsAtASilentLine()
{
    const PseudoTerminal line;
    Command monitor({"--port", line.name(), "--for", "3"});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.errors(),
             QByteArray("canbus-monitor: hint: nothing was received: check the cable, the port and the power "
                        "of the box\n"));
}

void tst_monitor_recordings::endsWhenItsPortIsGone_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("without a time to end") << QStringList();
    QTest::newRow("before its time") << QStringList {"--for", "600"};
}

void tst_monitor_recordings::endsWhenItsPortIsGone()
{
    QFETCH(QStringList, arguments);
    const Files files;
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kLongestWaitMs);
    Command monitor(
        QStringList {"--port", box.link, "--stats", "--json", "--record", files.path("new.pcapng")}
        + arguments);
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains("updateClimateMainTemp"), kLongestWaitMs);
    box.command.sendSignal(SIGKILL);
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(monitor.errors(),
             "canbus-monitor: " + box.link.toUtf8()
                 + " is gone: connect it and start canbus-monitor again\n");
    QByteArrayList lines = monitor.lines();
    lines.removeLast(); // behind the last line end
    QVERIFY2(lines.constLast().contains(R"("stats":{)"), lines.constLast().constData());
    QVERIFY2(lines.constLast().contains(R"("portErrors":1)"), lines.constLast().constData());
    QVERIFY(readBack(files.path("new.pcapng")).blocks.size() > 5);
}

void tst_monitor_recordings::findsItsPortGoneAtTheEndOfItsTime()
{
    // Ten times, since the end comes at any moment between two looks at the port.
    for (int i = 0; i < 10; ++i) {
        PseudoTerminal line;
        Command monitor({"--port", line.name(), "--for", "0.3"});
        QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kLongestWaitMs);
        line.hangUp();
        QCOMPARE(monitor.waitForEnd(), 1);
        QCOMPARE(monitor.errors(),
                 "canbus-monitor: " + line.name().toUtf8()
                     + " is gone: connect it and start canbus-monitor again\n");
    }
}

void tst_monitor_recordings::showsTheLibrarysLinesOfAPortOnlyWhenAsked()
{
    PseudoTerminal line;
    Command monitor({"--port", line.name(), "--verbose"});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kLongestWaitMs);
    line.hangUp();
    QCOMPARE(monitor.waitForEnd(), 1);
    QVERIFY2(monitor.errors().contains("handleError() "), monitor.errors().constData());
}

void tst_monitor_recordings::recordsIntoNoPipe()
{
    const Files files;
    const PseudoTerminal line;
    const QByteArray pipe = files.path("pipe").toLocal8Bit();
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    Command monitor({"--port", line.name(), "--record", QString::fromLocal8Bit(pipe)});
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(monitor.errors(), "canbus-monitor: --record: " + pipe + ": no regular file: name a new one\n");
}

QTEST_GUILESS_MAIN(tst_monitor_recordings)
#include "tst_monitor_recordings.moc"
