#include "frameformat.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

class FrameFormatTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void doublesNoByteButTheEscape_data();
    void doublesNoByteButTheEscape();
    void buildsADataFrame_data();
    void buildsADataFrame();
    void computesTheCheckByteOverUnescapedBytes();
    void writesPlainBytesOnce();
    void buildsAnAnswer_data();
    void buildsAnAnswer();
};

void FrameFormatTest::doublesNoByteButTheEscape_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QByteArray>("appended");

    QTest::newRow("the escape goes twice") << 0x9f << bytes("9f 9f");
    QTest::newRow("the byte below the escape goes once") << 0x9e << bytes("9e");
    QTest::newRow("the byte above the escape goes once") << 0xa0 << bytes("a0");
    QTest::newRow("the opening mark's second byte goes once") << 0x02 << bytes("02");
    QTest::newRow("the closing mark's second byte goes once") << 0x03 << bytes("03");
    QTest::newRow("zero goes once") << 0x00 << bytes("00");
    QTest::newRow("the escape without its high bit goes once") << 0x1f << bytes("1f");
}

void FrameFormatTest::doublesNoByteButTheEscape()
{
    QFETCH(int, byte);
    QFETCH(QByteArray, appended);

    QByteArray frame = bytes("aa");
    frame::appendEscaped(frame, quint8(byte));
    QCOMPARE(frame.toHex(), (bytes("aa") + appended).toHex());
}

void FrameFormatTest::buildsADataFrame_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("the connect request")
        << bytes("21 01 00") << bytes("00 00") << bytes("9f 02 21 01 00 00 00 20 9f 03");
    QTest::newRow("no data") << bytes("21 03 00") << bytes("") << bytes("9f 02 21 03 00 22 9f 03");
    QTest::newRow("an escape as id") << bytes("9f 01 00") << bytes("05")
                                     << bytes("9f 02 9f9f 01 00 05 9b 9f 03");
    QTest::newRow("an escape as TP") << bytes("21 9f 00") << bytes("") << bytes("9f 02 21 9f9f 00 be 9f 03");
    QTest::newRow("an escape as MOD") << bytes("21 01 9f") << bytes("") << bytes("9f 02 21 01 9f9f bf 9f 03");
    QTest::newRow("an escape in the data")
        << bytes("21 03 00") << bytes("9f") << bytes("9f 02 21 03 00 9f9f bd 9f 03");
    QTest::newRow("two escapes in the data")
        << bytes("21 03 00") << bytes("9f 9f") << bytes("9f 02 21 03 00 9f9f 9f9f 22 9f 03");
    QTest::newRow("an escape as check byte")
        << bytes("21 03 00") << bytes("bd") << bytes("9f 02 21 03 00 bd 9f9f 9f 03");
    QTest::newRow("an escape everywhere but in the check byte")
        << bytes("9f 9f 9f") << bytes("9f") << bytes("9f 02 9f9f 9f9f 9f9f 9f9f 00 9f 03");
    QTest::newRow("a closing mark's bytes in the data")
        << bytes("21 03 00") << bytes("9f 03") << bytes("9f 02 21 03 00 9f9f 03 be 9f 03");
    QTest::newRow("bytes with the high bit set")
        << bytes("ff fe 80") << bytes("c0") << bytes("9f 02 ff fe 80 c0 41 9f 03");
}

void FrameFormatTest::buildsADataFrame()
{
    QFETCH(QByteArray, fields);
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, frame);

    const QByteArray built = frame::build(quint8(fields[0]), quint8(fields[1]), quint8(fields[2]), data);
    QCOMPARE(built.toHex(), frame.toHex());
}

void FrameFormatTest::computesTheCheckByteOverUnescapedBytes()
{
    frame::FrameWriter writer(0x9f);
    QCOMPARE(int(writer.checkByte()), 0x9f);
    writer.escaped(0x9f);
    QCOMPARE(int(writer.checkByte()), 0x00);
    writer.escaped(bytes("01 9f"));
    QCOMPARE(int(writer.checkByte()), 0x9e);
    writer.plain(0x9f);
    QCOMPARE(int(writer.checkByte()), 0x01);
}

void FrameFormatTest::writesPlainBytesOnce()
{
    const QByteArray built = frame::FrameWriter(0x21).escaped(0x01).plain(0x9f).finish();
    QCOMPARE(built.toHex(), bytes("9f 02 21 01 9f bf 9f 03").toHex());
}

void FrameFormatTest::buildsAnAnswer_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("answer");

    QTest::newRow("an acknowledgement repeats the id") << 0x06 << bytes("05") << bytes("9f 06 05 05 9f 03");
    QTest::newRow("so does a negative one") << 0x15 << bytes("05") << bytes("9f 15 05 05 9f 03");
    QTest::newRow("an id that is an escape is not doubled")
        << 0x06 << bytes("9f") << bytes("9f 06 9f 9f 9f 03");
    QTest::newRow("an unknown id is left out") << 0x15 << bytes("") << bytes("9f 15 9f 03");
}

void FrameFormatTest::buildsAnAnswer()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, answer);

    QCOMPARE(frame::buildAnswer(quint8(kind), id).toHex(), answer.toHex());
}

QTEST_GUILESS_MAIN(FrameFormatTest)
#include "tst_frameformat.moc"
