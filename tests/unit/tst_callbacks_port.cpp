#include "anotherthread.h"
#include "callers.h"
#include "canbusplayer.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "longestwait.h"
#include "playerrig.h"
#include "velcanbusprotocol.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMap>
#include <QtCore/QSemaphore>
#include <QtSerialPort/QSerialPort>
#include <QtTest/QTest>

#include <functional>
#include <memory>

using namespace canbus;

namespace {

const char *const kNoDevice = "/dev/canbus-missing";

/// What somebody may call in a slot on the port's thread.
const QMap<QString, std::function<void(PlayerRig &)>> &portOperations()
{
    static const QMap<QString, std::function<void(PlayerRig &)>> all {
        {"isOpen", [](PlayerRig &rig) { rig.port()->isOpen(); }},
        {"open", [](PlayerRig &rig) { rig.port()->open(rig.line.name(), 57600); }},
        {"open, without the device", [](PlayerRig &rig) { rig.port()->open(kNoDevice, 57600); }},
        {"disconnect", [](PlayerRig &rig) { rig.port()->disconnect(); }},
        {"handleError", [](PlayerRig &rig) { rig.port()->handleError(); }},
        {"stopWriting", [](PlayerRig &rig) { rig.port()->stopWriting(); }},
        {"resumeWriting", [](PlayerRig &rig) { rig.port()->resumeWriting(); }},
        {"writeData, bytes", [](PlayerRig &rig) { rig.port()->writeData(bytes("01")); }},
        {"writeData, text", [](PlayerRig &rig) { rig.port()->writeData(QString("02")); }},
        {"writeData, with a length", [](PlayerRig &rig) { rig.port()->writeData("\x03", 1); }},
        {"CanBusPlayer::init", [](PlayerRig &rig) { rig.player.init(&rig.protocol); }},
    };
    return all;
}

/// Carries it out on the port's thread. A thread that does not come back is one that is locked.
void onPortsThread(PlayerRig &rig, const std::function<void()> &work)
{
    QSemaphore done;
    const auto carryOut = [&] {
        work();
        done.release();
    };
    QMetaObject::invokeMethod(rig.port(), carryOut, Qt::QueuedConnection);
    if (!done.tryAcquire(1, kLongestWaitMs))
        qFatal("the port's thread is locked");
}

/// Makes the port emit each of its signals, on its thread, whatever a slot does with it in between.
void makePortSpeak(PlayerRig &rig)
{
    SerialPort *const port = rig.port();
    port->open(kNoDevice, 57600);
    port->open(rig.line.name(), 57600);
    port->writeData(bytes("04"));
    if (port->isOpen() && rig.line.send(bytes("05")))
        port->findChild<QSerialPort *>()->waitForReadyRead(kLongestWaitMs);
    port->disconnect();
    port->disconnect();
}

} // namespace

/// A slot that is connected directly to the port may call everything back, on the port's thread; and the port
/// is opened on its thread, whichever asks for it.
class CallbacksPortTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void makesEverySignalOfThePortHeard();
    void neverLockThePort_data();
    void neverLockThePort();
    void opensThePortAgainForTheParserThread();
    void leavesAProtocolOutThatIsGoneByThen();
};

void CallbacksPortTest::makesEverySignalOfThePortHeard()
{
    const LogRecorder quiet;
    PlayerRig rig;
    rig.start();
    Callers callers = connectCallers({rig.port()}, [] {});
    onPortsThread(rig, [&] { makePortSpeak(rig); });
    QCOMPARE(callers.size(), std::size_t(5));
    for (const auto &caller : callers)
        QVERIFY2(caller->calls() > 0, qPrintable(caller->signal()));
    onPortsThread(rig, [&] { callers.clear(); });
}

void CallbacksPortTest::neverLockThePort_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : portOperations().keys())
        QTest::newRow(qPrintable(name + " on the port's thread")) << name;
}

void CallbacksPortTest::neverLockThePort()
{
    QFETCH(QString, name);
    const LogRecorder quiet;
    PlayerRig rig;
    rig.start();
    const auto call = portOperations().value(name);
    Callers callers = connectCallers({rig.port()}, [&] { call(rig); });
    int calls = 0;
    onPortsThread(rig, [&] {
        makePortSpeak(rig);
        for (const auto &caller : callers)
            calls += caller->calls();
        callers.clear();
    });
    QVERIFY2(calls >= 4, qPrintable(QString::number(calls)));
    // What was called back for the player's thread, too.
    QCoreApplication::sendPostedEvents();
    // The line goes on.
    onPortsThread(rig, [&] { rig.port()->open(rig.line.name(), 57600); });
    rig.protocol.received.clear();
    QVERIFY(rig.line.send(bytes("06")));
    QTRY_VERIFY_WITH_TIMEOUT(rig.protocol.received.join().endsWith(bytes("06")), kLongestWaitMs);
    onPortsThread(rig, [&] { rig.port()->writeData(bytes("07")); });
    QTRY_VERIFY_WITH_TIMEOUT(rig.line.received().endsWith(bytes("07")), kLongestWaitMs);
    const QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data.clear();
}

void CallbacksPortTest::opensThePortAgainForTheParserThread()
{
    const LogRecorder quiet;
    PlayerRig rig;
    rig.start();
    QSemaphore isReceived;
    const QMetaObject::Connection received = connect(
        CanBusReadBuff::instance(), &CanBusReadBuff::received, CanBusReadBuff::instance(),
        [&] { isReceived.release(); }, Qt::DirectConnection);
    // During a pass, which the port's thread waits for with new bytes.
    QVERIFY(onAnotherThread([&] {
        const QMutexLocker pass(&CanBusReadBuff::instance()->mutex);
        if (rig.line.send(bytes("9f 02")) && isReceived.tryAcquire(1, kLongestWaitMs))
            rig.player.init(&rig.protocol);
    }));
    QCOMPARE(rig.protocol.connections().first(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(rig.protocol.connections().first(), 2, kLongestWaitMs);
    disconnect(received);
    QVERIFY(rig.port()->isOpen());
}

void CallbacksPortTest::leavesAProtocolOutThatIsGoneByThen()
{
    const LogRecorder log;
    PlayerRig rig;
    rig.start();
    auto gone = std::make_unique<PlayedProtocol>();
    QVERIFY(onAnotherThread([&] { rig.player.init(gone.get()); }));
    gone.reset();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(CanBusPlayerProbe::data(rig.player).protocol, &rig.protocol);
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

QTEST_GUILESS_MAIN(CallbacksPortTest)
#include "tst_callbacks_port.moc"
