#include "replaybench.h"

#include <QtTest/QTest>

using namespace replaybench;

class TestBoxsimReplay : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void playsWhatTheHeadUnitReceivedAtItsTimes();
    void waitsForTheFirstCommandOfTheHeadUnit();
    void beginsWithCommandsOnly_data();
    void beginsWithCommandsOnly();
    void roundsEachTimeAndNotTheGaps();
    void playsAtOnceWhatCameBeforeTheFirstSentBlock();
    void beginsWithItsFirstBlockWhenNothingWasSent();
    void handsOutEverythingThatIsDue();
    void takesASetClockForNoTime_data();
    void takesASetClockForNoTime();
    void keepsTheOrderOfBlocksWhoseTimesAreInDisorder();
    void beginsAgainAfterTheMeanGap();
    void beginsAgainAfterTwentyMillisecondsAtLeast_data();
    void beginsAgainAfterTwentyMillisecondsAtLeast();
    void tellsTheEndOnce();
    void refusesARecordingWithNothingToPlay_data();
    void refusesARecordingWithNothingToPlay();
};

void TestBoxsimReplay::playsWhatTheHeadUnitReceivedAtItsTimes()
{
    Player player({sent(5000000, kConnectRequest), received(5003000, kReady), received(5250000, kScreens),
                   sent(5255000, "9f 06 48 48 9f 03"), received(6000000, kLabels)});
    player.observe(2000, Action::ConnectRequest);

    QCOMPARE(player.run(100000),
             QStringList({at(2003, kReady), at(2250, kScreens), at(3000, kLabels), told(3000, kEnd)}));
    QVERIFY(player.error.isEmpty());
}

void TestBoxsimReplay::waitsForTheFirstCommandOfTheHeadUnit()
{
    Player player({sent(0, kConnectRequest), received(0, kReady)});

    QCOMPARE(player.replay->dueMs(), kNever);
    QVERIFY(player.replay->advance(50000).isEmpty());

    player.observe(60000, Action::None);
    player.observe(70000, Action::None);
    QCOMPARE(player.run(100000), QStringList({at(60000, kReady), told(60000, kEnd)}));
}

void TestBoxsimReplay::beginsWithCommandsOnly_data()
{
    QTest::addColumn<Event::Kind>("kind");

    QTest::newRow("an acknowledgement") << Event::Kind::Ack;
    QTest::newRow("a negative acknowledgement") << Event::Kind::Nack;
    QTest::newRow("bytes that are no frame") << Event::Kind::BadFrame;
    QTest::newRow("the link") << Event::Kind::LinkUp;
}

void TestBoxsimReplay::beginsWithCommandsOnly()
{
    QFETCH(Event::Kind, kind);
    Player player({sent(0, kConnectRequest), received(0, kReady)});
    Event event;
    event.kind = kind;

    player.replay->observe(event, 10);
    QCOMPARE(player.replay->dueMs(), kNever);
    player.observe(20, Action::None);
    QCOMPARE(player.replay->dueMs(), 20);
}

void TestBoxsimReplay::roundsEachTimeAndNotTheGaps()
{
    Player player({sent(0, kConnectRequest), received(400, "01"), received(800, "02"), received(1200, "03"),
                   received(1600, "04"), received(2499, "05"), received(2500, "06")});
    player.observe(0, Action::None);

    QCOMPARE(player.run(100), QStringList({"0 01", "1 02", "1 03", "2 04", "2 05", "3 06", told(3, kEnd)}));
}

void TestBoxsimReplay::playsAtOnceWhatCameBeforeTheFirstSentBlock()
{
    Player player({received(1000000, "01"), received(3000000, "02"), sent(4000000, "9f 06 51 51 9f 03"),
                   received(4100000, "03"), sent(5000000, kConnectRequest)});
    player.observe(700, Action::ConnectRequest);

    QCOMPARE(player.run(100000), QStringList({"700 01", "700 02", "800 03", told(800, kEnd)}));
}

void TestBoxsimReplay::beginsWithItsFirstBlockWhenNothingWasSent()
{
    Player player({received(1000000, "01"), received(3000000, "02")});
    player.observe(700, Action::ConnectRequest);

    QCOMPARE(player.run(100000), QStringList({"700 01", "2700 02", told(2700, kEnd)}));
}

void TestBoxsimReplay::handsOutEverythingThatIsDue()
{
    Player player({received(0, "01"), received(5000, "02"), received(9000, "03")});
    player.observe(100, Action::None);

    const QVector<Instruction> due = player.replay->advance(105);
    QCOMPARE(due.size(), 2);
    QCOMPARE(due.at(0).bytes, bytes("01"));
    QCOMPARE(due.at(1).bytes, bytes("02"));
    QCOMPARE(player.replay->dueMs(), 109);
}

void TestBoxsimReplay::takesASetClockForNoTime_data()
{
    QTest::addColumn<qint64>("stepUs");
    QTest::addColumn<QStringList>("played");

    const auto times = [](qint64 second, qint64 third) {
        return QStringList({QStringLiteral("0 01"), QStringLiteral("%1 02").arg(second),
                            QStringLiteral("%1 03").arg(third), told(third, kEnd)});
    };
    QTest::newRow("an hour forwards is time") << qint64(3600000000) << times(3600000, 3600200);
    QTest::newRow("more than an hour forwards") << qint64(3600000001) << times(0, 200);
    QTest::newRow("from 1970 to 2026") << qint64(1770000000000000) << times(0, 200);
    QTest::newRow("more than a second backwards") << qint64(-1000001) << times(0, 200);
    QTest::newRow("a day backwards") << qint64(-86400000000) << times(0, 200);
}

void TestBoxsimReplay::takesASetClockForNoTime()
{
    QFETCH(qint64, stepUs);
    QFETCH(QStringList, played);
    const qint64 startUs = 100000000000;
    Player player({received(startUs, "01"), received(startUs + stepUs, "02"),
                   received(startUs + stepUs + 200000, "03")});
    player.observe(0, Action::None);

    QCOMPARE(player.run(10000000), played);
}

void TestBoxsimReplay::keepsTheOrderOfBlocksWhoseTimesAreInDisorder()
{
    Player player({received(1000000, "01"), received(1010000, "02"), received(1009000, "03"),
                   received(1011000, "04"), received(1100000, "05")});
    player.observe(0, Action::None);

    QCOMPARE(player.run(1000), QStringList({"0 01", "10 02", "10 03", "11 04", "100 05", told(100, kEnd)}));
}

void TestBoxsimReplay::beginsAgainAfterTheMeanGap()
{
    Player player(
        {sent(0, kConnectRequest), received(10000, "01"), received(40000, "02"), received(110000, "03")},
        true);
    player.observe(1000, Action::None);

    QCOMPARE(player.run(1319),
             QStringList({"1010 01", "1040 02", "1110 03", "1160 01", "1190 02", "1260 03", "1310 01"}));
}

void TestBoxsimReplay::beginsAgainAfterTwentyMillisecondsAtLeast_data()
{
    QTest::addColumn<QVector<Block>>("blocks");
    QTest::addColumn<QStringList>("played");

    QTest::newRow("one block") << QVector<Block> {sent(0, kConnectRequest), received(5000, "01")}
                               << QStringList {"5 01", "25 01", "45 01"};
    QTest::newRow("blocks close together")
        << QVector<Block> {sent(0, kConnectRequest), received(5000, "01"), received(15000, "02")}
        << QStringList {"5 01", "15 02", "35 01", "45 02"};
}

void TestBoxsimReplay::beginsAgainAfterTwentyMillisecondsAtLeast()
{
    QFETCH(QVector<Block>, blocks);
    QFETCH(QStringList, played);
    Player player(blocks, true);
    player.observe(0, Action::None);

    QCOMPARE(player.run(50), played);
}

void TestBoxsimReplay::tellsTheEndOnce()
{
    Player player({received(0, "01")});
    player.observe(0, Action::None);

    QCOMPARE(player.run(0), QStringList({"0 01", told(0, kEnd)}));
    player.observe(10, Action::ConnectionCheck);
    QVERIFY(player.replay->advance(100000).isEmpty());
    QCOMPARE(player.replay->dueMs(), kNever);
}

void TestBoxsimReplay::refusesARecordingWithNothingToPlay_data()
{
    QTest::addColumn<QVector<Block>>("blocks");
    QTest::addColumn<QString>("error");

    const QString nothing = QStringLiteral("the recording holds nothing that came from the box; replay one "
                                           "with the box switched on");
    QTest::newRow("no block at all") << QVector<Block>() << nothing;
    QTest::newRow("nothing received") << QVector<Block> {sent(0, kConnectRequest)} << nothing;
    QTest::newRow("an empty block") << QVector<Block> {received(0, "")} << nothing;
    QTest::newRow("answers alone")
        << QVector<Block> {sent(0, kConnectRequest), received(0, kAckOfRequest)}
        << QStringLiteral(
               "the recording holds nothing from the box but answers; replay one with frames of the "
               "box");
}

void TestBoxsimReplay::refusesARecordingWithNothingToPlay()
{
    QFETCH(QVector<Block>, blocks);
    QFETCH(QString, error);
    const Player player(blocks);

    QVERIFY(!player.replay);
    QCOMPARE(player.error, error);
}

QTEST_GUILESS_MAIN(TestBoxsimReplay)
#include "tst_boxsim_replay.moc"
