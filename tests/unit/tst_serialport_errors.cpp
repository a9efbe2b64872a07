#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtTest/QTest>

#include <atomic>
#include <cerrno>
#include <sys/syscall.h>

namespace {

std::atomic<int> g_failingDescriptor {-1};
std::atomic<int> g_errorNumber {0};
std::atomic<int> g_failuresLeft {0};
std::atomic<int> g_failures {0};
std::atomic<int> g_emptyReadsLeft {0};

/// Lets the next reads of the port's descriptor fail.
void failReads(const RecordedPort &it, int errorNumber, int times)
{
    g_errorNumber = errorNumber;
    g_failuresLeft = times;
    g_failures = 0;
    g_failingDescriptor = it.inner()->handle();
}

/// Lets the next read take what there is and say that it has found nothing.
void findNothing(const RecordedPort &it, int errorNumber)
{
    g_errorNumber = errorNumber;
    g_emptyReadsLeft = 1;
    g_failingDescriptor = it.inner()->handle();
}

constexpr int kBaud = 57600;
constexpr int kForEver = 1000000;

} // namespace

/// Stands before the C library's own: an adapter that fails as real ones do.
extern "C" ssize_t read(int descriptor, void *block, size_t size)
{
    if (descriptor == g_failingDescriptor && g_failuresLeft > 0) {
        --g_failuresLeft;
        ++g_failures;
        errno = g_errorNumber;
        return -1;
    }
    const ssize_t count = ::syscall(SYS_read, descriptor, block, size);
    if (descriptor == g_failingDescriptor && g_emptyReadsLeft > 0) {
        --g_emptyReadsLeft;
        errno = g_errorNumber;
        return 0;
    }
    return count;
}

class TestSerialPortErrors : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void reportsAResourceErrorOnce();
    void reportsAResourceErrorOnceForEachOpen();
    void keepsThePortOpenAfterAResourceError();
    void readsAgainWhenReopened();
    void listensOnAfterAFalseAlarm_data();
    void listensOnAfterAFalseAlarm();
    void reportsAResourceErrorOfALineThatCanBeRead();
    void takesAReadThatFoundNothingForAFalseAlarm();
    void readsWithoutAnErrorWhatComesWhileItWrites();
    void onlyLogsAnotherError();
};

void TestSerialPortErrors::cleanup()
{
    g_failingDescriptor = -1;
    g_failuresLeft = 0;
    g_emptyReadsLeft = 0;
}

void TestSerialPortErrors::reportsAResourceErrorOnce()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    failReads(it, EIO, kForEver);
    QVERIFY(line.send(bytes("01")));
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QCOMPARE(it.error.at(0).at(0).toString(), line.shortName());
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    QCOMPARE(it.error.at(0).at(2).toString(), it.inner()->errorString());
    QCOMPARE(log.messages("[ERR]"), QStringList {"9"});
    QVERIFY(g_failures > 0);
}

void TestSerialPortErrors::reportsAResourceErrorOnceForEachOpen()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    failReads(it, EIO, kForEver);
    QVERIFY(line.send(bytes("01")));
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 3, kLongestWaitMs);
    QCOMPARE(log.messages("[ERR]"), (QStringList {"9", "9", "9"}));
    QVERIFY(line.send(bytes("02")));
    QTest::qWait(100);
    QCOMPARE(it.error.size(), 3);
}

void TestSerialPortErrors::keepsThePortOpenAfterAResourceError()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    failReads(it, EIO, kForEver);
    QVERIFY(line.send(bytes("01")));
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QVERIFY(it.port.isOpen());
    QCOMPARE(it.disconnected.size() + it.status.size() + it.read.size(), 0);
    it.port.writeData(bytes("02"));
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(line.received(), QByteArray());
}

void TestSerialPortErrors::readsAgainWhenReopened()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    failReads(it, EIO, kForEver);
    QVERIFY(line.send(bytes("01")));
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    g_failingDescriptor = -1;
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(line.send(bytes("9f 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 02"), kLongestWaitMs);
    it.port.writeData(bytes("9f 06"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("9f 06"), kLongestWaitMs);
    QCOMPARE(it.error.size(), 1);
}

void TestSerialPortErrors::listensOnAfterAFalseAlarm_data()
{
    QTest::addColumn<int>("errorNumber");
    QTest::addColumn<QString>("logged");
    // What the thread had last, when a read finds nothing.
    QTest::newRow("after a failed call that would have waited") << EAGAIN << "9";
    QTest::newRow("after some other failed call") << ENOTTY << "8";
}

void TestSerialPortErrors::listensOnAfterAFalseAlarm()
{
    QFETCH(int, errorNumber);
    QFETCH(QString, logged);
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    findNothing(it, errorNumber);
    QVERIFY(line.send(bytes("01")));
    QTRY_COMPARE_WITH_TIMEOUT(log.messages("[ERR]"), QStringList {logged}, kLongestWaitMs);
    QCOMPARE(it.error.size(), 0);
    QVERIFY(line.send(bytes("02 03")));
    QTRY_VERIFY_WITH_TIMEOUT(!it.read.isEmpty(), kLongestWaitMs);
    QCOMPARE(it.read.last().at(0).toByteArray(), bytes("02 03"));
    it.port.writeData(bytes("04"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("04"), kLongestWaitMs);
}

void TestSerialPortErrors::reportsAResourceErrorOfALineThatCanBeRead()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    failReads(it, EIO, 1);
    QVERIFY(line.send(bytes("01 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    QTRY_COMPARE_WITH_TIMEOUT(it.read.size(), 1, kLongestWaitMs);
    QCOMPARE(it.read.at(0).at(0).toByteArray(), bytes("01 02"));
    QVERIFY(line.send(bytes("03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.read.size(), 2, kLongestWaitMs);
}

void TestSerialPortErrors::takesAReadThatFoundNothingForAFalseAlarm()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    failReads(it, EAGAIN, 1);
    QVERIFY(line.send(bytes("01 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("01 02"), kLongestWaitMs);
    QCOMPARE(log.messages("[ERR]"), QStringList {"9"});
    QCOMPARE(it.error.size(), 0);
    QVERIFY(line.send(bytes("03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("01 02 03"), kLongestWaitMs);
}

void TestSerialPortErrors::readsWithoutAnErrorWhatComesWhileItWrites()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    QByteArray sent;
    for (int count = 0; count < 50; ++count) {
        // One turn of the event loop finds both: bytes to read, and a block to write, whose wait reads them.
        QVERIFY(line.send(bytes("01 02")));
        QMetaObject::invokeMethod(&it.port, "writeData", Qt::QueuedConnection,
                                  Q_ARG(QByteArray, bytes("04")));
        sent += bytes("01 02");
        QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), sent, kLongestWaitMs);
    }
    QCOMPARE(log.messages("[ERR]"), QStringList());
    QCOMPARE(it.error.size(), 0);
}

void TestSerialPortErrors::onlyLogsAnotherError()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    failReads(it, EINVAL, 1);
    QVERIFY(line.send(bytes("9f 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 02"), kLongestWaitMs);
    QCOMPARE(log.messages("[ERR]"), QStringList {"8"});
    QCOMPARE(it.error.size() + it.disconnected.size() + it.status.size(), 0);
    // The line counts as whole: bytes still go out.
    it.port.writeData(bytes("9f 06"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("9f 06"), kLongestWaitMs);
}

QTEST_GUILESS_MAIN(TestSerialPortErrors)
#include "tst_serialport_errors.moc"
