#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velparkinggroupcmd.h"

#include <QtTest/QTest>

using Decoder = void (canbus::VelParkingGroupCmd::*)(QByteArray);
Q_DECLARE_METATYPE(Decoder)

using namespace canbus;

namespace {

const QByteArray kZeros = bytes("00000000 00000000 00000000 00000000 00");

/// Everything different from its start: the title AB, one label, zones 1 to 16, states 1 and 2, two flags.
void fillScreen(VelParkingGroupCmd &group)
{
    group.onParkTopText(bytes("41 42"));
    group.onParkCustomLabel(bytes("43 00"));
    group.onParkData(bytes("01020304 05060708 090a0b0c 0d0e0f10 a9"));
}

const QStringList kFullScreen {
    "updateParkTopText('AB')",
    "updateParkComText(['C'])",
    "updateParkSensorFront([1, 2, 3, 4])",
    "updateParkSensorRear([5, 6, 7, 8])",
    "updateParkSensorLeft([9, 10, 11, 12])",
    "updateParkSensorRight([13, 14, 15, 16])",
    "updateParkComLabelsState(1, 2)",
    "updateParkSensorStatus([false, true, false, true])",
};

} // namespace

class VelParkingGroupCmdStatusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isOneObject();
    void announcesTheStartValuesOnRequest();
    void announcesAllThatIsKeptOnRequest();
    void rejectsAPayloadThatIsTooShort_data();
    void rejectsAPayloadThatIsTooShort();

    void announcesTheFirstDataButNoZeroStates();
    void announcesTheItemsInOrder();
    void announcesTheItemThatChanges_data();
    void announcesTheItemThatChanges();
    void announcesNothingForTheSameDataAgain();
    void announcesBothStatesWhenOneGoesBack();
    void takesNothingFromBehindTheData();
    void readsEachItemByItself();
    void logsEachItemThatChanges();
};

void VelParkingGroupCmdStatusTest::isOneObject()
{
    QVERIFY(VelParkingGroupCmd::instance());
    QCOMPARE(VelParkingGroupCmd::instance(), VelParkingGroupCmd::instance());
    QCOMPARE(VelParkingGroupCmd::instance()->parent(), nullptr);
}

void VelParkingGroupCmdStatusTest::announcesTheStartValuesOnRequest()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    QVERIFY(QMetaObject::invokeMethod(&group, "getParkInfo"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateParkTopText('')",
                 "updateParkComText([])",
                 "updateParkSensorFront([])",
                 "updateParkSensorRear([])",
                 "updateParkSensorLeft([])",
                 "updateParkSensorRight([])",
                 "updateParkComLabelsState(0, 0)",
                 "updateParkSensorStatus([])",
             }));
}

void VelParkingGroupCmdStatusTest::announcesAllThatIsKeptOnRequest()
{
    VelParkingGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    group.getParkInfo();
    QCOMPARE(heard.take(), kFullScreen);
    group.getParkInfo();
    QCOMPARE(heard.take(), kFullScreen);
}

void VelParkingGroupCmdStatusTest::rejectsAPayloadThatIsTooShort_data()
{
    QTest::addColumn<Decoder>("decoder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("payload");

    const auto row = [](const char *name, Decoder decoder, const char *decoderName, const char *payload) {
        QTest::newRow(name) << decoder << QString(decoderName) << bytes(payload);
    };
    row("no byte for a title", &VelParkingGroupCmd::onParkTopText, "onParkTopText", "");
    row("no byte for labels", &VelParkingGroupCmd::onParkCustomLabel, "onParkCustomLabel", "");
    row("no byte of data", &VelParkingGroupCmd::onParkData, "onParkData", "");
    row("16 bytes of data", &VelParkingGroupCmd::onParkData, "onParkData",
        "ffffffff ffffffff ffffffff ffffffff");
}

void VelParkingGroupCmdStatusTest::rejectsAPayloadThatIsTooShort()
{
    QFETCH(Decoder, decoder);
    QFETCH(QString, name);
    QFETCH(QByteArray, payload);

    VelParkingGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    LogRecorder log;
    (group.*decoder)(payload);
    QCOMPARE(heard.take(), QStringList());
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.lines().first().type, QtCriticalMsg);
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(log.lines().first().text.contains("::" + name + "(QByteArray) "));

    group.getParkInfo();
    QCOMPARE(heard.take(), kFullScreen);
}

void VelParkingGroupCmdStatusTest::announcesTheFirstDataButNoZeroStates()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkData(kZeros);
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateParkSensorFront([0, 0, 0, 0])",
                 "updateParkSensorRear([0, 0, 0, 0])",
                 "updateParkSensorLeft([0, 0, 0, 0])",
                 "updateParkSensorRight([0, 0, 0, 0])",
                 "updateParkSensorStatus([false, false, false, false])",
             }));
}

void VelParkingGroupCmdStatusTest::announcesTheItemsInOrder()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkData(bytes("01020304 05060708 090a0b0c fcfdfeff 5e"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateParkSensorFront([1, 2, 3, 4])",
                 "updateParkSensorRear([5, 6, 7, 8])",
                 "updateParkSensorLeft([9, 10, 11, 12])",
                 "updateParkSensorRight([252, 253, 254, 255])",
                 "updateParkComLabelsState(2, 3)",
                 "updateParkSensorStatus([true, false, true, false])",
             }));
}

void VelParkingGroupCmdStatusTest::announcesTheItemThatChanges_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("announced");

    const auto row = [](const char *name, const char *payload, const char *announced) {
        QTest::newRow(name) << bytes(payload) << QString(announced);
    };
    row("front zone 1", "ff000000 00000000 00000000 00000000 00", "updateParkSensorFront([255, 0, 0, 0])");
    row("front zone 2", "00ff0000 00000000 00000000 00000000 00", "updateParkSensorFront([0, 255, 0, 0])");
    row("front zone 3", "0000ff00 00000000 00000000 00000000 00", "updateParkSensorFront([0, 0, 255, 0])");
    row("front zone 4", "000000ff 00000000 00000000 00000000 00", "updateParkSensorFront([0, 0, 0, 255])");
    row("rear zone 1", "00000000 80000000 00000000 00000000 00", "updateParkSensorRear([128, 0, 0, 0])");
    row("rear zone 2", "00000000 00800000 00000000 00000000 00", "updateParkSensorRear([0, 128, 0, 0])");
    row("rear zone 3", "00000000 00008000 00000000 00000000 00", "updateParkSensorRear([0, 0, 128, 0])");
    row("rear zone 4", "00000000 00000080 00000000 00000000 00", "updateParkSensorRear([0, 0, 0, 128])");
    row("left zone 1", "00000000 00000000 9f000000 00000000 00", "updateParkSensorLeft([159, 0, 0, 0])");
    row("left zone 2", "00000000 00000000 009f0000 00000000 00", "updateParkSensorLeft([0, 159, 0, 0])");
    row("left zone 3", "00000000 00000000 00009f00 00000000 00", "updateParkSensorLeft([0, 0, 159, 0])");
    row("left zone 4", "00000000 00000000 0000009f 00000000 00", "updateParkSensorLeft([0, 0, 0, 159])");
    row("right zone 1", "00000000 00000000 00000000 01000000 00", "updateParkSensorRight([1, 0, 0, 0])");
    row("right zone 2", "00000000 00000000 00000000 00010000 00", "updateParkSensorRight([0, 1, 0, 0])");
    row("right zone 3", "00000000 00000000 00000000 00000100 00", "updateParkSensorRight([0, 0, 1, 0])");
    row("right zone 4", "00000000 00000000 00000000 00000001 00", "updateParkSensorRight([0, 0, 0, 1])");
    row("label state 1 is 1", "00000000 00000000 00000000 00000000 01", "updateParkComLabelsState(1, 0)");
    row("label state 1 is 2", "00000000 00000000 00000000 00000000 02", "updateParkComLabelsState(2, 0)");
    row("label state 1 is 3", "00000000 00000000 00000000 00000000 03", "updateParkComLabelsState(3, 0)");
    row("label state 2 is 1", "00000000 00000000 00000000 00000000 04", "updateParkComLabelsState(0, 1)");
    row("label state 2 is 2", "00000000 00000000 00000000 00000000 08", "updateParkComLabelsState(0, 2)");
    row("label state 2 is 3", "00000000 00000000 00000000 00000000 0c", "updateParkComLabelsState(0, 3)");
    row("flag 1", "00000000 00000000 00000000 00000000 10",
        "updateParkSensorStatus([true, false, false, false])");
    row("flag 2", "00000000 00000000 00000000 00000000 20",
        "updateParkSensorStatus([false, true, false, false])");
    row("flag 3", "00000000 00000000 00000000 00000000 40",
        "updateParkSensorStatus([false, false, true, false])");
    row("flag 4", "00000000 00000000 00000000 00000000 80",
        "updateParkSensorStatus([false, false, false, true])");
}

void VelParkingGroupCmdStatusTest::announcesTheItemThatChanges()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, announced);

    VelParkingGroupCmd group;
    group.onParkData(kZeros);
    Announcements heard(&group);
    group.onParkData(payload);
    QCOMPARE(heard.take(), QStringList {announced});
}

void VelParkingGroupCmdStatusTest::announcesNothingForTheSameDataAgain()
{
    VelParkingGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    fillScreen(group);
    QCOMPARE(heard.take(), QStringList());
}

void VelParkingGroupCmdStatusTest::announcesBothStatesWhenOneGoesBack()
{
    VelParkingGroupCmd group;
    group.onParkData(bytes("00000000 00000000 00000000 00000000 0f"));
    Announcements heard(&group);
    group.onParkData(bytes("00000000 00000000 00000000 00000000 03"));
    QCOMPARE(heard.take(), QStringList {"updateParkComLabelsState(3, 0)"});
    group.onParkData(kZeros);
    QCOMPARE(heard.take(), QStringList {"updateParkComLabelsState(0, 0)"});
}

void VelParkingGroupCmdStatusTest::takesNothingFromBehindTheData()
{
    VelParkingGroupCmd group;
    group.onParkData(kZeros);
    Announcements heard(&group);
    group.onParkData(bytes("00000000 00000000 00000000 00000000 00 ff ff"));
    QCOMPARE(heard.take(), QStringList());
}

void VelParkingGroupCmdStatusTest::readsEachItemByItself()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkDistanceSensorFront(1, 2, 3, 4);
    group.onParkDistanceSensorRear(5, 6, 7, 8);
    group.onParkDistanceSensorLeft(9, 10, 11, 12);
    group.onParkDistanceSensorRight(252, 253, 254, 255);
    group.onParkDistanceComLabelsState(bytes("00000000 00000000 00000000 00000000 0e"));
    group.onParkDistanceSensorStatus(char(0xa0));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateParkSensorFront([1, 2, 3, 4])",
                 "updateParkSensorRear([5, 6, 7, 8])",
                 "updateParkSensorLeft([9, 10, 11, 12])",
                 "updateParkSensorRight([252, 253, 254, 255])",
                 "updateParkComLabelsState(2, 3)",
                 "updateParkSensorStatus([false, true, false, true])",
             }));
}

void VelParkingGroupCmdStatusTest::logsEachItemThatChanges()
{
    const QByteArray payload = bytes("01020304 05060708 090a0b0c fcfdfeff 5e");
    VelParkingGroupCmd group;
    LogRecorder log;
    group.onParkData(payload);
    QCOMPARE(log.messages("[DBG]"),
             (QStringList {"(1, 2, 3, 4)", "(5, 6, 7, 8)", "(9, 10, 11, 12)", "(252, 253, 254, 255)", "2 3",
                           "(true, false, true, false)"}));
    log.clear();
    group.onParkData(payload);
    QCOMPARE(log.lines().size(), 0);
}

QTEST_GUILESS_MAIN(VelParkingGroupCmdStatusTest)
#include "tst_velparkinggroupcmd_status.moc"
