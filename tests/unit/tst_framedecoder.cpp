#include "framedecoder.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

/// How the bytes of a data frame, from its id on, become the fields of a frame.
class FrameDecoderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesTheFields_data();
    void takesTheFields();
    void leavesTheFieldsThatTheBytesDoNotReach();
    void appendsThePayloadInTheStorageOfAFrameThatIsAlone();
    void leavesAPayloadThatWasGivenAwayAsItIs();
};

void FrameDecoderTest::takesTheFields_data()
{
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<int>("checkByte");
    QTest::addColumn<QByteArrayList>("fields"); // id, TP, MOD, DATA
    QTest::addColumn<QByteArray>("left");

    const auto row = [](const char *name, const char *rest, int checkByte, const QByteArrayList &fields,
                        const char *left) {
        QTest::newRow(name) << bytes(rest) << checkByte << fields << bytes(left);
    };
    row("a payload", "21 03 05 01 02 24 9f 03", 0x24, {"21", "03", "05", "0102"}, "24 9f 03");
    row("no payload", "21 03 05 27 9f 03", 0x27, {"21", "03", "05", ""}, "27 9f 03");
    row("another check byte belongs to the payload", "21 03 05 01 24 9f 03", 0x25,
        {"21", "03", "05", "01249f03"}, "");
    row("no closing mark", "21 03 05 01 02 24", 0x24, {"21", "03", "05", "010224"}, "");
    row("an id and a TP", "21 03", 0x22, {"21", "03", "", ""}, "");
    row("an id", "9f", 0x9f, {"9f", "", "", ""}, "");
    row("nothing", "", 0, {"", "", "", ""}, "");
    row("fields that look like an end", "24 9f 03", 0x24, {"24", "9f", "03", ""}, "");
}

void FrameDecoderTest::takesTheFields()
{
    QFETCH(QByteArray, rest);
    QFETCH(int, checkByte);
    FrameDataFormat frame;
    frame.CS = quint8(checkByte);
    receive::decode(rest, frame);
    QTEST((QByteArrayList {frame.id.toHex(), frame.TP.toHex(), frame.MOD.toHex(), frame.DATA.toHex()}),
          "fields");
    QTEST(rest, "left");
}

void FrameDecoderTest::leavesTheFieldsThatTheBytesDoNotReach()
{
    FrameDataFormat frame;
    frame.TP = bytes("03");
    frame.MOD = bytes("05");
    frame.DATA = bytes("aa bb");
    QByteArray rest = bytes("21");
    receive::decode(rest, frame);
    QCOMPARE(frame.id, bytes("21"));
    QCOMPARE(frame.TP, bytes("03"));
    QCOMPARE(frame.MOD, bytes("05"));
    QCOMPARE(frame.DATA, bytes("aa bb"));
}

void FrameDecoderTest::appendsThePayloadInTheStorageOfAFrameThatIsAlone()
{
    FrameDataFormat frame;
    frame.DATA.reserve(64);
    frame.DATA.append('\xaa');
    const char *const storage = frame.DATA.constData();
    frame.CS = 0x24;
    QByteArray rest = bytes("21 03 05 01 02 24 9f 03");
    receive::decode(rest, frame);
    QCOMPARE(frame.DATA, bytes("aa 01 02"));
    QVERIFY(frame.DATA.constData() == storage);
}

void FrameDecoderTest::leavesAPayloadThatWasGivenAwayAsItIs()
{
    FrameDataFormat frame;
    frame.DATA = bytes("aa");
    const QByteArray given = frame.DATA;
    frame.CS = 0x24;
    QByteArray rest = bytes("21 03 05 01 02 24 9f 03");
    receive::decode(rest, frame);
    QCOMPARE(given, bytes("aa"));
    QCOMPARE(frame.DATA, bytes("aa 01 02"));
}

QTEST_GUILESS_MAIN(FrameDecoderTest)
#include "tst_framedecoder.moc"
