#include "command.h"
#include "hexbytes.h"
#include "pseudoterminal.h"
#include "recording/recording.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <csignal>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using canbus::recording::Block;
using canbus::recording::Direction;
using canbus::recording::Recording;

namespace {

constexpr Direction kReceived = Direction::Received;
constexpr Direction kSent = Direction::Sent;

/// A block by its time since the first one.
struct Line {
    int ms;
    Direction direction;
    const char *hex;
};

// The handshake of a box whose ready reply has the id 40.
const QVector<Line> kLinkComesUp {
    {0, kSent, "9f02 21 01 00 0000 20 9f03"},
    {2, kReceived, "9f06 21 21 9f03"},
    {3, kReceived, "9f02 40 01 00 0001 40 9f03"},
    {15, kSent, "9f02 40 01 00 0001 40 9f03"},
    {15, kSent, "9f06 40 40 9f03"},
    {17, kReceived, "9f06 40 40 9f03"},
};

/// A press of the climate's A/C button.
const char *const kPress = "9f02 51 93 00 120100 d1 9f03";

class Files {
public:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QString write(const QVector<Line> &lines) const
    {
        canbus::recording::Writer writer;
        const QString file = path("drive.pcapng");
        bool isWritten = writer.open(file, QString());
        for (const Line &line : lines) {
            isWritten = isWritten
                && writer.write(line.direction, 1700000000000000 + line.ms * qint64(1000), bytes(line.hex));
        }
        if (!isWritten)
            qFatal("the recording cannot be written");
        return file;
    }

private:
    QTemporaryDir m_folder;
};

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

class tst_monitor_recordings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void printsWhatTheRecordedHeadUnitHeard();
    void printsTheRecordingsTimes();
    void theLinkIsLostWhenItWas();
    void aLinkThatAsksAgainHasBeenLost();
    void aCheckBehindAConnectRequestLosesNoLink();
    void aCheckThatIsAnsweredLateLosesNoLink();
    void gaugeValuesKeepTheirDistance();
    void takesOneFrameATick();
    void readsRecordingsOfTheBoxAlone();
    void endsAtItsTime();
    void printsWhatStandsBeforeAFault();
    void printsNothingOfWhatIsNoRecording_data();
    void printsNothingOfWhatIsNoRecording();
    void endsWhenItIsToldWhileItReads();
    void printsTheFiguresOfARecording();
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
    void tellsAtOnceOfAPortThatWasPulledOut();
};

void tst_monitor_recordings::printsWhatTheRecordedHeadUnitHeard()
{
    const Files files;
    const QVector<Line> rest {
        {20, kReceived, "9f02 51 02 00 1f 4c 9f03"},
        {30, kSent, "9f06 51 51 9f03"},
        {500, kSent, kPress},
        {502, kReceived, "9f06 51 51 9f03"},
        {600, kReceived, "9f02 52 07 00 02 57 9f03"}, // a move on the screen
        {608, kSent, "9f06 52 52 9f03"},
    };
    Command monitor({"--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(),
             QByteArray("player canbusConnectStatus status=true\n"
                        "player updateScreenInfo m_list={0:true,1:true,2:true,3:true,4:true}\n"
                        "player sendCmdData data=9f02519300120100d19f03\n"
                        "host touch touch=81 a=-1 b=5\n"));
    QCOMPARE(monitor.errors(), QByteArray());
}

void tst_monitor_recordings::printsTheRecordingsTimes()
{
    const Files files;
    const QVector<Line> rest {
        {90061000, kReceived, "9f02 51 02 00 1f 4c 9f03"},
        {90061007, kSent, "9f06 51 51 9f03"},
    };
    Command monitor({"--json", "--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    const QByteArrayList lines = monitor.lines();
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines[0].startsWith(R"({"t":0.02)"), lines[0].constData());
    QVERIFY2(lines[1].startsWith(R"({"t":90061.007,)"), lines[1].constData());
}

void tst_monitor_recordings::theLinkIsLostWhenItWas()
{
    const Files files;
    const QVector<Line> rest {
        {1000, kSent, kPress},
        {1300, kSent, kPress},
        {1600, kSent, kPress},
        {5000, kReceived, "9f06 33 33 9f03"},
    };
    Command monitor({"--json", "--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    const QByteArrayList lines = monitor.lines();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[1],
             QByteArray(R"({"t":1.000,"object":"player","signal":"sendCmdData",)"
                        R"("args":{"data":"9f02519300120100d19f03"}})"));
    QCOMPARE(lines[2],
             QByteArray(R"({"t":1.900,"object":"player","signal":"canbusConnectStatus",)"
                        R"("args":{"status":false}})"));
}

void tst_monitor_recordings::aLinkThatAsksAgainHasBeenLost()
{
    const Files files;
    const QVector<Line> rest {{9000, kSent, "9f02 21 01 00 0000 20 9f03"}};
    Command monitor({"--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(),
             QByteArray("player canbusConnectStatus status=true\nplayer canbusConnectStatus status=false\n"));
}

void tst_monitor_recordings::aCheckBehindAConnectRequestLosesNoLink()
{
    const Files files;
    Command monitor({"--stats", "--json", "--read",
                     files.write({
                         {0, kSent, "9f02 21 01 00 0000 20 9f03"},
                         {20, kReceived, "9f02 40 01 00 0001 40 9f03"}, // its ACK was lost
                         {28, kSent, "9f02 21 01 00 0000 20 9f03"},
                         {28, kSent, "9f06 40 40 9f03"},
                         {30, kReceived, "9f06 21 21 9f03"},
                         {38, kSent, "9f02 40 01 00 0001 40 9f03"},
                         {40, kReceived, "9f06 40 40 9f03"},
                     })});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output().count(R"("fate":"GivenUp")"), 0);
    QCOMPARE(monitor.output().count(R"("fate":"Acknowledged")"), 2);
    QVERIFY2(monitor.output().contains(R"("sentFrames":3,)"), monitor.output().constData());
    QVERIFY(monitor.output().contains(R"("status":true)"));
}

void tst_monitor_recordings::aCheckThatIsAnsweredLateLosesNoLink()
{
    const Files files;
    const QVector<Line> rest {
        {14900, kSent, "9f02 40 01 00 0001 40 9f03"}, // a timer of the head unit may be early
        {15200, kSent, "9f02 40 01 00 0001 40 9f03"},
        {15490, kReceived, "9f06 40 40 9f03"},
        {29000, kReceived, "9f02 51 02 00 1f 4c 9f03"},
    };
    Command monitor({"--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(),
             QByteArray("player canbusConnectStatus status=true\n"
                        "player updateScreenInfo m_list={0:true,1:true,2:true,3:true,4:true}\n"));
}

void tst_monitor_recordings::gaugeValuesKeepTheirDistance()
{
    const Files files;
    Command monitor({"--json", "--read",
                     files.write({
                         {0, kReceived, "9f02 590405 001020080058004500bc00c200 03 9f03"},
                         {9, kSent, "9f06 59 59 9f03"},
                         {100, kReceived, "9f02 590405 001120080058004500bc00c200 02 9f03"},
                         {109, kSent, "9f06 59 59 9f03"},
                         {200, kReceived, "9f02 590405 001220080058004500bc00c200 01 9f03"},
                         {209, kSent, "9f06 59 59 9f03"},
                     })});
    QCOMPARE(monitor.waitForEnd(), 0);
    QByteArrayList values;
    for (const QByteArray &line : monitor.lines()) {
        if (line.contains("updateGaugeValue\""))
            values << line;
    }
    QCOMPARE(values.size(), 2);
    QCOMPARE(values[0],
             QByteArray(R"({"t":0.009,"object":"gauges","signal":"updateGaugeValue",)"
                        R"("args":{"arg1":[16,88,69,188,194]}})"));
    QCOMPARE(values[1],
             QByteArray(R"({"t":0.309,"object":"gauges","signal":"updateGaugeValue",)"
                        R"("args":{"arg1":[18,88,69,188,194]}})"));
}

void tst_monitor_recordings::takesOneFrameATick()
{
    const Files files;
    const char *const twoScreens = "9f02 51 02 00 1f 4c 9f03 9f02 51 02 00 0f 5c 9f03";
    Command monitor({"--json", "--read", files.write({{0, kReceived, twoScreens}})});
    QCOMPARE(monitor.waitForEnd(), 0);
    const QByteArrayList lines = monitor.lines();
    QCOMPARE(lines.size(), 3);
    const double first = lines[0].mid(5, 5).toDouble();
    const double second = lines[1].mid(5, 5).toDouble();
    QVERIFY(qAbs(second - first - 0.01) < 0.0015);
}

void tst_monitor_recordings::readsRecordingsOfTheBoxAlone()
{
    const Files files;
    Command monitor({"--read",
                     files.write({
                         {0, kReceived, "9f02 40 01 00 0001 40 9f03"},
                         {40, kReceived, "9f06 40 40 9f03"},
                         {50, kReceived, "9f02 51 02 00 01 52 9f03"},
                     })});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(),
             QByteArray("player canbusConnectStatus status=true\n"
                        "player updateScreenInfo m_list={0:true,1:false,2:false,3:false,4:false}\n"));
}

void tst_monitor_recordings::endsAtItsTime()
{
    const Files files;
    const QVector<Line> rest {{7000, kReceived, "9f02 51 02 00 1f 4c 9f03"}};
    Command monitor({"--for", "5", "--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(), QByteArray("player canbusConnectStatus status=true\n"));
}

void tst_monitor_recordings::printsWhatStandsBeforeAFault()
{
    const Files files;
    const QString path = files.write(kLinkComesUp + QVector<Line> {{30, kReceived, "9f02 51"}});
    const qint64 size = QFileInfo(path).size();
    QVERIFY(QFile::resize(path, size - 1));
    Command monitor({"--read", path});
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(monitor.output(), QByteArray("player canbusConnectStatus status=true\n"));
    QCOMPARE(monitor.errors(),
             "canbus-monitor: " + path.toUtf8() + ": cut in the middle of the block at byte "
                 + QByteArray::number(size - 48) + "\n");
}

void tst_monitor_recordings::printsNothingOfWhatIsNoRecording_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("empty") << QByteArray() << QByteArray("empty: a recording is a pcapng file");
    QTest::newRow("a text") << QByteArray("hello world\n") << QByteArray("no pcapng file");
    QTest::newRow("a classic pcap file")
        << bytes("d4c3b2a1 0200 0400 00000000 00000000 00000400 93000000")
        << QByteArray("a classic pcap file: convert it with editcap -F pcapng");
    QTest::newRow("of another link type")
        << bytes("0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000"
                 "01000000 14000000 0100 0000 00000000 14000000")
        << QByteArray("the block at byte 28 is of link type 1: a recording of this line is of type 147, "
                      "USER0");
}

void tst_monitor_recordings::printsNothingOfWhatIsNoRecording()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, error);
    const Files files;
    const QString path = files.path("file");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    Command monitor({"--stats", "--read", path});
    QCOMPARE(monitor.waitForEnd(), 1);
    QCOMPARE(monitor.output(), QByteArray());
    QCOMPARE(monitor.errors(), "canbus-monitor: " + path.toUtf8() + ": " + error + "\n");
}

void tst_monitor_recordings::endsWhenItIsToldWhileItReads()
{
    const Files files;
    QVector<Line> lines;
    for (int i = 0; i < 3000; ++i)
        lines.append({i * 20, kReceived, "9f02 51 02 00 1f 4c 9f03"});
    const QByteArray pipe = files.path("pipe").toLocal8Bit();
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDWR); // that reads nothing
    QVERIFY(reader >= 0);
    Command shell({"-c", "exec \"$0\" --read \"$1\" > \"$2\"", CANBUS_MONITOR, files.write(lines),
                   QString::fromLocal8Bit(pipe)},
                  QStringLiteral("/bin/sh"));
    const auto waiting = [reader] {
        int size = 0;
        ::ioctl(reader, FIONREAD, &size);
        return size;
    };
    QTRY_VERIFY_WITH_TIMEOUT(waiting() > 60000, kWaitMs);
    shell.sendSignal(SIGINT);
    QCOMPARE(shell.waitForEnd(), 0);
    QCOMPARE(shell.errors(), QByteArray());
    ::close(reader);
}

void tst_monitor_recordings::printsTheFiguresOfARecording()
{
    const Files files;
    const QVector<Line> rest {
        {12000, kSent, kPress},
        {12300, kSent, kPress},
        {12450, kReceived, "9f06 51 51 9f03"},
        {12500, kReceived, "9f02 51 02 00 1f 4c 9f03"},
        {12507, kSent, "9f06 51 51 9f03"},
    };
    Command monitor({"--stats", "--json", "--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QByteArrayList stats;
    QByteArrayList fates;
    for (const QByteArray &line : monitor.lines()) {
        if (line.contains("\"stats\""))
            stats << line;
        if (line.contains("\"commandEnded\""))
            fates << line;
    }
    QCOMPARE(stats.size(), 2);
    QVERIFY2(stats[0].startsWith(R"({"t":10.000,"stats":{"receivedBytes":22,"receivedFrames":1,)"),
             stats[0].constData());
    QVERIFY2(stats[1].contains(R"("sentFrames":4,)"), stats[1].constData());
    QVERIFY2(stats[1].contains(R"("retransmissions":1,)"), stats[1].constData());
    QVERIFY2(stats[1].contains(R"("answers":3,)"), stats[1].constData());
    QVERIFY2(stats[1].contains(R"("connectRequests":1,"connectionChecks":1,)"), stats[1].constData());
    QCOMPARE(fates.size(), 3);
    QVERIFY2(fates[2].contains(R"("fate":"Acknowledged","transmissions":2,"microseconds":461000)"),
             fates[2].constData());
    QCOMPARE(monitor.errors(), QByteArray());
}

void tst_monitor_recordings::recordsBothDirections()
{
    const Files files;
    PseudoTerminal line;
    Command monitor({"--port", line.name(), "--record", files.path("new.pcapng")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kWaitMs);
    QVERIFY(line.send(bytes("9f02 51 02 00 1f 4c 9f03")));
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("player updateScreenInfo"), kWaitMs);
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
    QVERIFY(before <= nowUs + 1000000 && before > nowUs - qint64(kWaitMs) * 2000);
}

void tst_monitor_recordings::readsWhatItHasRecorded()
{
    const Files files;
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kWaitMs);
    Command live({"--port", box.link, "--record", files.path("new.pcapng"), "--call", "climate.acBtn"});
    QTRY_VERIFY_WITH_TIMEOUT(live.hasLineWith("climate updateClimateMainTemp"), kWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(live.hasLineWith("vehicle updateVehicle"), kWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(live.hasLineWith("parking updatePark"), kWaitMs);
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
    Command shell(
        {"-c", "ulimit -f 1; exec \"$0\" --port \"$1\" --record \"$2\"", CANBUS_MONITOR, line.name(), path},
        QStringLiteral("/bin/sh"));
    const auto ends = [&] {
        line.send(QByteArray(16, 'x'));
        return shell.process.state() == QProcess::NotRunning;
    };
    QTRY_VERIFY_WITH_TIMEOUT(shell.hasLineWith("host portOpened"), kWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(ends(), kWaitMs);
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
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kWaitMs);
    Command monitor({"--port", box.link, "--record", files.path("new.pcapng")});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("climate updateClimateMainTemp"), kWaitMs);
    monitor.process.kill();
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
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains("portOpened"), kWaitMs);
    QVERIFY(line.send(bytes("9f02 51 02 00 1f 4c 9f03")));
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains("updateScreenInfo"), kWaitMs);
    QVERIFY(!monitor.output().contains("\"stats\""));
    monitor.type("stats");
    QTRY_VERIFY_WITH_TIMEOUT(monitor.output().contains(R"("stats":{"receivedBytes":9,"receivedFrames":1,)"),
                             kWaitMs);
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
    QTRY_VERIFY_WITH_TIMEOUT(with.hasLineWith(fate), kWaitMs);
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
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("host portOpened"), kWaitMs);
    QVERIFY(line.send(QByteArray(40, 'x')));
    const auto hasCome = [&] {
        monitor.type("stats");
        return QRegularExpression("received\n +bytes +40\n").match(monitor.output()).hasMatch();
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasCome(), kWaitMs);
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

void tst_monitor_recordings::tellsAtOnceOfAPortThatWasPulledOut()
{
    const QByteArray hint = "canbus-monitor: hint: 1 error of the port: was the device pulled out?\n";
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(box.isReady(), kWaitMs);
    Command monitor({"--port", box.link});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasLineWith("player canbusConnectStatus"), kWaitMs);
    box.command.process.kill();
    QTRY_COMPARE_WITH_TIMEOUT(monitor.errors().count(hint), 1, kWaitMs);
    QCOMPARE(monitor.process.state(), QProcess::Running);

    monitor.type("quit");
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.errors().count("of the port"), 1);
}

QTEST_GUILESS_MAIN(tst_monitor_recordings)
#include "tst_monitor_recordings.moc"
