// The four groups look alike and are not: what stands here are the differences that are meant, each of which
// would get lost if the groups were made alike.

#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "sentframes.h"
#include "virtualtime.h"

#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace canbus;

namespace {

struct Groups {
    VelClimateGroupCmd climate;
    VelGaugesGroupCmd gauges;
    VelVehicleGroupCmd vehicle;
    VelParkingGroupCmd parking;

    /// What each group has announced since the last call, the climate's first, then the gauges', the
    /// vehicle's and the parking's.
    QStringList take()
    {
        return heardClimate.take() + heardGauges.take() + heardVehicle.take() + heardParking.take();
    }

    QStringList take(const QString &part) { return take().filter(part); }

    void receiveTitle(const QByteArray &title)
    {
        climate.onClimateType(bytes("00") + title);
        gauges.handleGaugeType(bytes("00") + title);
        vehicle.onVehicleTopText(title);
        parking.onParkTopText(title);
    }

    void receiveLabels(const QByteArray &labels)
    {
        climate.onClimateCustomLabel(labels);
        gauges.handleGaugeCustomLabel(labels);
        vehicle.onVehicleCustomLabel(labels);
        parking.onParkCustomLabel(labels);
    }

    void receiveZeros()
    {
        climate.onClimateData(bytes("0000 0000 00 00 00 00 00 00 00 00 00 00 00"));
        gauges.handleGaugeStateValue(bytes("00 00 00 00 0000 0000 0000 0000 00"));
        vehicle.onVehicleData(bytes("00 00 00"));
        parking.onParkData(bytes("00000000 00000000 00000000 00000000 00"));
    }

    void giveAll()
    {
        climate.getClimateInfo();
        gauges.getGaugesInfo();
        vehicle.getVehicleInfo();
        parking.getParkInfo();
    }

private:
    Announcements heardClimate {&climate};
    Announcements heardGauges {&gauges};
    Announcements heardVehicle {&vehicle};
    Announcements heardParking {&parking};
};

} // namespace

class GroupDifferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void titlesOfClimateAndGaugesStandBehindAByte();
    void anEmptyTitleIsNewsExceptForTheClimate();
    void titlesAreComparedAsTheyCameButListsCleaned();
    void theTypeIsNewsEachTimeForTheGaugesAlone();
    void labelsAreLoggedOnArrivalByVehicleAndParking();

    void statesStartUnknownExceptForCheckEngineAndParking();
    void aFirstZeroIsNewsWhereStatesStartUnknown();

    void gaugesAreThrottledAndTireTextsDelayed();
    void emptyTextListsAreNewsForThrottleAndDelay();
    void throttledItemsHaveAnotherOrderOnRequest();

    void theScaleIsNeitherCleanedNorRepeated();
    void theScaleEndsWhereTheCenterTextsBegin();
    void theLastTwoClimateButtonsAreReversed();

    void gaugesAloneReportARelease();
};

void GroupDifferencesTest::titlesOfClimateAndGaugesStandBehindAByte()
{
    const QByteArray payload = bytes("41 42 43");
    Groups groups;
    groups.climate.onClimateType(payload);
    groups.gauges.handleGaugeType(payload);
    groups.vehicle.onVehicleTopText(payload);
    groups.parking.onParkTopText(payload);
    QCOMPARE(groups.take("TopText"),
             (QStringList {"updateClimateTopText('BC')", "updateGaugeTopText('BC')",
                           "updateVehicleTopText('ABC')", "updateParkTopText('ABC')"}));
}

void GroupDifferencesTest::anEmptyTitleIsNewsExceptForTheClimate()
{
    Groups groups;
    groups.receiveTitle(bytes("00"));
    groups.take();
    groups.receiveTitle(bytes("00"));
    QCOMPARE(groups.take("TopText"),
             (QStringList {"updateGaugeTopText('')", "updateVehicleTopText('')", "updateParkTopText('')"}));
    groups.receiveLabels(bytes("41"));
    groups.take();
    groups.receiveLabels(bytes("41"));
    QCOMPARE(groups.take(),
             (QStringList {"updateClimateComText([])", "updateGaugeComText([])", "updateVehicleComText([])",
                           "updateParkComText([])"}));
}

void GroupDifferencesTest::titlesAreComparedAsTheyCameButListsCleaned()
{
    Groups groups;
    groups.receiveTitle(bytes("41 ff"));
    groups.receiveLabels(bytes("42 ff 00"));
    groups.take();
    groups.receiveTitle(bytes("41 ff"));
    groups.receiveLabels(bytes("42 ff 00"));
    QCOMPARE(groups.take("Text"),
             (QStringList {"updateClimateTopText('A')", "updateGaugeTopText('A')",
                           "updateVehicleTopText('A')", "updateParkTopText('A')"}));
}

void GroupDifferencesTest::theTypeIsNewsEachTimeForTheGaugesAlone()
{
    Groups groups;
    groups.receiveTitle(bytes("41"));
    groups.take();
    groups.receiveTitle(bytes("41"));
    QCOMPARE(groups.take(), QStringList {"updateGaugeType({0: false, 1: false, 2: false, 3: false})"});
}

void GroupDifferencesTest::labelsAreLoggedOnArrivalByVehicleAndParking()
{
    Groups groups;
    groups.receiveLabels(bytes("41 00"));
    LogRecorder log;
    groups.receiveLabels(bytes("41 00"));
    QCOMPARE(log.lines().size(), 2);
    QVERIFY(log.lines().at(0).text.contains("::onVehicleCustomLabel("));
    QVERIFY(log.lines().at(1).text.contains("::onParkCustomLabel("));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")"}));
}

void GroupDifferencesTest::statesStartUnknownExceptForCheckEngineAndParking()
{
    Groups groups;
    groups.giveAll();
    const QStringList all = groups.take();
    QCOMPARE(all.filter("-1"),
             (QStringList {"updateClimateType(-1)", "updateClimateMainTemp(-1, -1)",
                           "updateClimateSecondTemp(-1, -1)", "updateClimateHeatSeat(-1, -1)",
                           "updateClimateCoolSeat(-1, -1)", "updateClimateFanDirectValue(-1)",
                           "updateClimateFanSpeedStatus(-1)", "updateClimateVentPosition(-1)",
                           "updateClimateFanDirect(-1)", "updateClimateManualTempValue(-1)",
                           "updateGaugePeakColorState(-1)", "updateGaugeComLabelsState(-1, -1)",
                           "updateVehicleComLabelsState(-1, -1)"}));
    QCOMPARE(all.filter(QRegularExpression("\\(0")),
             (QStringList {"updateVehicleCheckEngineState(0)", "updateParkComLabelsState(0, 0)"}));
    QCOMPARE(all.filter("true"), QStringList());
    QCOMPARE(all.filter("(false)"),
             (QStringList {"updateClimateSystem(false)", "updateClimateDriverSeatPos(false)",
                           "updateGaugeShift(false)", "updateVehicleHoodk(false)",
                           "updateVehicleTrunk(false)", "updateVehicleBattery(false)"}));
}

void GroupDifferencesTest::aFirstZeroIsNewsWhereStatesStartUnknown()
{
    Groups groups;
    groups.receiveZeros();
    const QStringList all = groups.take();
    QCOMPARE(all.filter(QRegularExpression("\\(0")),
             (QStringList {"updateClimateMainTemp(0, 0)", "updateClimateSecondTemp(0, 0)",
                           "updateClimateHeatSeat(0, 0)", "updateClimateCoolSeat(0, 0)",
                           "updateClimateFanDirectValue(0)", "updateClimateFanSpeedStatus(0)",
                           "updateClimateVentPosition(0)", "updateClimateFanDirect(0)",
                           "updateClimateManualTempValue(0)", "updateGaugeComLabelsState(0, 0)",
                           "updateGaugePeakColorState(0)", "updateVehicleComLabelsState(0, 0)"}));
    // The shift flag is announced with the values, not for itself.
    QCOMPARE(all.filter("(false)"), QStringList {"updateGaugeShift(false)"});
}

void GroupDifferencesTest::gaugesAreThrottledAndTireTextsDelayed()
{
    Groups groups;
    groups.gauges.handleGaugeValueText(bytes("00 00 00 00 0000 0000 0000 0000 41 00"));
    groups.vehicle.onVehicleTireText(bytes("00 00 00 41 00"));
    QCOMPARE(
        groups.take(),
        (QStringList {"updateGaugeValueText(['A'])", "updateGaugeValue([])", "updateGaugeShift(false)"}));
    VirtualTime::advance(299);
    QCOMPARE(groups.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(groups.take(),
             (QStringList {"updateGaugeValueText(['A'])", "updateGaugeValue([])", "updateGaugeShift(false)",
                           "updateVehicleTireText(['A'])"}));
}

void GroupDifferencesTest::emptyTextListsAreNewsForThrottleAndDelay()
{
    Groups groups;
    groups.gauges.handleGaugeValueText(bytes("00 00 00 00 0000 0000 0000 0000 41"));
    groups.vehicle.onVehicleTireText(bytes("00 00 00 41"));
    VirtualTime::advance(1000);
    groups.take();
    groups.gauges.handleGaugeValueText(bytes("00 00 00 00 0000 0000 0000 0000 41"));
    groups.vehicle.onVehicleTireText(bytes("00 00 00 41"));
    QCOMPARE(groups.take("Text"), QStringList {"updateGaugeValueText([])"});
    VirtualTime::advance(300);
    QCOMPARE(groups.take("Text"), (QStringList {"updateGaugeValueText([])", "updateVehicleTireText([])"}));
}

void GroupDifferencesTest::throttledItemsHaveAnotherOrderOnRequest()
{
    Groups groups;
    groups.gauges.onTimerOut();
    QCOMPARE(groups.take(),
             (QStringList {"updateGaugeValueText([])", "updateGaugeValue([])", "updateGaugeShift(false)"}));
    groups.gauges.getGaugesInfo();
    QCOMPARE(groups.take().mid(10, 3),
             (QStringList {"updateGaugeValue([])", "updateGaugeValueText([])", "updateGaugeShift(false)"}));
}

void GroupDifferencesTest::theScaleIsNeitherCleanedNorRepeated()
{
    Groups groups;
    groups.gauges.handleGaugeScaleAndCenterText(bytes("41 ff"));
    QCOMPARE(groups.take(),
             (QStringList {QString::fromUtf8("updateGaugeScale(['A\xef\xbf\xbd'])"),
                           "updateGaugeCenterText([])"}));
    groups.gauges.handleGaugeScaleAndCenterText(bytes("41 ff"));
    QCOMPARE(groups.take(), QStringList {"updateGaugeCenterText([])"});
    // The emptiest scale is a list of one empty text, and no news either.
    groups.gauges.handleGaugeScaleAndCenterText(bytes("00 00"));
    QCOMPARE(groups.take(), (QStringList {"updateGaugeScale([''])", "updateGaugeCenterText([])"}));
    groups.gauges.handleGaugeScaleAndCenterText(bytes("00 00"));
    QCOMPARE(groups.take(), QStringList {"updateGaugeCenterText([])"});
}

void GroupDifferencesTest::theScaleEndsWhereTheCenterTextsBegin()
{
    Groups groups;
    groups.gauges.handleGaugeScaleAndCenterText(bytes("3030 303031 303032 303033 303034 303035 303036 303037 "
                                                      "303038 303039 303130 414243 00"));
    QCOMPARE(
        groups.take(),
        (QStringList {
            "updateGaugeScale(['00', '001', '002', '003', '004', '005', '006', '007', '008', '009', '010'])",
            "updateGaugeCenterText(['ABC'])"}));
}

void GroupDifferencesTest::theLastTwoClimateButtonsAreReversed()
{
    Groups groups;
    groups.climate.onClimateData(bytes("0000 0000 00 00 00 00 00 00 00 00 1c 0d 00"));
    // Buttons 15 to 17 from high to low in 1c, buttons 18 and 19 from low to high in 0d.
    QCOMPARE(groups.take("BtnStatus"),
             QStringList {"updateClimateBtnStatus([0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "
                          "0, 1, 3, 1, 3])"});
}

void GroupDifferencesTest::gaugesAloneReportARelease()
{
    Groups groups;
    SentFrames sent;
    groups.gauges.Gauge2_TopLeft(false);
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 00 94 00 02 00 96 9f 03")});
    groups.gauges.customControl1();
    groups.vehicle.customControl1();
    groups.parking.customControl1();
    QCOMPARE(
        sent.take(),
        (QList<QByteArray> {bytes("9f 02 00 94 00 06 01 93 9f 03"), bytes("9f 02 00 95 00 02 01 96 9f 03"),
                            bytes("9f 02 00 96 00 01 01 96 9f 03")}));
}

VIRTUAL_TIME_TEST_MAIN(GroupDifferencesTest)
#include "tst_groupdifferences.moc"
