#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtTest/QtTest>

#include <atomic>
#include <cerrno>
#include <sys/syscall.h>

namespace {

std::atomic<int> g_failingDescriptor {-1};
std::atomic<int> g_errorNumber {0};
std::atomic<int> g_failuresLeft {0};
std::atomic<int> g_failures {0};

/// Lets the next reads of the port's descriptor fail.
void failReads(const RecordedPort &it, int errorNumber, int times)
{
    g_errorNumber = errorNumber;
    g_failuresLeft = times;
    g_failures = 0;
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
    return ::syscall(SYS_read, descriptor, block, size);
}

class TestSerialPortErrors : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void reportsAResourceErrorOnce();
    void reportsAResourceErrorOnceForEachOpen();
    void keepsThePortOpenAfterAResourceError();
    void readsAgainWhenReopened();
    void onlyLogsAnotherError();
};

void TestSerialPortErrors::cleanup()
{
    g_failingDescriptor = -1;
}

void TestSerialPortErrors::reportsAResourceErrorOnce()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    failReads(it, EIO, kForEver);
    QVERIFY(line.send(bytes("01")));
    QTRY_COMPARE(it.error.size(), 1);
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
    QTRY_COMPARE(it.error.size(), 3);
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
    QTRY_COMPARE(it.error.size(), 1);
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
    QTRY_COMPARE(it.error.size(), 1);
    g_failingDescriptor = -1;
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(line.send(bytes("9f 02")));
    QTRY_COMPARE(it.allRead(), bytes("9f 02"));
    it.port.writeData(bytes("9f 06"));
    QTRY_COMPARE(line.received(), bytes("9f 06"));
    QCOMPARE(it.error.size(), 1);
}

void TestSerialPortErrors::onlyLogsAnotherError()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    failReads(it, EINVAL, 1);
    QVERIFY(line.send(bytes("9f 02")));
    QTRY_COMPARE(it.allRead(), bytes("9f 02"));
    QCOMPARE(log.messages("[ERR]"), QStringList {"8"});
    QCOMPARE(it.error.size() + it.disconnected.size() + it.status.size(), 0);
    // The line counts as whole: bytes still go out.
    it.port.writeData(bytes("9f 06"));
    QTRY_COMPARE(line.received(), bytes("9f 06"));
}

QTEST_GUILESS_MAIN(TestSerialPortErrors)
#include "tst_serialport_errors.moc"
