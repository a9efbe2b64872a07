#include <hexbytes.h>
#include <logrecorder.h>
#include <longestwait.h>
#include <pseudoterminal.h>
#include <recordedport.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>
#include <sys/fsuid.h>

using namespace canbus;

namespace {

constexpr int kBaud = 57600;

/// Puts off the right to open every file while it exists, as far as this thread has it.
class OrdinaryUser {
public:
    OrdinaryUser() { ::setfsuid(kNobody); }
    ~OrdinaryUser() { ::setfsuid(::geteuid()); }

private:
    Q_DISABLE_COPY(OrdinaryUser)
    static constexpr uid_t kNobody = 65534;
};

} // namespace

class TestSerialPort : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isCreatedClosedAndSilent();
    void opensWithTheFixedSettings();
    void setsTheRateThatItIsGiven();
    void reportsAnOpenPort();
    void throwsAwayWhatWasWaitingBefore();
    void reportsAPortThatCannotBeOpened_data();
    void reportsAPortThatCannotBeOpened();
    void reportsAPortWithoutPermission();
    void opensAfterAFailure();
    void reopensWithoutAnnouncingTheClosing();
    void closesAndAnnouncesIt();
    void tellsThatAClosedPortIsNotConnected();
    void announcesItsEndOnlyWhenOpen();
};

void TestSerialPort::isCreatedClosedAndSilent()
{
    QObject parent;
    auto *port = new SerialPort(&parent);
    QCOMPARE(port->parent(), &parent);
    QVERIFY(!port->isOpen());
    QCOMPARE(port->findChildren<QSerialPort *>().size(), 1);
    QVERIFY(!port->findChild<QSerialPort *>()->isOpen());
}

void TestSerialPort::opensWithTheFixedSettings()
{
    PseudoTerminal line;
    RecordedPort it;
    it.inner()->setParity(QSerialPort::EvenParity);
    it.inner()->setDataBits(QSerialPort::Data7);
    it.inner()->setStopBits(QSerialPort::TwoStop);
    it.inner()->setFlowControl(QSerialPort::SoftwareControl);
    QVERIFY(it.port.open(line.name(), kBaud));

    QCOMPARE(it.inner()->openMode() & QIODevice::ReadWrite, QIODevice::ReadWrite);
    QCOMPARE(it.inner()->parity(), QSerialPort::NoParity);
    QCOMPARE(it.inner()->dataBits(), QSerialPort::Data8);
    QCOMPARE(it.inner()->stopBits(), QSerialPort::OneStop);
    QCOMPARE(it.inner()->flowControl(), QSerialPort::NoFlowControl);
    const termios settings = line.settings();
    QCOMPARE(settings.c_cflag & CSTOPB, tcflag_t(0));
    QCOMPARE(settings.c_cflag & CRTSCTS, tcflag_t(0));
    QCOMPARE(settings.c_iflag & (IXON | IXOFF), tcflag_t(0));
}

void TestSerialPort::setsTheRateThatItIsGiven()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), 57600));
    QCOMPARE(line.speed(), speed_t(B57600));
    QCOMPARE(it.inner()->baudRate(QSerialPort::Input), 57600);
    QCOMPARE(it.inner()->baudRate(QSerialPort::Output), 57600);
    QVERIFY(it.port.open(line.name(), 115200));
    QCOMPARE(line.speed(), speed_t(B115200));
    QCOMPARE(it.inner()->baudRate(QSerialPort::Input), 115200);
    QCOMPARE(it.inner()->baudRate(QSerialPort::Output), 115200);
}

void TestSerialPort::reportsAnOpenPort()
{
    PseudoTerminal line;
    RecordedPort it;
    LogRecorder log;
    QCOMPARE(it.port.open(line.name(), kBaud), true);
    QVERIFY(it.port.isOpen());
    QCOMPARE(it.connected.size(), 1);
    QCOMPARE(it.connected.at(0).at(0).toString(), line.name());
    QCOMPARE(it.error.size() + it.disconnected.size() + it.read.size() + it.status.size(), 0);
    QCOMPARE(log.messages("[DBG]"), (QStringList {"using port: \"" + line.name() + "\" 57600", "open"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
    QVERIFY(log.lines().at(0).text.contains(QLatin1String(" bool canbus::SerialPort::open(QString, int) ")));
}

void TestSerialPort::throwsAwayWhatWasWaitingBefore()
{
    PseudoTerminal line;
    QVERIFY(line.send(bytes("aa bb")));
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    QVERIFY(line.send(bytes("cc")));
    QTRY_VERIFY_WITH_TIMEOUT(it.allRead().endsWith(bytes("cc")), kLongestWaitMs);
    QCOMPARE(it.allRead(), bytes("cc"));
}

void TestSerialPort::reportsAPortThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("codes");
    QTest::newRow("a missing device") << QStringLiteral("/dev/canbus-missing") << QStringList {"1"};
    QTest::newRow("a missing device by its short name")
        << QStringLiteral("canbus-missing") << QStringList {"1"};
    QTest::newRow("a device that is no serial port")
        << QStringLiteral("/dev/null") << QStringList {"10", "10"};
    QTest::newRow("a directory") << QStringLiteral("/dev") << QStringList {"11"};
}

void TestSerialPort::reportsAPortThatCannotBeOpened()
{
    QFETCH(QString, name);
    QFETCH(QStringList, codes);
    RecordedPort it;
    LogRecorder log;
    QCOMPARE(it.port.open(name, kBaud), false);
    QVERIFY(!it.port.isOpen());
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.error.at(0).at(0).toString(), name);
    QCOMPARE(it.error.at(0).at(1).toInt(), 3);
    QCOMPARE(it.error.at(0).at(2).toString(), it.inner()->errorString());
    QVERIFY(!it.error.at(0).at(2).toString().isEmpty());
    QCOMPARE(it.connected.size() + it.disconnected.size() + it.read.size() + it.status.size(), 0);
    QStringList errors = log.messages("[ERR]");
    QCOMPARE(errors.takeLast(), QStringLiteral("not open"));
    QCOMPARE(errors, codes);
    QCOMPARE(log.messages("[DBG]"), QStringList {"using port: \"" + name + "\" 57600"});
}

void TestSerialPort::reportsAPortWithoutPermission()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("forbidden"));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(file.setPermissions({}));

    RecordedPort it;
    LogRecorder log;
    const OrdinaryUser user;
    if (QFile(name).open(QIODevice::ReadOnly))
        QSKIP("this process may open every file and cannot put that right off");
    QCOMPARE(it.port.open(name, kBaud), false);
    QVERIFY(!it.port.isOpen());
    QCOMPARE(it.error.size(), 1);
    QCOMPARE(it.error.at(0).at(0).toString(), name);
    QCOMPARE(it.error.at(0).at(1).toInt(), 3);
    QCOMPARE(log.messages("[ERR]"), (QStringList {"2", "not open"}));
}

void TestSerialPort::opensAfterAFailure()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(!it.port.open(QStringLiteral("/dev/canbus-missing"), kBaud));
    LogRecorder log;
    QVERIFY(it.port.open(line.name(), kBaud));
    QCOMPARE(it.inner()->error(), QSerialPort::NoError);
    QCOMPARE(log.messages("[ERR]"), QStringList());
    QCOMPARE(it.connected.size(), 1);
    QVERIFY(line.send(bytes("9f 02")));
    QTRY_COMPARE_WITH_TIMEOUT(it.allRead(), bytes("9f 02"), kLongestWaitMs);
}

void TestSerialPort::reopensWithoutAnnouncingTheClosing()
{
    PseudoTerminal first;
    PseudoTerminal second;
    RecordedPort it;
    QVERIFY(it.port.open(first.name(), kBaud));
    QVERIFY(it.port.open(second.name(), kBaud));
    QCOMPARE(it.connected.size(), 2);
    QCOMPARE(it.connected.at(1).at(0).toString(), second.name());
    QCOMPARE(it.disconnected.size() + it.error.size() + it.status.size(), 0);

    it.port.writeData(bytes("01"));
    QTRY_COMPARE_WITH_TIMEOUT(second.received(), bytes("01"), kLongestWaitMs);
    QCOMPARE(first.received(), QByteArray());
    QVERIFY(!it.port.open(QStringLiteral("/dev/canbus-missing"), kBaud));
    QVERIFY(!it.port.isOpen());
    QCOMPARE(it.disconnected.size(), 0);
}

void TestSerialPort::closesAndAnnouncesIt()
{
    PseudoTerminal line;
    RecordedPort it;
    QVERIFY(it.port.open(line.name(), kBaud));
    bool openWhenAnnounced = true;
    connect(&it.port, &SerialPort::disconnected, this, [&] { openWhenAnnounced = it.port.isOpen(); });
    it.port.disconnect();
    QVERIFY(!it.port.isOpen());
    QCOMPARE(it.disconnected.size(), 1);
    QVERIFY(!openWhenAnnounced);
    QCOMPARE(it.status.size() + it.error.size(), 0);
}

void TestSerialPort::tellsThatAClosedPortIsNotConnected()
{
    RecordedPort it;
    it.port.disconnect();
    QCOMPARE(it.disconnected.size(), 0);
    QCOMPARE(it.status.size(), 1);
    QCOMPARE(it.status.at(0).at(0).toString(), QStringLiteral("not connected"));
}

void TestSerialPort::announcesItsEndOnlyWhenOpen()
{
    PseudoTerminal line;
    auto open = std::make_unique<SerialPort>();
    QVERIFY(open->open(line.name(), kBaud));
    QSignalSpy openEnded(open.get(), &SerialPort::disconnected);
    open.reset();
    QCOMPARE(openEnded.size(), 1);

    auto closed = std::make_unique<SerialPort>();
    QSignalSpy closedEnded(closed.get(), &SerialPort::disconnected);
    QSignalSpy closedStatus(closed.get(), &SerialPort::status);
    closed.reset();
    QCOMPARE(closedEnded.size() + closedStatus.size(), 0);
}

QTEST_GUILESS_MAIN(TestSerialPort)
#include "tst_serialport.moc"
