#include "handdrivenprotocol.h"
#include "hexbytes.h"

#include "canbusdatamap.h"

#include <QtTest/QTest>

using ParseOperation = void (canbus::VelCanBusProtocol::*)(canbus::FrameDataFormat *);
Q_DECLARE_METATYPE(ParseOperation)

using namespace canbus;

namespace {

QStringList recordOf(unsigned char category)
{
    QStringList fields;
    const QList<QVariant> record = CanBusDataMap::instance()->getData(category);
    for (const QVariant &field : record)
        fields += QString::fromLatin1(field.toByteArray().toHex());
    return fields;
}

} // namespace

class CategoryDispatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First: no category has a record yet.
    void keepsNoRecordOfAnUnknownCategory_data();
    void keepsNoRecordOfAnUnknownCategory();
    void storesAndEmitsEachCategory_data();
    void storesAndEmitsEachCategory();
    void parsesAFrameThatItIsGiven_data();
    void parsesAFrameThatItIsGiven();
    void replacesTheRecord();
    void storesBeforeItEmits_data();
    void storesBeforeItEmits();
    void acknowledgesBehindTheSignal();

    void reactsToTheBoxesVersion_data();
    void reactsToTheBoxesVersion();
};

void CategoryDispatchTest::keepsNoRecordOfAnUnknownCategory_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("category");

    QTest::newRow("00") << bytes("9f 02 21 00 05 24 9f 03") << 0x00;
    QTest::newRow("08") << bytes("9f 02 21 08 05 2c 9f 03") << 0x08;
    QTest::newRow("10") << bytes("9f 02 21 10 05 34 9f 03") << 0x10;
    QTest::newRow("12") << bytes("9f 02 21 12 05 36 9f 03") << 0x12;
    QTest::newRow("83") << bytes("9f 02 21 83 05 a7 9f 03") << 0x83;
    QTest::newRow("9f") << bytes("9f 02 21 9f9f 05 bb 9f 03") << 0x9f;
}

void CategoryDispatchTest::keepsNoRecordOfAnUnknownCategory()
{
    QFETCH(QByteArray, received);
    QFETCH(int, category);

    HandDrivenProtocol protocol;
    QCOMPARE(protocol.passOver(received), QStringList {"write 9f0621219f03"});
    QVERIFY(!CanBusDataMap::instance()->isHasData(quint8(category)));
    for (const int known : {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x11})
        QVERIFY(!CanBusDataMap::instance()->isHasData(quint8(known)));
}

void CategoryDispatchTest::storesAndEmitsEachCategory_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("emitted");
    QTest::addColumn<int>("category");
    QTest::addColumn<QStringList>("record");
    QTest::addColumn<QString>("logged");

    QTest::newRow("version") << bytes("9f 02 31 01 05 07 02 30 9f 03") << QStringList {"write 9f0631319f03"}
                             << 0x01 << QStringList {"31", "0702"} << "0702";
    QTest::newRow("screens info") << bytes("9f 02 32 02 05 1f 2a 9f 03")
                                  << QStringList {"screens 1f", "write 9f0632329f03"} << 0x02
                                  << QStringList {"32", "1f"} << "parse_ScreensInfo";
    QTest::newRow("climate") << bytes("9f 02 33 03 05 01 02 36 9f 03")
                             << QStringList {"climate 05 0102", "write 9f0633339f03"} << 0x03
                             << QStringList {"33", "05", "0102"} << "parse_ClimateInfo";
    QTest::newRow("gauges") << bytes("9f 02 34 04 05 01 02 36 9f 03")
                            << QStringList {"gauges 05 0102", "write 9f0634349f03"} << 0x04
                            << QStringList {"34", "05", "0102"} << "parse_GaugesInfo";
    QTest::newRow("vehicle") << bytes("9f 02 35 05 05 01 02 36 9f 03")
                             << QStringList {"vehicle 05 0102", "write 9f0635359f03"} << 0x05
                             << QStringList {"35", "05", "0102"} << "parse_VehicleInfo";
    QTest::newRow("parking assist") << bytes("9f 02 36 06 05 01 02 36 9f 03")
                                    << QStringList {"parking 05 0102", "write 9f0636369f03"} << 0x06
                                    << QStringList {"36", "05", "0102"} << "parse_ParingAssistInfo";
    QTest::newRow("screens transition")
        << bytes("9f 02 37 07 05 01 34 9f 03") << QStringList {"transition 01", "write 9f0637379f03"} << 0x07
        << QStringList {"37", "01"} << "parse_ScreensTransition";
    QTest::newRow("text screen") << bytes("9f 02 38 11 05 41 00 6d 9f 03")
                                 << QStringList {"text 4100", "write 9f0638389f03"} << 0x11
                                 << QStringList {"38", "4100"} << "parse_TextScreen";
    QTest::newRow("no data") << bytes("9f 02 39 02 05 3e 9f 03")
                             << QStringList {"screens ", "write 9f0639399f03"} << 0x02
                             << QStringList {"39", ""} << "parse_ScreensInfo";
}

void CategoryDispatchTest::storesAndEmitsEachCategory()
{
    QFETCH(QByteArray, received);
    QFETCH(int, category);
    QFETCH(QString, logged);

    HandDrivenProtocol protocol;
    const QStringList events = protocol.passOver(received);
    QTEST(events, "emitted");
    const QStringList stored = recordOf(quint8(category));
    QTEST(stored, "record");
    QCOMPARE(protocol.log().messages("[DBG]").last(), logged);
}

void CategoryDispatchTest::parsesAFrameThatItIsGiven_data()
{
    QTest::addColumn<ParseOperation>("parse");
    QTest::addColumn<int>("category");
    QTest::addColumn<QStringList>("record");
    QTest::addColumn<QStringList>("emitted");

    const QStringList typed {"41", "06", "07"};
    const QStringList plain {"41", "07"};
    QTest::newRow("version") << &VelCanBusProtocol::parse_GetVersion << 0x01 << plain
                             << QStringList {"write 9f022101000000209f03"};
    QTest::newRow("screens info") << &VelCanBusProtocol::parse_ScreensInfo << 0x02 << plain
                                  << QStringList {"screens 07"};
    QTest::newRow("climate") << &VelCanBusProtocol::parse_ClimateInfo << 0x03 << typed
                             << QStringList {"climate 06 07"};
    QTest::newRow("gauges") << &VelCanBusProtocol::parse_GaugesInfo << 0x04 << typed
                            << QStringList {"gauges 06 07"};
    QTest::newRow("vehicle") << &VelCanBusProtocol::parse_VehicleInfo << 0x05 << typed
                             << QStringList {"vehicle 06 07"};
    QTest::newRow("parking assist") << &VelCanBusProtocol::parse_ParingAssistInfo << 0x06 << typed
                                    << QStringList {"parking 06 07"};
    QTest::newRow("screens transition")
        << &VelCanBusProtocol::parse_ScreensTransition << 0x07 << plain << QStringList {"transition 07"};
    QTest::newRow("text screen") << &VelCanBusProtocol::parse_TextScreen << 0x11 << plain
                                 << QStringList {"text 07"};
}

void CategoryDispatchTest::parsesAFrameThatItIsGiven()
{
    QFETCH(ParseOperation, parse);
    QFETCH(int, category);

    // Its TP names none of the categories: the operation alone decides.
    FrameDataFormat frame;
    frame.id = bytes("41");
    frame.TP = bytes("08");
    frame.MOD = bytes("06");
    frame.DATA = bytes("07");
    HandDrivenProtocol protocol;
    (protocol.get()->*parse)(&frame);
    const QStringList events = protocol.takeEvents();
    QTEST(events, "emitted");
    const QStringList stored = recordOf(quint8(category));
    QTEST(stored, "record");
}

void CategoryDispatchTest::replacesTheRecord()
{
    HandDrivenProtocol protocol;
    protocol.passOver(bytes("9f 02 33 03 05 01 02 36 9f 03"));
    protocol.passOver(bytes("9f 02 44 03 06 41 9f 03"));
    QCOMPARE(recordOf(0x03), (QStringList {"44", "06", ""}));
    QCOMPARE(CanBusDataMap::instance()->getId(0x03).toHex(), QByteArray("44"));
}

void CategoryDispatchTest::storesBeforeItEmits_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("category");

    QTest::newRow("screens info") << bytes("9f 02 55 02 05 52 9f 03") << 0x02;
    QTest::newRow("climate") << bytes("9f 02 55 03 05 53 9f 03") << 0x03;
    QTest::newRow("gauges") << bytes("9f 02 55 04 05 54 9f 03") << 0x04;
    QTest::newRow("vehicle") << bytes("9f 02 55 05 05 55 9f 03") << 0x05;
    QTest::newRow("parking assist") << bytes("9f 02 55 06 05 56 9f 03") << 0x06;
    QTest::newRow("screens transition") << bytes("9f 02 55 07 05 57 9f 03") << 0x07;
    QTest::newRow("text screen") << bytes("9f 02 55 11 05 41 9f 03") << 0x11;
}

void CategoryDispatchTest::storesBeforeItEmits()
{
    QFETCH(QByteArray, received);
    QFETCH(int, category);

    HandDrivenProtocol protocol;
    QStringList ids;
    const auto look = [&] { ids += CanBusDataMap::instance()->getId(quint8(category)).toHex(); };
    connect(protocol.get(), &CanbusProtocol::notifyScreensInfo, this, look);
    connect(protocol.get(), &CanbusProtocol::notifyClimateInfo, this, look);
    connect(protocol.get(), &CanbusProtocol::notifyGaugesInfo, this, look);
    connect(protocol.get(), &CanbusProtocol::notifyVehicleInfo, this, look);
    connect(protocol.get(), &CanbusProtocol::notifyParingAssistInfo, this, look);
    connect(protocol.get(), &CanbusProtocol::notifyScreensTransition, this, look);
    connect(protocol.get(), &CanbusProtocol::notifyTextScreen, this, look);
    protocol.passOver(received);
    QCOMPARE(ids, QStringList {"55"});
}

void CategoryDispatchTest::acknowledgesBehindTheSignal()
{
    HandDrivenProtocol protocol;
    // A slot that writes at once is ahead of the acknowledgement.
    connect(protocol.get(), &CanbusProtocol::notifyScreensInfo, protocol.get(),
            [&] { protocol->onSaveSendCmdData(bytes("9f 02 41 97 00 d6 9f 03")); });
    QCOMPARE(protocol.passOver(bytes("9f 02 32 02 05 1f 2a 9f 03")),
             (QStringList {"screens 1f", "write 9f02419700d69f03", "write 9f0632329f03"}));
}

void CategoryDispatchTest::reactsToTheBoxesVersion_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("emitted");

    const QString ack = "write 9f0631319f03";
    const QString request = "write 9f022101000000209f03";
    const QString check = "write 9f023101000001319f03";
    QTest::newRow("ready") << bytes("9f 02 31 01 00 00 01 31 9f 03") << QStringList {check, ack};
    QTest::newRow("ready, whatever the first byte and what follows")
        << bytes("9f 02 31 01 00 07 01 05 33 9f 03") << QStringList {check, ack};
    QTest::newRow("ready, whatever the sub-type")
        << bytes("9f 02 31 01 07 00 01 36 9f 03") << QStringList {check, ack};
    QTest::newRow("not ready") << bytes("9f 02 31 01 00 00 00 30 9f 03") << QStringList {request, ack};
    QTest::newRow("another value") << bytes("9f 02 31 01 00 00 02 32 9f 03") << QStringList {ack};
    QTest::newRow("the ready value with the high bit")
        << bytes("9f 02 31 01 00 00 81 b1 9f 03") << QStringList {ack};
    QTest::newRow("the first byte says nothing")
        << bytes("9f 02 31 01 00 01 02 33 9f 03") << QStringList {ack};
    QTest::newRow("one byte reads as not ready")
        << bytes("9f 02 31 01 00 01 31 9f 03") << QStringList {request, ack};
    QTest::newRow("no byte reads as not ready")
        << bytes("9f 02 31 01 00 30 9f 03") << QStringList {request, ack};
    QTest::newRow("too short for its fields: the end's 03 is another value")
        << bytes("9f 02 31 01 30 9f 03") << QStringList {ack};
}

void CategoryDispatchTest::reactsToTheBoxesVersion()
{
    QFETCH(QByteArray, received);

    HandDrivenProtocol protocol;
    const QStringList events = protocol.passOver(received);
    QTEST(events, "emitted");
}

QTEST_GUILESS_MAIN(CategoryDispatchTest)
#include "tst_categorydispatch.moc"
