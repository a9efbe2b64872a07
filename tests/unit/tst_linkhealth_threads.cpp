#include "figurechanges.h"
#include "hexbytes.h"
#include "longestwait.h"
#include "velcanbusprotocol.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

using namespace canbus;

namespace {

constexpr int kReports = 60;

const QByteArray kClimate = bytes("9f 02 21 03 05 9f9f b8 9f 03");
const QByteArray kCommand = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kAck = bytes("9f 06 31 31 9f 03");

/// As the serial port does it.
void deliver(const QByteArray &block)
{
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    Q_EMIT buffer->received(block);
    QMutexLocker lock(&buffer->mutex);
    buffer->data += block;
}

bool isAllTaken()
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    return CanBusReadBuff::instance()->data.isEmpty();
}

/// A thread that does one thing until it is told to stop, or goes.
class Worker {
public:
    template <class Work>
    explicit Worker(Work work)
        : m_thread(QThread::create([this, work] {
            while (!m_stopped)
                work();
        }))
    {
        m_thread->start();
    }

    ~Worker()
    {
        m_stopped = true;
        m_thread->wait();
    }

private:
    std::atomic<bool> m_stopped {false};
    std::unique_ptr<QThread> m_thread;
};

/// Whether no figure has become less. The last answer's time and the mean may.
QString firstThatShrank(const QVariantMap &before, const QVariantMap &now)
{
    for (auto figure = before.begin(); figure != before.end(); ++figure) {
        const bool mayShrink = figure.key() == "lastAnswerUs" || figure.key() == "meanAnswerUs";
        if (!mayShrink && now.value(figure.key()).toULongLong() < figure.value().toULongLong())
            return figure.key();
    }
    return {};
}

} // namespace

/// The figures while the link's own threads are at work.
class LinkHealthThreadsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void canBeReadWhileTrafficRuns();
    void letsAProtocolGoWhileBytesArrive();
    void leavesNoConnectionBehind();
};

void LinkHealthThreadsTest::init()
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data.clear();
}

void LinkHealthThreadsTest::canBeReadWhileTrafficRuns()
{
    std::atomic<int> answersDue {0};
    std::atomic<int> ended {0};
    std::atomic<int> readings {0};
    QString shrunk; // the reader's, until it has stopped
    VelCanBusProtocol protocol;
    const LinkHealth *const health = protocol.linkHealth();
    const auto noteWrite = [&](const QByteArray &block) { answersDue += block == kCommand ? 1 : 0; };
    const auto noteEnd = [&](const QByteArray &frame) { ended += frame == kCommand ? 1 : 0; };
    connect(&protocol, &CanbusProtocol::onWritPortData, &protocol, noteWrite, Qt::DirectConnection);
    connect(health, &LinkHealth::commandEnded, &protocol, noteEnd, Qt::DirectConnection);
    {
        QVariantMap last;
        Worker reader([&] {
            const QVariantMap now = flattened(health->figures());
            if (shrunk.isEmpty())
                shrunk = firstThatShrank(last, now);
            last = now;
            ++readings;
        });
        int reports = 0;
        Worker line([&] {
            const bool isAnswer = answersDue > 0;
            if (!isAllTaken() || (!isAnswer && reports == kReports)) {
                QThread::yieldCurrentThread();
                return;
            }
            (isAnswer ? --answersDue : ++reports);
            deliver(isAnswer ? kAck : kClimate);
        });
        for (int sent = 1; sent <= 10; ++sent) {
            protocol.onSaveSendCmdData(kCommand);
            QTRY_COMPARE_WITH_TIMEOUT(ended.load(), sent, kLongestWaitMs);
        }
        QTRY_COMPARE_WITH_TIMEOUT(health->figures().sentAcks, quint64(kReports), kLongestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(answersDue == 0 && isAllTaken(), kLongestWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT(readings > 100, kLongestWaitMs);
    }
    QCOMPARE(shrunk, QString());
    const LinkFigures figures = health->figures();
    QCOMPARE(figures.receivedFrames, quint64(kReports));
    QCOMPARE(figures.receivedBytes, 10 * figures.receivedFrames + 6 * figures.receivedAcks);
    QCOMPARE(figures.badChecks + figures.skippedBytes, 0U);
    QVERIFY(figures.answers >= 1 && figures.answers <= 10);
    QVERIFY(figures.lastAnswerUs > 0 && figures.meanAnswerUs <= figures.maxAnswerUs);
}

void LinkHealthThreadsTest::letsAProtocolGoWhileBytesArrive()
{
    Worker line([] { Q_EMIT CanBusReadBuff::instance()->received(bytes("41")); });
    for (int round = 0; round < 50; ++round) {
        const auto protocol = std::make_unique<VelCanBusProtocol>();
        const LinkHealth *const health = protocol->linkHealth();
        QTRY_VERIFY_WITH_TIMEOUT(health->figures().receivedBytes > 0, kLongestWaitMs);
    }
}

void LinkHealthThreadsTest::leavesNoConnectionBehind()
{
    struct Peek : QObject {
        using QObject::isSignalConnected;
    };
    const auto isListenedTo = [] {
        const auto isConnected = &Peek::isSignalConnected;
        return (CanBusReadBuff::instance()->*isConnected)(QMetaMethod::fromSignal(&CanBusReadBuff::received));
    };
    QVERIFY(!isListenedTo());
    {
        VelCanBusProtocol protocol;
        QVERIFY(isListenedTo());
    }
    QVERIFY(!isListenedTo());
}

QTEST_GUILESS_MAIN(LinkHealthThreadsTest)
#include "tst_linkhealth_threads.moc"
