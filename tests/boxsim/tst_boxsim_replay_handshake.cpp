#include "replaybench.h"

#include <QtTest/QTest>

using namespace replaybench;

class TestBoxsimReplayHandshake : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsWhetherTheRecordingHasAHandshake_data();
    void tellsWhetherTheRecordingHasAHandshake();
    void leavesTheFirstRequestToTheRecording();
    void leavesTheFirstRequestToABoxThatSpeaksFirst();
    void answersARequestAfterTheRecordedHandshake();
    void leavesRequestsToARecordedBoxThatIsNotReady();
    void answersRequestsUntilTheFirstVersionFrameOfALinkThatWasUp();
    void answersNoRequestWithoutARecordedHandshake();
    void answersNothingButConnectRequests();
    void answersARequestBehindTheFrameThatIsUnderWay();
    void saysReadyWhenARecordingBeginsAgainWithTheLinkUp();
    void saysNothingWhenTheLinkStaysUpAsTheRecordingBeginsAgain();
};

void TestBoxsimReplayHandshake::tellsWhetherTheRecordingHasAHandshake_data()
{
    QTest::addColumn<QVector<Block>>("blocks");
    QTest::addColumn<bool>("hasHandshake");

    QTest::newRow("ready") << QVector<Block> {received(0, kReady)} << true;
    QTest::newRow("not ready") << QVector<Block> {received(0, kNotReady)} << true;
    QTest::newRow("far behind the beginning")
        << QVector<Block> {received(0, kLabels), received(900000000, kReady)} << true;
    QTest::newRow("none") << QVector<Block> {received(0, kLabels)} << false;
    QTest::newRow("the head unit's frames do not count")
        << QVector<Block> {sent(0, kConnectRequest), sent(1, kConnectionCheck), received(2, kLabels)}
        << false;
    QTest::newRow("a frame with a wrong check byte does not count")
        << QVector<Block> {received(0, "9f 02 44 01 00 00 01 45 9f 03")} << false;
}

void TestBoxsimReplayHandshake::tellsWhetherTheRecordingHasAHandshake()
{
    QFETCH(QVector<Block>, blocks);
    QFETCH(bool, hasHandshake);

    QCOMPARE(Player(blocks).replay->hasHandshake(), hasHandshake);
}

void TestBoxsimReplayHandshake::leavesTheFirstRequestToTheRecording()
{
    // The box was slow: three requests went by before its reply.
    Player player({sent(0, kConnectRequest), received(1000, kAckOfRequest), received(10000, kLabels),
                   sent(2000000, kConnectRequest), sent(4000000, kConnectRequest),
                   received(4100000, kReady)});
    player.observe(0, Action::ConnectRequest);
    QStringList all = player.run(2000);
    player.observe(2000, Action::ConnectRequest);
    all += player.run(10000);

    QCOMPARE(all, QStringList({at(10, kLabels), at(4100, kReady), told(4100, kEnd)}));
}

void TestBoxsimReplayHandshake::leavesTheFirstRequestToABoxThatSpeaksFirst()
{
    Player player({received(0, kNotReady), received(7000000, kReady), sent(7001000, kConnectionCheck)});
    player.observe(0, Action::ConnectRequest);

    QCOMPARE(player.run(10000), QStringList({at(0, kNotReady), at(0, kReady), told(0, kEnd)}));
}

void TestBoxsimReplayHandshake::answersARequestAfterTheRecordedHandshake()
{
    Player player({sent(0, kConnectRequest), received(5000, kReady), received(9000000, kLabels)});
    player.observe(0, Action::ConnectRequest);
    QCOMPARE(player.run(2000), QStringList {at(5, kReady)});

    player.observe(2010, Action::ConnectRequest);
    QCOMPARE(player.run(4000), QStringList {told(2010, kOwnReady)});
    player.observe(4010, Action::ConnectRequest);
    QCOMPARE(player.run(9000), QStringList({told(4010, kOwnReady), at(9000, kLabels), told(9000, kEnd)}));
    player.observe(10000, Action::ConnectRequest);
    QCOMPARE(player.run(20000), QStringList {told(10000, kOwnReady)});
}

void TestBoxsimReplayHandshake::leavesRequestsToARecordedBoxThatIsNotReady()
{
    Player player({sent(0, kConnectRequest), received(5000, kReady), received(3000000, kNotReady),
                   received(33000000, kReady)});
    player.observe(0, Action::ConnectRequest);
    QCOMPARE(player.run(3000), QStringList({at(5, kReady), at(3000, kNotReady)}));

    player.observe(3010, Action::ConnectRequest);
    QCOMPARE(player.run(32999), QStringList());
    QCOMPARE(player.run(33000), QStringList({at(33000, kReady), told(33000, kEnd)}));
}

void TestBoxsimReplayHandshake::answersRequestsUntilTheFirstVersionFrameOfALinkThatWasUp()
{
    Player player({received(0, kLabels), sent(1000, "9f 06 51 51 9f 03"), received(900000000, kNotReady),
                   sent(900001000, kConnectRequest), received(901000000, kReady)});
    player.observe(0, Action::ConnectRequest);

    QCOMPARE(player.run(1000), QStringList({told(0, kOwnReady), at(0, kLabels)}));
}

void TestBoxsimReplayHandshake::answersNoRequestWithoutARecordedHandshake()
{
    Player player({received(0, kLabels)});
    player.observe(0, Action::ConnectRequest);

    QCOMPARE(player.run(1000), QStringList({at(0, kLabels), told(0, kEnd)}));
}

void TestBoxsimReplayHandshake::answersNothingButConnectRequests()
{
    Player player({sent(0, kConnectRequest), received(0, kReady)});
    player.observe(0, Action::ConnectRequest);
    player.run(100);

    player.observe(200, Action::ConnectionCheck);
    player.observe(300, Action::ClimateRequest);
    QCOMPARE(player.run(1000), QStringList());
}

void TestBoxsimReplayHandshake::answersARequestBehindTheFrameThatIsUnderWay()
{
    Player player({sent(0, kConnectRequest), received(5000, kReady), received(100000, "9f 02 51 03"),
                   received(150000, "01 53 9f 03"), received(150000, "aa")});
    player.observe(0, Action::ConnectRequest);
    player.run(100);

    player.observe(110, Action::ConnectRequest);
    QCOMPARE(player.replay->dueMs(), 150);
    const QVector<Instruction> due = player.replay->advance(150);
    QCOMPARE(due.size(), 4);
    QCOMPARE(text(due.at(0)), wire("01 53 9f 03"));
    QCOMPARE(text(due.at(1)), QLatin1String(kOwnReady));
    QCOMPARE(text(due.at(2)), QLatin1String("aa"));
}

void TestBoxsimReplayHandshake::saysReadyWhenARecordingBeginsAgainWithTheLinkUp()
{
    Player player({received(0, kLabels), received(100000, kNotReady)}, true);
    player.observe(0, Action::None);

    QCOMPARE(player.run(200),
             QStringList({at(0, kLabels), at(100, kNotReady), told(200, kOwnReady), at(200, kLabels)}));
}

void TestBoxsimReplayHandshake::saysNothingWhenTheLinkStaysUpAsTheRecordingBeginsAgain()
{
    Player player({received(0, kLabels), received(100000, kReady)}, true);
    player.observe(0, Action::None);

    QCOMPARE(player.run(200), QStringList({at(0, kLabels), at(100, kReady), at(200, kLabels)}));
}

QTEST_GUILESS_MAIN(TestBoxsimReplayHandshake)
#include "tst_boxsim_replay_handshake.moc"
