#include "boxsim/faultyline.h"

#include "hexbytes.h"

#include <QtTest/QtTest>

using boxsim::Faults;
using boxsim::FaultyLine;

namespace {

using Blocks = QVector<QByteArray>;

constexpr char kFrame[] = "9f 02 50 03 00 01 02 50 9f 03";
constexpr char kEscapedFrame[] = "9f 02 9f9f 03 02 9f9f 01 9f 03";

FaultyLine lineWith(const Faults &faults, quint32 seed = 1)
{
    FaultyLine line(seed);
    line.setFaults(faults, 0);
    return line;
}

QByteArray joined(const Blocks &blocks)
{
    QByteArray all;
    for (const QByteArray &block : blocks)
        all += block;
    return all;
}

QStringList told(FaultyLine &line)
{
    QStringList lines;
    const QVector<FaultyLine::Fault> faults = line.takeFaults();
    for (const FaultyLine::Fault &fault : faults)
        lines.append(fault.what);
    return lines;
}

/// 2000 bytes from 00 up, as they come out of a line with these faults.
QByteArray sentThrough(FaultyLine &line)
{
    QByteArray bytes;
    for (int i = 0; i < 2000; ++i)
        bytes += char(i % 256);
    line.writeBytes(bytes, 0);
    return joined(line.advance(0));
}

} // namespace

Q_DECLARE_METATYPE(boxsim::Faults)

class TestBoxsimFaultyLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void passesBlocksOnWhenNothingIsWrong();
    void givesDataFramesAWrongCheckByte_data();
    void givesDataFramesAWrongCheckByte();
    void leavesTheChecksOfAnswersAndForeignBytesAlone();
    void escapesAWrongCheckByte();
    void damagesAShareOfTheBytes_data();
    void damagesAShareOfTheBytes();
    void damagesEveryByteWithAShareOfOne_data();
    void damagesEveryByteWithAShareOfOne();
    void tellsWhatItDidToWhichByte();
    void repeatsARunFromItsSeed();
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

void TestBoxsimFaultyLine::passesBlocksOnWhenNothingIsWrong()
{
    FaultyLine line;
    QCOMPARE(line.dueMs(), boxsim::kNever);

    line.writeFrame(bytes(kFrame), 5);
    line.writeBytes(bytes("00 9f"), 5);

    QCOMPARE(line.dueMs(), qint64(5));
    QCOMPARE(line.advance(5), Blocks({bytes(kFrame), bytes("00 9f")}));
    QCOMPARE(line.dueMs(), boxsim::kNever);
    QVERIFY(line.takeFaults().isEmpty());
}

void TestBoxsimFaultyLine::givesDataFramesAWrongCheckByte_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QByteArray>("beforeCheck");
    QTest::addColumn<QByteArray>("check");

    QTest::newRow("a plain frame") << bytes(kFrame) << bytes("9f 02 50 03 00 01 02") << bytes("50");
    QTest::newRow("a frame with doubled escapes")
        << bytes(kEscapedFrame) << bytes("9f 02 9f9f 03 02 9f9f") << bytes("01");
    QTest::newRow("a check byte that is the escape")
        << bytes("9f 02 50 03 cc 9f9f 9f 03") << bytes("9f 02 50 03 cc") << bytes("9f9f");
}

void TestBoxsimFaultyLine::givesDataFramesAWrongCheckByte()
{
    QFETCH(QByteArray, frame);
    QFETCH(QByteArray, beforeCheck);
    QFETCH(QByteArray, check);
    Faults faults;
    faults.wrongChecks = 1;
    FaultyLine line = lineWith(faults);

    for (int i = 0; i < 100; ++i) {
        line.writeFrame(frame, i);
        const QByteArray sent = joined(line.advance(i));
        QVERIFY2(sent.startsWith(beforeCheck) && sent.endsWith(bytes("9f 03")), sent.toHex().constData());
        QVERIFY2(sent.mid(beforeCheck.size()).chopped(2) != check, sent.toHex().constData());
        const QVector<FaultyLine::Fault> what = line.takeFaults();
        QCOMPARE(what.size(), 1);
        QVERIFY(what.at(0).what.startsWith("wrong check byte: " + check.right(1).toHex() + " became "));
        QCOMPARE(what.at(0).bytes, sent);
    }
}

void TestBoxsimFaultyLine::leavesTheChecksOfAnswersAndForeignBytesAlone()
{
    Faults faults;
    faults.wrongChecks = 1;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);
    line.writeBytes(bytes(kFrame), 0);

    QCOMPARE(line.advance(0), Blocks({bytes("9f 06 50 50 9f 03"), bytes(kFrame)}));
}

void TestBoxsimFaultyLine::escapesAWrongCheckByte()
{
    Faults faults;
    faults.wrongChecks = 1;
    FaultyLine line = lineWith(faults);
    QSet<QByteArray> checks;

    for (int i = 0; i < 5000; ++i) {
        line.writeFrame(bytes(kFrame), i);
        const QByteArray sent = joined(line.advance(i));
        checks.insert(sent.mid(7).chopped(2));
    }

    // All but the right one, and the escape doubled.
    QCOMPARE(checks.size(), 255);
    QVERIFY(checks.contains(bytes("9f9f")));
    QVERIFY(!checks.contains(bytes("9f")) && !checks.contains(bytes("50")));
}

void TestBoxsimFaultyLine::damagesAShareOfTheBytes_data()
{
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("growth");

    Faults flip;
    flip.flipBytes = 0.1;
    QTest::newRow("flipped") << flip << "flipped" << 0;
    Faults lose;
    lose.loseBytes = 0.1;
    QTest::newRow("lost") << lose << "lost" << -1;
    Faults twice;
    twice.doubleBytes = 0.1;
    QTest::newRow("doubled") << twice << "doubled" << 1;
    Faults insert;
    insert.insertBytes = 0.1;
    QTest::newRow("inserted") << insert << "inserted" << 1;
}

void TestBoxsimFaultyLine::damagesAShareOfTheBytes()
{
    QFETCH(Faults, faults);
    QFETCH(QString, word);
    QFETCH(int, growth);
    FaultyLine line = lineWith(faults);

    const int size = sentThrough(line).size();

    const QStringList lines = told(line);
    QVERIFY2(lines.size() > 150 && lines.size() < 250, qPrintable(QString::number(lines.size())));
    QCOMPARE(lines.filter(word).size(), lines.size());
    QCOMPARE(size, 2000 + growth * lines.size());
}

void TestBoxsimFaultyLine::damagesEveryByteWithAShareOfOne_data()
{
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<int>("size");

    Faults lose;
    lose.loseBytes = 1;
    QTest::newRow("a block of which all is lost is none") << lose << bytes("01 02 03") << 0;
    Faults twice;
    twice.doubleBytes = 1;
    QTest::newRow("doubled") << twice << bytes("01 02 03") << 6;
    Faults insert;
    insert.insertBytes = 1;
    QTest::newRow("inserted") << insert << bytes("01 02 03") << 6;
}

void TestBoxsimFaultyLine::damagesEveryByteWithAShareOfOne()
{
    QFETCH(Faults, faults);
    QFETCH(QByteArray, block);
    QFETCH(int, size);
    FaultyLine line = lineWith(faults);

    line.writeBytes(block, 0);
    const Blocks out = line.advance(0);

    QCOMPARE(out.size(), size == 0 ? 0 : 1);
    QCOMPARE(joined(out).size(), size);
}

void TestBoxsimFaultyLine::tellsWhatItDidToWhichByte()
{
    Faults faults;
    faults.flipBytes = 1;
    FaultyLine flipping = lineWith(faults);
    flipping.writeBytes(bytes("12"), 0);
    const QByteArray sent = joined(flipping.advance(0));
    const quint8 turned = quint8(quint8(sent.at(0)) ^ 0x12U);
    QVERIFY(turned != 0 && (turned & (turned - 1)) == 0);
    QCOMPARE(told(flipping), QStringList {"byte 0 flipped: 12 became " + sent.toHex()});

    faults = {};
    faults.loseBytes = 1;
    FaultyLine losing = lineWith(faults);
    losing.writeBytes(bytes("12 9f"), 0);
    QCOMPARE(told(losing), QStringList({"byte 0 lost: 12", "byte 1 lost: 9f"}));

    faults = {};
    faults.doubleBytes = 1;
    FaultyLine doubling = lineWith(faults);
    doubling.writeBytes(bytes("12"), 0);
    QCOMPARE(joined(doubling.advance(0)), bytes("12 12"));
    QCOMPARE(told(doubling), QStringList {"byte 0 doubled: 12"});

    faults = {};
    faults.insertBytes = 1;
    FaultyLine inserting = lineWith(faults);
    inserting.writeBytes(bytes("12"), 0);
    const QByteArray longer = joined(inserting.advance(0));
    QCOMPARE(longer.mid(1), bytes("12"));
    QCOMPARE(told(inserting), QStringList {longer.left(1).toHex() + " inserted before byte 0"});
}

void TestBoxsimFaultyLine::repeatsARunFromItsSeed()
{
    Faults faults;
    faults.flipBytes = 0.05;
    faults.loseBytes = 0.05;
    faults.doubleBytes = 0.05;
    faults.insertBytes = 0.05;
    FaultyLine first = lineWith(faults, 11);
    FaultyLine same = lineWith(faults, 11);
    FaultyLine other = lineWith(faults, 12);

    const QByteArray sent = sentThrough(first);

    QCOMPARE(sentThrough(same), sent);
    QCOMPARE(told(same), told(first));
    QVERIFY(sentThrough(other) != sent);
}

void TestBoxsimFaultyLine::splitsIntoBytes()
{
    Faults faults;
    faults.split = true;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);

    QCOMPARE(line.advance(0),
             Blocks({bytes("9f"), bytes("06"), bytes("50"), bytes("50"), bytes("9f"), bytes("03")}));
}

void TestBoxsimFaultyLine::cutsBehindTheFirstBytes_data()
{
    QTest::addColumn<int>("splitAt");
    QTest::addColumn<Blocks>("blocks");

    QTest::newRow("behind the first") << 1 << Blocks({bytes("9f"), bytes("06 50 50 9f 03")});
    QTest::newRow("before the last") << 5 << Blocks({bytes("9f 06 50 50 9f"), bytes("03")});
    QTest::newRow("at its end") << 6 << Blocks {bytes("9f 06 50 50 9f 03")};
    QTest::newRow("behind its end") << 7 << Blocks {bytes("9f 06 50 50 9f 03")};
}

void TestBoxsimFaultyLine::cutsBehindTheFirstBytes()
{
    QFETCH(int, splitAt);
    QFETCH(Blocks, blocks);
    Faults faults;
    faults.splitAt = splitAt;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);

    QCOMPARE(line.advance(0), blocks);
}

void TestBoxsimFaultyLine::movesTheCutThroughEveryPosition()
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
    QCOMPARE(told(line).at(1), QStringLiteral("a block of 6 bytes cut behind the first 2"));
}

void TestBoxsimFaultyLine::movesTheCutForEachLengthOnItsOwn()
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

void TestBoxsimFaultyLine::waitsBetweenThePieces()
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

void TestBoxsimFaultyLine::cutsInTheMiddleForAPause()
{
    Faults faults;
    faults.pauseMs = 50;
    FaultyLine line = lineWith(faults);

    line.writeFrame(bytes("9f 06 50 50 9f 03"), 0);

    QCOMPARE(line.advance(49), Blocks {bytes("9f 06 50")});
    QCOMPARE(line.advance(50), Blocks {bytes("50 9f 03")});
}

void TestBoxsimFaultyLine::keepsTheOrderBehindAPause()
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

void TestBoxsimFaultyLine::mergesWhatIsWrittenWithinATime()
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

void TestBoxsimFaultyLine::cutsWhatWasMerged()
{
    Faults faults;
    faults.mergeMs = 30;
    faults.splitAt = 3;
    FaultyLine line = lineWith(faults);

    line.writeBytes(bytes("01 02"), 0);
    line.writeBytes(bytes("03 04"), 10);

    QCOMPARE(line.advance(30), Blocks({bytes("01 02 03"), bytes("04")}));
}

void TestBoxsimFaultyLine::releasesWhatIsMergedWhenTheFaultEnds()
{
    Faults faults;
    faults.mergeMs = 1000;
    FaultyLine line = lineWith(faults);
    line.writeBytes(bytes("01"), 0);

    line.setFaults({}, 10);
    line.writeBytes(bytes("02"), 10);

    QCOMPARE(line.advance(10), Blocks({bytes("01"), bytes("02")}));
}

void TestBoxsimFaultyLine::makesNoiseAsOftenAsItIsTold()
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

void TestBoxsimFaultyLine::keepsNoiseOutOfAFrameThatIsCut()
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

void TestBoxsimFaultyLine::stopsTheNoise()
{
    Faults faults;
    faults.noise = 1000;
    FaultyLine line = lineWith(faults);
    QVERIFY(!joined(line.advance(1000)).isEmpty());

    line.setFaults({}, 1000);

    QCOMPARE(line.dueMs(), boxsim::kNever);
    QCOMPARE(line.advance(2000), Blocks());
}

void TestBoxsimFaultyLine::forgetsWhatIsOnItsWay()
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

QTEST_GUILESS_MAIN(TestBoxsimFaultyLine)
#include "tst_boxsim_faultyline.moc"
