#include "framesplitter.h"

#include <hexbytes.h>

#include <QtTest/QTest>

using canbus::qml::FrameSplitter;

namespace {

/// What has ended, as one text: "9f02...|9f06...".
QString described(const QList<QByteArray> &ended)
{
    QStringList all;
    for (const QByteArray &frame : ended)
        all += QString::fromLatin1(frame.toHex());
    return all.join('|');
}

} // namespace

/// The bytes of one direction become frames for the eye.
class TestFrameSplitter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cutsBytesIntoFrames_data();
    void cutsBytesIntoFrames();
    void joinsBlocks();
    void cutsTheSameWhereverABlockEnds();
    void forgetsWhatHasNotEnded();
    void keepsNoEndlessFrame();
};

void TestFrameSplitter::cutsBytesIntoFrames_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("frames");
    QTest::newRow("a data frame") << bytes("9f 02 21 01 00 00 00 20 9f 03") << "9f022101000000209f03";
    QTest::newRow("an acknowledgement") << bytes("9f 06 21 21 9f 03") << "9f0621219f03";
    QTest::newRow("two frames") << bytes("9f 06 21 21 9f 03 9f 15 22 22 9f 03")
                                << "9f0621219f03|9f1522229f03";
    QTest::newRow("a doubled escape before 03 is data")
        << bytes("9f 02 21 9f 9f 03 00 9f 03") << "9f02219f9f03009f03";
    QTest::newRow("a doubled escape before 02 is data")
        << bytes("9f 02 21 9f 9f 02 00 9f 03") << "9f02219f9f02009f03";
    QTest::newRow("an escape behind a doubled one closes")
        << bytes("9f 02 21 9f 9f 9f 03") << "9f02219f9f9f03";
    QTest::newRow("an acknowledgement of the id 9f") << bytes("9f 06 9f 9f 9f 03") << "9f069f9f9f03";
    QTest::newRow("noise before a frame stands for itself")
        << bytes("31 32 9f 06 21 21 9f 03") << "3132|9f0621219f03";
    QTest::newRow("a frame that is cut short stands for itself")
        << bytes("9f 02 21 01 9f 06 21 21 9f 03") << "9f022101|9f0621219f03";
    QTest::newRow("noise alone has not ended") << bytes("31 32 33") << "";
    QTest::newRow("a frame without its end has not ended") << bytes("9f 02 21 01 00") << "";
    QTest::newRow("nothing") << bytes("") << "";
}

void TestFrameSplitter::cutsBytesIntoFrames()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QString, frames);
    FrameSplitter splitter;
    QCOMPARE(described(splitter.add(line)), frames);
}

void TestFrameSplitter::joinsBlocks()
{
    FrameSplitter splitter;
    QCOMPARE(described(splitter.add(bytes("9f 06 21 21 9f 03 9f"))), QStringLiteral("9f0621219f03"));
    QCOMPARE(described(splitter.add(bytes("02 21"))), QString());
    QCOMPARE(described(splitter.add(bytes("9f 03"))), QStringLiteral("9f02219f03"));
}

void TestFrameSplitter::cutsTheSameWhereverABlockEnds()
{
    const QByteArray line = bytes("31 9f 02 21 9f 9f 03 9f 03 9f 06 21 21 9f 03");
    for (int end = 0; end <= line.size(); ++end) {
        FrameSplitter splitter;
        QList<QByteArray> ended = splitter.add(line.left(end));
        ended += splitter.add(line.mid(end));
        QCOMPARE(described(ended), QStringLiteral("31|9f02219f9f039f03|9f0621219f03"));
    }
}

void TestFrameSplitter::forgetsWhatHasNotEnded()
{
    FrameSplitter splitter;
    splitter.add(bytes("9f 02 21 9f"));
    splitter.clear();
    QCOMPARE(described(splitter.add(bytes("03 31 9f 06 21 21 9f 03"))), QStringLiteral("0331|9f0621219f03"));
}

void TestFrameSplitter::keepsNoEndlessFrame()
{
    FrameSplitter splitter;
    QCOMPARE(splitter.add(QByteArray(2047, '\x31')).size(), 0);
    const QList<QByteArray> ended = splitter.add(QByteArray(2, '\x31'));
    QCOMPARE(ended.size(), 1);
    QCOMPARE(ended.first().size(), 2048);
}

QTEST_GUILESS_MAIN(TestFrameSplitter)
#include "tst_framesplitter.moc"
