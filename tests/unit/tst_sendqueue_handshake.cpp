#include "describedsendqueue.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

// The queue reads nothing of a frame but its third byte.
const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");

const QString kWriteRequest = "write 9f022101000000209f03";

} // namespace

class SendQueueHandshakeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_link = DescribedSendQueue(); }

    void beginsInTheHandshake();
    void requestsAConnection();
    void checksTheConnectionOnceTheBoxIsReady();
    void buildsConnectionChecks_data();
    void buildsConnectionChecks();
    void stopsTheChecksOfABoxThatIsNotReady();
    void confirmsTheLinkForTheIdOfTheReadyReply();
    void confirmsTheLinkForIdZeroBeforeAnyReadyReply();
    void losesTheLinkWithAFrameThatIsGivenUp();
    void losesTheLinkAgainWithEachFrameThatIsGivenUp();
    void losesNoLinkInTheHandshake();

private:
    void connectLink();

    DescribedSendQueue m_link;
};

/// The box is ready, with id 55, and nothing is under way.
void SendQueueHandshakeTest::connectLink()
{
    m_link.ready("55");
    QVERIFY(!m_link.queue.isHandshaking());
}

void SendQueueHandshakeTest::beginsInTheHandshake()
{
    QVERIFY(m_link.queue.isHandshaking());
    QCOMPARE(int(m_link.queue.connectionId()), 0);
}

void SendQueueHandshakeTest::requestsAConnection()
{
    connectLink();
    QCOMPARE(m_link.request(), (QStringList {kWriteRequest, "start send"}));
    QVERIFY(m_link.queue.isHandshaking());
    QCOMPARE(int(m_link.queue.currentId()), 0x21);
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    // Requests pile up behind each other, and each sends the first again.
    QCOMPARE(m_link.request(), (QStringList {kWriteRequest, "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 2);
    QCOMPARE(m_link.queue.transmissions(), 2);
}

void SendQueueHandshakeTest::checksTheConnectionOnceTheBoxIsReady()
{
    QCOMPARE(m_link.ready("55"), (QStringList {"stop request", "start check"}));
    QVERIFY(!m_link.queue.isHandshaking());
    QCOMPARE(int(m_link.queue.connectionId()), 0x55);
    QCOMPARE(m_link.check(), (QStringList {"write 9f025501000001559f03", "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    QVERIFY(!m_link.queue.isHandshaking());
}

void SendQueueHandshakeTest::buildsConnectionChecks_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("the id is its own check byte") << 0x55 << bytes("9f 02 55 01 00 00 01 55 9f 03");
    QTest::newRow("an escape as id is doubled in both places")
        << 0x9f << bytes("9f 02 9f9f 01 00 00 01 9f9f 9f 03");
    QTest::newRow("id 0 before any ready reply") << 0x00 << bytes("9f 02 00 01 00 00 01 00 9f 03");
    QTest::newRow("an id with the high bit set") << 0xfe << bytes("9f 02 fe 01 00 00 01 fe 9f 03");
}

void SendQueueHandshakeTest::buildsConnectionChecks()
{
    QFETCH(int, id);
    QFETCH(QByteArray, frame);

    QCOMPARE(SendQueue::connectionCheck(quint8(id)).toHex(), frame.toHex());
}

void SendQueueHandshakeTest::stopsTheChecksOfABoxThatIsNotReady()
{
    connectLink();
    QCOMPARE(m_link.notReady(), QStringList {"stop check"});
}

void SendQueueHandshakeTest::confirmsTheLinkForTheIdOfTheReadyReply()
{
    connectLink();
    QCOMPARE(m_link.confirm(0x55), QStringList {"up"});
    QCOMPARE(m_link.confirm(0x55), QStringList {"up"});
    QCOMPARE(m_link.confirm(0x54), QStringList());
    QCOMPARE(m_link.confirm(0x00), QStringList());
    m_link.ready("9f");
    QCOMPARE(m_link.confirm(0x55), QStringList());
    QCOMPARE(m_link.confirm(0x9f), QStringList {"up"});
}

void SendQueueHandshakeTest::confirmsTheLinkForIdZeroBeforeAnyReadyReply()
{
    QCOMPARE(m_link.confirm(0x00), QStringList {"up"});
    QCOMPARE(m_link.confirm(0x21), QStringList());
}

void SendQueueHandshakeTest::losesTheLinkWithAFrameThatIsGivenUp()
{
    connectLink();
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.resend();
    QCOMPARE(m_link.resend(), (QStringList {"stop check", "start request", "down"}));
    QVERIFY(!m_link.sendTimerEnds);
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    // The handshake itself begins with the request that follows.
    QVERIFY(!m_link.queue.isHandshaking());
}

void SendQueueHandshakeTest::losesTheLinkAgainWithEachFrameThatIsGivenUp()
{
    connectLink();
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.resend();
    QCOMPARE(m_link.resend(), (QStringList {"stop check", "start request", "down"}));
    m_link.resend();
    m_link.resend();
    m_link.resend();
    QCOMPARE(m_link.resend(), (QStringList {"stop check", "start request", "down"}));
    QVERIFY(m_link.sendTimerEnds);
}

void SendQueueHandshakeTest::losesNoLinkInTheHandshake()
{
    connectLink();
    QCOMPARE(m_link.request(), (QStringList {kWriteRequest, "start send"}));
    QCOMPARE(m_link.resend(), QStringList {kWriteRequest});
    QCOMPARE(m_link.resend(), QStringList {kWriteRequest});
    QCOMPARE(m_link.resend(), QStringList());
    QVERIFY(m_link.sendTimerEnds);
}

QTEST_GUILESS_MAIN(SendQueueHandshakeTest)
#include "tst_sendqueue_handshake.moc"
