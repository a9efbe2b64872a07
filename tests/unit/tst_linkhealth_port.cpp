#include <figurechanges.h>
#include <hexbytes.h>
#include <longestwait.h>
#include <playerrig.h>

#include "velcanbusprotocol.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using namespace canbus;

namespace {

/// A protocol of a host's own that counts.
class CountingProtocol : public PlayedProtocol {
public:
    LinkHealth *linkHealth() const override { return &m_health; }

    quint64 portErrors() const { return m_health.figures().portErrors; }

private:
    mutable LinkHealth m_health;
};

void startWithoutDevice(PlayerRig &rig, CanbusProtocol *protocol)
{
    rig.player.setUartPort(QStringLiteral("/dev/canbus-missing"), 57600);
    rig.player.init(protocol);
}

void start(PlayerRig &rig, CanbusProtocol *protocol)
{
    rig.player.setUartPort(rig.line.name(), 57600);
    rig.player.init(protocol);
}

} // namespace

/// What the serial port adds to a link's figures.
class LinkHealthPortTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsNoHealthUnlessAProtocolSaysSo();
    void countsAFailureToOpen();
    void countsALostLine();
    void countsAnErrorOnceHoweverOftenThePortWasJoined();
    void countsForTheLatestProtocol();
    void stopsCountingForAProtocolWithoutHealth();
    void goesOnCountingWithoutANewProtocol();
    void outlivesTheProtocolThatCounts();
    void countsTheErrorsOfTheBoxesLink();
    void countsWhatArrivesAndWhatIsWritten();
};

void LinkHealthPortTest::keepsNoHealthUnlessAProtocolSaysSo()
{
    PlayerRig rig;
    QCOMPARE(rig.protocol.linkHealth(), nullptr);
    rig.startWithoutDevice();
    rig.start();
    rig.line.hangUp();
    QSignalSpy lost(rig.port(), &SerialPort::disconnected);
    QVERIFY(QMetaObject::invokeMethod(rig.port(), "disconnect", Qt::BlockingQueuedConnection));
    QCOMPARE(lost.size(), 1);
}

void LinkHealthPortTest::countsAFailureToOpen()
{
    CountingProtocol protocol;
    PlayerRig rig;
    startWithoutDevice(rig, &protocol);
    QCOMPARE(protocol.portErrors(), 1U);
    startWithoutDevice(rig, &protocol);
    QCOMPARE(protocol.portErrors(), 2U);
}

void LinkHealthPortTest::countsALostLine()
{
    CountingProtocol protocol;
    PlayerRig rig;
    start(rig, &protocol);
    FigureChanges changes(protocol.linkHealth());
    rig.line.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(protocol.portErrors(), 1U, kLongestWaitMs);
    QCOMPARE(changes.take(), QStringList {"portErrors 1"});
}

void LinkHealthPortTest::countsAnErrorOnceHoweverOftenThePortWasJoined()
{
    CountingProtocol protocol;
    PlayerRig rig;
    start(rig, &protocol);
    start(rig, &protocol);
    QCOMPARE(protocol.portErrors(), 0U);
    Q_EMIT rig.port()->error(QString(), 12, QString());
    QCOMPARE(protocol.portErrors(), 1U);
}

void LinkHealthPortTest::countsForTheLatestProtocol()
{
    CountingProtocol first;
    CountingProtocol second;
    PlayerRig rig;
    start(rig, &first);
    start(rig, &second);
    Q_EMIT rig.port()->error(QString(), 12, QString());
    QCOMPARE(first.portErrors(), 0U);
    QCOMPARE(second.portErrors(), 1U);
}

void LinkHealthPortTest::stopsCountingForAProtocolWithoutHealth()
{
    CountingProtocol protocol;
    PlayerRig rig;
    start(rig, &protocol);
    rig.start();
    Q_EMIT rig.port()->error(QString(), 12, QString());
    QCOMPARE(protocol.portErrors(), 0U);
}

void LinkHealthPortTest::goesOnCountingWithoutANewProtocol()
{
    CountingProtocol protocol;
    PlayerRig rig;
    start(rig, &protocol);
    startWithoutDevice(rig, nullptr);
    QCOMPARE(protocol.portErrors(), 1U);
}

void LinkHealthPortTest::outlivesTheProtocolThatCounts()
{
    PlayerRig rig;
    auto protocol = std::make_unique<CountingProtocol>();
    start(rig, protocol.get());
    protocol.reset();
    QSignalSpy errors(rig.port(), &SerialPort::error);
    Q_EMIT rig.port()->error(QString(), 12, QString());
    QCOMPARE(errors.size(), 1);
}

void LinkHealthPortTest::countsTheErrorsOfTheBoxesLink()
{
    PlayerRig rig;
    VelCanBusProtocol protocol;
    startWithoutDevice(rig, &protocol);
    QCOMPARE(protocol.linkHealth()->figures().portErrors, 1U);
}

void LinkHealthPortTest::countsWhatArrivesAndWhatIsWritten()
{
    PlayerRig rig;
    VelCanBusProtocol protocol;
    start(rig, &protocol);
    QVERIFY(rig.line.send(bytes("9f 02 21 08 00 29 9f 03")));
    QTRY_COMPARE_WITH_TIMEOUT(rig.line.received(), bytes("9f 06 21 21 9f 03"), kLongestWaitMs);
    const LinkFigures figures = protocol.linkHealth()->figures();
    QCOMPARE(figures.receivedBytes, 8U);
    QCOMPARE(figures.receivedFrames, 1U);
    QCOMPARE(figures.sentBytes, 6U);
    QCOMPARE(figures.portErrors, 0U);
}

QTEST_GUILESS_MAIN(LinkHealthPortTest)
#include "tst_linkhealth_port.moc"
