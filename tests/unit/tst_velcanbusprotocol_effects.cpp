#include "anotherthread.h"
#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "longestwait.h"
#include "timerwatch.h"

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <memory>

using namespace canbus;

namespace {

constexpr int kFarTooMany = 100;

const QByteArray kCommand = bytes("9f 02 31 93 00 a2 9f 03");
const QString kWrite = "write 9f02319300a29f03";
const QString kAck = "write 9f069f03"; // of no frame at all

/// Runs it on a thread of its own and waits. @return whether it has returned
/// The thread of each write, in their order: "here" for the test's own, "there" for any other.
class WriteRecorder {
public:
    explicit WriteRecorder(CanbusProtocol *protocol)
    {
        QObject::connect(
            protocol, &CanbusProtocol::onWritPortData, protocol,
            [this](const QByteArray &) {
                m_threads += QThread::currentThread() == m_here ? "here" : "there";
            },
            Qt::DirectConnection);
    }

    QStringList take() { return std::exchange(m_threads, QStringList()); }

private:
    QThread *m_here = QThread::currentThread();
    QStringList m_threads; // of one thread at a time, each of which is waited for
};

} // namespace

/// Two threads decide, and one at a time carries out what was decided.
class VelCanBusProtocolEffectsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void doesNotWorkForTheOtherThreadWithoutEnd();
    void isNotKeptByTheOtherThreadsCommands();
    void carriesOutWhatTheOtherThreadDecidedBefore();
    void carriesOutOnThePassWhatWasLeft();
    void carriesOutWhatItsOwnSlotsDecide();
    void stopsTheSendTimerFromAnotherThreadByAQueuedCall();
    void takesTestBytesFromTwoThreads();
};

void VelCanBusProtocolEffectsTest::doesNotWorkForTheOtherThreadWithoutEnd()
{
    HandDrivenProtocol protocol;
    WriteRecorder writes(protocol.get());
    int added = 0;
    // The other thread decides something new during each write.
    const QMetaObject::Connection slot =
        connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(), [&] {
            if (++added < kFarTooMany)
                QVERIFY(onAnotherThread([&] { protocol->receiveModuleAck(); }));
        });
    protocol->onSaveSendCmdData(kCommand);
    QCOMPARE(writes.take(), QStringList {"here"});
    QCOMPARE(protocol.takeEvents(), QStringList {kWrite});
    disconnect(slot);
    QCOMPARE(protocol.passOver({}), QStringList {kAck});
}

void VelCanBusProtocolEffectsTest::isNotKeptByTheOtherThreadsCommands()
{
    HandDrivenProtocol protocol;
    WriteRecorder writes(protocol.get());
    int added = 0;
    QThread *const here = QThread::currentThread();
    // As above, with the threads in each other's place.
    const QMetaObject::Connection slot = connect(
        protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(),
        [&] {
            if (QThread::currentThread() != here && ++added < kFarTooMany)
                onAnotherThread([&] { protocol->onSaveSendCmdData(kCommand); });
        },
        Qt::DirectConnection);
    QVERIFY(onAnotherThread([&] { protocol->receiveModuleAck(); }));
    QCOMPARE(writes.take(), QStringList {"there"});
    disconnect(slot);
    protocol.pass();
    QCOMPARE(writes.take(), QStringList {"here"});
}

void VelCanBusProtocolEffectsTest::carriesOutWhatTheOtherThreadDecidedBefore()
{
    HandDrivenProtocol protocol;
    WriteRecorder writes(protocol.get());
    const QMetaObject::Connection slot =
        connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(), [&] {
            QVERIFY(onAnotherThread([&] {
                protocol->receiveModuleAck();
                protocol->receiveModuleAck();
            }));
        });
    protocol->onSaveSendCmdData(kCommand);
    disconnect(slot);
    QCOMPARE(protocol.takeEvents(), QStringList {kWrite});
    protocol->restartSendTmr();
    QCOMPARE(protocol.takeEvents(), (QStringList {kAck, kAck, kWrite}));
    QCOMPARE(writes.take(), (QStringList {"here", "here", "here", "here"}));
}

void VelCanBusProtocolEffectsTest::carriesOutOnThePassWhatWasLeft()
{
    HandDrivenProtocol protocol;
    WriteRecorder writes(protocol.get());
    const QMetaObject::Connection slot =
        connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(),
                [&] { QVERIFY(onAnotherThread([&] { protocol->receiveModuleAck(); })); });
    protocol->onSaveSendCmdData(kCommand);
    disconnect(slot);
    QCOMPARE(writes.take(), QStringList {"here"});
    // Also without anything in the buffer.
    QVERIFY(onAnotherThread([&] { protocol.pass(); }));
    QCOMPARE(writes.take(), QStringList {"there"});
    QVERIFY(onAnotherThread([&] { protocol.pass(); }));
    QCOMPARE(writes.take(), QStringList());
}

void VelCanBusProtocolEffectsTest::carriesOutWhatItsOwnSlotsDecide()
{
    HandDrivenProtocol protocol;
    WriteRecorder writes(protocol.get());
    int added = 0;
    connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(), [&] {
        if (++added < kFarTooMany)
            protocol->receiveModuleAck();
    });
    protocol->onSaveSendCmdData(kCommand);
    QCOMPARE(writes.take().size(), kFarTooMany);
}

void VelCanBusProtocolEffectsTest::stopsTheSendTimerFromAnotherThreadByAQueuedCall()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    protocol->onSaveSendCmdData(kCommand);
    HandDrivenProtocol::runQueuedCalls();
    QVERIFY(timers.isRunning(300));
    QVERIFY(onAnotherThread([&] {
        for (int expiry = 0; expiry < 3; ++expiry)
            protocol->onSendTmrout();
    }));
    QVERIFY(timers.isRunning(300));
    HandDrivenProtocol::runQueuedCalls();
    QVERIFY(!timers.isRunning(300));
    // Qt warns of a timer that is touched from another thread.
    for (const LogLine &line : protocol.log().lines())
        QVERIFY2(line.type == QtDebugMsg, qPrintable(line.text));
}

void VelCanBusProtocolEffectsTest::takesTestBytesFromTwoThreads()
{
    HandDrivenProtocol protocol;
    WriteRecorder writes(protocol.get());
    std::unique_ptr<QThread> other(QThread::create([&] {
        for (int i = 0; i < 2000; ++i)
            protocol->analyseData("x");
    }));
    other->start();
    for (int i = 0; i < 2000; ++i)
        protocol->analyseData("y");
    QVERIFY(other->wait(kLongestWaitMs));
    QCOMPARE(writes.take(), QStringList());
    protocol->analyseData("1");
    QCOMPARE(writes.take(), QStringList {"here"});
}

QTEST_GUILESS_MAIN(VelCanBusProtocolEffectsTest)
#include "tst_velcanbusprotocol_effects.moc"
