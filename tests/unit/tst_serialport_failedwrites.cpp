#include <failingwrites.h>
#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

namespace {

constexpr int kBaud = 57600;

/// How long the event loop runs in which nothing more is to happen: time for thousands of repetitions.
constexpr int kWhileMs = 200;

void addErrors(int times)
{
    QTest::addColumn<int>("errorNumber");
    QTest::addColumn<int>("times");
    QTest::addColumn<int>("code");

    QTest::newRow("an adapter that fails") << EIO << times << 9;
    QTest::newRow("a driver without room") << EAGAIN << times << 9;
    QTest::newRow("a device that has no such thing") << ENXIO << times << 7;
    QTest::newRow("a driver that refuses") << EINVAL << times << 7;
}

const QByteArray kBlock(1000, '\x55');

/// Writes until nothing more is kept for a line that nobody reads. What the line itself takes is many blocks.
void makeStuck(RecordedPort &it)
{
    while (it.error.size() < 32)
        it.port.writeData(kBlock);
}

} // namespace

/// The line can be read, but writing to it fails or takes for ever.
class TestSerialPortFailedWrites : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { FailingWrites::failNone(); }

    void writesAgainAfterASingleFailure_data() { addErrors(1); }
    void writesAgainAfterASingleFailure();
    void givesUpAWriteThatGoesOnFailing_data() { addErrors(FailingWrites::kForEver); }
    void givesUpAWriteThatGoesOnFailing();
    void readsWhileWritesFail();
    void writesAgainOnceWritesSucceed();
    void reportsEachWriteThatFails();
    void keepsABoundedNumberOfBytesForASlowLine();
    void writesAgainOnceASlowLineHasCaughtUp();
    void reportsTheLossOfALineThatIsFull();
    void dropsWhatIsWrittenOnceItHasStopped();
};

void TestSerialPortFailedWrites::writesAgainAfterASingleFailure()
{
    QFETCH(int, errorNumber);
    QFETCH(int, times);
    QFETCH(int, code);
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    FailingWrites::fail(1, times, errorNumber);
    it.port.writeData(bytes("01 02"));
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.error.at(0).at(0).toString(), line.shortName());
    QCOMPARE(it.error.at(0).at(1).toInt(), code);
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("01 02"), kLongestWaitMs);
    it.port.writeData(bytes("03"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("01 02 03"), kLongestWaitMs);
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(log.messages("[ERR]"), (QStringList {QString::number(code), "write error"}));
}

void TestSerialPortFailedWrites::givesUpAWriteThatGoesOnFailing()
{
    QFETCH(int, errorNumber);
    QFETCH(int, times);
    QFETCH(int, code);
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    FailingWrites::fail(1, times, errorNumber);
    it.port.writeData(bytes("01 02"));
    QTest::qWait(kWhileMs);
    // Once at once and once more.
    QCOMPARE(FailingWrites::attempts(), 2);
    QCOMPARE(it.error.size(), 1);
    const QString number = QString::number(code);
    QCOMPARE(log.messages("[ERR]"), (QStringList {number, "write error", number}));
}

void TestSerialPortFailedWrites::readsWhileWritesFail()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    const LogRecorder quiet;
    FailingWrites::fail(1, FailingWrites::kForEver, EIO);
    it.port.writeData(bytes("01"));
    QVERIFY(line.send(bytes("9f 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 02"), kLongestWaitMs);
    QTest::qWait(kWhileMs);
    QVERIFY(line.send(bytes("9f 03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 02 9f 03"), kLongestWaitMs);
}

void TestSerialPortFailedWrites::writesAgainOnceWritesSucceed()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    const LogRecorder quiet;
    FailingWrites::fail(1, FailingWrites::kForEver, EIO);
    it.port.writeData(bytes("01"));
    QTest::qWait(kWhileMs);
    it.port.writeData(bytes("05"));
    it.port.writeData(bytes("06"));
    QCOMPARE(it.error.size(), 3);
    FailingWrites::failNone();
    it.port.writeData(bytes("02"));
    // The block that the port has kept, and none of those that came while it failed.
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("01 02"), kLongestWaitMs);
    it.port.writeData(bytes("03"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("01 02 03"), kLongestWaitMs);
    QCOMPARE(it.error.size(), 3);
}

void TestSerialPortFailedWrites::reportsEachWriteThatFails()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    FailingWrites::fail(1, FailingWrites::kForEver, EIO);
    for (int count = 1; count <= 20; ++count) {
        it.port.writeData(bytes("9f 02 21 01 00 00 00 20 9f 03"));
        QCOMPARE(it.error.size(), count);
        QTRY_VERIFY_WITH_TIMEOUT(FailingWrites::attempts() > count, kLongestWaitMs);
    }
    QTest::qWait(kWhileMs);
    QCOMPARE(FailingWrites::attempts(), 21);
    QCOMPARE(it.inner()->bytesToWrite(), 10);
    QCOMPARE(log.count("[ERR]", "write error"), 20);
    QVERIFY2(log.lines().size() <= 60, qPrintable(QString::number(log.lines().size())));
}

void TestSerialPortFailedWrites::keepsABoundedNumberOfBytesForASlowLine()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    makeStuck(it);
    const qint64 waiting = it.inner()->bytesToWrite();
    it.error.clear();
    log.clear();
    QElapsedTimer clock;
    clock.start();
    for (int count = 0; count < 1000; ++count)
        it.port.writeData(kBlock);
    // Not waited for any more, either.
    QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(it.inner()->bytesToWrite(), waiting);
    QVERIFY2(waiting < 50 * kBlock.size(), qPrintable(QString::number(waiting)));
    QCOMPARE(it.error.size(), 1000);
    QCOMPARE(it.error.last().at(0).toString(), line.shortName());
    QCOMPARE(it.error.last().at(1).toInt(), 12);
    QCOMPARE(log.messages("[ERR]"), QStringList {"write error"});
}

void TestSerialPortFailedWrites::writesAgainOnceASlowLineHasCaughtUp()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    makeStuck(it);
    it.port.writeData(bytes("aa"));
    QTRY_VERIFY_WITH_TIMEOUT(!line.received().isEmpty() && it.inner()->bytesToWrite() == 0, kLongestWaitMs);
    it.port.writeData(bytes("01 02"));
    QTRY_VERIFY_WITH_TIMEOUT(line.received().endsWith(bytes("01 02")), kLongestWaitMs);
    // What was kept came late, what was dropped not at all.
    QVERIFY(!line.received().contains('\xaa'));
    log.clear();
    it.error.clear();
    // The line counts as fresh: the next block is waited for.
    while (it.error.isEmpty())
        it.port.writeData(kBlock);
    QCOMPARE(log.messages("[ERR]"), (QStringList {"12", "write error"}));
}

void TestSerialPortFailedWrites::reportsTheLossOfALineThatIsFull()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    while (it.error.isEmpty())
        it.port.writeData(QByteArray(1000, '\x55'));
    it.error.clear();
    log.clear();
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    QTest::qWait(kWhileMs);
    QCOMPARE(it.error.size(), 1);
    QVERIFY(log.lines().size() < 10);
}

void TestSerialPortFailedWrites::dropsWhatIsWrittenOnceItHasStopped()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    it.port.stopWriting();
    it.port.writeData(bytes("01"));
    it.port.writeData("\x02", 1);
    QCOMPARE(it.error.size() + it.status.size(), 0);
    QVERIFY(log.lines().isEmpty());
    // It reads on, and writes when it is opened again.
    QVERIFY(line.send(bytes("03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("03"), kLongestWaitMs);
    QVERIFY(it.port.open(line.name(), kBaud));
    it.port.writeData(bytes("04"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("04"), kLongestWaitMs);
}

QTEST_GUILESS_MAIN(TestSerialPortFailedWrites)
#include "tst_serialport_failedwrites.moc"
