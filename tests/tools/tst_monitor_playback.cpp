#include "command.h"
#include "recordedfiles.h"

#include <longestwait.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtTest/QTest>

#include <csignal>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A press of the climate's A/C button.
const char *const kPress = "9f02 51 93 00 120100 d1 9f03";

} // namespace

/// A recording in the place of a port.
class tst_monitor_playback : public QObject {
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
    void readsNoFileThatIsMissing();
    void waitsForNoPipe();
    void endsWhenItIsToldWhileItReads();
    void printsTheFiguresOfARecording();
};

void tst_monitor_playback::printsWhatTheRecordedHeadUnitHeard()
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

void tst_monitor_playback::printsTheRecordingsTimes()
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

void tst_monitor_playback::theLinkIsLostWhenItWas()
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

void tst_monitor_playback::aLinkThatAsksAgainHasBeenLost()
{
    const Files files;
    const QVector<Line> rest {{9000, kSent, "9f02 21 01 00 0000 20 9f03"}};
    Command monitor({"--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(),
             QByteArray("player canbusConnectStatus status=true\nplayer canbusConnectStatus status=false\n"));
}

void tst_monitor_playback::aCheckBehindAConnectRequestLosesNoLink()
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

void tst_monitor_playback::aCheckThatIsAnsweredLateLosesNoLink()
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

void tst_monitor_playback::gaugeValuesKeepTheirDistance()
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

void tst_monitor_playback::takesOneFrameATick()
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

void tst_monitor_playback::readsRecordingsOfTheBoxAlone()
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

void tst_monitor_playback::endsAtItsTime()
{
    const Files files;
    const QVector<Line> rest {{7000, kReceived, "9f02 51 02 00 1f 4c 9f03"}};
    Command monitor({"--for", "5", "--read", files.write(kLinkComesUp + rest)});
    QCOMPARE(monitor.waitForEnd(), 0);
    QCOMPARE(monitor.output(), QByteArray("player canbusConnectStatus status=true\n"));
}

void tst_monitor_playback::printsWhatStandsBeforeAFault()
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

void tst_monitor_playback::printsNothingOfWhatIsNoRecording_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("empty") << QByteArray() << QByteArray("empty: a recording is a pcapng file");
    QTest::newRow("a text") << QByteArray("hello world\n") << QByteArray("no pcapng file");
    QTest::newRow("a classic pcap file")
        << bytes("d4c3b2a1 0200 0400 00000000 00000000 00000400 93000000")
        << QByteArray("a classic pcap file: convert it with editcap -F pcapng");
    QTest::newRow("a recording cut in its head")
        << bytes("0a0d0d0a 1c000000 4d3c2b1a") << QByteArray("cut in the middle of the block at byte 0");
    QTest::newRow("of another link type")
        << bytes("0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000"
                 "01000000 14000000 0100 0000 00000000 14000000")
        << QByteArray("the block at byte 28 is of link type 1: a recording of this line is of type 147, "
                      "USER0");
}

void tst_monitor_playback::printsNothingOfWhatIsNoRecording()
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
    QCOMPARE(monitor.waitForEnd(), 2);
    QCOMPARE(monitor.output(), QByteArray());
    QCOMPARE(monitor.errors(), "canbus-monitor: " + path.toUtf8() + ": " + error + "\n");
}

void tst_monitor_playback::readsNoFileThatIsMissing()
{
    const Files files;
    Command monitor({"--read", files.path("two\nlines")});
    QCOMPARE(monitor.waitForEnd(), 2);
    QCOMPARE(monitor.errors(),
             "canbus-monitor: " + files.path("two\\nlines").toUtf8()
                 + ": cannot be read: No such file or directory\n");
}

void tst_monitor_playback::waitsForNoPipe()
{
    const Files files;
    const QByteArray pipe = files.path("pipe").toLocal8Bit();
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    Command monitor({"--read", QString::fromLocal8Bit(pipe)});
    QCOMPARE(monitor.waitForEnd(), 2);
    QCOMPARE(monitor.errors(), "canbus-monitor: " + pipe + ": cannot be read: it is no regular file\n");
}

void tst_monitor_playback::endsWhenItIsToldWhileItReads()
{
    const Files files;
    QVector<Line> lines;
    for (int i = 0; i < 3000; ++i)
        lines.append({i * 20, kReceived, "9f02 51 02 00 1f 4c 9f03"});
    const QByteArray pipe = files.path("pipe").toLocal8Bit();
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDWR); // that reads nothing
    QVERIFY(reader >= 0);
    const QString into = " > \"" + QString::fromLocal8Bit(pipe) + '"';
    Command shell("exec \"$@\"" + into, {"--read", files.write(lines)});
    const auto waiting = [reader] {
        int size = 0;
        ::ioctl(reader, FIONREAD, &size);
        return size;
    };
    QTRY_VERIFY_WITH_TIMEOUT(waiting() > 60000, kLongestWaitMs);
    shell.sendSignal(SIGINT);
    QCOMPARE(shell.waitForEnd(), 0);
    QCOMPARE(shell.errors(), QByteArray());
    ::close(reader);
}

void tst_monitor_playback::printsTheFiguresOfARecording()
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

QTEST_GUILESS_MAIN(tst_monitor_playback)
#include "tst_monitor_playback.moc"
