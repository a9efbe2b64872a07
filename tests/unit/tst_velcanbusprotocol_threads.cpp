#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "longestwait.h"
#include "player/canbusdatamap.h"
#include "timerwatch.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QSemaphore>
#include <QtCore/QSet>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <algorithm>
#include <atomic>
#include <memory>

using namespace canbus;

namespace {

const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");
const QString kWriteFirst = "write 9f02319300a29f03";
const QString kWriteSecond = "write 9f02329400a69f03";
const QString kRequest = "write 9f022101000000209f03";
const QByteArray kReady = bytes("9f 02 35 01 00 00 01 35 9f 03");
const QString kCheck = "write 9f023501000001359f03";
const QByteArray kAckCheck = bytes("9f 06 35 35 9f 03");

/// Records what is emitted behind the slots that were connected before, on whichever thread.
class LateRecorder {
public:
    explicit LateRecorder(CanbusProtocol *protocol)
    {
        QObject::connect(
            protocol, &CanbusProtocol::onWritPortData, protocol,
            [this](const QByteArray &data) { note("write " + QString::fromLatin1(data.toHex())); },
            Qt::DirectConnection);
        QObject::connect(
            protocol, &CanbusProtocol::notifyCanbusStatus, protocol,
            [this](bool up) { note(up ? "status true" : "status false"); }, Qt::DirectConnection);
    }

    QStringList events() const
    {
        QMutexLocker lock(&m_mutex);
        QStringList events = m_events;
        events.detach(); // what is shared would be read without the lock
        return events;
    }

private:
    void note(const QString &event)
    {
        QMutexLocker lock(&m_mutex);
        m_events += event;
    }

    mutable QMutex m_mutex; // guards m_events
    QStringList m_events;
};

/// A command whose number stands in its two data bytes; its check byte is of no interest here.
QByteArray numberedCommand(int number)
{
    QByteArray frame = bytes("9f 02 00 93 00 00 00 00 9f 03");
    frame[2] = char(1 + number % 100);
    frame[5] = char(number / 100);
    frame[6] = char(number % 100);
    return frame;
}

/// A box that acknowledges every command once, and notes their numbers in the order of the wire.
class AcknowledgingBox {
public:
    explicit AcknowledgingBox(CanbusProtocol *protocol)
    {
        QObject::connect(
            protocol, &CanbusProtocol::onWritPortData, protocol,
            [this](const QByteArray &frame) { receive(frame); }, Qt::DirectConnection);
    }

    /// The next answer, or nothing.
    QByteArray takeAnswer()
    {
        QMutexLocker lock(&m_mutex);
        return m_answers.isEmpty() ? QByteArray() : m_answers.takeFirst();
    }

    QList<int> numbers() const
    {
        QMutexLocker lock(&m_mutex);
        return m_numbers;
    }

    int writes() const
    {
        QMutexLocker lock(&m_mutex);
        return m_numbers.size();
    }

    int lastNumber() const
    {
        QMutexLocker lock(&m_mutex);
        return m_numbers.isEmpty() ? -1 : m_numbers.last();
    }

    bool hasBeenEnteredTwice() const { return m_enteredTwice; }

private:
    void receive(const QByteArray &frame)
    {
        if (m_entered.exchange(true))
            m_enteredTwice = true;
        {
            QMutexLocker lock(&m_mutex);
            const int number = frame[5] * 100 + frame[6];
            // Once is enough: it stays under way until this answer comes.
            if (m_numbers.isEmpty() || m_numbers.last() != number)
                m_answers += bytes("9f 06") + QByteArray(2, frame[2]) + bytes("9f 03");
            m_numbers += number;
        }
        m_entered = false;
    }

    std::atomic<bool> m_entered {false};
    std::atomic<bool> m_enteredTwice {false};
    mutable QMutex m_mutex; // guards all below
    QList<int> m_numbers;
    QList<QByteArray> m_answers;
};

} // namespace

class VelCanBusProtocolThreadsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sendsInOrderWhatASlotOfAWriteDecides();
    void sendsACommandOfASlotOfAWrite();
    void resendsInASlotOfAWrite();
    void requestsInASlotOfALostLink();
    void acceptsEverythingInASlotOfALinkThatIsUp();
    void keepsTheOrderOfDecisionsOnTwoThreads();
    void keepsNobodyWaitingForASlotOfTheOtherThread();
    void startsAndStopsTimersFromTheParserThread();
    void leavesAPayloadAloneThatAnotherThreadHasRead();
};

void VelCanBusProtocolThreadsTest::sendsInOrderWhatASlotOfAWriteDecides()
{
    HandDrivenProtocol protocol;
    bool answered = false;
    connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(), [&] {
        if (!std::exchange(answered, true))
            protocol.passOver(bytes("9f 06 31 31 9f 03"));
    });
    const LateRecorder late(protocol.get());
    answered = true;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    answered = false;
    protocol->restartSendTmr();
    QCOMPARE(late.events(), (QStringList {kWriteFirst, kWriteFirst, kWriteFirst, kWriteSecond}));
}

void VelCanBusProtocolThreadsTest::sendsACommandOfASlotOfAWrite()
{
    HandDrivenProtocol protocol;
    int depth = 0;
    int deepest = 0;
    int calls = 0;
    connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(), [&] {
        deepest = std::max(deepest, ++depth);
        if (calls++ < 2)
            protocol->onSaveSendCmdData(kSecond);
        else if (calls == 3)
            protocol->onRequestConnect();
        --depth;
    });
    protocol->onSaveSendCmdData(kFirst);
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteFirst, kWriteFirst, kWriteFirst, kWriteFirst}));
    // One write after the other, however they came about.
    QCOMPARE(deepest, 1);
    protocol->removeSendCmdData(0x31);
    protocol->removeSendCmdData(0x32);
    protocol->removeSendCmdData(0x32);
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteSecond, kWriteSecond, kRequest}));
}

void VelCanBusProtocolThreadsTest::resendsInASlotOfAWrite()
{
    HandDrivenProtocol protocol;
    connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(),
            [&] { protocol->onSendTmrout(); });
    protocol->onSaveSendCmdData(kFirst);
    QCOMPARE(protocol.takeEvents(), (QStringList {kWriteFirst, kWriteFirst, kWriteFirst}));
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolThreadsTest::requestsInASlotOfALostLink()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    protocol.passOver(kAckCheck);
    connect(protocol.get(), &CanbusProtocol::notifyCanbusStatus, protocol.get(), [&] {
        protocol->onRequestConnect();
        protocol->onSaveSendCmdData(kSecond);
    });
    const LateRecorder late(protocol.get());
    protocol->onSaveSendCmdData(kFirst);
    for (int i = 0; i < 3; ++i)
        protocol->onSendTmrout();
    QCOMPARE(late.events(),
             (QStringList {kWriteFirst, kWriteFirst, kWriteFirst, "status false", kRequest, kRequest}));
    // The handshake has begun anew: what is given up now is no loss.
    protocol.takeEvents();
    QCOMPARE(protocol.sendTimerExpires(), QStringList {kRequest});
    QCOMPARE(protocol.sendTimerExpires(), QStringList());
}

void VelCanBusProtocolThreadsTest::acceptsEverythingInASlotOfALinkThatIsUp()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    connect(protocol.get(), &CanbusProtocol::notifyCanbusStatus, protocol.get(), [&](bool up) {
        if (!up)
            return;
        protocol->onSaveSendCmdData(kFirst);
        protocol->onCheckConnectTmrout();
        protocol->onSendTmrout();
        protocol->removeSendCmdData(0x31);
        protocol->analyseData("1");
        protocol->onParseDataTmrout();
    });
    const LateRecorder late(protocol.get());
    protocol.passOver(kAckCheck);
    QCOMPARE(late.events(),
             (QStringList {"status true", kWriteFirst, kWriteFirst, kWriteFirst, kCheck,
                           "write 373136313531343133313231"}));
}

void VelCanBusProtocolThreadsTest::keepsTheOrderOfDecisionsOnTwoThreads()
{
    constexpr int kCommands = 500;
    HandDrivenProtocol protocol;
    AcknowledgingBox box(protocol.get());
    std::atomic<bool> over {false};

    // In the parser's place, and faster: the parser itself is kept out.
    std::unique_ptr<QThread> parser(QThread::create([&] {
        while (!over) {
            protocol.buffer()->data += box.takeAnswer();
            protocol->onParseDataTmrout();
        }
    }));
    parser->start();
    const QDeadlineTimer deadline(kLongestWaitMs);
    const auto waitFor = [&](const auto &condition) {
        while (!condition() && !deadline.hasExpired())
            QThread::yieldCurrentThread();
    };
    for (int number = 0; number < kCommands && !deadline.hasExpired(); ++number) {
        protocol->onSaveSendCmdData(numberedCommand(number));
        // The head is sent again and again while its answers come in.
        while (box.lastNumber() < number - 40 && !deadline.hasExpired()) {
            const int written = box.writes();
            protocol->restartSendTmr();
            waitFor([&] { return box.writes() > written || box.lastNumber() >= number - 40; });
        }
    }
    waitFor([&] { return box.lastNumber() == kCommands - 1; });
    over = true;
    QVERIFY(parser->wait(kLongestWaitMs));

    const QList<int> numbers = box.numbers();
    QCOMPARE(numbers.last(), kCommands - 1);
    // A command that has been answered is never written again, however the threads meet.
    QVERIFY(std::is_sorted(numbers.begin(), numbers.end()));
    QCOMPARE(QSet<int>(numbers.begin(), numbers.end()).size(), kCommands);
    QVERIFY(!box.hasBeenEnteredTwice());
    QVERIFY(!protocol.log().contains("[ERR]", ""));
}

void VelCanBusProtocolThreadsTest::keepsNobodyWaitingForASlotOfTheOtherThread()
{
    LogRecorder log;
    QSemaphore inSlot;
    QSemaphore returned;
    std::atomic<bool> hasReturned {false};
    VelCanBusProtocol protocol;
    LateRecorder late(&protocol);
    QMetaObject::Connection slot = connect(
        &protocol, &CanbusProtocol::onWritPortData, &protocol,
        [&] {
            inSlot.release();
            hasReturned = returned.tryAcquire(1, kLongestWaitMs);
        },
        Qt::DirectConnection);
    {
        QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
        CanBusReadBuff::instance()->data = bytes("9f 02 21 08 00 29 9f 03");
    }
    // The parser thread is held up in writing its acknowledgement.
    QVERIFY(inSlot.tryAcquire(1, kLongestWaitMs));
    protocol.onSaveSendCmdData(kFirst);
    protocol.onSendTmrout();
    protocol.onRequestConnect();
    QCOMPARE(late.events(), QStringList {"write 9f0621219f03"});
    disconnect(slot);
    returned.release();
    QTRY_COMPARE_WITH_TIMEOUT(late.events(),
                              (QStringList {"write 9f0621219f03", kWriteFirst, kWriteFirst, kWriteFirst}),
                              kLongestWaitMs);
    QVERIFY(hasReturned);
}

void VelCanBusProtocolThreadsTest::startsAndStopsTimersFromTheParserThread()
{
    HandDrivenProtocol protocol;
    TimerWatch timers;
    const auto onAnotherThread = [&](const QByteArray &received) {
        std::unique_ptr<QThread> parser(QThread::create([&] { protocol.passOver(received); }));
        parser->start();
        return parser->wait(kLongestWaitMs);
    };
    QVERIFY(onAnotherThread(kReady));
    QCOMPARE(timers.takeCalled(), QList<int>());
    protocol.runQueuedCalls();
    QVERIFY(timers.isRunning(15000));
    QVERIFY(timers.isRunning(300));

    QVERIFY(onAnotherThread(kAckCheck));
    protocol.runQueuedCalls();
    QVERIFY(!timers.isRunning(300));
    QVERIFY(onAnotherThread(bytes("9f 02 35 01 00 00 00 34 9f 03")));
    protocol.runQueuedCalls();
    QVERIFY(timers.isRunning(300));
    QVERIFY(!timers.isRunning(15000));
    // Qt warns of a timer that is touched from another thread.
    for (const LogLine &line : protocol.log().lines())
        QVERIFY2(line.type == QtDebugMsg, qPrintable(line.text));
}

/// The thread sanitizer looks for what is written to a payload here: so nothing but relaxed atomics, which
/// order nothing, tells one thread of the other.
void VelCanBusProtocolThreadsTest::leavesAPayloadAloneThatAnotherThreadHasRead()
{
    constexpr auto kUnordered = std::memory_order_relaxed;
    HandDrivenProtocol protocol;
    QThread listening;
    QObject listener;
    listener.moveToThread(&listening);
    std::atomic<int> sum {0};
    std::atomic<int> taken {0};
    connect(protocol.get(), &CanbusProtocol::notifyClimateInfo, &listener,
            [&](const QByteArray &, const QByteArray &data) {
                sum.store(sum.load(kUnordered) + data.at(0), kUnordered);
            });
    connect(protocol.get(), &CanbusProtocol::onWritPortData, &listener,
            [&] { taken.fetch_add(1, kUnordered); });
    listening.start();
    const QByteArray reports[] = {bytes("9f 02 21 03 00 01 23 9f 03"), bytes("9f 02 21 03 00 02 20 9f 03")};
    for (int round = 0; round < 10; ++round) {
        for (const QByteArray &report : reports) {
            const int before = taken.load(kUnordered);
            protocol.passOver(report);
            CanBusDataMap::instance()->setData(3, {}); // the record shares the payload, too
            const QDeadlineTimer deadline(kLongestWaitMs);
            while (taken.load(kUnordered) == before && !deadline.hasExpired())
                QThread::yieldCurrentThread();
        }
    }
    listening.quit();
    QVERIFY(listening.wait(kLongestWaitMs));
    QCOMPARE(taken.load(), 20);
    QCOMPARE(sum.load(), 30);
}

QTEST_GUILESS_MAIN(VelCanBusProtocolThreadsTest)
#include "tst_velcanbusprotocol_threads.moc"
