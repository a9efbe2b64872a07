#include "boxsim/car/gaugefaces.h"

#include <QtTest/QTest>

using boxsim::GaugeFaces;
using boxsim::GaugesState;
using boxsim::Measurements;

namespace {

Measurements driving()
{
    Measurements car;
    car.speed = 100;
    car.engineSpeed = 2500;
    car.coolant = 90;
    car.boost = -4;
    car.oil = 75;
    car.oilPressure = 45;
    car.fuel = 50;
    car.consumption = 60;
    car.voltage = 142;
    car.outside = -5;
    return car;
}

using Bytes = std::array<quint8, 5>;
using Flags = std::array<bool, 5>;

} // namespace

class TestBoxsimGaugeFaces : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheFirstFaces();
    void showsTheOtherFaces();
    void mixesFaces();
    void staysWithinTheRange();
    void signalsHighEngineSpeed();
    void turnsAGaugeThereAndBack();
};

void TestBoxsimGaugeFaces::showsTheFirstFaces()
{
    const GaugesState state = boxsim::gaugesShowing(driving(), {});

    QCOMPARE(state.valueTexts, QStringList({"100 km/h", "90 °C", "75 °C", "50 %", "14.2 V"}));
    QVERIFY((state.values == Bytes {127, 153, 127, 127, 197}));
    QVERIFY((state.zeroPositions == Bytes {0, 0, 0, 0, 0}));
    QVERIFY((state.formats == Flags {false, false, false, false, true}));
    QCOMPARE(state.centerTexts, QStringList({"Speed", "km/h"}));
    QCOMPARE(state.topTexts, QStringList({"Coolant", "Oil"}));
    QCOMPARE(state.bottomTexts, QStringList({"Fuel", "Battery"}));
    QCOMPARE(state.scale,
             QStringList({"0", "20", "40", "60", "80", "100", "120", "140", "160", "180", "200"}));
}

void TestBoxsimGaugeFaces::showsTheOtherFaces()
{
    const GaugesState state = boxsim::gaugesShowing(driving(), {1, 1, 1, 1, 1});

    QCOMPARE(state.valueTexts, QStringList({"2.5 ×1000/min", "-0.4 bar", "4.5 bar", "6.0 l", "-5 °C"}));
    QVERIFY((state.values == Bytes {127, 51, 114, 51, 89}));
    QVERIFY((state.zeroPositions == Bytes {0, 85, 0, 0, 102}));
    QVERIFY((state.formats == Flags {true, true, true, true, false}));
    QCOMPARE(state.centerTexts, QStringList({"Engine", "×1000/min"}));
    QCOMPARE(state.topTexts, QStringList({"Boost", "Oil pressure"}));
    QCOMPARE(state.bottomTexts, QStringList({"Consumption", "Outside"}));
    QCOMPARE(state.scale,
             QStringList({"0", "0.5", "1.0", "1.5", "2.0", "2.5", "3.0", "3.5", "4.0", "4.5", "5.0"}));
}

void TestBoxsimGaugeFaces::mixesFaces()
{
    const GaugesState state = boxsim::gaugesShowing(driving(), {0, 0, 1, 0, 0});

    QCOMPARE(state.valueTexts, QStringList({"100 km/h", "90 °C", "4.5 bar", "50 %", "14.2 V"}));
    QCOMPARE(state.topTexts, QStringList({"Coolant", "Oil pressure"}));
}

void TestBoxsimGaugeFaces::staysWithinTheRange()
{
    Measurements car;
    car.speed = 400;
    car.coolant = -30;

    const GaugesState state = boxsim::gaugesShowing(car, {});

    QVERIFY((state.values == Bytes {255, 0, 0, 0, 0}));
    QCOMPARE(state.valueTexts.at(1), QStringLiteral("-30 °C"));
}

void TestBoxsimGaugeFaces::signalsHighEngineSpeed()
{
    Measurements car;
    QVERIFY(!boxsim::gaugesShowing(car, {}).shift);
    QCOMPARE(int(boxsim::gaugesShowing(car, {}).peakColor), 0);

    car.engineSpeed = 3499;
    QVERIFY(!boxsim::gaugesShowing(car, {}).shift);
    QCOMPARE(int(boxsim::gaugesShowing(car, {}).peakColor), 4);

    car.engineSpeed = 3500;
    QVERIFY(boxsim::gaugesShowing(car, {}).shift);
    QCOMPARE(int(boxsim::gaugesShowing(car, {}).peakColor), 5);

    car.engineSpeed = 5000;
    QCOMPARE(int(boxsim::gaugesShowing(car, {}).peakColor), 6);
}

void TestBoxsimGaugeFaces::turnsAGaugeThereAndBack()
{
    GaugeFaces faces {};

    boxsim::turnGauge(faces, boxsim::BottomLeftGauge);
    QVERIFY((faces == GaugeFaces {0, 0, 0, 1, 0}));
    boxsim::turnGauge(faces, boxsim::BottomLeftGauge);
    QVERIFY((faces == GaugeFaces {0, 0, 0, 0, 0}));
}

QTEST_GUILESS_MAIN(TestBoxsimGaugeFaces)
#include "tst_boxsim_gaugefaces.moc"
