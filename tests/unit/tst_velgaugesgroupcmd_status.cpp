#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velgaugesgroupcmd.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using Decoder = void (canbus::VelGaugesGroupCmd::*)(QByteArray);
Q_DECLARE_METATYPE(Decoder)

using namespace canbus;

namespace {

const QByteArray kZeros = bytes("00 00 00 00 0000 0000 0000 0000 00");

/// Everything different from its start: each text another letter, zero positions 1 to 5, values 6 to 10,
/// shift, two format flags, label states 2 and 1, peak colour 5.
void fillScreen(VelGaugesGroupCmd &group)
{
    group.handleGaugeType(bytes("05 41 00"));
    group.handleGaugeCustomLabel(bytes("42 00"));
    group.handleGaugeScaleAndCenterText(bytes("3030 303031 303032 303033 303034 303035 303036 303037 303038 "
                                              "303039 303130 43 00 44 00"));
    group.handleGaugeTopLeft_RightText(bytes("45 00"));
    group.handleGaugeBottomLeft_RightText(bytes("46 00"));
    group.handleGaugeStateValue(bytes("01 06 8b 15 0207 0308 0409 050a 47 00"));
}

const QStringList kFullScreen {
    "updateGaugeType({0: true, 1: false, 2: true, 3: false})",
    "updateGaugeTopText('A')",
    "updateGaugeComText(['B'])",
    "updateGaugeScale(['00', '001', '002', '003', '004', '005', '006', '007', '008', '009', '010'])",
    "updateGaugeCenterText(['C', 'D'])",
    "updateGaugeTopLRText(['E'])",
    "updateGaugeBottomLRText(['F'])",
    "updateGaugePeakColorState(5)",
    "updateGaugeComLabelsState(2, 1)",
    "updateGaugeZeroPos([1, 2, 3, 4, 5])",
    "updateGaugeValue([6, 7, 8, 9, 10])",
    "updateGaugeValueText(['G'])",
    "updateGaugeShift(true)",
    "updateGaugeFormat([true, false, true, false, false])",
};

} // namespace

class VelGaugesGroupCmdStatusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First: the test itself has not registered anything yet.
    void registersFlagListsAsSequences();
    void isOneObject();
    void announcesTheStartValuesOnRequest();
    void announcesAllThatIsKeptOnRequest();
    void rejectsAPayloadThatIsTooShort_data();
    void rejectsAPayloadThatIsTooShort();

    void announcesTheFirstStateInOrder();
    void announcesAFirstStateOfZerosToo();
    void announcesTheItemThatChanges_data();
    void announcesTheItemThatChanges();
    void announcesNothingForTheSameStateAgain();
    void ignoresTheBitsWithoutMeaning_data();
    void ignoresTheBitsWithoutMeaning();
    void readsPeakColourSevenAsZero();
    void announcesBothLabelStatesWhenOneGoesBack();
    void readsEachItemByItself();
    void logsEachItemThatChanges();
    void announcesTheLatestValuesInRealTime();
};

void VelGaugesGroupCmdStatusTest::registersFlagListsAsSequences()
{
    VelGaugesGroupCmd group;
    const int type = QMetaType::type("QList<bool>");
    QVERIFY(type != QMetaType::UnknownType);
    const QList<bool> flags {true, false, true};
    const QVariant received(type, &flags);
    QVERIFY(received.canConvert<QVariantList>());
    QCOMPARE(received.value<QVariantList>(), (QVariantList {true, false, true}));
}

void VelGaugesGroupCmdStatusTest::isOneObject()
{
    QVERIFY(VelGaugesGroupCmd::instance());
    QCOMPARE(VelGaugesGroupCmd::instance(), VelGaugesGroupCmd::instance());
    QCOMPARE(VelGaugesGroupCmd::instance()->parent(), nullptr);
}

void VelGaugesGroupCmdStatusTest::announcesTheStartValuesOnRequest()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    QVERIFY(QMetaObject::invokeMethod(&group, "getGaugesInfo"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateGaugeType({})",
                 "updateGaugeTopText('')",
                 "updateGaugeComText([])",
                 "updateGaugeScale([])",
                 "updateGaugeCenterText([])",
                 "updateGaugeTopLRText([])",
                 "updateGaugeBottomLRText([])",
                 "updateGaugePeakColorState(-1)",
                 "updateGaugeComLabelsState(-1, -1)",
                 "updateGaugeZeroPos([])",
                 "updateGaugeValue([])",
                 "updateGaugeValueText([])",
                 "updateGaugeShift(false)",
                 "updateGaugeFormat([])",
             }));
}

void VelGaugesGroupCmdStatusTest::announcesAllThatIsKeptOnRequest()
{
    VelGaugesGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    group.getGaugesInfo();
    QCOMPARE(heard.take(), kFullScreen);
    group.getGaugesInfo();
    QCOMPARE(heard.take(), kFullScreen);
}

void VelGaugesGroupCmdStatusTest::rejectsAPayloadThatIsTooShort_data()
{
    using Group = VelGaugesGroupCmd;
    QTest::addColumn<Decoder>("decoder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("payload");

    const auto row = [](const char *name, Decoder decoder, const char *decoderName, const char *payload) {
        QTest::newRow(name) << decoder << QString(decoderName) << bytes(payload);
    };
    row("no byte of a type", &Group::handleGaugeType, "handleGaugeType", "");
    row("1 byte of a type", &Group::handleGaugeType, "handleGaugeType", "0f");
    row("no byte for labels", &Group::handleGaugeCustomLabel, "handleGaugeCustomLabel", "");
    row("no byte of a scale", &Group::handleGaugeScaleAndCenterText, "handleGaugeScaleAndCenterText", "");
    row("1 byte of a scale", &Group::handleGaugeScaleAndCenterText, "handleGaugeScaleAndCenterText", "31");
    row("no byte for the top texts", &Group::handleGaugeTopLeft_RightText, "handleGaugeTopLeft_RightText",
        "");
    row("no byte for the bottom texts", &Group::handleGaugeBottomLeft_RightText,
        "handleGaugeBottomLeft_RightText", "");
    row("no byte of state", &Group::handleGaugeStateValue, "handleGaugeStateValue", "");
    row("12 bytes of state", &Group::handleGaugeStateValue, "handleGaugeStateValue",
        "ff ff 74 ff ffff ffff ffff ffff");
}

void VelGaugesGroupCmdStatusTest::rejectsAPayloadThatIsTooShort()
{
    QFETCH(Decoder, decoder);
    QFETCH(QString, name);
    QFETCH(QByteArray, payload);

    VelGaugesGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    LogRecorder log;
    (group.*decoder)(payload);
    QCOMPARE(heard.take(), QStringList());
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.lines().first().type, QtCriticalMsg);
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(log.lines().first().text.contains("::" + name + "(QByteArray) "));

    group.getGaugesInfo();
    QCOMPARE(heard.take(), kFullScreen);
}

void VelGaugesGroupCmdStatusTest::announcesTheFirstStateInOrder()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeStateValue(bytes("01 06 8b 15 0207 0308 0409 050a 47 00"));
    // The shift flag comes first and brings the other throttled items with it, as they were.
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateGaugeValueText([])",
                 "updateGaugeValue([])",
                 "updateGaugeShift(true)",
                 "updateGaugeFormat([true, false, true, false, false])",
                 "updateGaugeComLabelsState(2, 1)",
                 "updateGaugePeakColorState(5)",
                 "updateGaugeZeroPos([1, 2, 3, 4, 5])",
             }));
}

void VelGaugesGroupCmdStatusTest::announcesAFirstStateOfZerosToo()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeStateValue(kZeros);
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateGaugeFormat([false, false, false, false, false])",
                 "updateGaugeComLabelsState(0, 0)",
                 "updateGaugePeakColorState(0)",
                 "updateGaugeZeroPos([0, 0, 0, 0, 0])",
                 "updateGaugeValueText([])",
                 "updateGaugeValue([0, 0, 0, 0, 0])",
                 "updateGaugeShift(false)",
             }));
}

void VelGaugesGroupCmdStatusTest::announcesTheItemThatChanges_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("announced");

    const auto row = [](const char *name, const char *payload, const char *announced) {
        QTest::newRow(name) << bytes(payload) << QString(announced);
    };
    row("zero position centre", "ff 00 00 00 0000 0000 0000 0000 00",
        "updateGaugeZeroPos([255, 0, 0, 0, 0])");
    row("zero position top left", "00 00 00 00 ff00 0000 0000 0000 00",
        "updateGaugeZeroPos([0, 255, 0, 0, 0])");
    row("zero position top right", "00 00 00 00 0000 8000 0000 0000 00",
        "updateGaugeZeroPos([0, 0, 128, 0, 0])");
    row("zero position bottom left", "00 00 00 00 0000 0000 9f00 0000 00",
        "updateGaugeZeroPos([0, 0, 0, 159, 0])");
    row("zero position bottom right", "00 00 00 00 0000 0000 0000 0100 00",
        "updateGaugeZeroPos([0, 0, 0, 0, 1])");
    row("format 1", "00 00 02 00 0000 0000 0000 0000 00",
        "updateGaugeFormat([true, false, false, false, false])");
    row("format 2", "00 00 04 00 0000 0000 0000 0000 00",
        "updateGaugeFormat([false, true, false, false, false])");
    row("format 3", "00 00 08 00 0000 0000 0000 0000 00",
        "updateGaugeFormat([false, false, true, false, false])");
    row("format 4", "00 00 10 00 0000 0000 0000 0000 00",
        "updateGaugeFormat([false, false, false, true, false])");
    row("format 5", "00 00 20 00 0000 0000 0000 0000 00",
        "updateGaugeFormat([false, false, false, false, true])");
    row("label state 1 is 1", "00 00 40 00 0000 0000 0000 0000 00", "updateGaugeComLabelsState(1, 0)");
    row("label state 1 is 2", "00 00 80 00 0000 0000 0000 0000 00", "updateGaugeComLabelsState(2, 0)");
    row("label state 1 is 3", "00 00 c0 00 0000 0000 0000 0000 00", "updateGaugeComLabelsState(3, 0)");
    row("label state 2 is 1", "00 00 00 01 0000 0000 0000 0000 00", "updateGaugeComLabelsState(0, 1)");
    row("label state 2 is 2", "00 00 00 02 0000 0000 0000 0000 00", "updateGaugeComLabelsState(0, 2)");
    row("label state 2 is 3", "00 00 00 03 0000 0000 0000 0000 00", "updateGaugeComLabelsState(0, 3)");
    row("peak colour 1", "00 00 00 04 0000 0000 0000 0000 00", "updateGaugePeakColorState(1)");
    row("peak colour 2", "00 00 00 08 0000 0000 0000 0000 00", "updateGaugePeakColorState(2)");
    row("peak colour 3", "00 00 00 0c 0000 0000 0000 0000 00", "updateGaugePeakColorState(3)");
    row("peak colour 4", "00 00 00 10 0000 0000 0000 0000 00", "updateGaugePeakColorState(4)");
    row("peak colour 5", "00 00 00 14 0000 0000 0000 0000 00", "updateGaugePeakColorState(5)");
    row("peak colour 6", "00 00 00 18 0000 0000 0000 0000 00", "updateGaugePeakColorState(6)");
}

void VelGaugesGroupCmdStatusTest::announcesTheItemThatChanges()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, announced);

    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(kZeros);
    Announcements heard(&group);
    group.handleGaugeStateValue(payload);
    QCOMPARE(heard.take(), QStringList {announced});
}

void VelGaugesGroupCmdStatusTest::announcesNothingForTheSameStateAgain()
{
    VelGaugesGroupCmd group;
    fillScreen(group);
    Announcements heard(&group);
    fillScreen(group);
    // The type alone is announced with each report.
    QCOMPARE(heard.take(), QStringList {"updateGaugeType({0: true, 1: false, 2: true, 3: false})"});
}

void VelGaugesGroupCmdStatusTest::ignoresTheBitsWithoutMeaning_data()
{
    QTest::addColumn<QByteArray>("payload");

    QTest::newRow("bit 5 of byte 3") << bytes("00 00 00 20 0000 0000 0000 0000 00");
    QTest::newRow("bit 6 of byte 3") << bytes("00 00 00 40 0000 0000 0000 0000 00");
    QTest::newRow("bit 7 of byte 3") << bytes("00 00 00 80 0000 0000 0000 0000 00");
}

void VelGaugesGroupCmdStatusTest::ignoresTheBitsWithoutMeaning()
{
    QFETCH(QByteArray, payload);

    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(kZeros);
    Announcements heard(&group);
    group.handleGaugeStateValue(payload);
    QCOMPARE(heard.take(), QStringList());
}

void VelGaugesGroupCmdStatusTest::readsPeakColourSevenAsZero()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugePeakColorState(bytes("00 00 00 18"));
    group.handleGaugePeakColorState(bytes("00 00 00 1c"));
    QCOMPARE(heard.take(), (QStringList {"updateGaugePeakColorState(6)", "updateGaugePeakColorState(0)"}));
}

void VelGaugesGroupCmdStatusTest::announcesBothLabelStatesWhenOneGoesBack()
{
    VelGaugesGroupCmd group;
    group.handleGaugeComLabelsState(bytes("00 00 c0 03"));
    Announcements heard(&group);
    group.handleGaugeComLabelsState(bytes("00 00 c0 00"));
    QCOMPARE(heard.take(), QStringList {"updateGaugeComLabelsState(3, 0)"});
    group.handleGaugeComLabelsState(bytes("00 00 00 00"));
    QCOMPARE(heard.take(), QStringList {"updateGaugeComLabelsState(0, 0)"});
}

void VelGaugesGroupCmdStatusTest::readsEachItemByItself()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeFormat(char(0xe0));
    group.handleGaugeComLabelsState(bytes("00 00 80 e1"));
    group.handleGaugePeakColorState(bytes("00 00 00 f0"));
    group.handleGaugeZeroPos(bytes("fa 00 00 00 fb00 fc00 fd00 fe00"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateGaugeFormat([false, false, false, false, true])",
                 "updateGaugeComLabelsState(2, 1)",
                 "updateGaugePeakColorState(4)",
                 "updateGaugeZeroPos([250, 251, 252, 253, 254])",
             }));
}

void VelGaugesGroupCmdStatusTest::logsEachItemThatChanges()
{
    const QByteArray payload = bytes("01 06 8b 15 0207 0308 0409 050a 47 00");
    VelGaugesGroupCmd group;
    LogRecorder log;
    group.handleGaugeStateValue(payload);
    QCOMPARE(log.messages("[DBG]"),
             (QStringList {"true", "timer out", "(true, false, true, false, false)", "2 1", "5",
                           "(1, 2, 3, 4, 5)", "(6, 7, 8, 9, 10)", "(\"G\")"}));
    log.clear();
    group.handleGaugeStateValue(payload);
    QCOMPARE(log.lines().size(), 0);
}

void VelGaugesGroupCmdStatusTest::announcesTheLatestValuesInRealTime()
{
    VelGaugesGroupCmd group;
    QSignalSpy announced(&group, &VelGaugesGroupCmd::updateGaugeShift);
    group.handleGaugeShift(1);
    QCOMPARE(announced.size(), 1);
    group.handleGaugeShift(0);
    QCOMPARE(announced.size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(announced.size(), 2, 10000);
    QCOMPARE(announced.last().first().toBool(), false);
}

QTEST_GUILESS_MAIN(VelGaugesGroupCmdStatusTest)
#include "tst_velgaugesgroupcmd_status.moc"
