#include "faultylines.h"
#include "hexbytes.h"

#include <QtCore/QSet>
#include <QtTest/QTest>

using boxsim::Faults;
using boxsim::FaultyLine;
using namespace faultylines;

/// How the bytes are cut into blocks, and what comes between the blocks.
class TestBoxsimFaultyLineBlocks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitsIntoBytes();
    void cutsBehindTheFirstBytes_data();
    void cutsBehindTheFirstBytes();
    void movesTheCutThroughEveryPosition();
    void movesTheCutForEachLengthOnItsOwn();
    void waitsBetweenThePieces();
    void cutsInTheMiddleForAPause();
    void keepsTheOrderBehindAPause();
    void mergesWhatIsWrittenWithinATime();
    void cutsWhatWasMerged();
    void releasesWhatIsMergedWhenTheFaultEnds();
    void makesNoiseAsOftenAsItIsTold();
    void keepsNoiseOutOfAFrameThatIsCut();
    void stopsTheNoise();
    void forgetsWhatIsOnItsWay();
};

void TestBoxsimFaultyLineBlocks::splitsIntoBytes()
{
    Faults faults;
    faults.split = true;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);

    QCOMPARE(line.advance(0),
             Blocks({bytes("9f"), bytes("06"), bytes("50"), bytes("50"), bytes("9f"), bytes("03")}));
}

void TestBoxsimFaultyLineBlocks::cutsBehindTheFirstBytes_data()
{
    QTest::addColumn<int>("splitAt");
    QTest::addColumn<Blocks>("blocks");

    QTest::newRow("behind the first") << 1 << Blocks({bytes("9f"), bytes("06 50 50 9f 03")});
    QTest::newRow("before the last") << 5 << Blocks({bytes("9f 06 50 50 9f"), bytes("03")});
    QTest::newRow("at its end") << 6 << Blocks {bytes("9f 06 50 50 9f 03")};
    QTest::newRow("behind its end") << 7 << Blocks {bytes("9f 06 50 50 9f 03")};
}

void TestBoxsimFaultyLineBlocks::cutsBehindTheFirstBytes()
{
    QFETCH(int, splitAt);
    QFETCH(Blocks, blocks);
    Faults faults;
    faults.splitAt = splitAt;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);

    QCOMPARE(line.advance(0), blocks);
}

void TestBoxsimFaultyLineBlocks::movesTheCutThroughEveryPosition()
{
    Faults faults;
    faults.splitRound = true;
    FaultyLine line = lineWith(faults);
    QVector<int> cuts;

    for (int i = 0; i < 7; ++i) {
        line.writeFrame(bytes("9f 06 50 50 9f 03"), i);
        const Blocks out = line.advance(i);
        QCOMPARE(out.size(), 2);
        QCOMPARE(joined(out), bytes("9f 06 50 50 9f 03"));
        cuts.append(out.at(0).size());
    }

    QCOMPARE(cuts, QVector<int>({1, 2, 3, 4, 5, 1, 2}));
    QCOMPARE(line.takeFaults().at(1).what, QStringLiteral("a block of 6 bytes cut behind the first 2"));
}

void TestBoxsimFaultyLineBlocks::movesTheCutForEachLengthOnItsOwn()
{
    Faults faults;
    faults.splitRound = true;
    FaultyLine line = lineWith(faults);
    QVector<int> cuts;

    for (int i = 0; i < 3; ++i) {
        for (const char *frame : {kFrame, "9f 06 50 50 9f 03", "03"}) {
            line.writeBytes(bytes(frame), i);
            const Blocks out = line.advance(i);
            cuts.append(out.size() == 2 ? out.at(0).size() : 0);
        }
    }

    QCOMPARE(cuts, QVector<int>({1, 1, 0, 2, 2, 0, 3, 3, 0}));
}

void TestBoxsimFaultyLineBlocks::waitsBetweenThePieces()
{
    Faults faults;
    faults.split = true;
    faults.pauseMs = 10;
    FaultyLine line = lineWith(faults);

    line.writeBytes(bytes("01 02 03"), 100);

    QCOMPARE(line.advance(100), Blocks {bytes("01")});
    QCOMPARE(line.dueMs(), qint64(110));
    QCOMPARE(line.advance(109), Blocks());
    QCOMPARE(line.advance(110), Blocks {bytes("02")});
    QCOMPARE(line.advance(120), Blocks {bytes("03")});
    QCOMPARE(line.dueMs(), boxsim::kNever);
}

void TestBoxsimFaultyLineBlocks::cutsInTheMiddleForAPause()
{
    Faults faults;
    faults.pauseMs = 50;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);

    QCOMPARE(line.advance(49), Blocks {bytes("9f 06 50")});
    QCOMPARE(line.advance(50), Blocks {bytes("50 9f 03")});
}

void TestBoxsimFaultyLineBlocks::keepsTheOrderBehindAPause()
{
    Faults faults;
    faults.splitAt = 1;
    faults.pauseMs = 50;
    FaultyLine line = lineWith(faults);
    line.writeBytes(bytes("01 02"), 0);

    line.writeBytes(bytes("03 04"), 10);
    line.setFaults({}, 20);
    line.writeBytes(bytes("05 06"), 20);

    QCOMPARE(line.advance(49), Blocks {bytes("01")});
    QCOMPARE(line.advance(99), Blocks({bytes("02"), bytes("03")}));
    QCOMPARE(line.advance(100), Blocks({bytes("04"), bytes("05 06")}));
}

void TestBoxsimFaultyLineBlocks::mergesWhatIsWrittenWithinATime()
{
    Faults faults;
    faults.mergeMs = 30;
    FaultyLine line = lineWith(faults);

    line.writeBytes(bytes("01 02"), 0);
    line.writeBytes(bytes("03"), 29);
    QCOMPARE(line.dueMs(), qint64(30));
    QCOMPARE(line.advance(29), Blocks());
    QCOMPARE(line.advance(30), Blocks {bytes("01 02 03")});

    line.writeBytes(bytes("04"), 40);
    QCOMPARE(line.dueMs(), qint64(70));
    QCOMPARE(line.advance(70), Blocks {bytes("04")});
    QCOMPARE(line.dueMs(), boxsim::kNever);
}

void TestBoxsimFaultyLineBlocks::cutsWhatWasMerged()
{
    Faults faults;
    faults.mergeMs = 30;
    faults.splitAt = 3;
    FaultyLine line = lineWith(faults);

    line.writeBytes(bytes("01 02"), 0);
    line.writeBytes(bytes("03 04"), 10);

    QCOMPARE(line.advance(30), Blocks({bytes("01 02 03"), bytes("04")}));
}

void TestBoxsimFaultyLineBlocks::releasesWhatIsMergedWhenTheFaultEnds()
{
    Faults faults;
    faults.mergeMs = 1000;
    FaultyLine line = lineWith(faults);
    line.writeBytes(bytes("01"), 0);

    line.setFaults({}, 10);
    line.writeBytes(bytes("02"), 10);

    QCOMPARE(line.advance(10), Blocks({bytes("01"), bytes("02")}));
}

void TestBoxsimFaultyLineBlocks::makesNoiseAsOftenAsItIsTold()
{
    Faults faults;
    faults.noise = 200;
    FaultyLine line = lineWith(faults);
    QSet<char> seen;
    int count = 0;

    for (qint64 now = line.dueMs(); now <= 10000; now = line.dueMs()) {
        const QByteArray noise = joined(line.advance(now));
        QVERIFY(!noise.isEmpty());
        QVERIFY(line.dueMs() > now);
        count += noise.size();
        for (const char byte : noise)
            seen.insert(byte);
        const QVector<FaultyLine::Fault> what = line.takeFaults();
        QCOMPARE(what.size(), 1);
        QCOMPARE(what.at(0).what, QStringLiteral("noise"));
        QCOMPARE(what.at(0).bytes, noise);
    }

    QVERIFY2(count > 1800 && count < 2200, qPrintable(QString::number(count)));
    QVERIFY(seen.size() > 200);
}

void TestBoxsimFaultyLineBlocks::keepsNoiseOutOfAFrameThatIsCut()
{
    Faults faults;
    faults.noise = 1000;
    faults.pauseMs = 100;
    FaultyLine line = lineWith(faults);
    QByteArray out;

    line.writeFrame(bytes(kFrame), 0);
    for (qint64 now = 0; now <= 200; ++now)
        out += joined(line.advance(now));

    QVERIFY2(out.startsWith(bytes(kFrame)), out.toHex().constData());
    QVERIFY(out.size() > 100);
}

void TestBoxsimFaultyLineBlocks::stopsTheNoise()
{
    Faults faults;
    faults.noise = 1000;
    FaultyLine line = lineWith(faults);
    QVERIFY(!joined(line.advance(1000)).isEmpty());

    line.setFaults({}, 1000);

    QCOMPARE(line.dueMs(), boxsim::kNever);
    QCOMPARE(line.advance(2000), Blocks());
}

void TestBoxsimFaultyLineBlocks::forgetsWhatIsOnItsWay()
{
    Faults faults;
    faults.pauseMs = 50;
    FaultyLine line = lineWith(faults);
    line.writeFrame(bytes(kFrame), 0);
    faults.mergeMs = 50;
    line.setFaults(faults, 0);
    line.writeFrame(bytes(kFrame), 0);

    line.clear();

    QCOMPARE(line.dueMs(), boxsim::kNever);
    QCOMPARE(line.advance(1000), Blocks());
}

QTEST_GUILESS_MAIN(TestBoxsimFaultyLineBlocks)
#include "tst_boxsim_faultylineblocks.moc"
