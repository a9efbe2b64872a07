#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <ctime>

using namespace canbus;

namespace {

constexpr int kBaud = 57600;

/// The share of one processor that this process uses while its event loop runs for a while.
double processorShare()
{
    constexpr int kObservedMs = 400; // 5 % of it are 20 ms
    QElapsedTimer clock;
    clock.start();
    const std::clock_t before = std::clock();
    QTest::qWait(kObservedMs);
    const double usedMs = double(std::clock() - before) * 1000 / CLOCKS_PER_SEC;
    return usedMs / double(clock.elapsed());
}

} // namespace

/// The line is cut while the port is open: the other end of the pseudo-terminal is closed.
class TestSerialPortLoss : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reportsALostLineOnce();
    void reportsALostLineOnceForEachOpen();
    void countsAFailedOpenAsAnOpen();
    void reportsNoMoreHoweverOftenThePortRepeatsItself();
    void staysFormallyOpen();
    void leavesTheProcessorIdle();
    void writesFewLogLines();
    void dropsWhatIsWrittenToALostLine();
    void findsALostLineWhenWriting();
    void closesALostLine();
    void worksAgainWhenReopened();
    void reportsTheLossOfAReopenedLine();
    void failsToReopenAMissingDevice();
};

void TestSerialPortLoss::reportsALostLineOnce()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QCOMPARE(it.error.at(0).at(0).toString(), line.shortName());
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    QCOMPARE(it.error.at(0).at(2).toString(), it.inner()->errorString());
    QVERIFY(!it.error.at(0).at(2).toString().isEmpty());
    processorShare();
    QCOMPARE(it.error.size(), 1);
}

void TestSerialPortLoss::reportsALostLineOnceForEachOpen()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 2, kLongestWaitMs);
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    QCOMPARE(it.error.at(1).at(1).toInt(), 9);
    processorShare();
    QCOMPARE(it.error.size(), 2);
}

void TestSerialPortLoss::countsAFailedOpenAsAnOpen()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(!it.port.open(QStringLiteral("/dev/canbus-missing"), kBaud));
    QVERIFY(it.port.open(line.name(), kBaud));
    it.error.clear();
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 2, kLongestWaitMs);
    processorShare();
    QCOMPARE(it.error.size(), 2);
}

void TestSerialPortLoss::reportsNoMoreHoweverOftenThePortRepeatsItself()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    for (int count = 0; count < 10; ++count)
        it.port.handleError();
    QCOMPARE(it.error.size(), 1);
}

void TestSerialPortLoss::staysFormallyOpen()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QVERIFY(it.port.isOpen());
    QCOMPARE(it.disconnected.size() + it.status.size() + it.read.size(), 0);
}

void TestSerialPortLoss::leavesTheProcessorIdle()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    const double share = processorShare();
    QVERIFY2(share < 0.05, qPrintable(QString::number(share)));
}

void TestSerialPortLoss::writesFewLogLines()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    processorShare();
    it.port.writeData(bytes("01"));
    processorShare();
    const QStringList errors = log.messages("[ERR]");
    QVERIFY(!errors.isEmpty());
    QVERIFY2(errors.size() <= 4, qPrintable(errors.join('/')));
    for (const QString &message : errors)
        QVERIFY2(message == "8" || message == "9", qPrintable(message));
    QVERIFY(log.lines().at(0).text.contains(QLatin1String(" void canbus::SerialPort::handleError() ")));
}

void TestSerialPortLoss::dropsWhatIsWrittenToALostLine()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    LogRecorder log;
    for (int count = 0; count < 100; ++count) {
        it.port.writeData(bytes("01"));
        it.port.writeData("\x01", 1);
    }
    processorShare();
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.status.size(), 0);
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(it.inner()->bytesToWrite(), 0);
}

void TestSerialPortLoss::findsALostLineWhenWriting()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    // At once, before the event loop has seen anything.
    it.port.writeData(bytes("01"));
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.error.at(0).at(1).toInt(), 9);
    processorShare();
    QCOMPARE(it.error.size(), 1);
    QVERIFY(it.port.isOpen());
}

void TestSerialPortLoss::closesALostLine()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    it.port.disconnect();
    QVERIFY(!it.port.isOpen());
    QCOMPARE(it.disconnected.size(), 1);
    QCOMPARE(it.error.size(), 1);
    it.port.writeData(bytes("01"));
    QCOMPARE(it.status.size(), 1);
}

void TestSerialPortLoss::worksAgainWhenReopened()
{
    PseudoTerminal first;
    PseudoTerminal second;
    RecordedPort it;
    QVERIFY(it.port.open(first.name(), kBaud));
    first.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QVERIFY(it.port.open(second.name(), kBaud));
    QCOMPARE(it.disconnected.size(), 0);
    it.port.writeData(bytes("9f 06"));
    QTRY_COMPARE_WITH_TIMEOUT(second.received(), bytes("9f 06"), kLongestWaitMs);
    QVERIFY(second.send(bytes("9f 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 02"), kLongestWaitMs);
    QCOMPARE(it.error.size(), 1);
}

void TestSerialPortLoss::reportsTheLossOfAReopenedLine()
{
    PseudoTerminal first;
    PseudoTerminal second;
    RecordedPort it;
    QVERIFY(it.port.open(first.name(), kBaud));
    first.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QVERIFY(it.port.open(second.name(), kBaud));
    second.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 3, kLongestWaitMs);
    QCOMPARE(it.error.at(2).at(0).toString(), second.shortName());
    processorShare();
    QCOMPARE(it.error.size(), 3);
}

void TestSerialPortLoss::failsToReopenAMissingDevice()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(it.error.size(), 1, kLongestWaitMs);
    QVERIFY(!it.port.open(line.name(), kBaud));
    QVERIFY(!it.port.isOpen());
    QCOMPARE(it.error.size(), 2);
    QCOMPARE(it.error.at(1).at(0).toString(), line.name());
    QCOMPARE(it.error.at(1).at(1).toInt(), 3);
    it.port.writeData(bytes("01"));
    QCOMPARE(it.status.size(), 1);
}

QTEST_GUILESS_MAIN(TestSerialPortLoss)
#include "tst_serialport_loss.moc"
