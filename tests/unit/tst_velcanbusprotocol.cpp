#include "handdrivenprotocol.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

// TP 08 is no category: its frames are acknowledged, and nothing else comes of them.
const QByteArray kPlainFrame = bytes("9f 02 21 08 00 29 9f 03");
const QString kPlainAck = "write 9f0621219f03";

} // namespace

class VelCanBusProtocolTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void acknowledgesWhatItReceives_data();
    void acknowledgesWhatItReceives();
    void decodesFramesTooShortForTheirFields_data();
    void decodesFramesTooShortForTheirFields();
    void decodesAFrameOnceWhereverItIsSplit_data();
    void decodesAFrameOnceWhereverItIsSplit();
    void takesOneFrameInAPass();
    void dropsAFrameWithABadCheckSilently();
    void endsAFrameAtADoubledEscapeBeforeAnEnd();
    void acceptsAFrameThatEndsEarlyIfItsCheckHolds();
    void unescapesBytesBehindAFrame();
    void spoilsAFrameBehindOneWithManyEscapes();
    void discardsABufferOfMoreThan2048Bytes();
    void searchesABufferOf2048Bytes();
    void ignoresAPassWithinAPass();

    void asksAgainOnEveryPassWhileTheEndIsCut();
    void asksAgainWhileADoubledEscapeIsCut();
    void asksAgainForDataFramesOnly_data();
    void asksAgainForDataFramesOnly();
    void asksAgainWithTheIdOfTheLastFrame();
    void asksAgainWithoutAnIdAfterAFailedCheck();
    void asksAgainWithoutAnIdAfterAnAnswer();
    void sendsAnEscapeAsIdUndoubled();

    void answersTheLoopBackTest_data();
    void answersTheLoopBackTest();
    void startsTheLoopBackTestAfreshWithEachChunk();
};

void VelCanBusProtocolTest::acknowledgesWhatItReceives_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("emitted");
    QTest::addColumn<QByteArray>("left");

    QTest::newRow("a frame") << kPlainFrame << QStringList {kPlainAck} << bytes("");
    QTest::newRow("an escape in the data is one byte")
        << bytes("9f 02 21 03 05 9f9f b8 9f 03") << QStringList {"climate 05 9f", kPlainAck} << bytes("");
    QTest::newRow("an escape as check byte")
        << bytes("9f 02 21 03 05 b8 9f9f 9f 03") << QStringList {"climate 05 b8", kPlainAck} << bytes("");
    QTest::newRow("an escape as MOD")
        << bytes("9f 02 21 03 9f9f 01 bc 9f 03") << QStringList {"climate 9f 01", kPlainAck} << bytes("");
    QTest::newRow("an escape as id") << bytes("9f 02 9f9f 08 00 97 9f 03")
                                     << QStringList {"write 9f069f9f9f03"} << bytes("");
    QTest::newRow("two escapes in a row in the data")
        << bytes("9f 02 21 03 05 9f9f 9f9f 27 9f 03") << QStringList {"climate 05 9f9f", kPlainAck}
        << bytes("");
    QTest::newRow("the check byte's value within the data")
        << bytes("9f 02 21 03 05 aa aa 27 27 27 9f 03") << QStringList {"climate 05 aaaa2727", kPlainAck}
        << bytes("");
    QTest::newRow("garbage before the frame goes with it")
        << bytes("00 03 9f 41 9f 03 42 9f 02 21 08 00 29 9f 03") << QStringList {kPlainAck} << bytes("");
    QTest::newRow("the second of two escapes opens the frame")
        << bytes("41 9f 9f 02 21 08 00 29 9f 03") << QStringList {kPlainAck} << bytes("");
    QTest::newRow("bytes behind the frame stay")
        << bytes("9f 02 21 08 00 29 9f 03 41 9f 02") << QStringList {kPlainAck} << bytes("41 9f 02");
    QTest::newRow("an opening mark within a frame spoils it")
        << bytes("9f 02 21 9f 02 21 08 00 29 9f 03") << QStringList {} << bytes("");
    QTest::newRow("a wrong check byte") << bytes("9f 02 21 08 00 28 9f 03") << QStringList {} << bytes("");
    QTest::newRow("no opening mark: the bytes wait")
        << bytes("41 42 9f 03") << QStringList {} << bytes("41 42 9f 03");
    QTest::newRow("no closing mark: the bytes wait")
        << bytes("9f 02 21 08 00 29") << QStringList {} << bytes("9f 02 21 08 00 29");
    QTest::newRow("an empty frame fails its check") << bytes("9f 02 9f 03") << QStringList {} << bytes("");
    QTest::newRow("an answer is not acknowledged")
        << bytes("9f 06 05 05 9f 03") << QStringList {} << bytes("");
    QTest::newRow("a negative answer is not acknowledged")
        << bytes("9f 15 05 05 9f 03") << QStringList {} << bytes("");
    QTest::newRow("an answer with two ids that differ is dropped")
        << bytes("9f 06 00 05 9f 03") << QStringList {} << bytes("");
}

void VelCanBusProtocolTest::acknowledgesWhatItReceives()
{
    QFETCH(QByteArray, received);
    QFETCH(QByteArray, left);

    HandDrivenProtocol protocol;
    const QStringList events = protocol.passOver(received);
    QTEST(events, "emitted");
    QCOMPARE(protocol.buffer()->data.toHex(), left.toHex());
}

void VelCanBusProtocolTest::decodesFramesTooShortForTheirFields_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("emitted");
    QTest::addColumn<QString>("logged");

    // Where the fields have run out, the frame's end is taken for them.
    QTest::newRow("the check byte is the id, the end is TP and MOD")
        << bytes("9f 02 00 9f 03") << QStringList {"write 9f0600009f03"}
        << "id- 00 TP- 9f MOD- 03 DATA-  CS- 0";
    QTest::newRow("the check byte is TP, the end is MOD and data")
        << bytes("9f 02 21 21 9f 03") << QStringList {kPlainAck} << "id- 21 TP- 21 MOD- 9f DATA- 03 CS- 21";
    QTest::newRow("a check byte that names a category is dispatched")
        << bytes("9f 02 03 03 9f 03") << QStringList {"climate 9f 03", "write 9f0603039f03"}
        << "id- 03 TP- 03 MOD- 9f DATA- 03 CS- 3";
    QTest::newRow("the check byte is MOD, the end is data")
        << bytes("9f 02 21 03 22 9f 03") << QStringList {"climate 22 9f03", kPlainAck}
        << "id- 21 TP- 03 MOD- 22 DATA- 9f03 CS- 22";
    QTest::newRow("all fields, without data")
        << bytes("9f 02 21 03 05 27 9f 03") << QStringList {"climate 05 ", kPlainAck}
        << "id- 21 TP- 03 MOD- 05 DATA-  CS- 27";
}

void VelCanBusProtocolTest::decodesFramesTooShortForTheirFields()
{
    QFETCH(QByteArray, received);
    QFETCH(QString, logged);

    HandDrivenProtocol protocol;
    const QStringList events = protocol.passOver(received);
    QTEST(events, "emitted");
    QCOMPARE(protocol.log().messages("[DBG]").filter("id- "), QStringList {logged});
    QCOMPARE(protocol.buffer()->data, QByteArray());
}

void VelCanBusProtocolTest::decodesAFrameOnceWhereverItIsSplit_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<bool>("asksAgain");

    QTest::newRow("after the escape") << bytes("9f") << bytes("02 21 01 00 00 00 20 9f 03") << false;
    QTest::newRow("after the mark") << bytes("9f 02") << bytes("21 01 00 00 00 20 9f 03") << false;
    QTest::newRow("after the id") << bytes("9f 02 21") << bytes("01 00 00 00 20 9f 03") << false;
    QTest::newRow("after TP") << bytes("9f 02 21 01") << bytes("00 00 00 20 9f 03") << false;
    QTest::newRow("after MOD") << bytes("9f 02 21 01 00") << bytes("00 00 20 9f 03") << false;
    QTest::newRow("within the data") << bytes("9f 02 21 01 00 00") << bytes("00 20 9f 03") << false;
    QTest::newRow("after the data") << bytes("9f 02 21 01 00 00 00") << bytes("20 9f 03") << false;
    QTest::newRow("after the check byte") << bytes("9f 02 21 01 00 00 00 20") << bytes("9f 03") << false;
    QTest::newRow("within the end") << bytes("9f 02 21 01 00 00 00 20 9f") << bytes("03") << true;
}

void VelCanBusProtocolTest::decodesAFrameOnceWhereverItIsSplit()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(bool, asksAgain);

    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(first), asksAgain ? QStringList {"write 9f159f03"} : QStringList());
    // A box that is not ready: it is asked to connect, and acknowledged.
    QCOMPARE(protocol.passOver(second), (QStringList {"write 9f022101000000209f03", kPlainAck}));
    QCOMPARE(protocol.passOver(""), QStringList());
}

void VelCanBusProtocolTest::takesOneFrameInAPass()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 02 21 08 00 29 9f 03  9f 02 22 08 00 2a 9f 03")),
             QStringList {kPlainAck});
    QCOMPARE(protocol.buffer()->data.toHex(), bytes("9f 02 22 08 00 2a 9f 03").toHex());
    QCOMPARE(protocol.passOver(""), QStringList {"write 9f0622229f03"});
}

void VelCanBusProtocolTest::dropsAFrameWithABadCheckSilently()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("41 9f 02 21 08 00 28 9f 03") + kPlainFrame), QStringList());
    QCOMPARE(protocol.log().lines().size(), 0);
    QCOMPARE(protocol.buffer()->data.toHex(), kPlainFrame.toHex());
    QCOMPARE(protocol.passOver(""), QStringList {kPlainAck});
}

void VelCanBusProtocolTest::endsAFrameAtADoubledEscapeBeforeAnEnd()
{
    HandDrivenProtocol protocol;
    // The data 9f 03, escaped as it must be: the frame ends within them, and its check fails.
    QCOMPARE(protocol.passOver(bytes("9f 02 21 08 00 9f9f 03 b5 9f 03")), QStringList());
    QCOMPARE(protocol.buffer()->data.toHex(), bytes("b5 9f 03").toHex());
    // What is left of it opens no frame, and goes with the next.
    QCOMPARE(protocol.passOver(""), QStringList());
    QCOMPARE(protocol.passOver(kPlainFrame), QStringList {kPlainAck});
    QCOMPARE(protocol.buffer()->data, QByteArray());
}

void VelCanBusProtocolTest::acceptsAFrameThatEndsEarlyIfItsCheckHolds()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 02 21 03 05 07 20 9f9f 03 77 9f 03")),
             (QStringList {"climate 05 07", kPlainAck}));
    QCOMPARE(protocol.buffer()->data.toHex(), bytes("77 9f 03").toHex());
}

void VelCanBusProtocolTest::unescapesBytesBehindAFrame()
{
    HandDrivenProtocol protocol;
    // One escape in the frame: one place behind it is looked at.
    QCOMPARE(protocol.passOver(bytes("9f 02 21 03 05 9f9f b8 9f 03 9f9f 9f9f 41")),
             (QStringList {"climate 05 9f", kPlainAck}));
    QCOMPARE(protocol.buffer()->data.toHex(), bytes("9f 9f9f 41").toHex());
}

void VelCanBusProtocolTest::spoilsAFrameBehindOneWithManyEscapes()
{
    const QByteArray second = bytes("9f 02 9f9f 9f9f 04 04 9f 03");
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(second), QStringList {"write 9f069f9f9f03"});

    // Four escapes in the first: four places behind it are looked at, and two bytes of the second go.
    QCOMPARE(protocol.passOver(bytes("9f 02 21 08 00 9f9f 9f9f 9f9f 9f9f 29 9f 03") + second),
             QStringList {kPlainAck});
    QCOMPARE(protocol.buffer()->data.toHex(), bytes("9f 02 9f9f 04 04 9f 03").toHex());
    QCOMPARE(protocol.passOver(""), QStringList());
    QCOMPARE(protocol.buffer()->data, QByteArray());
}

void VelCanBusProtocolTest::discardsABufferOfMoreThan2048Bytes()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(QByteArray(2041, 'A') + kPlainFrame), QStringList());
    QCOMPARE(protocol.buffer()->data, QByteArray());
    QCOMPARE(protocol.log().lines().size(), 0);
}

void VelCanBusProtocolTest::searchesABufferOf2048Bytes()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(QByteArray(2048, 'A')), QStringList());
    QCOMPARE(protocol.buffer()->data, QByteArray(2048, 'A'));

    protocol.buffer()->data = QByteArray(2040, 'A');
    QCOMPARE(protocol.passOver(kPlainFrame), QStringList {kPlainAck});
    QCOMPARE(protocol.buffer()->data, QByteArray());
}

void VelCanBusProtocolTest::ignoresAPassWithinAPass()
{
    HandDrivenProtocol protocol;
    connect(protocol.get(), &CanbusProtocol::notifyClimateInfo, protocol.get(), [&] { protocol.pass(); });
    QCOMPARE(protocol.passOver(bytes("9f 02 21 03 05 27 9f 03") + kPlainFrame),
             (QStringList {"climate 05 ", kPlainAck}));
    QCOMPARE(protocol.passOver(""), QStringList {kPlainAck});
}

void VelCanBusProtocolTest::asksAgainOnEveryPassWhileTheEndIsCut()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 02 21 08 00 29 9f")), QStringList {"write 9f159f03"});
    QCOMPARE(protocol.passOver(""), QStringList {"write 9f159f03"});
    QCOMPARE(protocol.passOver(""), QStringList {"write 9f159f03"});
    QCOMPARE(protocol.passOver(bytes("03")), QStringList {kPlainAck});
    QCOMPARE(protocol.passOver(""), QStringList());
}

void VelCanBusProtocolTest::asksAgainWhileADoubledEscapeIsCut()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 02 21 03 05 9f")), QStringList {"write 9f159f03"});
    QCOMPARE(protocol.passOver(bytes("9f")), QStringList {"write 9f159f03"});
    QCOMPARE(protocol.passOver(bytes("b8")), QStringList());
    QCOMPARE(protocol.passOver(bytes("9f 03")), (QStringList {"climate 05 9f", kPlainAck}));
}

void VelCanBusProtocolTest::asksAgainForDataFramesOnly_data()
{
    QTest::addColumn<QByteArray>("received");

    QTest::newRow("an acknowledgement") << bytes("9f 06 05 05 9f");
    QTest::newRow("a negative acknowledgement") << bytes("9f 15 05 05 9f");
    QTest::newRow("no opening mark") << bytes("41 9f");
    QTest::newRow("an escape that may open a frame") << bytes("9f");
    QTest::newRow("a data frame that waits for more than its 03") << bytes("9f 02 21 08 00 29");
}

void VelCanBusProtocolTest::asksAgainForDataFramesOnly()
{
    QFETCH(QByteArray, received);

    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(received), QStringList());
    QCOMPARE(protocol.buffer()->data.toHex(), received.toHex());
}

void VelCanBusProtocolTest::asksAgainWithTheIdOfTheLastFrame()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kPlainFrame);
    QCOMPARE(protocol.passOver(bytes("9f 02 33 08 00 3b 9f")), QStringList {"write 9f1521219f03"});
    QCOMPARE(protocol.passOver(bytes("03")), QStringList {"write 9f0633339f03"});
    QCOMPARE(protocol.passOver(bytes("9f 02 44 9f")), QStringList {"write 9f1533339f03"});
}

void VelCanBusProtocolTest::asksAgainWithoutAnIdAfterAFailedCheck()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kPlainFrame);
    protocol.passOver(bytes("9f 02 22 08 00 00 9f 03"));
    QCOMPARE(protocol.passOver(bytes("9f 02 33 9f")), QStringList {"write 9f159f03"});
}

void VelCanBusProtocolTest::asksAgainWithoutAnIdAfterAnAnswer()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kPlainFrame);
    protocol.passOver(bytes("9f 06 05 05 9f 03"));
    QCOMPARE(protocol.passOver(bytes("9f 02 33 9f")), QStringList {"write 9f159f03"});
}

void VelCanBusProtocolTest::sendsAnEscapeAsIdUndoubled()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(bytes("9f 02 9f9f 08 00 97 9f 03")), QStringList {"write 9f069f9f9f03"});
    QCOMPARE(protocol.passOver(bytes("9f 02 33 9f")), QStringList {"write 9f159f9f9f03"});
}

void VelCanBusProtocolTest::answersTheLoopBackTest_data()
{
    QTest::addColumn<QByteArray>("heard");
    QTest::addColumn<bool>("answered");

    QTest::newRow("the whole text") << QByteArray("121314151617") << true;
    QTest::newRow("its first byte") << QByteArray("1") << true;
    QTest::newRow("its first two bytes") << QByteArray("12") << true;
    QTest::newRow("all but its last byte") << QByteArray("12131415161") << true;
    QTest::newRow("a difference after the first byte") << QByteArray("13") << true;
    QTest::newRow("a difference in the last byte") << QByteArray("121314151618") << true;
    QTest::newRow("a difference in the last byte of a longer text") << QByteArray("1213141516189") << true;
    QTest::newRow("a difference after the first byte of a longer text")
        << QByteArray("19131415161718") << true;
    QTest::newRow("the whole text and a byte more") << QByteArray("1213141516171") << false;
    QTest::newRow("the whole text and a zero byte")
        << bytes("31 32 31 33 31 34 31 35 31 36 31 37 00") << false;
    QTest::newRow("the whole text twice") << QByteArray("121314151617121314151617") << false;
    QTest::newRow("another first byte") << QByteArray("2") << false;
    QTest::newRow("the text behind another byte") << QByteArray("0121314151617") << false;
    QTest::newRow("the number instead of the digit") << bytes("01 02") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void VelCanBusProtocolTest::answersTheLoopBackTest()
{
    QFETCH(QByteArray, heard);
    QFETCH(bool, answered);

    HandDrivenProtocol protocol;
    protocol->analyseData(heard);
    // "716151413121"
    QCOMPARE(protocol.takeEvents(),
             answered ? QStringList {"write 373136313531343133313231"} : QStringList());
}

void VelCanBusProtocolTest::startsTheLoopBackTestAfreshWithEachChunk()
{
    const QStringList answer {"write 373136313531343133313231"};
    HandDrivenProtocol protocol;
    protocol->analyseData("12");
    QCOMPARE(protocol.takeEvents(), answer);
    protocol->analyseData("1314");
    QCOMPARE(protocol.takeEvents(), answer);
    protocol->analyseData("2");
    QCOMPARE(protocol.takeEvents(), QStringList());
    protocol->analyseData("1");
    QCOMPARE(protocol.takeEvents(), answer);
    protocol->analyseData("1213141516171");
    QCOMPARE(protocol.takeEvents(), QStringList());
    protocol->analyseData("1");
    QCOMPARE(protocol.takeEvents(), answer);
    protocol->TestSerialPort();
    QCOMPARE(protocol.takeEvents(), QStringList());
}

QTEST_GUILESS_MAIN(VelCanBusProtocolTest)
#include "tst_velcanbusprotocol.moc"
