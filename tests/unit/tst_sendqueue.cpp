#include "describedsendqueue.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

// Three commands; the queue reads nothing of a frame but its third byte.
const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");
const QByteArray kThird = bytes("9f 02 33 95 00 a6 9f 03");

const QString kWriteFirst = "write 9f02319300a29f03";
const QString kWriteSecond = "write 9f02329400a69f03";
const QString kWriteThird = "write 9f02339500a69f03";
const QString kWriteRequest = "write 9f022101000000209f03";

} // namespace

class SendQueueTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_link = DescribedSendQueue(); }

    void keepsTheLinksTimesAndBounds();
    void sendsACommandAtOnce();
    void givesAFrameUpAfterThreeTransmissions();
    void sendsTheHeadAgainForEachCommandBehindIt();
    void countsEveryRestartOfTheHead();
    void doesNotSendTheFrameBehindOneThatIsGivenUp();
    void takes65Commands();
    void takesACommandAgainOnceThereIsRoom();
    void restartsNothingWithoutAFrame();
    void stopsSendingWhenTheLastFrameIsAnswered();
    void movesOnToTheNextFrameWithOneTransmission();
    void ignoresAnotherId();
    void matchesTheIdThatWasGivenByTheLastHead();
    void matchesAnEscapeAsId();
    void removesOneOfTwoEqualFrames();
    void givesUpOneOfTwoEqualFrames();
    void takesAnswersWithoutAFrameAsIdZero();
    void clearsWhatIsLeftWhenTheCacheIsEmpty();

private:
    DescribedSendQueue m_link;
};

void SendQueueTest::keepsTheLinksTimesAndBounds()
{
    QCOMPARE(SendQueue::kResendIntervalMs, 300);
    QCOMPARE(SendQueue::kRequestConnectIntervalMs, 2000);
    QCOMPARE(SendQueue::kCheckConnectIntervalMs, 15000);
    QCOMPARE(SendQueue::kCacheBound, 65);
    QCOMPARE(SendQueue::kMaxTransmissions, 3);
}

void SendQueueTest::sendsACommandAtOnce()
{
    QCOMPARE(m_link.enqueue(kFirst), (QStringList {kWriteFirst, "start send"}));
    QVERIFY(m_link.accepted);
    QCOMPARE(m_link.queue.transmissions(), 1);
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    QCOMPARE(int(m_link.queue.currentId()), 0x31);
}

void SendQueueTest::givesAFrameUpAfterThreeTransmissions()
{
    QCOMPARE(m_link.enqueue(kFirst), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.resend(), QStringList {kWriteFirst});
    QVERIFY(!m_link.sendTimerEnds);
    QCOMPARE(m_link.resend(), QStringList {kWriteFirst});
    QVERIFY(!m_link.sendTimerEnds);
    QCOMPARE(m_link.queue.cachedFrames(), 1);

    QCOMPARE(m_link.resend(), QStringList());
    QVERIFY(m_link.sendTimerEnds);
    QCOMPARE(m_link.queue.cachedFrames(), 0);
    QCOMPARE(int(m_link.queue.currentId()), 0);
    QCOMPARE(m_link.queue.transmissions(), 0);
}

void SendQueueTest::sendsTheHeadAgainForEachCommandBehindIt()
{
    m_link.enqueue(kFirst);
    QCOMPARE(m_link.enqueue(kSecond), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 2);
    QCOMPARE(int(m_link.queue.currentId()), 0x31);
}

void SendQueueTest::countsEveryRestartOfTheHead()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    QCOMPARE(m_link.queue.transmissions(), 2);
    QCOMPARE(m_link.enqueue(kThird), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.queue.transmissions(), 3);
    QCOMPARE(m_link.request(), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.queue.transmissions(), 4);

    QCOMPARE(m_link.resend(), QStringList());
    QCOMPARE(m_link.queue.cachedFrames(), 3);
    QCOMPARE(int(m_link.queue.currentId()), 0x32);
}

void SendQueueTest::doesNotSendTheFrameBehindOneThatIsGivenUp()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    QCOMPARE(m_link.resend(), QStringList {kWriteFirst});
    QCOMPARE(m_link.resend(), QStringList());
    QVERIFY(!m_link.sendTimerEnds);
    QCOMPARE(int(m_link.queue.currentId()), 0x32);
    QCOMPARE(m_link.queue.transmissions(), 0);

    QCOMPARE(m_link.resend(), QStringList {kWriteSecond});
    QCOMPARE(m_link.resend(), QStringList {kWriteSecond});
    QCOMPARE(m_link.resend(), QStringList {kWriteSecond});
    QCOMPARE(m_link.resend(), QStringList());
    QVERIFY(m_link.sendTimerEnds);
}

void SendQueueTest::takes65Commands()
{
    for (int i = 0; i < 65; ++i) {
        QCOMPARE(m_link.enqueue(kFirst), (QStringList {kWriteFirst, "start send"}));
        QVERIFY(m_link.accepted);
    }
    QCOMPARE(m_link.enqueue(kSecond), QStringList());
    QVERIFY(!m_link.accepted);
    QCOMPARE(m_link.queue.cachedFrames(), 65);
    QCOMPARE(m_link.queue.transmissions(), 65);

    QCOMPARE(m_link.request(), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 66);
    QCOMPARE(m_link.check(), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 67);
    QCOMPARE(m_link.enqueue(kSecond), QStringList());
    QVERIFY(!m_link.accepted);
}

void SendQueueTest::takesACommandAgainOnceThereIsRoom()
{
    for (int i = 0; i < 65; ++i)
        m_link.enqueue(kFirst);
    m_link.answer(0x31);
    m_link.enqueue(kSecond);
    QVERIFY(m_link.accepted);
    m_link.enqueue(kSecond);
    QVERIFY(!m_link.accepted);
}

void SendQueueTest::restartsNothingWithoutAFrame()
{
    QCOMPARE(m_link.restart(), QStringList());
    QCOMPARE(m_link.queue.transmissions(), 0);
}

void SendQueueTest::stopsSendingWhenTheLastFrameIsAnswered()
{
    m_link.enqueue(kFirst);
    QCOMPARE(m_link.answer(0x31), QStringList {"stop send"});
    QCOMPARE(m_link.queue.cachedFrames(), 0);
    QCOMPARE(m_link.queue.transmissions(), 0);
    QCOMPARE(int(m_link.queue.currentId()), 0);
}

void SendQueueTest::movesOnToTheNextFrameWithOneTransmission()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.enqueue(kThird);
    QCOMPARE(m_link.answer(0x31), (QStringList {kWriteSecond, "start send"}));
    QCOMPARE(m_link.queue.transmissions(), 1);
    QCOMPARE(int(m_link.queue.currentId()), 0x32);
    QCOMPARE(m_link.answer(0x32), (QStringList {kWriteThird, "start send"}));
    QCOMPARE(m_link.answer(0x33), QStringList {"stop send"});
}

void SendQueueTest::ignoresAnotherId()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    QCOMPARE(m_link.answer(0x32), QStringList());
    QCOMPARE(m_link.answer(0x00), QStringList());
    QCOMPARE(m_link.queue.cachedFrames(), 2);
    QCOMPARE(m_link.queue.transmissions(), 2);
    QCOMPARE(m_link.resend(), QStringList {kWriteFirst});
}

void SendQueueTest::matchesTheIdThatWasGivenByTheLastHead()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kSecond);
    m_link.resend();
    m_link.resend();
    QCOMPARE(m_link.answer(0x31), QStringList());
    QCOMPARE(m_link.answer(0x32), QStringList {"stop send"});
}

void SendQueueTest::matchesAnEscapeAsId()
{
    m_link.enqueue(bytes("9f 02 9f9f 93 00 0c 9f 03"));
    QCOMPARE(int(m_link.queue.currentId()), 0x9f);
    QCOMPARE(m_link.answer(0x9f), QStringList {"stop send"});
}

void SendQueueTest::removesOneOfTwoEqualFrames()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kFirst);
    QCOMPARE(m_link.answer(0x31), (QStringList {kWriteFirst, "start send"}));
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    QCOMPARE(m_link.queue.transmissions(), 1);
    m_link.resend();
    m_link.resend();
    m_link.resend();
    QCOMPARE(m_link.queue.cachedFrames(), 0);
}

void SendQueueTest::givesUpOneOfTwoEqualFrames()
{
    m_link.enqueue(kFirst);
    m_link.enqueue(kFirst);
    m_link.resend();
    QCOMPARE(m_link.resend(), QStringList());
    QVERIFY(!m_link.sendTimerEnds);
    QCOMPARE(m_link.queue.cachedFrames(), 1);
    QCOMPARE(m_link.resend(), QStringList {kWriteFirst});
}

void SendQueueTest::takesAnswersWithoutAFrameAsIdZero()
{
    QCOMPARE(m_link.answer(0x31), QStringList());
    QCOMPARE(m_link.answer(0x00), QStringList {"stop send"});
}

void SendQueueTest::clearsWhatIsLeftWhenTheCacheIsEmpty()
{
    QCOMPARE(m_link.resend(), QStringList());
    QVERIFY(m_link.sendTimerEnds);
    QCOMPARE(int(m_link.queue.currentId()), 0);
    QCOMPARE(m_link.queue.transmissions(), 0);
}

QTEST_GUILESS_MAIN(SendQueueTest)
#include "tst_sendqueue.moc"
