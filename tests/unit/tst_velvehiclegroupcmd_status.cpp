#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velvehiclegroupcmd.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using Decoder = void (canbus::VelVehicleGroupCmd::*)(QByteArray);
Q_DECLARE_METATYPE(Decoder)

using namespace canbus;

namespace {

/// Everything different from its start: the title AB, one label, doors 2 and 4, hood, trunk, battery, tires
/// 0 to 3, check-engine state 2, label states 1 and 2, two tire texts.
void fillScreen(VelVehicleGroupCmd &group)
{
    group.onVehicleTopText(bytes("41 42"));
    group.onVehicleCustomLabel(bytes("43 00"));
    group.onVehicleData(bytes("3a e4 96 44 00 45 00"));
}

const QStringList kFullScreen {
    "updateVehicleTopText('AB')",
    "updateVehicleComText(['C'])",
    "updateVehicleDoorStatus([false, true, false, true])",
    "updateVehicleHoodk(true)",
    "updateVehicleTrunk(true)",
    "updateVehicleBattery(true)",
    "updateVehicleTire([0, 1, 2, 3])",
    "updateVehicleCheckEngineState(2)",
    "updateVehicleComLabelsState(1, 2)",
    "updateVehicleTireText(['D', 'E'])",
};

} // namespace

class VelVehicleGroupCmdStatusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isOneObject();
    void announcesTheStartValuesOnRequest();
    void announcesAllThatIsKeptOnRequest();
    void rejectsAPayloadThatIsTooShort_data();
    void rejectsAPayloadThatIsTooShort();

    void announcesTheFirstDataButNoFlagThatIsOff();
    void announcesTheItemsInOrder();
    void announcesTheItemThatChanges_data();
    void announcesTheItemThatChanges();
    void announcesTheItemThatGoesBack_data();
    void announcesTheItemThatGoesBack();
    void ignoresTheBitsWithoutMeaning_data();
    void ignoresTheBitsWithoutMeaning();
    void announcesNothingForTheSameDataAgain();
    void readsEachItemByItself();
    void logsEachItemThatChanges();
    void announcesTireTextsInRealTime();
};

void VelVehicleGroupCmdStatusTest::isOneObject()
{
    QVERIFY(VelVehicleGroupCmd::instance());
    QCOMPARE(VelVehicleGroupCmd::instance(), VelVehicleGroupCmd::instance());
    QCOMPARE(VelVehicleGroupCmd::instance()->parent(), nullptr);
}

void VelVehicleGroupCmdStatusTest::announcesTheStartValuesOnRequest()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    QVERIFY(QMetaObject::invokeMethod(&group, "getVehicleInfo"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateVehicleTopText('')",
                 "updateVehicleComText([])",
                 "updateVehicleDoorStatus([])",
                 "updateVehicleHoodk(false)",
                 "updateVehicleTrunk(false)",
                 "updateVehicleBattery(false)",
                 "updateVehicleTire([])",
                 "updateVehicleCheckEngineState(0)",
                 "updateVehicleComLabelsState(-1, -1)",
                 "updateVehicleTireText([])",
             }));
}

void VelVehicleGroupCmdStatusTest::announcesAllThatIsKeptOnRequest()
{
    VelVehicleGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    group.getVehicleInfo();
    QCOMPARE(heard.take(), kFullScreen);
    group.getVehicleInfo();
    QCOMPARE(heard.take(), kFullScreen);
}

void VelVehicleGroupCmdStatusTest::rejectsAPayloadThatIsTooShort_data()
{
    QTest::addColumn<Decoder>("decoder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("payload");

    const auto row = [](const char *name, Decoder decoder, const char *decoderName, const char *payload) {
        QTest::newRow(name) << decoder << QString(decoderName) << bytes(payload);
    };
    row("no byte for a title", &VelVehicleGroupCmd::onVehicleTopText, "onVehicleTopText", "");
    row("no byte for labels", &VelVehicleGroupCmd::onVehicleCustomLabel, "onVehicleCustomLabel", "");
    row("no byte of data", &VelVehicleGroupCmd::onVehicleData, "onVehicleData", "");
    row("1 byte of data", &VelVehicleGroupCmd::onVehicleData, "onVehicleData", "05");
    row("2 bytes of data", &VelVehicleGroupCmd::onVehicleData, "onVehicleData", "05 1b");
}

void VelVehicleGroupCmdStatusTest::rejectsAPayloadThatIsTooShort()
{
    QFETCH(Decoder, decoder);
    QFETCH(QString, name);
    QFETCH(QByteArray, payload);

    VelVehicleGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    LogRecorder log;
    (group.*decoder)(payload);
    QCOMPARE(heard.take(), QStringList());
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.lines().first().type, QtCriticalMsg);
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(log.lines().first().text.contains("::" + name + "(QByteArray) "));

    group.getVehicleInfo();
    QCOMPARE(heard.take(), kFullScreen);
}

void VelVehicleGroupCmdStatusTest::announcesTheFirstDataButNoFlagThatIsOff()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleData(bytes("00 00 00"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateVehicleDoorStatus([false, false, false, false])",
                 "updateVehicleTire([0, 0, 0, 0])",
                 "updateVehicleComLabelsState(0, 0)",
             }));
}

void VelVehicleGroupCmdStatusTest::announcesTheItemsInOrder()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleData(bytes("3a e4 96"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateVehicleDoorStatus([false, true, false, true])",
                 "updateVehicleHoodk(true)",
                 "updateVehicleTrunk(true)",
                 "updateVehicleBattery(true)",
                 "updateVehicleTire([0, 1, 2, 3])",
                 "updateVehicleCheckEngineState(2)",
                 "updateVehicleComLabelsState(1, 2)",
             }));
}

void VelVehicleGroupCmdStatusTest::announcesTheItemThatChanges_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("announced");

    const auto row = [](const char *name, const char *payload, const char *announced) {
        QTest::newRow(name) << bytes(payload) << QString(announced);
    };
    row("door 1", "01 00 00", "updateVehicleDoorStatus([true, false, false, false])");
    row("door 2", "02 00 00", "updateVehicleDoorStatus([false, true, false, false])");
    row("door 3", "04 00 00", "updateVehicleDoorStatus([false, false, true, false])");
    row("door 4", "08 00 00", "updateVehicleDoorStatus([false, false, false, true])");
    row("hood", "10 00 00", "updateVehicleHoodk(true)");
    row("trunk", "20 00 00", "updateVehicleTrunk(true)");
    row("tire 1 is 1", "00 01 00", "updateVehicleTire([1, 0, 0, 0])");
    row("tire 1 is 2", "00 02 00", "updateVehicleTire([2, 0, 0, 0])");
    row("tire 2 is 1", "00 04 00", "updateVehicleTire([0, 1, 0, 0])");
    row("tire 2 is 2", "00 08 00", "updateVehicleTire([0, 2, 0, 0])");
    row("tire 3 is 1", "00 10 00", "updateVehicleTire([0, 0, 1, 0])");
    row("tire 3 is 2", "00 20 00", "updateVehicleTire([0, 0, 2, 0])");
    row("tire 4 is 1", "00 40 00", "updateVehicleTire([0, 0, 0, 1])");
    row("tire 4 is 2", "00 80 00", "updateVehicleTire([0, 0, 0, 2])");
    row("all tires are 3", "00 ff 00", "updateVehicleTire([3, 3, 3, 3])");
    row("check engine is 1", "00 00 01", "updateVehicleCheckEngineState(1)");
    row("check engine is 2", "00 00 02", "updateVehicleCheckEngineState(2)");
    row("check engine is 3", "00 00 03", "updateVehicleCheckEngineState(3)");
    row("battery", "00 00 04", "updateVehicleBattery(true)");
    row("label state 1 is 1", "00 00 10", "updateVehicleComLabelsState(1, 0)");
    row("label state 1 is 2", "00 00 20", "updateVehicleComLabelsState(2, 0)");
    row("label state 1 is 3", "00 00 30", "updateVehicleComLabelsState(3, 0)");
    row("label state 2 is 1", "00 00 40", "updateVehicleComLabelsState(0, 1)");
    row("label state 2 is 2", "00 00 80", "updateVehicleComLabelsState(0, 2)");
    row("label state 2 is 3", "00 00 c0", "updateVehicleComLabelsState(0, 3)");
}

void VelVehicleGroupCmdStatusTest::announcesTheItemThatChanges()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, announced);

    VelVehicleGroupCmd group;
    group.onVehicleData(bytes("00 00 00"));
    Announcements heard(&group);
    group.onVehicleData(payload);
    QCOMPARE(heard.take(), QStringList {announced});
}

void VelVehicleGroupCmdStatusTest::announcesTheItemThatGoesBack_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("announced");

    QTest::newRow("hood") << bytes("2f ff f7") << "updateVehicleHoodk(false)";
    QTest::newRow("trunk") << bytes("1f ff f7") << "updateVehicleTrunk(false)";
    QTest::newRow("battery") << bytes("3f ff f3") << "updateVehicleBattery(false)";
    QTest::newRow("check engine") << bytes("3f ff f4") << "updateVehicleCheckEngineState(0)";
    QTest::newRow("label state 1") << bytes("3f ff c7") << "updateVehicleComLabelsState(0, 3)";
    QTest::newRow("label state 2") << bytes("3f ff 37") << "updateVehicleComLabelsState(3, 0)";
}

void VelVehicleGroupCmdStatusTest::announcesTheItemThatGoesBack()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, announced);

    VelVehicleGroupCmd group;
    group.onVehicleData(bytes("3f ff f7"));
    Announcements heard(&group);
    group.onVehicleData(payload);
    QCOMPARE(heard.take(), QStringList {announced});
}

void VelVehicleGroupCmdStatusTest::ignoresTheBitsWithoutMeaning_data()
{
    QTest::addColumn<QByteArray>("payload");

    QTest::newRow("bit 6 of byte 0") << bytes("40 00 00");
    QTest::newRow("bit 7 of byte 0") << bytes("80 00 00");
    QTest::newRow("bit 3 of byte 2") << bytes("00 00 08");
}

void VelVehicleGroupCmdStatusTest::ignoresTheBitsWithoutMeaning()
{
    QFETCH(QByteArray, payload);

    VelVehicleGroupCmd group;
    group.onVehicleData(bytes("00 00 00"));
    Announcements heard(&group);
    group.onVehicleData(payload);
    QCOMPARE(heard.take(), QStringList());
}

void VelVehicleGroupCmdStatusTest::announcesNothingForTheSameDataAgain()
{
    VelVehicleGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    fillScreen(group);
    QCOMPARE(heard.take(), QStringList());
}

void VelVehicleGroupCmdStatusTest::readsEachItemByItself()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleDoorStatus(char(0xf5));
    group.onVehicleHoodStatus(char(0x90));
    group.onVehicleTrunkStatus(char(0xa0));
    group.onVehicleBatteryStatus(char(0x84));
    group.onVehicleTire(bytes("00 1b"));
    group.onVehicleCheckEngineState(bytes("00 00 03"));
    group.onVehicleComLabelsState(bytes("00 00 e0"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateVehicleDoorStatus([true, false, true, false])",
                 "updateVehicleHoodk(true)",
                 "updateVehicleTrunk(true)",
                 "updateVehicleBattery(true)",
                 "updateVehicleTire([3, 2, 1, 0])",
                 "updateVehicleCheckEngineState(3)",
                 "updateVehicleComLabelsState(2, 3)",
             }));
}

void VelVehicleGroupCmdStatusTest::logsEachItemThatChanges()
{
    const QByteArray payload = bytes("3a e4 96 44 00 45 00");
    VelVehicleGroupCmd group;
    LogRecorder log;
    group.onVehicleData(payload);
    QCOMPARE(log.messages("[DBG]"),
             (QStringList {"(false, true, false, true)", "true", "true", "true", "(0, 1, 2, 3)", "2", "1 2",
                           "(\"D\", \"E\")"}));
    log.clear();
    group.onVehicleData(payload);
    QCOMPARE(log.lines().size(), 0);
}

void VelVehicleGroupCmdStatusTest::announcesTireTextsInRealTime()
{
    VelVehicleGroupCmd group;
    QSignalSpy announced(&group, &VelVehicleGroupCmd::updateVehicleTireText);
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    QCOMPARE(announced.size(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(announced.size(), 1, 10000);
    QCOMPARE(announced.first().first().toStringList(), QStringList {"A"});
}

QTEST_GUILESS_MAIN(VelVehicleGroupCmdStatusTest)
#include "tst_velvehiclegroupcmd_status.moc"
