#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "receivepath.h"
#include "support/bytes.h"
#include "support/text.h"

#include <QtTest/QTest>

#include <limits>

using namespace canbus;

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr int kIndices[] = {kLowest, kLowest + 2, -7,   -1,           0,       1, 2, 3, 4, 8, 9,
                            10,      11,          4096, kHighest - 1, kHighest};

const QByteArray kBuffers[] = {
    bytes(""),
    bytes("9f"),
    bytes("9f 03"),
    bytes("9f 9f 9f 9f 9f 9f 9f 9f"),
    bytes("9f 02 9f9f 9f9f 9f9f 9f 03"),
    bytes("9f 06 9f9f 9f9f 9f 03"),
    QByteArray(10, '\0'),
    QByteArray(10, '\x7f'),
    QByteArray(10, '\x80'),
    QByteArray(10, '\xff'),
};

} // namespace

/// The operations that take indices are open to everybody, so every index is met. What is read outside of an
/// array is the sanitizers' to find; here is what comes of it.
class ReceivePathIndicesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void checksNoFrameOutsideOfTheBuffer();
    void unescapesInsideOfTheBuffer();
    void findsNoEndOutsideOfTheBuffer();
    void takesTheBytesThatExist_data();
    void takesTheBytesThatExist();
    void meetsEveryIndexAsAStepOfAPass();
    void readsBytesOutsideAsZero();
    void readsTextOutsideAsEmpty();
    void acknowledgesAFrameOfEscapesAlone();
};

void ReceivePathIndicesTest::checksNoFrameOutsideOfTheBuffer()
{
    for (const QByteArray &buffer : kBuffers) {
        for (const int start : kIndices) {
            for (const int end : kIndices) {
                const bool isInside = start >= 0 && end >= 3 && end <= buffer.size() && buffer.size() >= 4;
                const receive::Check check = receive::checkFrame(buffer, start, end);
                QVERIFY(isInside || !check.holds);
                QVERIFY(isInside || check.computed == 0);
            }
        }
    }
}

void ReceivePathIndicesTest::unescapesInsideOfTheBuffer()
{
    for (const QByteArray &original : kBuffers) {
        for (const int start : kIndices) {
            for (const int end : kIndices) {
                QByteArray buffer = original;
                receive::unescape(buffer, start, end);
                QVERIFY(buffer.size() <= original.size());
                QVERIFY(buffer.size() >= original.size() / 2);
                if (start < 0 || start >= end)
                    QCOMPARE(buffer, original);
            }
        }
    }
}

void ReceivePathIndicesTest::findsNoEndOutsideOfTheBuffer()
{
    for (const QByteArray &buffer : kBuffers) {
        for (const int start : kIndices) {
            const receive::End end = receive::findEnd(buffer, start);
            QVERIFY(end.index == -1 || (end.index >= start + 2 && end.index <= buffer.size()));
            QVERIFY(start < buffer.size() || end.index == -1);
        }
    }
}

void ReceivePathIndicesTest::takesTheBytesThatExist_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QByteArray>("id"); // what a frame of these bytes begins with; none where there are none

    QTest::newRow("a frame") << 2 << 10 << bytes("21");
    QTest::newRow("an end behind the buffer") << 2 << kHighest << bytes("21");
    QTest::newRow("a start before the buffer") << -1 << 10 << bytes("9f");
    QTest::newRow("the lowest start and the highest end") << kLowest << kHighest << bytes("9f");
    QTest::newRow("an end before the start") << 9 << 2 << QByteArray();
    QTest::newRow("the lowest end") << 2 << kLowest << QByteArray();
    QTest::newRow("a start behind the buffer") << kHighest << 10 << QByteArray();
}

void ReceivePathIndicesTest::takesTheBytesThatExist()
{
    QFETCH(int, start);
    QFETCH(int, end);
    QFETCH(QByteArray, id);

    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 08 00 00 00 29 9f 03"));
    protocol->onProcessingFrameData(start, end);
    protocol->onReceiveSaveData();
    const QStringList acknowledged {"write 9f06" + QString::fromLatin1((id + id).toHex()) + "9f03"};
    QCOMPARE(protocol.takeEvents().filter("write"), id.isEmpty() ? QStringList() : acknowledged);
}

void ReceivePathIndicesTest::meetsEveryIndexAsAStepOfAPass()
{
    HandDrivenProtocol protocol;
    for (const QByteArray &buffer : kBuffers) {
        for (const int start : kIndices) {
            for (const int end : kIndices) {
                HandDrivenProtocol::buffer()->data = buffer;
                protocol->onSearchDLE_ETX(start);
                protocol->onRemoveEscapeFrameHeaders(start, end);
                protocol->checkXOR(start, end);
                protocol->onProcessingFrameData(start, end);
                protocol->onCategoryDataProcessing();
            }
        }
    }
    HandDrivenProtocol::buffer()->data.clear();
    protocol.takeEvents();
    QCOMPARE(protocol.passOver(bytes("9f 02 21 08 00 29 9f 03")), QStringList {"write 9f0621219f03"});
}

void ReceivePathIndicesTest::readsBytesOutsideAsZero()
{
    const QByteArray data = bytes("9f ff 80");
    for (const int index : kIndices) {
        const bool isInside = index >= 0 && index < 3;
        QVERIFY(isInside || byteAt(data, index) == 0);
        QVERIFY(!bitAt(0xff, index) || (index >= 0 && index < 8));
    }
    QCOMPARE(bigEndian16At(data, 0), 0x9fff);
    QCOMPARE(bigEndian16At(data, 2), 0x8000);
    QCOMPARE(bigEndian16At(data, 3), 0);
}

void ReceivePathIndicesTest::readsTextOutsideAsEmpty()
{
    const QByteArray data = bytes("41 42 00");
    for (const int index : kIndices) {
        if (index < 0 || index >= 2)
            QCOMPARE(textUpToZero(data, index), QString());
    }
    QCOMPARE(textUpToZero(data, 1), QString("B"));
}

void ReceivePathIndicesTest::acknowledgesAFrameOfEscapesAlone()
{
    HandDrivenProtocol protocol;
    // Id, TP, MOD and the data's one byte are 9F, and so is none of the check byte's.
    QCOMPARE(protocol.passOver(bytes("9f 02 9f9f 9f9f 9f9f 9f9f 00 9f 03")),
             QStringList {"write 9f069f9f9f03"});
    // Without data the check byte is 9F too.
    QCOMPARE(protocol.passOver(bytes("9f 02 9f9f 9f9f 9f9f 9f9f 9f 03")), QStringList {"write 9f069f9f9f03"});
    // Everything is 0.
    QCOMPARE(protocol.passOver(bytes("9f 02 00 00 00 00 00 9f 03")), QStringList {"write 9f0600009f03"});
}

QTEST_GUILESS_MAIN(ReceivePathIndicesTest)
#include "tst_receivepath_indices.moc"
