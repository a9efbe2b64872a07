#include "support/bytes.h"

#include <hexbytes.h>

#include <QtTest/QTest>

using namespace canbus;

class TestBytes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsAByteWithoutSign();
    void readsZeroOutsideTheArray_data();
    void readsZeroOutsideTheArray();
    void readsZeroWhereBytesOfOthersStand();
    void readsTheFirstByte();
    void readsSixteenBitsMostSignificantFirst_data();
    void readsSixteenBitsMostSignificantFirst();
    void readsEachBitOfAByte();
    void hasNoBitsBesideTheEight_data();
    void hasNoBitsBesideTheEight();
    void listsBitsInTheOrderOfTheArguments();
    void hasAnArrayForEachByte();
    void leavesTheArrayOfAByteToOthers();
    void readsFourStatesFromTwoBits_data();
    void readsFourStatesFromTwoBits();
    void readsSevenStatesFromThreeBits_data();
    void readsSevenStatesFromThreeBits();
    void readsNineStatesFromFourBits_data();
    void readsNineStatesFromFourBits();
    void readsAStateFromBitsInTheOrderGiven();
};

void TestBytes::readsAByteWithoutSign()
{
    const QByteArray data = bytes("00 7f 80 9f ff");
    QCOMPARE(int(byteAt(data, 0)), 0);
    QCOMPARE(int(byteAt(data, 1)), 127);
    QCOMPARE(int(byteAt(data, 2)), 128);
    QCOMPARE(int(byteAt(data, 3)), 159);
    QCOMPARE(int(byteAt(data, 4)), 255);
}

void TestBytes::readsZeroOutsideTheArray_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("index");
    QTest::newRow("just behind the last byte") << bytes("ff ff") << 2;
    QTest::newRow("far behind the last byte") << bytes("ff ff") << 100000;
    QTest::newRow("before the first byte") << bytes("ff ff") << -1;
    QTest::newRow("in an empty array") << QByteArray() << 0;
}

void TestBytes::readsZeroOutsideTheArray()
{
    QFETCH(QByteArray, data);
    QFETCH(int, index);
    QCOMPARE(int(byteAt(data, index)), 0);
}

void TestBytes::readsZeroWhereBytesOfOthersStand()
{
    const char memory[] = {0x11, 0x22, 0x33};
    const QByteArray middle = QByteArray::fromRawData(memory + 1, 1);
    QCOMPARE(int(byteAt(middle, -1)), 0);
    QCOMPARE(int(byteAt(middle, 0)), 0x22);
    QCOMPARE(int(byteAt(middle, 1)), 0);
}

void TestBytes::readsTheFirstByte()
{
    QCOMPARE(int(firstByte(bytes("9f 02"))), 0x9f);
    QCOMPARE(int(firstByte(QByteArray())), 0);
}

void TestBytes::readsSixteenBitsMostSignificantFirst_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("number");
    QTest::newRow("01 2c is 300") << bytes("01 2c") << 0 << 300;
    QTest::newRow("ff ff is the greatest") << bytes("ff ff") << 0 << 65535;
    QTest::newRow("both bytes are unsigned") << bytes("9f 80") << 0 << 40832;
    QTest::newRow("from the middle") << bytes("ff 00 d7 ff") << 1 << 215;
    QTest::newRow("a missing low byte reads as 0") << bytes("01") << 0 << 256;
    QTest::newRow("both bytes missing") << QByteArray() << 0 << 0;
}

void TestBytes::readsSixteenBitsMostSignificantFirst()
{
    QFETCH(QByteArray, data);
    QFETCH(int, index);
    QTEST(bigEndian16At(data, index), "number");
}

void TestBytes::readsEachBitOfAByte()
{
    const quint8 ofBit[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};
    for (int set = 0; set < 8; ++set) {
        for (int position = 0; position < 8; ++position)
            QCOMPARE(bitAt(ofBit[set], position), position == set);
    }
}

void TestBytes::hasNoBitsBesideTheEight_data()
{
    QTest::addColumn<int>("position");
    QTest::newRow("below the lowest") << -1;
    QTest::newRow("above the highest") << 8;
    QTest::newRow("as wide as an int") << 32;
    QTest::newRow("far above") << 1000;
    QTest::newRow("as far below as an int is wide") << -32;
    QTest::newRow("far below") << -1000;
}

void TestBytes::hasNoBitsBesideTheEight()
{
    QFETCH(int, position);
    QVERIFY(!bitAt(0xff, position));
}

void TestBytes::listsBitsInTheOrderOfTheArguments()
{
    QVERIFY((bitsAt(0x9f, 4, 5, 6, 7) == std::array {true, false, false, true}));
    QVERIFY((bitsAt(0x9f, 7, 6, 5) == std::array {true, false, false}));
    QVERIFY((bitsAt(0x01, 0, 8) == std::array {true, false}));
}

void TestBytes::hasAnArrayForEachByte()
{
    QCOMPARE(oneByte(0x00), QByteArray("\x00", 1));
    QCOMPARE(oneByte(0x21), QByteArray("\x21"));
    QCOMPARE(oneByte(0x9f), QByteArray("\x9f"));
    QCOMPARE(oneByte(0xff), QByteArray("\xff"));
    for (int value = 0; value < 256; ++value) {
        QCOMPARE(oneByte(quint8(value)).size(), 1);
        QCOMPARE(int(quint8(oneByte(quint8(value)).at(0))), value);
    }
}

void TestBytes::leavesTheArrayOfAByteToOthers()
{
    QByteArray changed = oneByte(0x21);
    changed[0] = 'x';
    changed.append('y');
    QCOMPARE(changed, QByteArray("xy"));
    QCOMPARE(oneByte(0x21), QByteArray("\x21"));
}

void TestBytes::readsFourStatesFromTwoBits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("state");
    QTest::newRow("none set") << 0x00 << 0;
    QTest::newRow("the first alone") << 0x40 << 1;
    QTest::newRow("the second alone") << 0x80 << 2;
    QTest::newRow("both") << 0xc0 << 3;
    QTest::newRow("all the others") << 0x3f << 0;
}

void TestBytes::readsFourStatesFromTwoBits()
{
    QFETCH(int, value);
    QTEST(state2At(quint8(value), 6, 7), "state");
}

void TestBytes::readsSevenStatesFromThreeBits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("state");
    QTest::newRow("0") << 0x00 << 0;
    QTest::newRow("1") << 0x01 << 1;
    QTest::newRow("2") << 0x02 << 2;
    QTest::newRow("3") << 0x03 << 3;
    QTest::newRow("4") << 0x04 << 4;
    QTest::newRow("5") << 0x05 << 5;
    QTest::newRow("6") << 0x06 << 6;
    QTest::newRow("7 is not defined and reads as 0") << 0x07 << 0;
    QTest::newRow("the other bits do not count") << 0xfe << 6;
}

void TestBytes::readsSevenStatesFromThreeBits()
{
    QFETCH(int, value);
    QTEST(state3At(quint8(value), 0, 1, 2), "state");
}

void TestBytes::readsNineStatesFromFourBits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("state");
    const int states[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0};
    for (int value = 0; value < 16; ++value)
        QTest::addRow("%d reads as %d", value, states[value]) << value << states[value];
}

void TestBytes::readsNineStatesFromFourBits()
{
    QFETCH(int, value);
    QFETCH(int, state);
    QCOMPARE(state4At(quint8(value), 0, 1, 2, 3), state);
    QCOMPARE(state4At(quint8(value * 0x10), 4, 5, 6, 7), state);
    QCOMPARE(state4At(quint8(value + 0xf0), 0, 1, 2, 3), state);
}

void TestBytes::readsAStateFromBitsInTheOrderGiven()
{
    QCOMPARE(state2At(0x80, 7, 6), 1);
    QCOMPARE(state3At(0x10, 7, 6, 4), 4);
    QCOMPARE(state4At(0x01, 3, 2, 1, 0), 8);
}

QTEST_GUILESS_MAIN(TestBytes)
#include "tst_bytes.moc"
