#include "canbusplayer.h"
#include "linkhealth.h"
#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <playerrig.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QMutexLocker>
#include <QtCore/QPointer>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

using namespace canbus;

namespace {

// What a box says, all categories and answers among it.
const QByteArray kTraffic[] = {
    bytes("9f 02 35 01 00 00 01 35 9f 03"),          // ready
    bytes("9f 06 35 35 9f 03"),                      // the check is acknowledged
    bytes("9f 02 21 02 00 1f 3c 9f 03"),             // screens
    bytes("9f 02 21 03 00 01 41 00 62 9f 03"),       // climate
    bytes("9f 02 21 04 00 01 41 00 65 9f 03"),       // gauges
    bytes("9f 02 21 05 00 41 00 65 9f 03"),          // vehicle
    bytes("9f 06 31 31 9f 03"),                      // a command is acknowledged
    bytes("9f 02 21 06 00 41 00 66 9f 03"),          // parking
    bytes("9f 15 31 31 9f 03"),                      // a command is refused
    bytes("9f 02 21 11 00 01 02 03 04 00 34 9f 03"), // text screen
    bytes("9f 02 35 01 00 00 00 34 9f 03"),          // not ready
};

const QByteArray kCheck = bytes("9f 02 35 01 00 00 01 35 9f 03");
const QByteArray kNoise = bytes("9f 02 21 9f");

/// Plays the port's thread: appends blocks without pause, as the port does.
class Feeder {
public:
    Feeder()
    {
        m_thread.reset(QThread::create([this] { feed(); }));
        m_thread->start();
    }

    ~Feeder()
    {
        m_isOver = true;
        m_thread->wait();
        const QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
        CanBusReadBuff::instance()->data.clear();
    }

private:
    void feed()
    {
        CanBusReadBuff *const buffer = CanBusReadBuff::instance();
        for (std::size_t next = 0; !m_isOver; next = (next + 1) % std::size(kTraffic)) {
            const QByteArray block =
                next + 1 == std::size(kTraffic) ? kNoise + kTraffic[next] : kTraffic[next];
            Q_EMIT buffer->received(block);
            {
                const QMutexLocker lock(&buffer->mutex);
                buffer->data += block;
            }
            QThread::usleep(300);
        }
    }

    std::atomic<bool> m_isOver {false};
    std::unique_ptr<QThread> m_thread;
};

int threadsOfThisProcess()
{
    return QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

/// What a host does with its link.
void useTheLink(VelCanBusProtocol &protocol, int round)
{
    for (int count = 0; count < round % 5; ++count)
        Q_EMIT CanBusPlayer::instance()->sendCmdData(bytes("9f 02 31 93 00 a2 9f 03"));
    if (round % 3 == 0)
        protocol.onRequestConnect();
    if (round % 4 == 0)
        protocol.onSendTmrout();
    if (round % 7 != 0)
        QCoreApplication::processEvents();
}

} // namespace

/// A host ends its link and makes a new one, in the middle of traffic.
class ProtocolRoundsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void outlivesTwoHundredProtocols();
    void endsInTheMiddleOfAPass();
    void takesItsHealthAlong();
    void goesOnWithTheNextProtocolOnThePort();
};

void ProtocolRoundsTest::outlivesTwoHundredProtocols()
{
    const LogRecorder quiet;
    auto feeder = std::make_unique<Feeder>();
    const int threads = threadsOfThisProcess();
    int working = 0;
    std::atomic<int> told {0};
    for (int round = 0; round < 200; ++round) {
        auto protocol = std::make_unique<VelCanBusProtocol>();
        const LinkHealth *const health = protocol->linkHealth();
        connect(protocol.get(), &CanbusProtocol::onWritPortData, this, [&] { ++told; });
        connect(
            protocol.get(), &CanbusProtocol::notifyClimateInfo, protocol.get(), [&] { ++told; },
            Qt::DirectConnection);
        connect(health, &LinkHealth::commandEnded, this, [&] { ++told; });
        useTheLink(*protocol, round);
        if (round % 10 == 0) {
            QTRY_VERIFY_WITH_TIMEOUT(health->figures().receivedFrames > 0, kLongestWaitMs);
            QTRY_VERIFY_WITH_TIMEOUT(health->figures().receivedBytes > 0, kLongestWaitMs);
            ++working;
        }
        protocol.reset();
        if (round % 20 == 19)
            QTRY_COMPARE_WITH_TIMEOUT(threadsOfThisProcess(), threads, kLongestWaitMs);
        // What was under way to the host comes, or does not; it does no harm.
        if (round % 2 == 0)
            QCoreApplication::processEvents();
    }
    feeder.reset();
    QCoreApplication::processEvents();
    QCOMPARE(working, 20);
    QVERIFY(told > 0);
}

void ProtocolRoundsTest::endsInTheMiddleOfAPass()
{
    const LogRecorder quiet;
    Feeder feeder;
    for (int round = 0; round < 20; ++round) {
        auto protocol = std::make_unique<VelCanBusProtocol>();
        QSemaphore inPass;
        std::atomic<bool> isThrough {false};
        connect(
            protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(),
            [&] {
                if (inPass.available() > 0)
                    return;
                inPass.release();
                QThread::msleep(5);
                isThrough = true;
            },
            Qt::DirectConnection);
        QVERIFY(inPass.tryAcquire(1, kLongestWaitMs));
        protocol.reset();
        QVERIFY(isThrough);
    }
}

void ProtocolRoundsTest::takesItsHealthAlong()
{
    auto protocol = std::make_unique<VelCanBusProtocol>();
    const QPointer<LinkHealth> health = protocol->linkHealth();
    QVERIFY(health);
    protocol.reset();
    QVERIFY(!health);
}

void ProtocolRoundsTest::goesOnWithTheNextProtocolOnThePort()
{
    const LogRecorder quiet;
    PlayerRig rig;
    rig.player.setUartPort(rig.line.name(), 57600);
    for (int round = 0; round < 12; ++round) {
        const int checks = rig.line.received().count(kCheck);
        VelCanBusProtocol protocol;
        rig.player.init(&protocol);
        QVERIFY(rig.line.send(kTraffic[0] + kTraffic[1]));
        QTRY_VERIFY_WITH_TIMEOUT(rig.player.getCanbusConnectStatus(), kLongestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(rig.line.received().count(kCheck) > checks, kLongestWaitMs);
        QVERIFY(protocol.linkHealth()->figures().receivedFrames >= 1);
        // Much is on its way from the port's thread when the protocol goes.
        for (const QByteArray &block : kTraffic)
            rig.line.send(block);
        rig.player.setCanbusConnectStatus(false);
    }
    const QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data.clear();
}

QTEST_GUILESS_MAIN(ProtocolRoundsTest)
#include "tst_protocolrounds.moc"
