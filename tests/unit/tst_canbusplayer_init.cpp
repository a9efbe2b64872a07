#include "velclimategroupcmd.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <playerrig.h>

#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

#include <eventhandler.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>

using namespace canbus;

namespace {

/// A signal that the player listens to, and the slot that answers it with log lines of its own.
struct Wire {
    const char *slot;
    void (*send)(PlayerRig &);
};

const Wire kWires[] = {
    {"suppScreen(QByteArray)", [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyScreensInfo(bytes("1f")); }},
    {"onClimateInfo(QByteArray, QByteArray)",
     [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyClimateInfo(bytes("09"), bytes("01")); }},
    {"onGaugesInfo(QByteArray, QByteArray)",
     [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyGaugesInfo(bytes("09"), bytes("01")); }},
    {"onVehicleInfo(QByteArray, QByteArray)",
     [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyVehicleInfo(bytes("09"), bytes("01")); }},
    {"onParingAssistInfo(QByteArray, QByteArray)",
     [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyParingAssistInfo(bytes("09"), bytes("01")); }},
    {"onChangeDsp(QByteArray)",
     [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyScreensTransition(bytes("77")); }},
    {"onTextScreen(QByteArray)",
     [](PlayerRig &rig) { Q_EMIT rig.protocol.notifyTextScreen(bytes("01 02 03 04 00 41 00")); }},
    {"onReverseChanged(bool, int)", [](PlayerRig &) { McuVechicleBridge::instance()->setReverse(true); }},
    {"onCanbusSourceDsplChange()",
     [](PlayerRig &) { EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPL_Home); }},
};

/// The slots of the player that have written log lines.
QStringList slotsIn(const LogRecorder &log)
{
    QStringList found;
    for (const LogLine &line : log.lines()) {
        const QString signature = line.text.section(QStringLiteral("void canbus::CanBusPlayer::"), 1);
        const QString slot = signature.section(')', 0, 0);
        if (!slot.isEmpty())
            found += slot + ')';
    }
    return found;
}

/// How often the player's slot has answered, told by its first log line.
int answersOf(const char *slot, const LogRecorder &log)
{
    QStringList lines;
    for (const LogLine &line : log.lines()) {
        if (line.type == QtDebugMsg && line.text.contains(QStringLiteral("::CanBusPlayer::%1 ").arg(slot)))
            lines += line.text;
    }
    return lines.isEmpty() ? 0 : lines.count(lines.first());
}

} // namespace

class TestCanBusPlayerInit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void opensThePortThatItWasGiven();
    void movesThePortToAWorkerThread();
    void logsTheStart();
    void answersEachSignalOnce();
    void passesTheStatusOn();
    void passesClimateReportsToTheirGroup();
    void listensToTheTimer();
    void handsReceivedBytesToTheProtocolOnItsOwnThread();
    void writesTheProtocolsBytes();
    void writesOnTheWorkerThread();

    void connectsNothingWhenThePortFails();
    void hasAWorkerThreadAlsoWhenThePortFails();
    void startsAfterAFailure();

    void makesNoSecondThread();
    void opensThePortAgainOnItsOwnThread();
    void doublesTheConnectionsWhenStartedTwice();
    void takesTheSecondProtocol();
    void outlivesItsProtocol();
    void opensThePortAlsoWithoutAProtocol();
    void startsAWorkerThreadThatHasEnded();
};

void TestCanBusPlayerInit::init()
{
    McuVechicleBridge::instance()->setReverse(false);
}

void TestCanBusPlayerInit::opensThePortThatItWasGiven()
{
    PlayerRig rig;
    rig.player.setUartPort(rig.line.name(), 115200);
    rig.player.init(&rig.protocol);
    QVERIFY(rig.port());
    QVERIFY(rig.port()->isOpen());
    QCOMPARE(rig.port()->parent(), nullptr);
    QCOMPARE(rig.line.speed(), speed_t(B115200));
    QCOMPARE(CanBusPlayerProbe::data(rig.player).protocol, &rig.protocol);
}

void TestCanBusPlayerInit::movesThePortToAWorkerThread()
{
    PlayerRig rig;
    rig.start();
    QVERIFY(rig.thread());
    QVERIFY(rig.thread()->isRunning());
    QCOMPARE(rig.thread()->parent(), nullptr);
    QCOMPARE(rig.thread()->priority(), QThread::InheritPriority);
    QCOMPARE(rig.port()->thread(), rig.thread());
    QVERIFY(rig.thread() != QThread::currentThread());
    QCOMPARE(rig.player.QObject::thread(), QThread::currentThread());
}

void TestCanBusPlayerInit::logsTheStart()
{
    PlayerRig rig;
    LogRecorder log;
    rig.start();
    const QString init = QStringLiteral("init(canbus::CanbusProtocol*)");
    QCOMPARE(slotsIn(log), (QStringList {init, init}));
    // Behind the two lines of the port: the start, and the end of the wiring.
    QCOMPARE(log.messages("[DBG]").size(), 4);
    QCOMPARE(log.messages("[DBG]").at(2), QStringLiteral("can uart is open"));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void TestCanBusPlayerInit::answersEachSignalOnce()
{
    PlayerRig rig;
    rig.start();
    for (const Wire &wire : kWires) {
        LogRecorder log;
        wire.send(rig);
        QCOMPARE(answersOf(wire.slot, log), 1);
        QStringList answering = slotsIn(log);
        answering.removeDuplicates();
        QCOMPARE(answering, QStringList {wire.slot});
    }
    QCOMPARE(rig.protocol.connections(), (QList<int> {1, 1, 1, 1, 1, 1, 1, 1, 1}));
}

void TestCanBusPlayerInit::passesTheStatusOn()
{
    PlayerRig rig;
    rig.start();
    QSignalSpy status(&rig.player, &CanBusPlayer::canbusConnectStatus);
    Q_EMIT rig.protocol.notifyCanbusStatus(true);
    Q_EMIT rig.protocol.notifyCanbusStatus(true);
    Q_EMIT rig.protocol.notifyCanbusStatus(false);
    QCOMPARE(status.size(), 2);
    QCOMPARE(status.at(0).at(0).toBool(), true);
    QCOMPARE(status.at(1).at(0).toBool(), false);
}

void TestCanBusPlayerInit::passesClimateReportsToTheirGroup()
{
    PlayerRig rig;
    rig.start();
    QSignalSpy type(VelClimateGroupCmd::instance(), &VelClimateGroupCmd::updateClimateType);
    QSignalSpy title(VelClimateGroupCmd::instance(), &VelClimateGroupCmd::updateClimateTopText);
    Q_EMIT rig.protocol.notifyClimateInfo(bytes("00"), bytes("9f 41 43 00"));
    QCOMPARE(type.size(), 1);
    QCOMPARE(type.at(0).at(0).toInt(), 159);
    QCOMPARE(title.size(), 1);
    QCOMPARE(title.at(0).at(0).toString(), QStringLiteral("AC"));
}

void TestCanBusPlayerInit::listensToTheTimer()
{
    PlayerRig rig;
    rig.start();
    rig.syncTimer().start(1);
    // While the link is down an expiry ends the synchronisation.
    QTRY_VERIFY_WITH_TIMEOUT(!rig.syncTimer().isActive(), kLongestWaitMs);
}

void TestCanBusPlayerInit::handsReceivedBytesToTheProtocolOnItsOwnThread()
{
    PlayerRig rig;
    rig.start();
    QVERIFY(rig.line.send(bytes("31 9f 00")));
    QTRY_COMPARE_WITH_TIMEOUT(rig.protocol.received, QList<QByteArray> {bytes("31 9f 00")}, kLongestWaitMs);
    QCOMPARE(rig.protocol.receivedOn, QThread::currentThread());
}

void TestCanBusPlayerInit::writesTheProtocolsBytes()
{
    PlayerRig rig;
    rig.start();
    Q_EMIT rig.protocol.onWritPortData(bytes("9f 02 21 9f 9f 00"));
    Q_EMIT rig.protocol.onWritPortData(bytes("9f 06"));
    QTRY_COMPARE_WITH_TIMEOUT(rig.line.received(), bytes("9f 02 21 9f 9f 00 9f 06"), kLongestWaitMs);
}

void TestCanBusPlayerInit::writesOnTheWorkerThread()
{
    PlayerRig rig;
    rig.start();
    // A closed port says so, on the thread on which it was to write.
    QVERIFY(QMetaObject::invokeMethod(rig.port(), "disconnect", Qt::BlockingQueuedConnection));
    std::atomic<QThread *> writer {nullptr};
    connect(
        rig.port(), &SerialPort::status, rig.port(), [&writer] { writer = QThread::currentThread(); },
        Qt::DirectConnection);
    Q_EMIT rig.protocol.onWritPortData(bytes("00"));
    QTRY_VERIFY_WITH_TIMEOUT(writer.load(), kLongestWaitMs);
    QCOMPARE(writer.load(), rig.thread());
}

void TestCanBusPlayerInit::connectsNothingWhenThePortFails()
{
    PlayerRig rig;
    LogRecorder log;
    rig.startWithoutDevice();
    QCOMPARE(slotsIn(log), QStringList());
    QCOMPARE(CanBusPlayerProbe::data(rig.player).protocol, nullptr);
    QCOMPARE(rig.protocol.connections(), (QList<int> {0, 0, 0, 0, 0, 0, 0, 0, 0}));

    QSignalSpy status(&rig.player, &CanBusPlayer::canbusConnectStatus);
    for (const Wire &wire : kWires)
        wire.send(rig);
    Q_EMIT rig.protocol.notifyCanbusStatus(true);
    Q_EMIT rig.port()->read(bytes("31"));
    rig.syncTimer().start(1);
    QSignalSpy expired(&rig.syncTimer(), &QTimer::timeout);
    QTRY_VERIFY_WITH_TIMEOUT(expired.size() >= 3, kLongestWaitMs);
    QCOMPARE(slotsIn(log), QStringList());
    QCOMPARE(status.size(), 0);
    QCOMPARE(rig.protocol.received, QList<QByteArray>());
    QVERIFY(rig.syncTimer().isActive());
}

void TestCanBusPlayerInit::hasAWorkerThreadAlsoWhenThePortFails()
{
    PlayerRig rig;
    rig.startWithoutDevice();
    QVERIFY(rig.thread());
    QVERIFY(rig.thread()->isRunning());
    QVERIFY(!rig.port()->isOpen());
    QCOMPARE(rig.port()->thread(), rig.thread());
}

void TestCanBusPlayerInit::startsAfterAFailure()
{
    PlayerRig rig;
    rig.startWithoutDevice();
    QThread *const worker = rig.thread();
    LogRecorder log;
    rig.start();
    QVERIFY(rig.port()->isOpen());
    QCOMPARE(rig.thread(), worker);
    QCOMPARE(rig.protocol.connections(), (QList<int> {1, 1, 1, 1, 1, 1, 1, 1, 1}));
    QVERIFY(rig.line.send(bytes("31")));
    QTRY_COMPARE_WITH_TIMEOUT(rig.protocol.received, QList<QByteArray> {bytes("31")}, kLongestWaitMs);
}

void TestCanBusPlayerInit::makesNoSecondThread()
{
    PlayerRig rig;
    rig.start();
    QThread *const worker = rig.thread();
    SerialPort *const port = rig.port();
    rig.start();
    QCOMPARE(rig.thread(), worker);
    QCOMPARE(rig.port(), port);
    QCOMPARE(rig.port()->thread(), worker);
    QVERIFY(worker->isRunning());
}

void TestCanBusPlayerInit::opensThePortAgainOnItsOwnThread()
{
    PlayerRig rig;
    rig.start();
    QThread *openedOn = nullptr;
    connect(
        rig.port(), &SerialPort::connected, rig.port(), [&openedOn] { openedOn = QThread::currentThread(); },
        Qt::DirectConnection);
    LogRecorder log;
    PseudoTerminal second;
    rig.player.setUartPort(second.name(), 57600);
    rig.player.init(&rig.protocol);
    QCOMPARE(openedOn, rig.thread());
    for (const LogLine &line : log.lines())
        QVERIFY2(line.type != QtWarningMsg, qPrintable(line.text));
    QVERIFY(second.send(bytes("31")));
    QTRY_VERIFY_WITH_TIMEOUT(!rig.protocol.received.isEmpty(), kLongestWaitMs);
}

void TestCanBusPlayerInit::doublesTheConnectionsWhenStartedTwice()
{
    PlayerRig rig;
    rig.start();
    rig.start();
    for (const Wire &wire : kWires) {
        LogRecorder log;
        wire.send(rig);
        QCOMPARE(answersOf(wire.slot, log), 2);
    }
    QCOMPARE(rig.protocol.connections(), (QList<int> {2, 2, 2, 2, 2, 2, 2, 2, 2}));
    Q_EMIT rig.protocol.onWritPortData(bytes("9f 06"));
    QTRY_COMPARE_WITH_TIMEOUT(rig.line.received(), bytes("9f 06 9f 06"), kLongestWaitMs);
    QVERIFY(rig.line.send(bytes("31")));
    QTRY_COMPARE_WITH_TIMEOUT(rig.protocol.received, (QList<QByteArray> {bytes("31"), bytes("31")}),
                              kLongestWaitMs);
}

void TestCanBusPlayerInit::takesTheSecondProtocol()
{
    PlayerRig rig;
    rig.start();
    PlayedProtocol second;
    rig.player.init(&second);
    QCOMPARE(CanBusPlayerProbe::data(rig.player).protocol, &second);
    QVERIFY(rig.line.send(bytes("31")));
    QTRY_VERIFY_WITH_TIMEOUT(!second.received.isEmpty(), kLongestWaitMs);
    QCOMPARE(rig.protocol.received, QList<QByteArray>());
}

void TestCanBusPlayerInit::outlivesItsProtocol()
{
    PlayerRig rig;
    rig.player.setUartPort(rig.line.name(), 57600);
    auto first = std::make_unique<PlayedProtocol>();
    rig.player.init(first.get());
    first.reset();
    QCOMPARE(CanBusPlayerProbe::data(rig.player).protocol, nullptr);
    // As when bytes were under way from the port's thread.
    rig.player.readPortData(bytes("31"));
    rig.player.init(&rig.protocol);
    QVERIFY(rig.line.send(bytes("32 33")));
    QTRY_VERIFY_WITH_TIMEOUT(!rig.protocol.received.isEmpty(), kLongestWaitMs);
    QCOMPARE(rig.protocol.received.first(), bytes("32 33"));
}

void TestCanBusPlayerInit::opensThePortAlsoWithoutAProtocol()
{
    PlayerRig rig;
    rig.player.setUartPort(rig.line.name(), 57600);
    LogRecorder log;
    rig.player.init(nullptr);
    QCOMPARE(log.messages("[ERR]").size(), 1);
    QVERIFY(rig.port()->isOpen());
    QCOMPARE(rig.port()->thread(), rig.thread());
    QCOMPARE(CanBusPlayerProbe::data(rig.player).protocol, nullptr);
}

void TestCanBusPlayerInit::startsAWorkerThreadThatHasEnded()
{
    PlayerRig rig;
    rig.startWithoutDevice();
    rig.thread()->quit();
    QVERIFY(rig.thread()->wait(kLongestWaitMs));
    rig.start();
    QVERIFY(rig.thread()->isRunning());
    QVERIFY(rig.port()->isOpen());
    QVERIFY(rig.line.send(bytes("31")));
    QTRY_COMPARE_WITH_TIMEOUT(rig.protocol.received, QList<QByteArray> {bytes("31")}, kLongestWaitMs);
}

QTEST_GUILESS_MAIN(TestCanBusPlayerInit)
#include "tst_canbusplayer_init.moc"
