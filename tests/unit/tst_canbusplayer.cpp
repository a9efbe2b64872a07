#include "player/canbusplayer.h"

#include "canbusprotocol.h"
#include "serialport.h"

#include <canbusplayerprobe.h>
#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>

#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <eventhandler.h>
#include <srcdsplctrl.h>

using namespace canbus;

namespace {

CanBusPlayerPrivate &dataOf(const CanBusPlayer &player)
{
    return CanBusPlayerProbe::data(player);
}

void showDisplay(int display)
{
    EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPLState(display));
}

class LoopBack : public CanbusProtocol {
    Q_OBJECT

public:
    void analyseData(QByteArray data) override { received += data; }

    QList<QByteArray> received;
};

/// Writes down, in order, what the host is told and what the player announces.
class Diary : public QObject {
    Q_OBJECT

public:
    explicit Diary(CanBusPlayer &player)
    {
        connect(EventHandler::instance(), &EventHandler::eventReceived, this, [this, &player](int event) {
            entries += QStringLiteral("event %1").arg(event);
            upAtAnEvent =
                upAtAnEvent || player.getCanbusConnectStatus() || dataOf(player).syncTimer.isActive();
        });
        connect(&player, &CanBusPlayer::canbusConnectStatus, this, [this, &player](bool status) {
            entries += status ? "up" : "down";
            storedWhenAnnounced = player.getCanbusConnectStatus() == status;
        });
    }

    QStringList entries;
    bool upAtAnEvent = false;
    bool storedWhenAnnounced = true;
};

} // namespace

class TestCanBusPlayer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void isOneForTheProcess();
    void registersTheTypesOfQueuedSignals();
    void startsWithItsDefaults();
    void keepsThePortThatItIsGiven();

    void announcesAStatusOnlyWhenItChanges();
    void startsTheSynchronisationOneSecondAfterTheLink();
    void leavesARunningTimerAlone();
    void stopsTheSynchronisationWithTheLink();
    void leavesTheBoxesViewWhenTheLinkGoesDown();
    void sendsNoEventOnOtherDisplays_data();
    void sendsNoEventOnOtherDisplays();
    void sendsNoEventWhenTheLinkComesUp();

    void handsReceivedBytesToTheProtocol();
    void dropsWrittenBytesBeforeItHasAPort();
    void writesToThePort();
    void writesOnTheCallersThread();
};

void TestCanBusPlayer::init()
{
    showDisplay(0);
}

void TestCanBusPlayer::isOneForTheProcess()
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    QVERIFY(player);
    QCOMPARE(CanBusPlayer::instance(), player);
    QCOMPARE(player->parent(), nullptr);
    QCOMPARE(player->QObject::thread(), QThread::currentThread());
}

void TestCanBusPlayer::registersTheTypesOfQueuedSignals()
{
    CanBusPlayer player;
    QVERIFY(QMetaType::type("QList<int>") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("QList<bool>") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("QMap<int,bool>") != QMetaType::UnknownType);
}

void TestCanBusPlayer::startsWithItsDefaults()
{
    LogRecorder log;
    CanBusPlayer player;
    const CanBusPlayerPrivate &data = dataOf(player);
    QCOMPARE(CanBusPlayerProbe::thread(player), nullptr);
    QCOMPARE(data.q, &player);
    QCOMPARE(data.serialPort, nullptr);
    QCOMPARE(data.protocol, nullptr);
    QCOMPARE(data.eventHandler, EventHandler::instance());
    QCOMPARE(data.portName, QStringLiteral("/dev/ttyS3"));
    QCOMPARE(data.baudRate, 57600);
    QVERIFY(data.screensInfo.isEmpty());
    QCOMPARE(data.connectStatus, false);
    QCOMPARE(player.getCanbusConnectStatus(), false);
    QVERIFY(!data.syncTimer.isActive());
    QCOMPARE(data.syncTimer.interval(), 0);
    QCOMPARE(data.syncTimer.parent(), nullptr);
    // A coarse timer may be half a second early, in the minute that ends.
    QCOMPARE(data.syncTimer.timerType(), Qt::PreciseTimer);
    QCOMPARE(data.menuByte0, 0);
    QCOMPARE(data.menuByte1, 0);
    QCOMPARE(data.menuSpare, 0);
    QCOMPARE(data.menuByte2, 0);
    QCOMPARE(data.menuByte3, 0);
    QVERIFY(data.menuList.isEmpty());
    QCOMPARE(data.menuMinus, false);
    QCOMPARE(data.menuPlus, false);
    QVERIFY(data.menuTexts.isEmpty());
    QVERIFY(log.lines().isEmpty());
}

void TestCanBusPlayer::keepsThePortThatItIsGiven()
{
    CanBusPlayer player;
    player.setUartPort(QStringLiteral("/dev/ttyUSB0"), 115200);
    QCOMPARE(dataOf(player).portName, QStringLiteral("/dev/ttyUSB0"));
    QCOMPARE(dataOf(player).baudRate, 115200);
    // It is only kept.
    QCOMPARE(dataOf(player).serialPort, nullptr);
    QCOMPARE(CanBusPlayerProbe::thread(player), nullptr);
}

void TestCanBusPlayer::announcesAStatusOnlyWhenItChanges()
{
    CanBusPlayer player;
    Diary diary(player);
    player.setCanbusConnectStatus(false);
    QCOMPARE(diary.entries, QStringList());
    player.setCanbusConnectStatus(true);
    player.setCanbusConnectStatus(true);
    QCOMPARE(diary.entries, QStringList {"up"});
    QVERIFY(player.getCanbusConnectStatus());
    player.setCanbusConnectStatus(false);
    player.setCanbusConnectStatus(false);
    QCOMPARE(diary.entries, (QStringList {"up", "down"}));
    QVERIFY(!player.getCanbusConnectStatus());
    QVERIFY(diary.storedWhenAnnounced);
}

void TestCanBusPlayer::startsTheSynchronisationOneSecondAfterTheLink()
{
    CanBusPlayer player;
    const QTimer &timer = dataOf(player).syncTimer;
    player.setCanbusConnectStatus(true);
    QVERIFY(timer.isActive());
    QCOMPARE(timer.interval(), 1000);
    player.setCanbusConnectStatus(false);
    player.setCanbusConnectStatus(true);
    QVERIFY(timer.isActive());
    QCOMPARE(timer.interval(), 1000);
}

void TestCanBusPlayer::leavesARunningTimerAlone()
{
    CanBusPlayer player;
    dataOf(player).syncTimer.start(3211);
    player.setCanbusConnectStatus(true);
    QVERIFY(dataOf(player).syncTimer.isActive());
    QCOMPARE(dataOf(player).syncTimer.interval(), 3211);
}

void TestCanBusPlayer::stopsTheSynchronisationWithTheLink()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    player.setCanbusConnectStatus(false);
    QVERIFY(!dataOf(player).syncTimer.isActive());
}

void TestCanBusPlayer::leavesTheBoxesViewWhenTheLinkGoesDown()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    showDisplay(78);
    Diary diary(player);
    player.setCanbusConnectStatus(false);
    QCOMPARE(diary.entries, (QStringList {"event 4", "event 36", "down"}));
    QVERIFY(!diary.upAtAnEvent);
}

void TestCanBusPlayer::sendsNoEventOnOtherDisplays_data()
{
    QTest::addColumn<int>("display");
    QTest::newRow("an ordinary screen") << 0;
    QTest::newRow("the view without camera") << 25;
    QTest::newRow("the gauges screen") << 73;
    QTest::newRow("the vehicle screen") << 74;
    QTest::newRow("the climate screen") << 75;
    QTest::newRow("the parking screen") << 76;
    QTest::newRow("just below the box's view") << 77;
    QTest::newRow("just above the box's view") << 79;
}

void TestCanBusPlayer::sendsNoEventOnOtherDisplays()
{
    QFETCH(int, display);
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    showDisplay(display);
    Diary diary(player);
    player.setCanbusConnectStatus(false);
    QCOMPARE(diary.entries, QStringList {"down"});
}

void TestCanBusPlayer::sendsNoEventWhenTheLinkComesUp()
{
    CanBusPlayer player;
    showDisplay(78);
    Diary diary(player);
    player.setCanbusConnectStatus(true);
    QCOMPARE(diary.entries, QStringList {"up"});
}

void TestCanBusPlayer::handsReceivedBytesToTheProtocol()
{
    CanBusPlayer player;
    LoopBack protocol;
    dataOf(player).protocol = &protocol;
    player.readPortData(bytes("9f 02"));
    player.readPortData(bytes("31 32 33"));
    QCOMPARE(protocol.received, (QList<QByteArray> {bytes("9f 02"), bytes("31 32 33")}));
}

void TestCanBusPlayer::dropsWrittenBytesBeforeItHasAPort()
{
    LogRecorder log;
    CanBusPlayer player;
    player.writPortData(bytes("9f 06"));
    QCOMPARE(dataOf(player).serialPort, nullptr);
    QVERIFY(log.lines().isEmpty());
}

void TestCanBusPlayer::writesToThePort()
{
    PseudoTerminal line;
    SerialPort port;
    QVERIFY(port.open(line.name(), 57600));
    CanBusPlayer player;
    dataOf(player).serialPort = &port;
    player.writPortData(bytes("9f 06 9f 9f 00"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("9f 06 9f 9f 00"), kLongestWaitMs);
}

void TestCanBusPlayer::writesOnTheCallersThread()
{
    QThread worker;
    worker.start();
    auto *port = new SerialPort;
    port->moveToThread(&worker);
    QThread *writer = nullptr;
    // The port is closed: it says so on the thread that writes.
    connect(
        port, &SerialPort::status, port, [&writer] { writer = QThread::currentThread(); },
        Qt::DirectConnection);
    CanBusPlayer player;
    dataOf(player).serialPort = port;
    player.writPortData(bytes("9f 06"));
    QThread *const writerAtReturn = writer;
    port->deleteLater();
    worker.quit();
    QVERIFY(worker.wait(kLongestWaitMs));
    QCOMPARE(writerAtReturn, QThread::currentThread());
}

QTEST_GUILESS_MAIN(TestCanBusPlayer)
#include "tst_canbusplayer.moc"
