#include "replaybench.h"

#include <QtTest/QTest>

using namespace replaybench;

class TestBoxsimReplayAnswers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leavesOutAnswers_data();
    void leavesOutAnswers();
    void leavesOutAnswersWhereverTheyAreCut();
    void keepsNoiseAndBrokenFrames_data();
    void keepsNoiseAndBrokenFrames();
    void leavesOutWhatTheEndOfTheRecordingCutsOff_data();
    void leavesOutWhatTheEndOfTheRecordingCutsOff();
    void tellsThatItIsInsideAFrame();
    void isInsideNoBrokenFrame();
};

void TestBoxsimReplayAnswers::leavesOutAnswers_data()
{
    QTest::addColumn<QVector<Block>>("blocks");
    QTest::addColumn<QStringList>("played");

    QTest::newRow("an acknowledgement in a block of its own")
        << QVector<Block> {received(0, kAckOfRequest), received(1, "01")} << QStringList {"01"};
    QTest::newRow("a negative acknowledgement")
        << QVector<Block> {received(0, "9f 15 21 21 9f 03"), received(1, "01")} << QStringList {"01"};
    QTest::newRow("before a frame, in its block")
        << QVector<Block> {received(0, "9f0621219f03 9f025103019f03 9f02510301539f03")}
        << QStringList {wire("9f025103019f03 9f02510301539f03")};
    QTest::newRow("behind a frame, in its block")
        << QVector<Block> {received(0, "9f02510301539f03 9f0621219f03")}
        << QStringList {wire("9f02510301539f03")};
    QTest::newRow("between two frames that are cut elsewhere")
        << QVector<Block> {received(0, "9f0251"), received(1, "0301539f03 9f0621219f03 9f024802"),
                           received(2, "001f559f03 9f0622229f03")}
        << QStringList {wire("9f0251"), wire("0301539f03 9f024802"), wire("001f559f03")};
    QTest::newRow("amid noise") << QVector<Block> {received(0, "aa bb 9f0621219f03 cc dd")}
                                << QStringList {wire("aabbccdd")};
    QTest::newRow("behind a frame without an end")
        << QVector<Block> {received(0, "9f0251 0301 9f0621219f03 aa")} << QStringList {wire("9f02510301aa")};
    QTest::newRow("of the id 9f, doubled")
        << QVector<Block> {received(0, "aa 9f06 9f9f9f9f 9f03 bb 9f15 9f9f9f9f 9f03"), received(1, kLabels)}
        << QStringList {wire("aabb"), wire(kLabels)};
    QTest::newRow("of the id 9f, plain")
        << QVector<Block> {received(0, "9f06 9f9f 9f03 aa")} << QStringList {"aa"};
    QTest::newRow("not what looks like one in a frame's data")
        << QVector<Block> {received(0, "9f02 51 03 01 9f9f 06 21 21 9f9f 03 56 9f03")}
        << QStringList {wire("9f02 51 03 01 9f9f 06 21 21 9f9f 03 56 9f03")};
    QTest::newRow("not what ends a frame like one")
        << QVector<Block> {received(0, "9f02 51 07 cf 9f9f 06 9f9f 9f9f 9f03")}
        << QStringList {wire("9f02 51 07 cf 9f9f 06 9f9f 9f9f 9f03")};
}

void TestBoxsimReplayAnswers::leavesOutAnswers()
{
    QFETCH(QVector<Block>, blocks);
    QFETCH(QStringList, played);

    QCOMPARE(Player(blocks).played(), played);
}

void TestBoxsimReplayAnswers::leavesOutAnswersWhereverTheyAreCut()
{
    const QByteArray answer = bytes("9f 06 21 21 9f 03");
    for (int cut = 1; cut < answer.size(); ++cut) {
        const Block first {Direction::Received, 0, bytes(kLabels) + answer.left(cut)};
        const Block second {Direction::Received, 1000, answer.mid(cut) + bytes(kScreens)};
        QCOMPARE(Player({first, second}).played(), QStringList({wire(kLabels), wire(kScreens)}));
        const Block alone {Direction::Received, 0, answer.left(cut)};
        QCOMPARE(Player({alone, second}).played(), QStringList {wire(kScreens)});
    }
}

void TestBoxsimReplayAnswers::keepsNoiseAndBrokenFrames_data()
{
    QTest::addColumn<QString>("hex");

    QTest::newRow("noise") << "aa bb 9f cc";
    QTest::newRow("a wrong check byte") << "9f 02 51 03 01 54 9f 03";
    QTest::newRow("a frame that is too short") << "9f 02 51 51 9f 03";
    QTest::newRow("an acknowledgement with two ids") << "9f 06 21 22 9f 03";
    QTest::newRow("an acknowledgement without an id") << "9f 06 9f 03";
    QTest::newRow("an acknowledgement without its end") << "9f 06 21 21 00";
    QTest::newRow("a frame without an end, and another") << "9f 02 51 03 01 9f 02 48 02 00 1f 55 9f 03";
}

void TestBoxsimReplayAnswers::keepsNoiseAndBrokenFrames()
{
    QFETCH(QString, hex);
    const QByteArray wire = QByteArray::fromHex(hex.toLatin1());
    for (int cut = 1; cut < wire.size(); ++cut) {
        const Block first {Direction::Received, 0, wire.left(cut)};
        const Block second {Direction::Received, 1000, wire.mid(cut)};
        QCOMPARE(Player({first, second}).played(),
                 QStringList({QString::fromLatin1(wire.left(cut).toHex(' ')),
                              QString::fromLatin1(wire.mid(cut).toHex(' '))}));
    }
}

void TestBoxsimReplayAnswers::leavesOutWhatTheEndOfTheRecordingCutsOff_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::addColumn<QString>("played");

    QTest::newRow("a frame's mark") << bytes("9f 02") << wire(kLabels);
    QTest::newRow("half a frame") << bytes("9f 02 48 02 00") << wire(kLabels);
    QTest::newRow("half an answer") << bytes("9f 06 21") << wire(kLabels);
    QTest::newRow("but not noise") << bytes("aa bb") << wire("9f 02 51 03 01 53 9f 03 aa bb");
    QTest::newRow("but a byte that might be anything") << bytes("9f") << wire("9f 02 51 03 01 53 9f 03 9f");
}

void TestBoxsimReplayAnswers::leavesOutWhatTheEndOfTheRecordingCutsOff()
{
    QFETCH(QByteArray, tail);
    QFETCH(QString, played);

    QCOMPARE(Player({{Direction::Received, 0, bytes(kLabels) + tail}}).played(), QStringList {played});
}

void TestBoxsimReplayAnswers::tellsThatItIsInsideAFrame()
{
    Player player({sent(0, kConnectRequest), received(1000, "aa"), received(2000, "9f 02 51"),
                   received(3000, "03 01"), received(4000, "53 9f 03"),
                   received(5000, "9f 02 51 03 01 53 9f 03 9f"), received(6000, "02 51 03 01 53 9f 03")});
    player.observe(0, Action::None);

    QVector<bool> inside;
    for (qint64 now = 0; now <= 7; ++now) {
        player.replay->advance(now);
        inside.append(player.replay->isInsideFrame());
    }
    QCOMPARE(inside, QVector<bool>({false, false, true, true, false, true, false, false}));
}

void TestBoxsimReplayAnswers::isInsideNoBrokenFrame()
{
    Player player({received(0, "9f 02 51 03"), received(1000, "01 54 9f 03")});
    player.observe(0, Action::None);

    QCOMPARE(player.replay->advance(0).size(), 1);
    QVERIFY(!player.replay->isInsideFrame());
}

QTEST_GUILESS_MAIN(TestBoxsimReplayAnswers)
#include "tst_boxsim_replay_answers.moc"
