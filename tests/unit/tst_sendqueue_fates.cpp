#include "describedsendqueue.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

// The queue reads nothing of a frame but its third byte.
const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");

const QString kWriteFirst = "write 9f02319300a29f03";
const QString kWriteSecond = "write 9f02329400a69f03";

} // namespace

/// What the queue tells of the end of each command, and when.
class SendQueueFatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void tellsAnAcknowledgedFrameBeforeTheNextIsSent();
    void tellsARefusedFrame();
    void treatsARefusalLikeAnAcknowledgement();
    void tellsAFrameThatIsGivenUpBeforeTheLinkIsLost();
    void tellsARefusedCommandWithoutTouchingTheCache();
    void tellsNothingForAnotherId();
    void tellsNothingWithoutAFrame();
    void countsTheTransmissionsOfEachWrite();
    void takesTheTimeFromTheFirstTransmission();
    void takesTheTimeOfAFrameThatWaitedFromItsOwnFirstTransmission();
    void tellsTwoEqualFramesApart();
    void tellsNoTimeOfAFrameThatWasNotSentYet();
    void tellsConnectionFramesToo();

private:
    DescribedSendQueue m_link;
};

void SendQueueFatesTest::init()
{
    m_link = DescribedSendQueue();
    m_link.tellsEnds = true;
    m_link.queue.setNow(5000);
}

void SendQueueFatesTest::tellsAnAcknowledgedFrameBeforeTheNextIsSent()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.queue.setNow(5700);
    QCOMPARE(
        m_link.answer(0x31),
        (QStringList {"ended 9f02319300a29f03 acknowledged after 2 in 700 us", kWriteSecond, "start send"}));
    m_link.queue.setNow(5750);
    QCOMPARE(m_link.answer(0x32),
             (QStringList {"ended 9f02329400a69f03 acknowledged after 1 in 50 us", "stop send"}));
}

void SendQueueFatesTest::tellsARefusedFrame()
{
    m_link.enqueue(kFirst);
    m_link.queue.setNow(5001);
    QCOMPARE(m_link.answer(0x31, LinkHealth::Fate::Refused),
             (QStringList {"ended 9f02319300a29f03 refused after 1 in 1 us", "stop send"}));
}

void SendQueueFatesTest::treatsARefusalLikeAnAcknowledgement()
{
    m_link.tellsEnds = false;
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    QCOMPARE(m_link.answer(0x31, LinkHealth::Fate::Refused), (QStringList {kWriteSecond, "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    QCOMPARE(m_link.queue.transmissions(), 1);
}

void SendQueueFatesTest::tellsAFrameThatIsGivenUpBeforeTheLinkIsLost()
{
    m_link.ready("55");
    m_link.enqueue(kFirst);
    m_link.resend();
    m_link.queue.setNow(605000);
    m_link.resend();
    m_link.queue.setNow(905000);
    QCOMPARE(m_link.resend(),
             (QStringList {"ended 9f02319300a29f03 given up after 3 in 900000 us", "stop check",
                           "start request", "down"}));
    QVERIFY(m_link.sendTimerEnds);
}

void SendQueueFatesTest::tellsARefusedCommandWithoutTouchingTheCache()
{
    for (int i = 0; i < 65; ++i)
        m_link.enqueue(kFirst);
    QCOMPARE(m_link.enqueue(kSecond), QStringList {"ended 9f02329400a69f03 not accepted after 0 in 0 us"});
    QVERIFY(!m_link.accepted);
    QCOMPARE(m_link.queue.cachedFrames(), 65);
    QCOMPARE(m_link.queue.transmissions(), 65);
    QCOMPARE(int(m_link.queue.currentId()), 0x31);
}

void SendQueueFatesTest::tellsNothingForAnotherId()
{
    m_link.enqueue(kFirst);
    QCOMPARE(m_link.answer(0x32), QStringList());
}

void SendQueueFatesTest::tellsNothingWithoutAFrame()
{
    QCOMPARE(m_link.answer(0x00), QStringList {"stop send"});
    QCOMPARE(m_link.resend(), QStringList());
}

void SendQueueFatesTest::countsTheTransmissionsOfEachWrite()
{
    SendQueue queue;
    LinkEffects effects;
    queue.enqueue(kFirst, effects);
    queue.enqueue(kSecond, effects);
    queue.resend(effects);
    queue.answered(0x31, LinkHealth::Fate::Acknowledged, effects);
    QList<int> counts;
    for (const LinkEffect &effect : effects) {
        if (effect.kind == LinkEffect::Write)
            counts += effect.transmissions;
    }
    QCOMPARE(counts, (QList<int> {1, 2, 3, 1}));
}

void SendQueueFatesTest::takesTheTimeFromTheFirstTransmission()
{
    m_link.enqueue(kFirst);
    m_link.queue.setNow(300000);
    m_link.resend();
    m_link.queue.setNow(400000);
    m_link.enqueue(kSecond);
    m_link.queue.setNow(500000);
    QCOMPARE(m_link.answer(0x31).first(),
             QString("ended 9f02319300a29f03 acknowledged after 3 in 495000 us"));
}

void SendQueueFatesTest::takesTheTimeOfAFrameThatWaitedFromItsOwnFirstTransmission()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.resend();
    m_link.queue.setNow(100000);
    // Given up; the second waits for the next expiry.
    QCOMPARE(m_link.resend().size(), 1);
    m_link.queue.setNow(400000);
    QCOMPARE(m_link.resend(), QStringList {kWriteSecond});
    m_link.queue.setNow(400020);
    QCOMPARE(m_link.answer(0x32).first(), QString("ended 9f02329400a69f03 acknowledged after 1 in 20 us"));
}

void SendQueueFatesTest::tellsTwoEqualFramesApart()
{
    m_link.enqueue(kFirst);
    m_link.queue.setNow(6000);
    m_link.enqueue(kFirst);
    m_link.queue.setNow(7000);
    QCOMPARE(
        m_link.answer(0x31),
        (QStringList {"ended 9f02319300a29f03 acknowledged after 2 in 2000 us", kWriteFirst, "start send"}));
    m_link.queue.setNow(7300);
    QCOMPARE(m_link.answer(0x31),
             (QStringList {"ended 9f02319300a29f03 acknowledged after 1 in 300 us", "stop send"}));
}

void SendQueueFatesTest::tellsNoTimeOfAFrameThatWasNotSentYet()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.resend();
    m_link.resend();
    m_link.queue.setNow(9000);
    QCOMPARE(m_link.answer(0x32),
             (QStringList {"ended 9f02329400a69f03 acknowledged after 0 in 0 us", "stop send"}));
}

void SendQueueFatesTest::tellsConnectionFramesToo()
{
    m_link.request();
    QCOMPARE(m_link.answer(0x21).first(), QString("ended 9f022101000000209f03 acknowledged after 1 in 0 us"));
    m_link.ready("55");
    m_link.check();
    QCOMPARE(m_link.answer(0x55).first(), QString("ended 9f025501000001559f03 acknowledged after 1 in 0 us"));
}

QTEST_GUILESS_MAIN(SendQueueFatesTest)
#include "tst_sendqueue_fates.moc"
