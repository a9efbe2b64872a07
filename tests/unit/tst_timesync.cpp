#include "canbusplayerprobe.h"
#include "canbusprotocol.h"
#include "hexbytes.h"
#include "hostroot.h"
#include "logrecorder.h"
#include "pseudoterminal.h"

#include <datetimemanager.h>
#include <mcuservice.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using namespace canbus;

namespace {

const QByteArray kUnknownTime = bytes("9f 02 23 98 00 ff ff ff ff ff ff ff 44 9f 03");

void stopHostClockAt(const QDateTime &moment)
{
    kddatetime::DateTimeManager::instance()->setCurrentDateTime(moment);
}

void setNeedsSync(bool needed)
{
    mcu::McuService::instance()->setNeedSyncTimeState(needed);
}

/// A player of its own, joined to nothing: its timer expires by hand.
struct Synchronisation {
    CanBusPlayer player;
    QTimer &timer = CanBusPlayerProbe::data(player).syncTimer;
    QSignalSpy sent {&player, &CanBusPlayer::sendCmdData};

    QByteArray lastFrame() const { return sent.value(sent.count() - 1).value(0).toByteArray(); }
};

/// A protocol of which only the signals are used.
class SilentProtocol : public CanbusProtocol {
public:
    void analyseData(QByteArray) override { }
};

} // namespace

/// The clock that the head unit sends to the box.
class TestTimeSync : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void sendsATime_data();
    void sendsATime();
    void sendsATimeWithoutTheLink();
    void logsATime();

    void sendsTheHostsTime_data();
    void sendsTheHostsTime();
    void sendsTheClockFormat_data();
    void sendsTheClockFormat();
    void readsTheClockFormatAtEachExpiry();
    void sendsAnUnknownTimeWhileTheClockIsNotSet();
    void waitsForTheNextFullMinute_data();
    void waitsForTheNextFullMinute();
    void startsAStoppedTimer();
    void logsTheSynchronisation();
    void logsTheSynchronisationOfAnUnknownTime();
    void stopsWithoutTheLink_data();
    void stopsWithoutTheLink();

    void sendsTheFirstTimeOneSecondAfterTheLinkIsUp();

private:
    std::unique_ptr<HostRoot> m_root;
    std::unique_ptr<LogRecorder> m_log;
};

void TestTimeSync::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_root = std::make_unique<HostRoot>();
    stopHostClockAt(QDateTime(QDate(2024, 7, 5), QTime(12, 34, 56, 789)));
    setNeedsSync(false);
}

void TestTimeSync::cleanup()
{
    stopHostClockAt(QDateTime());
    m_root.reset();
    m_log.reset();
}

void TestTimeSync::sendsATime_data()
{
    // Minute, hour, day, month, year, format.
    QTest::addColumn<QList<int>>("time");
    QTest::addColumn<QByteArray>("frame");
    const auto row = [](const char *name, const QList<int> &time, const char *frame) {
        QTest::newRow(name) << time << bytes(frame);
    };
    row("2024 is 20 and 24", {34, 12, 5, 7, 2024, 0}, "9f02 23 98 00 22 0c 05 07 14 18 00 9b 9f03");
    row("format 1", {34, 12, 5, 7, 2024, 1}, "9f02 23 98 00 22 0c 05 07 14 18 01 9a 9f03");
    row("2009 is 20 and 9", {34, 12, 5, 7, 2009, 0}, "9f02 23 98 00 22 0c 05 07 14 09 00 8a 9f03");
    row("2000 is 20 and 0", {0, 0, 1, 1, 2000, 0}, "9f02 23 98 00 00 00 01 01 14 00 00 af 9f03");
    row("9999 is 99 and 99", {59, 23, 31, 12, 9999, 1}, "9f02 23 98 00 3b 17 1f 0c 63 63 01 85 9f03");
    row("999 is 99 and 99", {34, 12, 5, 7, 999, 0}, "9f02 23 98 00 22 0c 05 07 63 63 00 97 9f03");
    row("100 is 10 and 0", {34, 12, 5, 7, 100, 0}, "9f02 23 98 00 22 0c 05 07 0a 00 00 9d 9f03");
    row("24 is 24 and 24", {34, 12, 5, 7, 24, 0}, "9f02 23 98 00 22 0c 05 07 18 18 00 97 9f03");
    row("9 is 9 and 9", {34, 12, 5, 7, 9, 0}, "9f02 23 98 00 22 0c 05 07 09 09 00 97 9f03");
    row("0 is 0 and 0", {34, 12, 5, 7, 0, 0}, "9f02 23 98 00 22 0c 05 07 00 00 00 97 9f03");
    row("12345 is 12 and 45", {34, 12, 5, 7, 12345, 0}, "9f02 23 98 00 22 0c 05 07 0c 2d 00 b6 9f03");
    row("year 255 is unknown", {34, 12, 5, 7, 255, 0}, "9f02 23 98 00 22 0c 05 07 ff ff 00 97 9f03");
    row("all unknown", {255, 255, 255, 255, 255, 255}, "9f02 23 98 00 ff ff ff ff ff ff ff 44 9f03");
    row("a minute of 9F is doubled", {0x9f, 12, 5, 7, 2024, 0},
        "9f02 23 98 00 9f9f 0c 05 07 14 18 00 26 9f03");
    row("an hour of 9F is doubled", {34, 0x9f, 5, 7, 2024, 0},
        "9f02 23 98 00 22 9f9f 05 07 14 18 00 08 9f03");
    row("a day of 9F is doubled", {34, 12, 0x9f, 7, 2024, 0}, "9f02 23 98 00 22 0c 9f9f 07 14 18 00 01 9f03");
    row("a month of 9F is doubled", {34, 12, 5, 0x9f, 2024, 0},
        "9f02 23 98 00 22 0c 05 9f9f 14 18 00 03 9f03");
    row("a format of 9F is doubled", {34, 12, 5, 7, 2024, 0x9f},
        "9f02 23 98 00 22 0c 05 07 14 18 9f9f 04 9f03");
    row("a check byte of 9F is doubled", {40, 0, 0, 0, 2024, 0},
        "9f02 23 98 00 28 00 00 00 14 18 00 9f9f 9f03");
    row("low bytes of greater and negative numbers", {256, 257, -1, -2, 2024, 0x102},
        "9f02 23 98 00 00 01 ff fe 14 18 02 b5 9f03");
}

void TestTimeSync::sendsATime()
{
    QFETCH(const QList<int>, time);
    Synchronisation sync;
    sync.player.syncGPSTimeToCanbus(time.at(0), time.at(1), time.at(2), time.at(3), time.at(4), time.at(5));
    QCOMPARE(sync.sent.count(), 1);
    QTEST(sync.lastFrame(), "frame");
}

void TestTimeSync::sendsATimeWithoutTheLink()
{
    Synchronisation sync;
    QVERIFY(!sync.player.getCanbusConnectStatus());
    sync.player.syncGPSTimeToCanbus(34, 12, 5, 7, 2024, 0);
    sync.player.syncGPSTimeToCanbus(34, 12, 5, 7, 2024, 0);
    QCOMPARE(sync.sent.count(), 2);
    QVERIFY(!sync.timer.isActive());
}

void TestTimeSync::logsATime()
{
    CanBusPlayer player;
    player.syncGPSTimeToCanbus(34, 12, 5, 7, 2024, 0);
    QCOMPARE(m_log->messages("[DBG]"), (QStringList {"9b", "9f02239800220c05071418009b9f03"}));
}

void TestTimeSync::sendsTheHostsTime_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("a summer's day") << QDateTime(QDate(2024, 7, 5), QTime(12, 34, 56, 789))
                                    << bytes("9f02 23 98 00 22 0c 05 07 14 18 00 9b 9f03");
    QTest::newRow("the first minute of a year")
        << QDateTime(QDate(2009, 1, 1), QTime(0, 0)) << bytes("9f02 23 98 00 00 00 01 01 14 09 00 a6 9f03");
    QTest::newRow("the last minute of a year") << QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59, 999))
                                               << bytes("9f02 23 98 00 3b 17 1f 0c 14 18 00 88 9f03");
}

void TestTimeSync::sendsTheHostsTime()
{
    QFETCH(const QDateTime, now);
    stopHostClockAt(now);
    Synchronisation sync;
    sync.player.setCanbusConnectStatus(true);
    sync.player.onSyncTimeTmrout();
    QCOMPARE(sync.sent.count(), 1);
    QTEST(sync.lastFrame(), "frame");
}

void TestTimeSync::sendsTheClockFormat_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("frame");
    const QByteArray format0 = bytes("9f02 23 98 00 22 0c 05 07 14 18 00 9b 9f03");
    const QByteArray format1 = bytes("9f02 23 98 00 22 0c 05 07 14 18 01 9a 9f03");
    QTest::newRow("zero gives 1") << QByteArray("TimeFormat=0\n") << format1;
    QTest::newRow("one gives 0") << QByteArray("TimeFormat=1\n") << format0;
    QTest::newRow("two gives 0") << QByteArray("TimeFormat=2\n") << format0;
    QTest::newRow("a negative one gives 0") << QByteArray("TimeFormat=-1\n") << format0;
    QTest::newRow("a missing key counts as one") << QByteArray("Other=0\n") << format0;
    QTest::newRow("a missing file counts as one") << QByteArray() << format0;
}

void TestTimeSync::sendsTheClockFormat()
{
    QFETCH(const QByteArray, file);
    m_root->writeClockFile(file);
    m_root->writeCameraFile("TimeFormat=0\n");
    Synchronisation sync;
    sync.player.setCanbusConnectStatus(true);
    sync.player.onSyncTimeTmrout();
    QCOMPARE(sync.sent.count(), 1);
    QTEST(sync.lastFrame(), "frame");
}

void TestTimeSync::readsTheClockFormatAtEachExpiry()
{
    Synchronisation sync;
    sync.player.setCanbusConnectStatus(true);
    // Of another size than the next: within a millisecond the files could not be told apart.
    m_root->writeClockFile("TimeFormat=10\n");
    sync.player.onSyncTimeTmrout();
    QCOMPARE(sync.lastFrame(), bytes("9f02 23 98 00 22 0c 05 07 14 18 00 9b 9f03"));
    m_root->writeClockFile("TimeFormat=0\n");
    sync.player.onSyncTimeTmrout();
    QCOMPARE(sync.lastFrame(), bytes("9f02 23 98 00 22 0c 05 07 14 18 01 9a 9f03"));
}

void TestTimeSync::sendsAnUnknownTimeWhileTheClockIsNotSet()
{
    m_root->writeClockFile("TimeFormat=0\n");
    Synchronisation sync;
    sync.player.setCanbusConnectStatus(true);
    setNeedsSync(true);
    sync.player.onSyncTimeTmrout();
    QCOMPARE(sync.sent.count(), 1);
    QCOMPARE(sync.lastFrame(), kUnknownTime);

    setNeedsSync(false);
    sync.player.onSyncTimeTmrout();
    QCOMPARE(sync.sent.count(), 2);
    QCOMPARE(sync.lastFrame(), bytes("9f02 23 98 00 22 0c 05 07 14 18 01 9a 9f03"));
}

void TestTimeSync::waitsForTheNextFullMinute_data()
{
    QTest::addColumn<bool>("needsSync");
    QTest::addColumn<QTime>("now");
    QTest::addColumn<int>("interval");
    for (const bool needsSync : {false, true}) {
        const auto row = [needsSync](const char *name, const QTime &now, int interval) {
            QTest::addRow("%s, %s", name, needsSync ? "time unknown" : "time known")
                << needsSync << now << interval;
        };
        row("56.789 s gone", QTime(12, 34, 56, 789), 3211);
        row("at the full minute", QTime(12, 34, 0, 0), 60000);
        row("1 ms gone", QTime(12, 34, 0, 1), 59999);
        row("1 s gone", QTime(12, 34, 1, 0), 59000);
        row("1 ms before midnight", QTime(23, 59, 59, 999), 1);
    }
}

void TestTimeSync::waitsForTheNextFullMinute()
{
    QFETCH(const bool, needsSync);
    QFETCH(const QTime, now);
    setNeedsSync(needsSync);
    stopHostClockAt(QDateTime(QDate(2024, 7, 5), now));
    Synchronisation sync;
    sync.player.setCanbusConnectStatus(true);
    QCOMPARE(sync.timer.interval(), 1000);

    sync.player.onSyncTimeTmrout();

    QTEST(sync.timer.interval(), "interval");
    QVERIFY(sync.timer.isActive());
}

void TestTimeSync::startsAStoppedTimer()
{
    for (const bool needsSync : {false, true}) {
        setNeedsSync(needsSync);
        Synchronisation sync;
        sync.player.setCanbusConnectStatus(true);
        sync.timer.stop();
        sync.player.onSyncTimeTmrout();
        QVERIFY(sync.timer.isActive());
        QCOMPARE(sync.timer.interval(), 3211);
    }
}

void TestTimeSync::logsTheSynchronisation()
{
    m_root->writeClockFile("TimeFormat=2\n");
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    m_log->clear();
    player.onSyncTimeTmrout();
    QCOMPARE(m_log->messages("[DBG]"),
             (QStringList {"false", "\"2024-07-05T12:34:56.789\" 2 3211", "9b",
                           "9f02239800220c05071418009b9f03"}));
}

void TestTimeSync::logsTheSynchronisationOfAnUnknownTime()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    setNeedsSync(true);
    m_log->clear();
    player.onSyncTimeTmrout();
    QCOMPARE(m_log->messages("[DBG]"),
             (QStringList {"true", "3211", "44", "9f02239800ffffffffffffff449f03"}));
}

void TestTimeSync::stopsWithoutTheLink_data()
{
    QTest::addColumn<bool>("needsSync");
    QTest::newRow("time known") << false;
    QTest::newRow("time unknown") << true;
}

void TestTimeSync::stopsWithoutTheLink()
{
    QFETCH(const bool, needsSync);
    setNeedsSync(needsSync);
    Synchronisation sync;
    sync.timer.start(60000);

    sync.player.onSyncTimeTmrout();
    QVERIFY(!sync.timer.isActive());
    sync.player.onSyncTimeTmrout();
    QVERIFY(!sync.timer.isActive());
    QCOMPARE(sync.sent.count(), 0);
}

void TestTimeSync::sendsTheFirstTimeOneSecondAfterTheLinkIsUp()
{
    PseudoTerminal line;
    SilentProtocol protocol;
    CanBusPlayer *const player = CanBusPlayer::instance();
    player->setUartPort(line.name(), 57600);
    player->init(&protocol);
    QSignalSpy sent(player, &CanBusPlayer::sendCmdData);
    QElapsedTimer elapsed;

    elapsed.start();
    Q_EMIT protocol.notifyCanbusStatus(true);
    QTRY_COMPARE_WITH_TIMEOUT(sent.count(), 1, 30000);

    // A timer may be early by a twentieth.
    QVERIFY2(elapsed.elapsed() >= 900, qPrintable(QString::number(elapsed.elapsed())));
    QCOMPARE(sent.at(0).at(0).toByteArray(), bytes("9f02 23 98 00 22 0c 05 07 14 18 00 9b 9f03"));
    QCOMPARE(CanBusPlayerProbe::data(*player).syncTimer.interval(), 3211);

    Q_EMIT protocol.notifyCanbusStatus(false);
    QVERIFY(!CanBusPlayerProbe::data(*player).syncTimer.isActive());
}

QTEST_GUILESS_MAIN(TestTimeSync)
#include "tst_timesync.moc"
