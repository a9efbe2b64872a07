#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "longestwait.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaEnum>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <atomic>

using namespace canbus;

namespace {

const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");
const QByteArray kAckFirst = bytes("9f 06 31 31 9f 03");
const QByteArray kNackFirst = bytes("9f 15 31 31 9f 03");
const QByteArray kReady = bytes("9f 02 35 01 00 00 01 35 9f 03");

const QString kWriteFirst = "write 9f02319300a29f03";
const QString kWriteSecond = "write 9f02329400a69f03";

QString described(const QByteArray &frame, LinkHealth::Fate fate, int transmissions)
{
    return QStringLiteral("%1 %2 %3")
        .arg(QLatin1String(QMetaEnum::fromType<LinkHealth::Fate>().valueToKey(int(fate))))
        .arg(transmissions)
        .arg(QLatin1String(frame.toHex()));
}

/// Receives the ends of commands in words, by its slot's signature or by its pointer.
class FateListener : public QObject {
    Q_OBJECT

public:
    QStringList heard;
    std::atomic<QThread *> heardOn {nullptr}; ///< set last

public Q_SLOTS:
    void onCommandEnded(QByteArray frame, canbus::LinkHealth::Fate fate, int transmissions,
                        qint64 microseconds)
    {
        heard += described(frame, fate, transmissions) + (microseconds >= 0 ? "" : " before it was sent");
        heardOn = QThread::currentThread();
    }
};

} // namespace

/// The signal for the fate of each command, among the protocol's other signals.
class LinkHealthFatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsAnAcknowledgedCommandBeforeTheNextIsSent();
    void tellsARefusedCommand();
    void tellsACommandThatIsGivenUpBeforeTheLinkIsLost();
    void tellsACommandThatIsNotAccepted();
    void tellsTwoEqualCommandsApart();
    void tellsConnectRequestsAndChecks();
    void takesAFrameThatIsRemovedByHandAsAcknowledged();
    void tellsNothingWhenNoFrameGoes();
    void countsAnEndBeforeItTells();
    void letsItsListenersSendCommands();
    void reachesListenersByQueuedConnections();
    void reachesAListenerOnAnotherThread();

private:
    /// Writes, states of the link and ends of commands, in their order.
    static void record(const HandDrivenProtocol &protocol, QStringList &events);
};

void LinkHealthFatesTest::record(const HandDrivenProtocol &protocol, QStringList &events)
{
    VelCanBusProtocol *const link = protocol.get();
    connect(link, &CanbusProtocol::onWritPortData, link,
            [&events](const QByteArray &data) { events += "write " + QString::fromLatin1(data.toHex()); });
    connect(link, &CanbusProtocol::notifyCanbusStatus, link,
            [&events](bool up) { events += up ? "up" : "down"; });
    connect(link->linkHealth(), &LinkHealth::commandEnded, link,
            [&events](const QByteArray &frame, LinkHealth::Fate fate, int transmissions) {
                events += described(frame, fate, transmissions);
            });
}

void LinkHealthFatesTest::tellsAnAcknowledgedCommandBeforeTheNextIsSent()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    record(protocol, events);
    protocol.passOver(kAckFirst);
    QCOMPARE(events, (QStringList {"Acknowledged 2 9f02319300a29f03", kWriteSecond}));
}

void LinkHealthFatesTest::tellsARefusedCommand()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kSecond);
    record(protocol, events);
    protocol.passOver(kNackFirst);
    QCOMPARE(events, (QStringList {"Refused 2 9f02319300a29f03", kWriteSecond}));
}

void LinkHealthFatesTest::tellsACommandThatIsGivenUpBeforeTheLinkIsLost()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    protocol->removeSendCmdData(0x35);
    record(protocol, events);
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSendTmrout();
    protocol->onSendTmrout();
    protocol->onSendTmrout();
    QCOMPARE(events,
             (QStringList {kWriteFirst, kWriteFirst, kWriteFirst, "GivenUp 3 9f02319300a29f03", "down"}));
}

void LinkHealthFatesTest::tellsACommandThatIsNotAccepted()
{
    QStringList events;
    HandDrivenProtocol protocol;
    for (int i = 0; i < 65; ++i)
        protocol->onSaveSendCmdData(kFirst);
    record(protocol, events);
    protocol->onSaveSendCmdData(kSecond);
    QCOMPARE(events, QStringList {"NotAccepted 0 9f02329400a69f03"});
}

void LinkHealthFatesTest::tellsTwoEqualCommandsApart()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kFirst);
    record(protocol, events);
    protocol.passOver(kAckFirst);
    protocol.passOver(kNackFirst);
    QCOMPARE(events,
             (QStringList {"Acknowledged 2 9f02319300a29f03", kWriteFirst, "Refused 1 9f02319300a29f03"}));
}

void LinkHealthFatesTest::tellsConnectRequestsAndChecks()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol->onRequestConnect();
    record(protocol, events);
    protocol.passOver(bytes("9f 06 21 21 9f 03"));
    protocol.passOver(kReady);
    protocol.passOver(bytes("9f 06 35 35 9f 03"));
    QCOMPARE(events,
             (QStringList {"Acknowledged 1 9f022101000000209f03", "write 9f023501000001359f03",
                           "write 9f0635359f03", "Acknowledged 1 9f023501000001359f03", "up"}));
}

void LinkHealthFatesTest::takesAFrameThatIsRemovedByHandAsAcknowledged()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    record(protocol, events);
    protocol->removeSendCmdData(0x31);
    QCOMPARE(events, QStringList {"Acknowledged 1 9f02319300a29f03"});
}

void LinkHealthFatesTest::tellsNothingWhenNoFrameGoes()
{
    QStringList events;
    HandDrivenProtocol protocol;
    record(protocol, events);
    protocol.passOver(bytes("9f 15 00 00 9f 03"));
    protocol->onSendTmrout();
    protocol->onSaveSendCmdData(kFirst);
    protocol.passOver(bytes("9f 06 32 32 9f 03"));
    QCOMPARE(events, QStringList {kWriteFirst});
}

void LinkHealthFatesTest::countsAnEndBeforeItTells()
{
    HandDrivenProtocol protocol;
    const LinkHealth *const health = protocol->linkHealth();
    QList<quint64> answers;
    connect(health, &LinkHealth::commandEnded, this, [&] { answers += health->figures().answers; });
    protocol->onSaveSendCmdData(kFirst);
    protocol.passOver(kAckFirst);
    QCOMPARE(answers, QList<quint64> {1});
}

void LinkHealthFatesTest::letsItsListenersSendCommands()
{
    QStringList events;
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    record(protocol, events);
    connect(protocol->linkHealth(), &LinkHealth::commandEnded, protocol.get(), [&](const QByteArray &frame) {
        if (frame == kFirst)
            protocol->onSaveSendCmdData(kSecond);
    });
    protocol.passOver(kAckFirst);
    QCOMPARE(events, (QStringList {"Acknowledged 1 9f02319300a29f03", kWriteSecond}));
}

void LinkHealthFatesTest::reachesListenersByQueuedConnections()
{
    FateListener listener;
    HandDrivenProtocol protocol;
    connect(protocol->linkHealth(), SIGNAL(commandEnded(QByteArray, canbus::LinkHealth::Fate, int, qint64)),
            &listener, SLOT(onCommandEnded(QByteArray, canbus::LinkHealth::Fate, int, qint64)),
            Qt::QueuedConnection);
    protocol->onSaveSendCmdData(kFirst);
    protocol.passOver(kNackFirst);
    QCOMPARE(listener.heard, QStringList());
    QCoreApplication::sendPostedEvents(&listener);
    QCOMPARE(listener.heard, QStringList {"Refused 1 9f02319300a29f03"});
}

void LinkHealthFatesTest::reachesAListenerOnAnotherThread()
{
    QThread worker;
    FateListener listener;
    listener.moveToThread(&worker);
    {
        HandDrivenProtocol protocol;
        connect(protocol->linkHealth(), &LinkHealth::commandEnded, &listener, &FateListener::onCommandEnded);
        protocol->onSaveSendCmdData(kFirst);
        protocol.passOver(kAckFirst);
        worker.start();
        QTRY_VERIFY_WITH_TIMEOUT(listener.heardOn.load(), kLongestWaitMs);
    }
    worker.quit();
    QVERIFY(worker.wait(kLongestWaitMs));
    QCOMPARE(listener.heard, QStringList {"Acknowledged 1 9f02319300a29f03"});
    QCOMPARE(listener.heardOn.load(), &worker);
}

QTEST_GUILESS_MAIN(LinkHealthFatesTest)
#include "tst_linkhealth_fates.moc"
