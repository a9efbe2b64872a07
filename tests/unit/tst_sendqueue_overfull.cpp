#include "describedsendqueue.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kCommand = bytes("9f 02 31 93 00 a2 9f 03");
const QString kWriteRequest = "write 9f022101000000209f03";

} // namespace

/// A box may provoke connect requests and connection checks without end: the cache has a bound for them too.
class SendQueueOverfullTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_link = DescribedSendQueue(); }

    void takesConnectRequestsUpTo1024();
    void sendsTheHeadForARequestThatIsLeftOut();
    void beginsTheHandshakeWithARequestThatIsLeftOut();
    void takesOneOfEachFrameThatIsNotCached();
    void holdsBackChecksToo();
    void takesARequestAgainOnceThereIsRoom();
    void tellsTheFirstThatIsLeftOut();
    void tellsAgainOnceCommandsHaveFitIn_data();
    void tellsAgainOnceCommandsHaveFitIn();
    void isBoundedWhateverTheBoxAsksFor();

private:
    void fill(int frames);
    void answerUntil(int frames);

    DescribedSendQueue m_link;
};

void SendQueueOverfullTest::fill(int frames)
{
    while (m_link.queue.cachedFrames() < frames) {
        m_link.request();
        QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
    }
}

void SendQueueOverfullTest::answerUntil(int frames)
{
    while (m_link.queue.cachedFrames() > frames)
        m_link.answer(0x21);
}

void SendQueueOverfullTest::takesConnectRequestsUpTo1024()
{
    for (int made = 1; made <= 1024; ++made) {
        QCOMPARE(m_link.request(), (QStringList {kWriteRequest, "start send"}));
        QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
        QCOMPARE(m_link.queue.cachedFrames(), made);
    }
    for (int more = 0; more < 3000; ++more)
        m_link.request();
    QCOMPARE(m_link.queue.cachedFrames(), 1024);
}

void SendQueueOverfullTest::sendsTheHeadForARequestThatIsLeftOut()
{
    m_link.enqueue(kCommand);
    fill(1024);
    const int before = m_link.queue.transmissions();
    QCOMPARE(m_link.request(), (QStringList {"write 9f02319300a29f03", "start send"}));
    QCOMPARE(m_link.queue.transmissions(), before + 1);
    QCOMPARE(m_link.queue.cachedFrames(), 1024);
}

void SendQueueOverfullTest::beginsTheHandshakeWithARequestThatIsLeftOut()
{
    fill(1024);
    m_link.ready("55");
    QVERIFY(!m_link.queue.isHandshaking());
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::FirstLeftOut);
    QVERIFY(m_link.queue.isHandshaking());
}

void SendQueueOverfullTest::takesOneOfEachFrameThatIsNotCached()
{
    fill(1024);
    m_link.ready("55");
    m_link.check();
    QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
    m_link.check();
    QCOMPARE(m_link.appending, SendQueue::Appending::FirstLeftOut);
    m_link.ready("56");
    m_link.check();
    QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
    QCOMPARE(m_link.queue.cachedFrames(), 1026);
}

void SendQueueOverfullTest::holdsBackChecksToo()
{
    m_link.ready("55");
    for (int made = 0; made < 1024; ++made)
        m_link.check();
    QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
    m_link.check();
    QCOMPARE(m_link.appending, SendQueue::Appending::FirstLeftOut);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::LeftOut);
    QCOMPARE(m_link.queue.cachedFrames(), 1025);
}

void SendQueueOverfullTest::takesARequestAgainOnceThereIsRoom()
{
    fill(1024);
    m_link.request();
    answerUntil(1023);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::Appended);
    QCOMPARE(m_link.queue.cachedFrames(), 1024);
}

void SendQueueOverfullTest::tellsTheFirstThatIsLeftOut()
{
    fill(1024);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::FirstLeftOut);
    // Each answer makes room for one, and the next is left out: nothing new.
    for (int round = 0; round < 10; ++round) {
        m_link.request();
        QCOMPARE(m_link.appending, SendQueue::Appending::LeftOut);
        answerUntil(1023);
        fill(1024);
    }
    answerUntil(65);
    fill(1024);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::LeftOut);
}

void SendQueueOverfullTest::tellsAgainOnceCommandsHaveFitIn_data()
{
    QTest::addColumn<bool>("withACommand");

    QTest::newRow("a command comes in") << true;
    QTest::newRow("a command would have come in") << false;
}

void SendQueueOverfullTest::tellsAgainOnceCommandsHaveFitIn()
{
    QFETCH(bool, withACommand);

    fill(1024);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::FirstLeftOut);
    answerUntil(64);
    if (withACommand)
        m_link.enqueue(kCommand);
    fill(1024);
    m_link.request();
    QCOMPARE(m_link.appending, SendQueue::Appending::FirstLeftOut);
}

void SendQueueOverfullTest::isBoundedWhateverTheBoxAsksFor()
{
    for (int round = 0; round < 3; ++round) {
        for (int id = 0; id < 256; ++id) {
            m_link.ready(QByteArray::number(id, 16).rightJustified(2, '0').constData());
            for (int count = 0; count < 5; ++count) {
                m_link.check();
                m_link.request();
                m_link.enqueue(kCommand);
            }
        }
    }
    // The 1,024, and at most one check of each id and one request beside them.
    QVERIFY(m_link.queue.cachedFrames() <= 1024 + 256 + 1);
}

QTEST_GUILESS_MAIN(SendQueueOverfullTest)
#include "tst_sendqueue_overfull.moc"
