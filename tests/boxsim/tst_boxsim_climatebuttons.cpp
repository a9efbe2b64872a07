#include "boxsim/car/climatebuttons.h"

#include <QtTest/QTest>

using boxsim::ClimateState;
using boxsim::pressClimateButton;

namespace {

ClimateState middle()
{
    ClimateState state;
    state.mainTemp = 200;
    state.secondTemp = 250;
    state.manualTemp = 100;
    state.buttons[boxsim::LampDual] = 1;
    return state;
}

int lamp(const ClimateState &state, int index)
{
    return state.buttons[std::size_t(index)];
}

} // namespace

Q_DECLARE_METATYPE(quint8 boxsim::ClimateState::*)

class TestBoxsimClimateButtons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void togglesALamp_data();
    void togglesALamp();
    void stepsATemperatureWithinItsLimits_data();
    void stepsATemperatureWithinItsLimits();
    void lightsALampWhileAButtonIsHeld_data();
    void lightsALampWhileAButtonIsHeld();
    void cyclesASeatAndEndsItsOpposite_data();
    void cyclesASeatAndEndsItsOpposite();
    void takesOverAValue();
    void stepsTheFanWithinItsLimits();
    void switchesTheSystem();
    void setsTheFanDirectWithAuto();
    void goesRoundTheVentPositions();
    void letsTheSecondZoneFollowWhileDualIsOff();
    void joinsMaxWithAirConditioning();
    void ignoresWhatIsNoButton();
};

void TestBoxsimClimateButtons::togglesALamp_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("lampIndex");

    QTest::newRow("onOff") << 1 << 0;
    QTest::newRow("rearZone") << 2 << 1;
    QTest::newRow("autoBtn") << 14 << 2;
    QTest::newRow("recircFresh") << 16 << 3;
    QTest::newRow("acBtn") << 18 << 5;
    QTest::newRow("maxACBtn") << 19 << 6;
    QTest::newRow("frontDefroster") << 20 << 7;
    QTest::newRow("rearDefroster") << 21 << 8;
    QTest::newRow("customControl1") << 22 << 9;
    QTest::newRow("customControl2") << 23 << 10;
    QTest::newRow("heatedSteerWheel") << 24 << 11;
}

void TestBoxsimClimateButtons::togglesALamp()
{
    QFETCH(int, button);
    QFETCH(int, lampIndex);
    ClimateState state;

    pressClimateButton(state, quint8(button), true, 0);
    QCOMPARE(lamp(state, lampIndex), 1);
    pressClimateButton(state, quint8(button), false, 0);
    QCOMPARE(lamp(state, lampIndex), 1);
    pressClimateButton(state, quint8(button), true, 0);
    QCOMPARE(lamp(state, lampIndex), 0);
}

void TestBoxsimClimateButtons::stepsATemperatureWithinItsLimits_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("afterOne");
    QTest::addColumn<int>("afterMany");

    QTest::newRow("autoMainZoneTempPlus") << 3 << 205 << 300;
    QTest::newRow("autoMainZoneTempMinus") << 4 << 195 << 160;
    QTest::newRow("autoSecondZoneTempPlus") << 5 << 255 << 300;
    QTest::newRow("autoSecondZoneTempMinus") << 6 << 245 << 160;
    QTest::newRow("manualMainZoneTempUp") << 7 << 105 << 255;
    QTest::newRow("manualMainZoneTempDown") << 8 << 95 << 0;
}

void TestBoxsimClimateButtons::stepsATemperatureWithinItsLimits()
{
    QFETCH(int, button);
    QFETCH(int, afterOne);
    QFETCH(int, afterMany);
    const auto value = [button](const ClimateState &state) -> int {
        if (button >= 7)
            return state.manualTemp;
        return button >= 5 ? state.secondTemp : state.mainTemp;
    };
    ClimateState state = middle();

    pressClimateButton(state, quint8(button), true, 0);
    QCOMPARE(value(state), afterOne);
    pressClimateButton(state, quint8(button), false, 0);
    QCOMPARE(value(state), afterOne);
    for (int i = 0; i < 100; ++i)
        pressClimateButton(state, quint8(button), true, 0);
    QCOMPARE(value(state), afterMany);
}

void TestBoxsimClimateButtons::lightsALampWhileAButtonIsHeld_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("lampIndex");

    QTest::newRow("autoMainZoneTempPlus") << 3 << 12;
    QTest::newRow("autoMainZoneTempMinus") << 4 << 13;
    QTest::newRow("autoSecondZoneTempPlus") << 5 << 14;
    QTest::newRow("autoSecondZoneTempMinus") << 6 << 15;
    QTest::newRow("fanSpeedUp") << 25 << 16;
    QTest::newRow("fanSpeedDown") << 26 << 17;
}

void TestBoxsimClimateButtons::lightsALampWhileAButtonIsHeld()
{
    QFETCH(int, button);
    QFETCH(int, lampIndex);
    ClimateState state = middle();

    pressClimateButton(state, quint8(button), true, 0);
    QCOMPARE(lamp(state, lampIndex), 1);
    pressClimateButton(state, quint8(button), false, 0);
    QCOMPARE(lamp(state, lampIndex), 0);
}

void TestBoxsimClimateButtons::cyclesASeatAndEndsItsOpposite_data()
{
    using Level = quint8 ClimateState::*;
    QTest::addColumn<int>("button");
    QTest::addColumn<Level>("level");
    QTest::addColumn<Level>("opposite");

    const Level leftHeat = &ClimateState::leftHeatedSeat;
    const Level leftCool = &ClimateState::leftCooledSeat;
    const Level rightHeat = &ClimateState::rightHeatedSeat;
    const Level rightCool = &ClimateState::rightCooledSeat;
    QTest::newRow("leftHeatedSeat") << 9 << leftHeat << leftCool;
    QTest::newRow("rightHeatedSeat") << 10 << rightHeat << rightCool;
    QTest::newRow("leftCooledSeat") << 11 << leftCool << leftHeat;
    QTest::newRow("rightCooledSeat") << 12 << rightCool << rightHeat;
}

void TestBoxsimClimateButtons::cyclesASeatAndEndsItsOpposite()
{
    using Level = quint8 ClimateState::*;
    QFETCH(int, button);
    QFETCH(Level, level);
    QFETCH(Level, opposite);
    ClimateState state;
    state.*opposite = 2;

    for (const int expected : {1, 2, 3, 0, 1}) {
        pressClimateButton(state, quint8(button), true, 0);
        QCOMPARE(int(state.*level), expected);
        QCOMPARE(int(state.*opposite), 0);
        QCOMPARE(lamp(state, boxsim::LampSeats), expected == 0 ? 0 : 1);
    }
}

void TestBoxsimClimateButtons::takesOverAValue()
{
    ClimateState state;

    pressClimateButton(state, 13, true, 255);
    pressClimateButton(state, 27, true, 0x9F);
    pressClimateButton(state, 28, true, 2);
    QCOMPARE(int(state.fanDirectValue), 255);
    QCOMPARE(int(state.manualTemp), 0x9F);
    QCOMPARE(int(state.fanSpeedStatus), 2);

    pressClimateButton(state, 28, true, 200);
    QCOMPARE(int(state.fanSpeedStatus), 3);
}

void TestBoxsimClimateButtons::stepsTheFanWithinItsLimits()
{
    ClimateState state;

    for (const int expected : {1, 2, 3, 3}) {
        pressClimateButton(state, 25, true, 0);
        QCOMPARE(int(state.fanSpeedStatus), expected);
    }
    for (const int expected : {2, 1, 0, 0}) {
        pressClimateButton(state, 26, true, 0);
        QCOMPARE(int(state.fanSpeedStatus), expected);
    }
}

void TestBoxsimClimateButtons::switchesTheSystem()
{
    ClimateState state;

    pressClimateButton(state, 1, true, 0);
    QVERIFY(state.systemOn);
    pressClimateButton(state, 1, true, 0);
    QVERIFY(!state.systemOn);
}

void TestBoxsimClimateButtons::setsTheFanDirectWithAuto()
{
    ClimateState state;

    pressClimateButton(state, 14, true, 0);
    QCOMPARE(int(state.fanDirect), 1);
    pressClimateButton(state, 14, true, 0);
    QCOMPARE(int(state.fanDirect), 0);
}

void TestBoxsimClimateButtons::goesRoundTheVentPositions()
{
    ClimateState state;

    for (const int expected : {1, 2, 3, 4, 5, 6, 7, 8, 0}) {
        pressClimateButton(state, 15, true, 0);
        QCOMPARE(int(state.ventPosition), expected);
        QCOMPARE(lamp(state, boxsim::LampVent), expected == 0 ? 0 : 1);
    }
}

void TestBoxsimClimateButtons::letsTheSecondZoneFollowWhileDualIsOff()
{
    ClimateState state = middle();

    pressClimateButton(state, 3, true, 0);
    QCOMPARE(int(state.secondTemp), 250);
    pressClimateButton(state, 17, true, 0);
    QCOMPARE(int(state.secondTemp), 205);
    pressClimateButton(state, 3, true, 0);
    QCOMPARE(int(state.secondTemp), 210);
    pressClimateButton(state, 6, true, 0);
    QCOMPARE(int(state.secondTemp), 205);
    QCOMPARE(lamp(state, boxsim::LampDual), 1);
}

void TestBoxsimClimateButtons::joinsMaxWithAirConditioning()
{
    ClimateState state;

    pressClimateButton(state, 19, true, 0);
    QCOMPARE(lamp(state, boxsim::LampAirConditioning), 1);
    pressClimateButton(state, 18, true, 0);
    QCOMPARE(lamp(state, boxsim::LampMaxAirConditioning), 0);
}

void TestBoxsimClimateButtons::ignoresWhatIsNoButton()
{
    const QByteArray before = boxsim::climateDataPayload(middle());
    for (const int button : {0, 29, 255}) {
        ClimateState state = middle();
        pressClimateButton(state, quint8(button), true, 7);
        QCOMPARE(boxsim::climateDataPayload(state), before);
    }
}

QTEST_GUILESS_MAIN(TestBoxsimClimateButtons)
#include "tst_boxsim_climatebuttons.moc"
