#include "player/canbusplayer.h"

#include <hexbytes.h>
#include <logrecorder.h>

#include <QtTest/QTest>

using canbus::CanBusPlayer;

namespace {

CanBusPlayer *player()
{
    return CanBusPlayer::instance();
}

} // namespace

class TestPlayerHelpers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitsTextsAtTheirZeroBytes_data();
    void splitsTextsAtTheirZeroBytes();
    void appendsTheTextsToTheList();
    void cleansTextsOfUndecodableCharacters_data();
    void cleansTextsOfUndecodableCharacters();
    void readsTwoBits_data();
    void readsTwoBits();
    void readsThreeBits_data();
    void readsThreeBits();
    void readsFourBits_data();
    void readsFourBits();
    void readsBitsOutsideTheByteAsZero_data();
    void readsBitsOutsideTheByteAsZero();
    void writesTheEscapeByteTwice_data();
    void writesTheEscapeByteTwice();
    void logsNothing();
};

void TestPlayerHelpers::splitsTextsAtTheirZeroBytes_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("a text without its zero is lost") << bytes("41 00 00 42") << QStringList {"A", ""};
    QTest::newRow("nothing") << QByteArray() << QStringList();
    QTest::newRow("one zero is one empty text") << bytes("00") << QStringList {""};
    QTest::newRow("several texts") << bytes("41 42 00 43 00 44 45 00") << QStringList {"AB", "C", "DE"};
    QTest::newRow("UTF-8") << bytes("c3 bc 00 e5 86 b7 00")
                           << QStringList {QString::fromUtf16(u"\u00fc"), QString::fromUtf16(u"\u51b7")};
    QTest::newRow("bytes that are no UTF-8 vanish, their neighbours stay")
        << bytes("41 9f 42 00") << QStringList {"AB"};
}

void TestPlayerHelpers::splitsTextsAtTheirZeroBytes()
{
    QFETCH(QByteArray, data);
    QStringList texts;
    player()->onSplitEOFstrings(texts, data);
    QTEST(texts, "texts");
}

void TestPlayerHelpers::appendsTheTextsToTheList()
{
    QStringList texts {"first"};
    player()->onSplitEOFstrings(texts, bytes("41 00"));
    QCOMPARE(texts, (QStringList {"first", "A"}));
}

void TestPlayerHelpers::cleansTextsOfUndecodableCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("cleaned");
    QTest::newRow("valid characters around them stay")
        << QString::fromUtf16(u"\ufffdA\ufffd\ufffd \u51b7\ufffd") << QString::fromUtf16(u"A \u51b7");
    QTest::newRow("nothing to clean") << QStringLiteral("Auto") << QStringLiteral("Auto");
    QTest::newRow("nothing left") << QString::fromUtf16(u"\ufffd\ufffd") << QString();
    QTest::newRow("empty") << QString() << QString();
}

void TestPlayerHelpers::cleansTextsOfUndecodableCharacters()
{
    QFETCH(QString, text);
    player()->removeGarbledCodeFromUtf8(text);
    QTEST(text, "cleaned");
}

void TestPlayerHelpers::readsTwoBits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("bit0");
    QTest::addColumn<int>("bit1");
    QTest::addColumn<int>("state");
    QTest::newRow("none") << 0xfc << 0 << 1 << 0;
    QTest::newRow("the low one") << 0x01 << 0 << 1 << 1;
    QTest::newRow("the high one") << 0x02 << 0 << 1 << 2;
    QTest::newRow("both") << 0x03 << 0 << 1 << 3;
    QTest::newRow("the order of the arguments counts") << 0x01 << 1 << 0 << 2;
    QTest::newRow("the sign bit is a bit like the others") << 0x80 << 6 << 7 << 2;
    QTest::newRow("9f, top") << 0x9f << 6 << 7 << 2;
    QTest::newRow("9f, middle") << 0x9f << 4 << 5 << 1;
}

void TestPlayerHelpers::readsTwoBits()
{
    QFETCH(int, value);
    QFETCH(int, bit0);
    QFETCH(int, bit1);
    QTEST(player()->on2bitComparisonStates(char(value), bit0, bit1), "state");
}

void TestPlayerHelpers::readsThreeBits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("state");
    const int states[] = {0, 1, 2, 3, 4, 5, 6, 0};
    for (int value = 0; value < 8; ++value)
        QTest::addRow("%d reads as %d", value, states[value]) << value << states[value];
}

void TestPlayerHelpers::readsThreeBits()
{
    QFETCH(int, value);
    QFETCH(int, state);
    QCOMPARE(player()->on3bitComparisonStates(char(value), 0, 1, 2), state);
    QCOMPARE(player()->on3bitComparisonStates(char(value * 0x20), 5, 6, 7), state);
    QCOMPARE(player()->on3bitComparisonStates(char(0xf8 + value), 0, 1, 2), state);
}

void TestPlayerHelpers::readsFourBits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("state");
    const int states[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0};
    for (int value = 0; value < 16; ++value)
        QTest::addRow("%d reads as %d", value, states[value]) << value << states[value];
}

void TestPlayerHelpers::readsFourBits()
{
    QFETCH(int, value);
    QFETCH(int, state);
    QCOMPARE(player()->on4bitComparisonStates(char(value), 0, 1, 2, 3), state);
    QCOMPARE(player()->on4bitComparisonStates(char(value * 0x10), 4, 5, 6, 7), state);
    QCOMPARE(player()->on4bitComparisonStates(char(0xf0 + value), 0, 1, 2, 3), state);
}

void TestPlayerHelpers::readsBitsOutsideTheByteAsZero_data()
{
    QTest::addColumn<int>("position");
    QTest::newRow("8") << 8;
    QTest::newRow("31") << 31;
    QTest::newRow("32") << 32;
    QTest::newRow("-1") << -1;
    QTest::newRow("-32") << -32;
    QTest::newRow("far off") << 100000;
}

void TestPlayerHelpers::readsBitsOutsideTheByteAsZero()
{
    QFETCH(int, position);
    const char all = char(0xff);
    QCOMPARE(player()->on2bitComparisonStates(all, position, 0), 2);
    QCOMPARE(player()->on2bitComparisonStates(all, 0, position), 1);
    QCOMPARE(player()->on3bitComparisonStates(all, 0, 1, position), 3);
    QCOMPARE(player()->on4bitComparisonStates(all, 0, 1, 2, position), 7);
    QCOMPARE(player()->on4bitComparisonStates(all, position, position, position, 7), 8);
}

void TestPlayerHelpers::writesTheEscapeByteTwice_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("the escape byte") << 0x9f << bytes("9f 02 9f 9f");
    QTest::newRow("its lower neighbour") << 0x9e << bytes("9f 02 9e");
    QTest::newRow("its upper neighbour") << 0xa0 << bytes("9f 02 a0");
    QTest::newRow("its lower half") << 0x1f << bytes("9f 02 1f");
    QTest::newRow("zero") << 0x00 << bytes("9f 02 00");
    QTest::newRow("the greatest") << 0xff << bytes("9f 02 ff");
}

void TestPlayerHelpers::writesTheEscapeByteTwice()
{
    QFETCH(int, byte);
    QByteArray frame = bytes("9f 02");
    player()->onEscapeFrameHeader(char(byte), frame);
    QTEST(frame, "frame");
}

void TestPlayerHelpers::logsNothing()
{
    LogRecorder log;
    QStringList texts;
    player()->onSplitEOFstrings(texts, bytes("41 ff 00 42"));
    QByteArray frame;
    player()->onEscapeFrameHeader(char(0x9f), frame);
    player()->on4bitComparisonStates(char(0x9f), 0, 1, 2, 3);
    QVERIFY(log.lines().isEmpty());
}

QTEST_GUILESS_MAIN(TestPlayerHelpers)
#include "tst_playerhelpers.moc"
