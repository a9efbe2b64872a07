#include "handdrivenprotocol.h"
#include "hexbytes.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace canbus;

class VelCanBusProtocolStepsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void searchesTheBuffer();
    void searchesTheEndOfADataFrameOnly();
    void forgetsTheMarkWithEachSearch();
    void removesEscapesInTheBuffer();
    void comparesTheCheckByte();
    void takesTheFrameOutOfTheBuffersData();
    void keepsTheFrameThatItHasWithoutAnEnd();
    void takesNothingFromAnEndBeforeItsStart();
    void preparesNoAnswerForAnEmptyFrame();
    void removesOneByte();
    void logsThatAByteIsMissing();
    void allocatesNothingWithoutAFrame();

    void logsTheKindOfFrame_data();
    void logsTheKindOfFrame();
    void logsAnErrorWithoutAKind();
    void logsTheFieldsOfAFrame();
    void clearsAFrame();
    void logsInTheCommonForm();
};

void VelCanBusProtocolStepsTest::searchesTheBuffer()
{
    HandDrivenProtocol protocol;
    QCOMPARE(protocol->onSearchDLE(), -1);
    QCOMPARE(protocol->onSearchDLE_ETX(-1), -1);
    protocol.arrive(bytes("41 9f 02 21 08 00 29 9f 03"));
    QCOMPARE(protocol->onSearchDLE(), 3);
    QCOMPARE(protocol->onSearchDLE_ETX(3), 9);
    QCOMPARE(protocol->onSearchDLE_ETX(8), -1);
    QCOMPARE(protocol->onSearchDLE_ETX(-1), -1);
    QCOMPARE(protocol.takeEvents(), QStringList());
}

void VelCanBusProtocolStepsTest::searchesTheEndOfADataFrameOnly()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 9f"));
    // Without a search for the start nothing is known of a data frame.
    QCOMPARE(protocol->onSearchDLE_ETX(2), -1);
    QCOMPARE(protocol.takeEvents(), QStringList());
    QCOMPARE(protocol->onSearchDLE(), 2);
    QCOMPARE(protocol->onSearchDLE_ETX(2), -1);
    QCOMPARE(protocol.takeEvents(), QStringList {"write 9f159f03"});
    QCOMPARE(protocol->onSearchDLE_ETX(-1), -1);
    QCOMPARE(protocol.takeEvents(), QStringList());
}

void VelCanBusProtocolStepsTest::forgetsTheMarkWithEachSearch()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 9f"));
    protocol->onSearchDLE();
    protocol.buffer()->data = bytes("41 42 43 9f");
    QCOMPARE(protocol->onSearchDLE(), -1);
    QCOMPARE(protocol->onSearchDLE_ETX(0), -1);
    QCOMPARE(protocol.takeEvents(), QStringList());
}

void VelCanBusProtocolStepsTest::removesEscapesInTheBuffer()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 9f9f 9f9f 01 9f 03"));
    protocol->onRemoveEscapeFrameHeaders(2, 9);
    QCOMPARE(protocol.buffer()->data.toHex(), bytes("9f 02 9f 9f 01 9f 03").toHex());
}

void VelCanBusProtocolStepsTest::comparesTheCheckByte()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 08 00 29 9f 03"));
    QVERIFY(protocol->checkXOR(2, 8));
    protocol.buffer()->data[5] = char(0x28);
    QVERIFY(!protocol->checkXOR(2, 8));
    protocol.buffer()->data = bytes("00 9f 03");
    QVERIFY(!protocol->checkXOR(0, 3));
}

void VelCanBusProtocolStepsTest::takesTheFrameOutOfTheBuffersData()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 03 05 07 20 9f 03 41"));
    protocol->onSearchDLE();
    QVERIFY(protocol->checkXOR(2, 9));
    protocol->onProcessingFrameData(2, 9);
    QCOMPARE(protocol.buffer()->data.size(), 10);
    protocol->onCategoryDataProcessing();
    QCOMPARE(protocol.takeEvents(), (QStringList {"climate 05 07", "write 9f0621219f03"}));
}

void VelCanBusProtocolStepsTest::keepsTheFrameThatItHasWithoutAnEnd()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 03 05 07 20 9f 03"));
    protocol->onSearchDLE();
    protocol->checkXOR(2, 9);
    protocol->onProcessingFrameData(2, 9);
    protocol->onProcessingFrameData(0, -1);
    protocol->onReceiveSaveData();
    QCOMPARE(protocol.takeEvents(), (QStringList {"climate 05 07", "write 9f0621219f03"}));
}

void VelCanBusProtocolStepsTest::takesNothingFromAnEndBeforeItsStart()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("9f 02 21 03 05 07 20 9f 03"));
    protocol->onSearchDLE();
    protocol->checkXOR(2, 9);
    protocol->onProcessingFrameData(9, 2);
    protocol->onReceiveSaveData();
    QCOMPARE(protocol.takeEvents(), QStringList());
}

void VelCanBusProtocolStepsTest::preparesNoAnswerForAnEmptyFrame()
{
    HandDrivenProtocol protocol;
    protocol->onReceiveSaveData();
    protocol->onReceiveSaveACKData();
    protocol->onReceiveSaveNACKData();
    QCOMPARE(protocol.takeEvents(), QStringList());
    QCOMPARE(protocol.log().lines().size(), 0);
}

void VelCanBusProtocolStepsTest::removesOneByte()
{
    HandDrivenProtocol protocol;
    QByteArray data = bytes("9f 9f 01");
    protocol->removeData1Bit(data);
    QCOMPARE(data.toHex(), bytes("9f 01").toHex());
    QCOMPARE(protocol.log().lines().size(), 0);
}

void VelCanBusProtocolStepsTest::logsThatAByteIsMissing()
{
    HandDrivenProtocol protocol;
    QByteArray data;
    protocol->removeData1Bit(data);
    QCOMPARE(data, QByteArray());
    QCOMPARE(protocol.log().messages("[DBG]"), QStringList {"Insufficient data length, removal failed."});

    // A frame of its id alone: TP and MOD are missing.
    protocol.log().clear();
    protocol.arrive(bytes("21"));
    protocol->onProcessingFrameData(0, 1);
    protocol->onReceiveSaveData();
    QCOMPARE(protocol.log().count("[DBG]", "Insufficient data length, removal failed."), 2);
    QVERIFY(protocol.log().contains("[DBG]", "id- 21 TP-  MOD-  DATA-  CS- 0"));
    QCOMPARE(protocol.takeEvents(), QStringList {"write 9f0621219f03"});
}

void VelCanBusProtocolStepsTest::allocatesNothingWithoutAFrame()
{
    HandDrivenProtocol protocol;
    protocol->onAllocateData();
    QCOMPARE(protocol.takeEvents(), QStringList());
    protocol->receiveModuleAck();
    protocol->receiveModuleNAck();
    QCOMPARE(protocol.takeEvents(), (QStringList {"write 9f069f03", "write 9f159f03"}));
}

void VelCanBusProtocolStepsTest::logsTheKindOfFrame_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("data") << bytes("9f 02 fe 08 00 f6 9f 03")
                          << QStringList {"is DLE STX", "id- fe TP- 08 MOD- 00 DATA-  CS- f6"};
    QTest::newRow("acknowledgement") << bytes("9f 06 fe fe 9f 03")
                                     << QStringList {"is DLE ACK", "ack id--- fe 0"};
    QTest::newRow("negative acknowledgement")
        << bytes("9f 15 fe fe 9f 03") << QStringList {"is DLE NACK", "nack id--- fe 0"};
}

void VelCanBusProtocolStepsTest::logsTheKindOfFrame()
{
    QFETCH(QByteArray, received);

    HandDrivenProtocol protocol;
    protocol.passOver(received);
    const QStringList logged = protocol.log().messages("[DBG]");
    QTEST(logged, "lines");
}

void VelCanBusProtocolStepsTest::logsAnErrorWithoutAKind()
{
    HandDrivenProtocol protocol;
    protocol.arrive(bytes("41 42 43 44 9f 03"));
    QCOMPARE(protocol->onSearchDLE(), -1);
    protocol->onProcessingFrameData(0, 6);
    protocol->onCategoryDataProcessing();
    QCOMPARE(protocol.log().messages("[ERR]"), QStringList {"Error parsing data"});

    // The frame's bytes are gone.
    protocol->onReceiveSaveData();
    QCOMPARE(protocol.takeEvents(), QStringList());
}

void VelCanBusProtocolStepsTest::logsTheFieldsOfAFrame()
{
    HandDrivenProtocol protocol;
    FrameDataFormat frame;
    frame.id = bytes("0a");
    frame.TP = bytes("03");
    frame.MOD = bytes("9f");
    frame.DATA = bytes("00 ff 10");
    frame.CS = 0x0b;
    frame.LogFrameData();
    QCOMPARE(protocol.log().messages("[DBG]"), QStringList {"id- 0a TP- 03 MOD- 9f DATA- 00ff10 CS- b"});
    QVERIFY(protocol.log().lines().first().text.contains("FrameDataFormat::LogFrameData"));
}

void VelCanBusProtocolStepsTest::clearsAFrame()
{
    FrameDataFormat frame;
    QCOMPARE(int(frame.CS), 0);
    frame.id = frame.TP = frame.MOD = frame.DATA = bytes("01");
    frame.CS = 1;
    frame.clear();
    QVERIFY(frame.id.isEmpty() && frame.TP.isEmpty() && frame.MOD.isEmpty() && frame.DATA.isEmpty());
    QCOMPARE(int(frame.CS), 0);
}

void VelCanBusProtocolStepsTest::logsInTheCommonForm()
{
    HandDrivenProtocol protocol;
    protocol.passOver(bytes("9f 06 05 05 9f 03"));
    const LogLine line = protocol.log().lines().first();
    QCOMPARE(line.type, QtDebugMsg);
    QCOMPARE(line.category, QString("default"));
    const QRegularExpression form(
        "^\\[DBG\\] \\d+ void canbus::VelCanBusProtocol::onCategoryDataProcessing\\(\\) "
        "\\d+ -- is DLE ACK$");
    QVERIFY2(form.match(line.text).hasMatch(), qPrintable(line.text));
}

QTEST_GUILESS_MAIN(VelCanBusProtocolStepsTest)
#include "tst_velcanbusprotocol_steps.moc"
