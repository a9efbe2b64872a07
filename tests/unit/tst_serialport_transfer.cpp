#include "velcanbusprotocol.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QMutexLocker>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <atomic>
#include <limits>

using namespace canbus;

namespace {

constexpr int kBaud = 57600;

QByteArray bufferedBytes()
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    return CanBusReadBuff::instance()->data;
}

void setBufferedBytes(const QByteArray &data)
{
    QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data = data;
}

QByteArray everyByteValue()
{
    QByteArray all;
    for (int value = 0; value < 256; ++value)
        all += char(quint8(value));
    return all;
}

} // namespace

class TestSerialPortTransfer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void writesBlocks();
    void writesAsManyBytesAsItIsTold();
    void writesHexadecimalText_data();
    void writesHexadecimalText();
    void logsHexadecimalText();
    void dropsWhatIsWrittenWhileClosed();
    void reportsAWriteThatDoesNotComplete();
    void waitsATenthOfASecondForAWrite();
    void namesTheWriteThatFailed();
    void emitsAndBuffersWhatArrives();
    void announcesABlockBeforeItIsBuffered();
    void announcesABlockOnThePortsThread();
    void appendsToWhatIsBuffered();
    void collectsAllThatIsThere();
    void waitsForTheBuffer();
    void logsAReadWithoutBytes();
    void isSilentWithoutAnError();
    void handlesReadyReadTwiceWhenOpenedTwice();
};

void TestSerialPortTransfer::init()
{
    setBufferedBytes({});
}

void TestSerialPortTransfer::writesBlocks()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    it.port.writeData(everyByteValue());
    it.port.writeData(bytes("9f 06 21"));
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), everyByteValue() + bytes("9f 06 21"), kLongestWaitMs);
    QCOMPARE(it.error.size() + it.status.size(), 0);
    QVERIFY(log.lines().isEmpty());
}

void TestSerialPortTransfer::writesAsManyBytesAsItIsTold()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    it.port.writeData("\x9f\x02\x00\x9f\x03\x55", 5);
    it.port.writeData("\x11", 1);
    QTRY_COMPARE_WITH_TIMEOUT(line.received(), bytes("9f 02 00 9f 03 11"), kLongestWaitMs);
    QCOMPARE(it.error.size() + it.status.size(), 0);
}

void TestSerialPortTransfer::writesHexadecimalText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("digits without spacing") << QStringLiteral("9f0203") << bytes("9f 02 03");
    QTest::newRow("other characters are skipped") << QStringLiteral("9f 02 zz 03") << bytes("9f 02 03");
    QTest::newRow("capital digits") << QStringLiteral("9F BD") << bytes("9f bd");
    QTest::newRow("the text ends at its first zero")
        << (QStringLiteral("9f") + QChar(0) + QStringLiteral("02")) << bytes("9f");
    QTest::newRow("a character beyond Latin-1 is skipped")
        << (QStringLiteral("9f") + QChar(0x20ac) + QStringLiteral("02")) << bytes("9f 02");
}

void TestSerialPortTransfer::writesHexadecimalText()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, written);
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    it.port.writeData(text);
    it.port.writeData(bytes("ee")); // so that what is behind the text would be seen
    QTRY_VERIFY_WITH_TIMEOUT(line.received().endsWith(bytes("ee")), kLongestWaitMs);
    QCOMPARE(line.received(), written + bytes("ee"));
}

void TestSerialPortTransfer::logsHexadecimalText()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    it.port.writeData(QStringLiteral("9F 02 zz 03"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"\"9F 02 zz 03\"", "\"9f0203\""}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void TestSerialPortTransfer::dropsWhatIsWrittenWhileClosed()
{
    PseudoTerminal line;
    RecordedPort it;
    it.port.writeData(bytes("aa"));
    it.port.writeData(QStringLiteral("bb"));
    it.port.writeData("\xcc", 1);
    const QList<QVariant> notConnected {QStringLiteral("not connected")};
    QCOMPARE(QList<QList<QVariant>>(it.status),
             (QList<QList<QVariant>> {notConnected, notConnected, notConnected}));
    QCOMPARE(it.error.size(), 0);

    QVERIFY(it.port.open(line.name(), kBaud));
    it.port.writeData(bytes("dd"));
    QTRY_VERIFY_WITH_TIMEOUT(line.received().endsWith(bytes("dd")), kLongestWaitMs);
    QCOMPARE(line.received(), bytes("dd"));
}

void TestSerialPortTransfer::reportsAWriteThatDoesNotComplete()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    it.port.writeData(QByteArray(200000, 'a'));
    QCOMPARE(it.error.size(), 0); // a part of it was taken
    for (int attempt = 0; attempt < 50 && it.error.isEmpty(); ++attempt)
        it.port.writeData(QByteArray(1000, 'b'));
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.error.at(0).at(0).toString(), line.shortName());
    QCOMPARE(it.error.at(0).at(1).toInt(), 12);
    QCOMPARE(it.error.at(0).at(2).toString(), it.inner()->errorString());
    QCOMPARE(log.messages("[ERR]"), (QStringList {"12", "write error"}));
    QVERIFY(it.port.isOpen());
    QCOMPARE(it.disconnected.size() + it.status.size(), 0);

    // The line is not given up: it goes on when the other side takes bytes again.
    it.port.writeData(bytes("ee"));
    QTRY_VERIFY_WITH_TIMEOUT(line.received().endsWith(bytes("ee")), kLongestWaitMs);
}

void TestSerialPortTransfer::waitsATenthOfASecondForAWrite()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    for (int attempt = 0; attempt < 50 && it.error.isEmpty(); ++attempt)
        it.port.writeData(QByteArray(50000, 'a'));
    QCOMPARE(it.error.size(), 1);
    // The shortest of several waits, so that a busy machine does not count.
    qint64 shortestMs = std::numeric_limits<qint64>::max();
    for (int attempt = 0; attempt < 5; ++attempt) {
        QElapsedTimer clock;
        clock.start();
        it.port.writeData(bytes("00"));
        shortestMs = std::min(shortestMs, clock.elapsed());
    }
    QCOMPARE(it.error.size(), 6);
    QVERIFY2(shortestMs >= 90 && shortestMs < 500, qPrintable(QString::number(shortestMs)));
}

void TestSerialPortTransfer::namesTheWriteThatFailed()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    for (int attempt = 0; attempt < 50 && it.error.isEmpty(); ++attempt)
        it.port.writeData(QByteArray(50000, 'a'));
    LogRecorder log;
    it.port.writeData(bytes("00"));
    it.port.writeData("\0", 1);
    QStringList failed;
    for (const LogLine &logged : log.lines()) {
        if (logged.text.endsWith(QLatin1String(" -- write error")))
            failed += logged.text.section(' ', 2).section(") ", 0, 0) + ')';
    }
    QCOMPARE(failed,
             (QStringList {"void canbus::SerialPort::writeData(const QByteArray&)",
                           "void canbus::SerialPort::writeData(const char*, int)"}));
}

void TestSerialPortTransfer::emitsAndBuffersWhatArrives()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    QVERIFY(line.send(everyByteValue()));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), everyByteValue(), kLongestWaitMs);
    QCOMPARE(bufferedBytes(), everyByteValue());
    QVERIFY(log.lines().isEmpty());
}

void TestSerialPortTransfer::announcesABlockBeforeItIsBuffered()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    setBufferedBytes(bytes("9f 02"));
    QByteArray announced;
    QByteArray bufferedThen;
    bool wasLocked = false;
    connect(CanBusReadBuff::instance(), &CanBusReadBuff::received, this, [&](const QByteArray &block) {
        announced += block;
        wasLocked = !CanBusReadBuff::instance()->mutex.tryLock();
        bufferedThen = CanBusReadBuff::instance()->data;
        if (!wasLocked)
            CanBusReadBuff::instance()->mutex.unlock();
    });
    QVERIFY(line.send(bytes("9f 03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 03"), kLongestWaitMs);
    disconnect(CanBusReadBuff::instance(), nullptr, this, nullptr);
    QCOMPARE(announced, bytes("9f 03"));
    QVERIFY(!wasLocked);
    QCOMPARE(bufferedThen, bytes("9f 02"));
}

void TestSerialPortTransfer::announcesABlockOnThePortsThread()
{
    PseudoTerminal line;
    QThread worker;
    auto *port = new SerialPort;
    QVERIFY(port->open(line.name(), kBaud));
    port->moveToThread(&worker);
    std::atomic<QThread *> announcedOn {nullptr};
    QObject listener;
    connect(
        CanBusReadBuff::instance(), &CanBusReadBuff::received, &listener,
        [&announcedOn] { announcedOn = QThread::currentThread(); }, Qt::DirectConnection);
    worker.start();
    QVERIFY(line.send(bytes("21")));
    QTRY_COMPARE_WITH_TIMEOUT(bufferedBytes(), bytes("21"), kLongestWaitMs);
    QCOMPARE(announcedOn.load(), &worker);
    port->deleteLater();
    worker.quit();
    QVERIFY(worker.wait(kLongestWaitMs));
}

void TestSerialPortTransfer::appendsToWhatIsBuffered()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    setBufferedBytes(bytes("9f 02 21"));
    QByteArray bufferedWhenEmitted;
    connect(&it.port, &SerialPort::read, this, [&] { bufferedWhenEmitted = bufferedBytes(); });
    QVERIFY(line.send(bytes("9f 03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 03"), kLongestWaitMs);
    QCOMPARE(bufferedBytes(), bytes("9f 02 21 9f 03"));
    // In the buffer before it is announced, and the buffer is free again.
    QCOMPARE(bufferedWhenEmitted, bytes("9f 02 21 9f 03"));
}

void TestSerialPortTransfer::collectsAllThatIsThere()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    it.inner()->blockSignals(true);
    QVERIFY(line.send(bytes("01 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.inner()->bytesAvailable(), 2, kLongestWaitMs);
    QVERIFY(line.send(bytes("03")));
    QTRY_COMPARE_WITH_TIMEOUT(it.inner()->bytesAvailable(), 3, kLongestWaitMs);
    it.inner()->blockSignals(false);
    QVERIFY(QMetaObject::invokeMethod(&it.port, "onReadyRead"));
    QCOMPARE(it.read.size(), 1);
    QCOMPARE(it.allRead(), bytes("01 02 03"));
}

void TestSerialPortTransfer::waitsForTheBuffer()
{
    PseudoTerminal line;
    QThread worker;
    auto *port = new SerialPort;
    std::atomic<bool> arrived {false};
    auto *inner = port->findChild<QSerialPort *>();
    connect(inner, &QSerialPort::readyRead, inner, [&arrived] { arrived = true; });
    QVERIFY(port->open(line.name(), kBaud));
    port->moveToThread(&worker);
    // On its own thread, when that is through.
    connect(&worker, &QThread::finished, port, &QObject::deleteLater);
    {
        QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
        worker.start();
        QVERIFY(line.send(bytes("9f 03")));
        QTRY_VERIFY_WITH_TIMEOUT(arrived, kLongestWaitMs);
        for (int look = 0; look < 50; ++look) {
            QThread::msleep(1);
            QCOMPARE(CanBusReadBuff::instance()->data, QByteArray());
        }
    }
    QTRY_COMPARE_WITH_TIMEOUT(bufferedBytes(), bytes("9f 03"), kLongestWaitMs);
    worker.quit();
    QVERIFY(worker.wait(kLongestWaitMs));
}

void TestSerialPortTransfer::logsAReadWithoutBytes()
{
    RecordedPort it;
    LogRecorder log;
    QVERIFY(QMetaObject::invokeMethod(&it.port, "onReadyRead"));
    QCOMPARE(log.messages("[DBG]"), QStringList {"buf is empty."});
    QCOMPARE(it.read.size(), 0);
}

void TestSerialPortTransfer::isSilentWithoutAnError()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    it.port.handleError();
    QCOMPARE(it.error.size(), 0);
    QVERIFY(log.lines().isEmpty());
}

void TestSerialPortTransfer::handlesReadyReadTwiceWhenOpenedTwice()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(it.port.open(line.name(), kBaud));
    LogRecorder log;
    QVERIFY(line.send(bytes("21")));
    QTRY_COMPARE_WITH_TIMEOUT(log.messages("[DBG]"), QStringList {"buf is empty."}, kLongestWaitMs);
    QCOMPARE(it.read.size(), 1);
    QCOMPARE(it.allRead(), bytes("21"));
    QCOMPARE(bufferedBytes(), bytes("21"));
    QVERIFY(log.lines().at(0).text.contains(QLatin1String(" void canbus::SerialPort::onReadyRead() ")));
}

QTEST_GUILESS_MAIN(TestSerialPortTransfer)
#include "tst_serialport_transfer.moc"
