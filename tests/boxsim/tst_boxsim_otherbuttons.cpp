#include "boxsim/car/otherbuttons.h"

#include <QtTest/QTest>

using boxsim::GaugeFaces;
using boxsim::GaugesState;
using boxsim::ParkingState;
using boxsim::VehicleState;

class TestBoxsimOtherButtons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void turnsTheGaugeThatIsPressed_data();
    void turnsTheGaugeThatIsPressed();
    void togglesTheLabelStatesOfTheGauges();
    void cyclesTheCheckEngineState();
    void togglesTheLabelStatesOfTheVehicle();
    void togglesTheLabelStatesOfTheParkingAssist();
    void ignoresReleasesAndWhatIsNoButton();
};

void TestBoxsimOtherButtons::turnsTheGaugeThatIsPressed_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("gauge");

    QTest::newRow("Gauge1_CenterGauge") << 1 << 0;
    QTest::newRow("Gauge2_TopLeft") << 2 << 1;
    QTest::newRow("Gauge3_TopRight") << 3 << 2;
    QTest::newRow("Gauge4_BottomLeft") << 4 << 3;
    QTest::newRow("Gauge5_BottomRight") << 5 << 4;
}

void TestBoxsimOtherButtons::turnsTheGaugeThatIsPressed()
{
    QFETCH(int, button);
    QFETCH(int, gauge);
    GaugesState state;
    GaugeFaces faces {};
    GaugeFaces turned {};
    turned[std::size_t(gauge)] = 1;

    boxsim::pressGaugesButton(state, faces, quint8(button), true);
    QVERIFY(faces == turned);
    boxsim::pressGaugesButton(state, faces, quint8(button), false);
    QVERIFY(faces == turned);
    boxsim::pressGaugesButton(state, faces, quint8(button), true);
    QVERIFY(faces == GaugeFaces {});
    QVERIFY(state == GaugesState());
}

void TestBoxsimOtherButtons::togglesTheLabelStatesOfTheGauges()
{
    GaugesState state;
    GaugeFaces faces {};

    boxsim::pressGaugesButton(state, faces, 6, true);
    QCOMPARE(int(state.labelState1), 1);
    QCOMPARE(int(state.labelState2), 0);
    boxsim::pressGaugesButton(state, faces, 6, true);
    QCOMPARE(int(state.labelState1), 0);

    state.labelState2 = 3;
    boxsim::pressGaugesButton(state, faces, 7, true);
    QCOMPARE(int(state.labelState2), 0);
    boxsim::pressGaugesButton(state, faces, 7, true);
    QCOMPARE(int(state.labelState2), 1);
    QVERIFY(faces == GaugeFaces {});
}

void TestBoxsimOtherButtons::cyclesTheCheckEngineState()
{
    VehicleState state;

    for (const int expected : {1, 2, 3, 0, 1}) {
        boxsim::pressVehicleButton(state, 1, true);
        QCOMPARE(int(state.checkEngine), expected);
    }
}

void TestBoxsimOtherButtons::togglesTheLabelStatesOfTheVehicle()
{
    VehicleState state;

    boxsim::pressVehicleButton(state, 2, true);
    QCOMPARE(int(state.labelState1), 1);
    QCOMPARE(int(state.labelState2), 0);
    boxsim::pressVehicleButton(state, 3, true);
    QCOMPARE(int(state.labelState2), 1);
    boxsim::pressVehicleButton(state, 2, true);
    boxsim::pressVehicleButton(state, 3, true);
    QVERIFY(state == VehicleState());
}

void TestBoxsimOtherButtons::togglesTheLabelStatesOfTheParkingAssist()
{
    ParkingState state;

    boxsim::pressParkingButton(state, 1, true);
    QCOMPARE(int(state.labelState1), 1);
    QCOMPARE(int(state.labelState2), 0);
    boxsim::pressParkingButton(state, 2, true);
    QCOMPARE(int(state.labelState2), 1);
    boxsim::pressParkingButton(state, 1, true);
    boxsim::pressParkingButton(state, 2, true);
    QVERIFY(state == ParkingState());
}

void TestBoxsimOtherButtons::ignoresReleasesAndWhatIsNoButton()
{
    GaugesState gauges;
    GaugeFaces faces {};
    VehicleState vehicle;
    ParkingState parking;

    for (int button = 0; button <= 255; ++button) {
        const bool isButton = button >= 1 && button <= 7;
        boxsim::pressGaugesButton(gauges, faces, quint8(button), !isButton);
        boxsim::pressVehicleButton(vehicle, quint8(button), !isButton);
        boxsim::pressParkingButton(parking, quint8(button), !isButton);
    }

    QVERIFY(gauges == GaugesState());
    QVERIFY(faces == GaugeFaces {});
    QVERIFY(vehicle == VehicleState());
    QVERIFY(parking == ParkingState());
}

QTEST_GUILESS_MAIN(TestBoxsimOtherButtons)
#include "tst_boxsim_otherbuttons.moc"
