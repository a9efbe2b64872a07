#include "hexbytes.h"
#include "logrecorder.h"
#include "longestwait.h"
#include "velcanbusprotocol.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QPointer>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <thread>

#include <atomic>
#include <memory>

using namespace canbus;

namespace {

void arrive(const QByteArray &bytes)
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data += bytes;
}

QByteArray takeBuffered()
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    return std::exchange(CanBusReadBuff::instance()->data, QByteArray());
}

bool isConsumed()
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    return CanBusReadBuff::instance()->data.isEmpty();
}

/// Waits without running an event loop. @return whether the buffer was consumed
bool waitUntilConsumed()
{
    QDeadlineTimer deadline(kLongestWaitMs);
    while (!isConsumed()) {
        if (deadline.hasExpired())
            return false;
        QThread::yieldCurrentThread();
    }
    return true;
}

const QByteArray kClimate = bytes("9f 02 21 03 05 27 9f 03");

} // namespace

class CanbusTickThreadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }
    void cleanup()
    {
        takeBuffered();
        m_log.reset();
    }

    void isNamed();
    void runsUntilItIsStopped();
    void onlyTicksWithoutAProtocol();
    void stopsBeforeItHasRun();
    void runsOnWhateverThreadCallsItsLoop();

    void consumesWhatArrives();
    void reachesObjectsOfOtherThreadsQueued();
    void takesOneFrameATick();
    void holdsTheBuffersMutexDuringAPass();
    void lastsAsLongAsItsProtocol();
    void isWaitedForByItsProtocol();
    void endsWithEachOfItsProtocols();
    void sharesTheBuffer();

private:
    std::unique_ptr<LogRecorder> m_log;
};

void CanbusTickThreadTest::isNamed()
{
    const CanbusTickThread thread(nullptr, nullptr);
    QCOMPARE(thread.objectName(), QString("CanbusTickThread"));
    QVERIFY(!thread.isRunning());
}

void CanbusTickThreadTest::runsUntilItIsStopped()
{
    CanbusTickThread thread(nullptr, nullptr);
    thread.start();
    // Longer than a number of ticks: it does not end of itself.
    QVERIFY(!thread.wait(60));
    thread.stop();
    QVERIFY(thread.wait(kLongestWaitMs));
}

void CanbusTickThreadTest::onlyTicksWithoutAProtocol()
{
    arrive(kClimate);
    CanbusTickThread thread(nullptr, nullptr);
    thread.start();
    QVERIFY(!thread.wait(60));
    thread.stop();
    QVERIFY(thread.wait(kLongestWaitMs));
    QCOMPARE(takeBuffered().toHex(), kClimate.toHex());
}

void CanbusTickThreadTest::stopsBeforeItHasRun()
{
    CanbusTickThread thread(nullptr, nullptr);
    thread.stop();
    thread.start();
    QVERIFY(thread.wait(kLongestWaitMs));
}

void CanbusTickThreadTest::runsOnWhateverThreadCallsItsLoop()
{
    CanbusTickThread thread(nullptr, nullptr);
    std::thread other([&thread] { thread.run(); });
    thread.stop();
    other.join();
    QVERIFY(!thread.isRunning());
}

void CanbusTickThreadTest::consumesWhatArrives()
{
    QStringList written;
    VelCanBusProtocol protocol;
    connect(&protocol, &CanbusProtocol::onWritPortData, this,
            [&](const QByteArray &data) { written += QString::fromLatin1(data.toHex()); });
    arrive(bytes("9f 02 21 08 00"));
    arrive(bytes("29 9f 03"));
    QTRY_COMPARE_WITH_TIMEOUT(written, QStringList {"9f0621219f03"}, kLongestWaitMs);
    QVERIFY(isConsumed());
}

void CanbusTickThreadTest::reachesObjectsOfOtherThreadsQueued()
{
    QThread *receivedOn = nullptr;
    QString received;
    std::atomic<QThread *> emittedOn {nullptr};
    VelCanBusProtocol protocol;
    connect(&protocol, &CanbusProtocol::notifyClimateInfo, this,
            [&](const QByteArray &mod, const QByteArray &data) {
                receivedOn = QThread::currentThread();
                received = QString::fromLatin1(mod.toHex() + ' ' + data.toHex());
            });
    connect(
        &protocol, &CanbusProtocol::notifyClimateInfo, &protocol,
        [&] { emittedOn = QThread::currentThread(); }, Qt::DirectConnection);
    arrive(bytes("9f 02 21 03 05 01 02 24 9f 03"));

    QVERIFY(waitUntilConsumed());
    QVERIFY(emittedOn != nullptr);
    QVERIFY(emittedOn != QThread::currentThread());
    QCOMPARE(received, QString());
    QTRY_COMPARE_WITH_TIMEOUT(received, QString("05 0102"), kLongestWaitMs);
    QCOMPARE(receivedOn, QThread::currentThread());
    for (const LogLine &line : m_log->lines())
        QVERIFY2(line.type == QtDebugMsg, qPrintable(line.text));
}

void CanbusTickThreadTest::takesOneFrameATick()
{
    QMutex mutex;
    QElapsedTimer clock;
    QList<qint64> times;
    QByteArray mods;
    VelCanBusProtocol protocol;
    connect(
        &protocol, &CanbusProtocol::notifyClimateInfo, &protocol,
        [&](const QByteArray &mod) {
            QMutexLocker lock(&mutex);
            mods += mod;
            times += clock.elapsed();
        },
        Qt::DirectConnection);
    clock.start();
    arrive(bytes("9f 02 21 03 01 23 9f 03  9f 02 21 03 02 20 9f 03  9f 02 21 03 03 21 9f 03"));
    QVERIFY(waitUntilConsumed());

    QMutexLocker lock(&mutex);
    QCOMPARE(mods.toHex(), QByteArray("010203"));
    // The thread sleeps 10 ms at least between two passes; the clock's steps are whole milliseconds.
    QVERIFY(times[1] - times[0] >= 9);
    QVERIFY(times[2] - times[1] >= 9);
}

void CanbusTickThreadTest::holdsTheBuffersMutexDuringAPass()
{
    std::atomic<int> unlocked {0};
    std::atomic<int> seen {0};
    const auto look = [&] {
        ++seen;
        if (CanBusReadBuff::instance()->mutex.tryLock()) {
            ++unlocked;
            CanBusReadBuff::instance()->mutex.unlock();
        }
    };
    VelCanBusProtocol protocol;
    connect(&protocol, &CanbusProtocol::notifyClimateInfo, &protocol, look, Qt::DirectConnection);
    connect(&protocol, &CanbusProtocol::onWritPortData, &protocol, look, Qt::DirectConnection);
    arrive(kClimate);
    QTRY_COMPARE_WITH_TIMEOUT(seen.load(), 2, kLongestWaitMs);
    QCOMPARE(unlocked.load(), 0);
}

void CanbusTickThreadTest::lastsAsLongAsItsProtocol()
{
    QMutex mutex;
    QPointer<QThread> parser;
    auto protocol = std::make_unique<VelCanBusProtocol>();
    connect(
        protocol.get(), &CanbusProtocol::notifyClimateInfo, protocol.get(),
        [&] {
            QMutexLocker lock(&mutex);
            parser = QThread::currentThread();
        },
        Qt::DirectConnection);
    arrive(kClimate);
    QVERIFY(waitUntilConsumed());
    {
        QMutexLocker lock(&mutex);
        QVERIFY(parser);
        QCOMPARE(parser->objectName(), QString("CanbusTickThread"));
        QVERIFY(parser->isRunning());
        QVERIFY(!parser->parent());
    }

    protocol.reset();
    QVERIFY(!parser);
    arrive(kClimate);
    CanbusTickThread other(nullptr, nullptr);
    other.start();
    QVERIFY(!other.wait(60));
    other.stop();
    QVERIFY(other.wait(kLongestWaitMs));
    QCOMPARE(takeBuffered().toHex(), kClimate.toHex());
}

void CanbusTickThreadTest::isWaitedForByItsProtocol()
{
    QSemaphore inPass;
    QSemaphore deleting;
    std::atomic<bool> passIsOver {false};
    bool passWasOver = false;
    auto protocol = std::make_unique<VelCanBusProtocol>();
    connect(
        protocol.get(), &CanbusProtocol::notifyClimateInfo, protocol.get(),
        [&] {
            inPass.release();
            deleting.tryAcquire(1, kLongestWaitMs);
            // A pass that takes its time while the protocol is being deleted.
            QThread::msleep(50);
            passIsOver = true;
        },
        Qt::DirectConnection);
    connect(
        protocol.get(), &QObject::destroyed, this, [&] { passWasOver = passIsOver; }, Qt::DirectConnection);
    arrive(kClimate);
    QVERIFY(inPass.tryAcquire(1, kLongestWaitMs));
    deleting.release();
    protocol.reset();
    QVERIFY(passWasOver);
}

void CanbusTickThreadTest::endsWithEachOfItsProtocols()
{
    for (int i = 0; i < 20; ++i) {
        VelCanBusProtocol protocol;
        arrive(kClimate);
    }
    VelCanBusProtocol last;
    QVERIFY(waitUntilConsumed());
}

void CanbusTickThreadTest::sharesTheBuffer()
{
    CanBusReadBuff *here = CanBusReadBuff::instance();
    CanBusReadBuff *there = nullptr;
    std::unique_ptr<QThread> other(QThread::create([&] { there = CanBusReadBuff::instance(); }));
    other->start();
    QVERIFY(other->wait(kLongestWaitMs));
    QCOMPARE(there, here);
    // Not recursive.
    QMutexLocker lock(&here->mutex);
    QVERIFY(!here->mutex.tryLock());
}

QTEST_GUILESS_MAIN(CanbusTickThreadTest)
#include "tst_canbustickthread.moc"
