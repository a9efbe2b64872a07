#include "faultylines.h"
#include "hexbytes.h"

#include <QtCore/QSet>
#include <QtTest/QTest>

using boxsim::Faults;
using boxsim::FaultyLine;
using namespace faultylines;

namespace {

constexpr char kEscapedFrame[] = "9f 02 9f9f 03 02 9f9f 01 9f 03";

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

QTEST_GUILESS_MAIN(TestBoxsimFaultyLine)
#include "tst_boxsim_faultyline.moc"
