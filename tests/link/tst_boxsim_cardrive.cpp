#include "groups/velclimategroupcmd.h"
#include "groups/velgaugesgroupcmd.h"
#include "groups/velparkinggroupcmd.h"
#include "groups/velvehiclegroupcmd.h"
#include "player/canbusplayer.h"

#include "drivenround.h"

#include <longestwait.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <functional>
#include <memory>
#include <vector>

using boxsim::CarState;
using boxsim::CategoryFrame;
using drivenround::driveAt;
using drivenround::DrivenCar;

namespace {

using Item = std::function<QString(const CarState &)>;

constexpr int kRoundMs = 60000;
constexpr int kStepMs = 250;

QStringList valuesInARound(const Item &item)
{
    QStringList values;
    for (int now = 0; now < kRoundMs; now += kStepMs)
        values.append(item(driveAt(now)));
    return values;
}

void row(const char *name, const Item &item)
{
    QTest::newRow(name) << item;
}

/// A row for each entry of an array.
template <class Array>
void rows(const char *name, std::size_t count, Array &&array)
{
    for (std::size_t i = 0; i < count; ++i)
        QTest::addRow("%s %d", name, int(i))
            << Item([array, i](const CarState &car) { return QString::number(int(array(car)[i])); });
}

/// The frames of which a box has something new to say at this step.
QVector<CategoryFrame> newFrames(int nowMs)
{
    const QVector<CategoryFrame> before = boxsim::framesOf(driveAt(nowMs - kStepMs));
    QVector<CategoryFrame> changed;
    for (const CategoryFrame &frame : boxsim::framesOf(driveAt(nowMs))) {
        const auto same = [&frame](const CategoryFrame &old) {
            return old.tp == frame.tp && old.mod == frame.mod && old.payload == frame.payload;
        };
        if (std::none_of(before.begin(), before.end(), same))
            changed.append(frame);
    }
    return changed;
}

/// Hands a frame to the library as if it had come from the line.
void deliver(const CategoryFrame &frame)
{
    canbus::CanBusPlayer *player = canbus::CanBusPlayer::instance();
    const QByteArray subType(1, char(frame.mod));
    switch (frame.tp) {
    case 0x02:
        return player->suppScreen(frame.payload);
    case 0x03:
        return player->onClimateInfo(subType, frame.payload);
    case 0x04:
        return player->onGaugesInfo(subType, frame.payload);
    case 0x05:
        return player->onVehicleInfo(subType, frame.payload);
    case 0x06:
        return player->onParingAssistInfo(subType, frame.payload);
    case 0x11:
        return player->onTextScreen(frame.payload);
    default:
        QFAIL("a category that the library does not know");
    }
}

/// A spy on every signal of the object whose name begins with "update".
void spyOnUpdates(QObject *object, std::vector<std::unique_ptr<QSignalSpy>> &spies)
{
    const QMetaObject *type = object->metaObject();
    for (int index = type->methodOffset(); index < type->methodCount(); ++index) {
        const QMetaMethod method = type->method(index);
        if (method.methodType() == QMetaMethod::Signal && method.name().startsWith("update"))
            spies.push_back(std::make_unique<QSignalSpy>(object, method));
    }
}

} // namespace

Q_DECLARE_METATYPE(Item)

class TestBoxsimCarDrive : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void changesEachItemInARound_data();
    void changesEachItemInARound();
    void asksForEachTransitionOnceAndForAStep();
    void causesEveryUpdateOfTheLibraryInARound();
    void movesTheGaugesSmoothlyWhileDriving();
    void leavesTheHeadUnitTime();
    void staysCalmBesideTheGauges();
    void beginsTheSameRoundAgain();
    void changesOnlyAtItsSteps();
    void comesNearerOnAllFourSidesWhileReversing();
    void showsASoftTireInStateAndText();
    void showsTheOtherFaceOfATurnedGauge();
    void turnsAllGaugesForTenSeconds();
    void hasNoDataThatTheHeadUnitCannotRead();
};

void TestBoxsimCarDrive::changesEachItemInARound_data()
{
    QTest::addColumn<Item>("item");

    rows("gauge type", 4, [](const CarState &car) { return car.gauges.types; });
    row("gauges title", [](const CarState &car) { return car.gauges.title; });
    row("gauges labels", [](const CarState &car) { return car.gauges.labels.join('/'); });
    row("scale", [](const CarState &car) { return car.gauges.scale.join('/'); });
    row("centre texts", [](const CarState &car) { return car.gauges.centerTexts.join('/'); });
    row("top texts", [](const CarState &car) { return car.gauges.topTexts.join('/'); });
    row("bottom texts", [](const CarState &car) { return car.gauges.bottomTexts.join('/'); });
    row("zero position of the top left gauge",
        [](const CarState &car) { return QString::number(car.gauges.zeroPositions[1]); });
    rows("gauge value", 5, [](const CarState &car) { return car.gauges.values; });
    rows("gauge format", 5, [](const CarState &car) { return car.gauges.formats; });
    row("shift", [](const CarState &car) { return QString::number(car.gauges.shift); });
    row("gauges label state 1", [](const CarState &car) { return QString::number(car.gauges.labelState1); });
    row("gauges label state 2", [](const CarState &car) { return QString::number(car.gauges.labelState2); });
    row("peak colour", [](const CarState &car) { return QString::number(car.gauges.peakColor); });
    row("value texts", [](const CarState &car) { return car.gauges.valueTexts.join('/'); });

    row("vehicle title", [](const CarState &car) { return car.vehicle.title; });
    row("vehicle labels", [](const CarState &car) { return car.vehicle.labels.join('/'); });
    rows("door", 4, [](const CarState &car) { return car.vehicle.doors; });
    row("hood", [](const CarState &car) { return QString::number(car.vehicle.hood); });
    row("trunk", [](const CarState &car) { return QString::number(car.vehicle.trunk); });
    rows("tire", 4, [](const CarState &car) { return car.vehicle.tires; });
    row("check engine", [](const CarState &car) { return QString::number(car.vehicle.checkEngine); });
    row("battery", [](const CarState &car) { return QString::number(car.vehicle.battery); });
    row("vehicle label state 1",
        [](const CarState &car) { return QString::number(car.vehicle.labelState1); });
    row("vehicle label state 2",
        [](const CarState &car) { return QString::number(car.vehicle.labelState2); });
    row("tire texts", [](const CarState &car) { return car.vehicle.tireTexts.join('/'); });

    row("parking title", [](const CarState &car) { return car.parking.title; });
    row("parking labels", [](const CarState &car) { return car.parking.labels.join('/'); });
    rows("front zone", 4, [](const CarState &car) { return car.parking.front; });
    rows("rear zone", 4, [](const CarState &car) { return car.parking.rear; });
    rows("left zone", 4, [](const CarState &car) { return car.parking.left; });
    rows("right zone", 4, [](const CarState &car) { return car.parking.right; });
    row("parking label state 1",
        [](const CarState &car) { return QString::number(car.parking.labelState1); });
    row("parking label state 2",
        [](const CarState &car) { return QString::number(car.parking.labelState2); });
    rows("sensor", 4, [](const CarState &car) { return car.parking.sensors; });

    rows("menu identifier", 4, [](const CarState &car) { return car.textScreen.menu; });
    row("minus", [](const CarState &car) { return QString::number(car.textScreen.minus); });
    row("plus", [](const CarState &car) { return QString::number(car.textScreen.plus); });
    row("menu texts", [](const CarState &car) { return car.textScreen.texts.join('/'); });
    row("supported screens", [](const CarState &car) { return QString::number(car.screens.supported[4]); });
}

void TestBoxsimCarDrive::changesEachItemInARound()
{
    QFETCH(Item, item);

    QStringList values = valuesInARound(item);
    values.removeDuplicates();
    QVERIFY(values.size() >= 2);
}

void TestBoxsimCarDrive::asksForEachTransitionOnceAndForAStep()
{
    QStringList codes = valuesInARound([](const CarState &car) { return QString::number(car.transition); });

    QCOMPARE(codes.removeAll(QStringLiteral("-1")), 240 - 5);
    codes.sort();
    QCOMPARE(codes, QStringList({"0", "1", "2", "3", "4"}));
}

void TestBoxsimCarDrive::causesEveryUpdateOfTheLibraryInARound()
{
    for (const CategoryFrame &frame : boxsim::framesOf(driveAt(0)))
        deliver(frame);
    std::vector<std::unique_ptr<QSignalSpy>> spies;
    spyOnUpdates(canbus::CanBusPlayer::instance(), spies);
    spyOnUpdates(canbus::VelClimateGroupCmd::instance(), spies);
    spyOnUpdates(canbus::VelGaugesGroupCmd::instance(), spies);
    spyOnUpdates(canbus::VelVehicleGroupCmd::instance(), spies);
    spyOnUpdates(canbus::VelParkingGroupCmd::instance(), spies);
    QCOMPARE(int(spies.size()), 2 + 15 + 14 + 10 + 8);

    for (int now = kStepMs; now <= kRoundMs; now += kStepMs) {
        for (const CategoryFrame &frame : newFrames(now))
            deliver(frame);
    }

    // Some are held back for 300 ms.
    for (const std::unique_ptr<QSignalSpy> &spy : spies)
        QTRY_VERIFY2_WITH_TIMEOUT(!spy->isEmpty(), spy->signal().constData(), kLongestWaitMs);
}

void TestBoxsimCarDrive::movesTheGaugesSmoothlyWhileDriving()
{
    for (int now = 10250; now < 33000; now += kStepMs) {
        const auto before = driveAt(now - kStepMs).gauges.values;
        const auto after = driveAt(now).gauges.values;
        for (std::size_t i = 0; i < after.size(); ++i)
            QVERIFY2(qAbs(after[i] - before[i]) <= 10, qPrintable(QString::number(now)));
    }
    for (int second = 11; second < 32; ++second) {
        int changes = 0;
        for (int now = second * 1000; now < second * 1000 + 1000; now += kStepMs)
            changes += driveAt(now).gauges == driveAt(now - kStepMs).gauges ? 0 : 1;
        QVERIFY2(changes >= 2, qPrintable(QString::number(second)));
    }
}

void TestBoxsimCarDrive::leavesTheHeadUnitTime()
{
    int inARound = 0;
    for (int second = 0; second < 60; ++second) {
        int inASecond = 0;
        for (int now = second * 1000 + kStepMs; now <= second * 1000 + 1000; now += kStepMs)
            inASecond += newFrames(now).size();
        QVERIFY2(inASecond <= 15, qPrintable(QString::number(second)));
        inARound += inASecond;
    }
    QVERIFY2(inARound <= 60 * 8, qPrintable(QString::number(inARound)));
}

void TestBoxsimCarDrive::staysCalmBesideTheGauges()
{
    for (int now = kStepMs; now < kRoundMs; now += 500) {
        for (const CategoryFrame &frame : newFrames(now))
            QVERIFY2(frame.tp == 0x04, qPrintable(QString::number(now)));
    }
}

void TestBoxsimCarDrive::beginsTheSameRoundAgain()
{
    for (int now = 0; now < kRoundMs; now += kStepMs)
        QVERIFY(driveAt(now + 3 * kRoundMs) == driveAt(now));
}

void TestBoxsimCarDrive::changesOnlyAtItsSteps()
{
    DrivenCar car;
    for (qint64 due = car.dueMs(); due < 2 * kRoundMs; due = car.dueMs()) {
        QCOMPARE(due % kStepMs, qint64(0));
        car.at(due);
    }
}

void TestBoxsimCarDrive::comesNearerOnAllFourSidesWhileReversing()
{
    QVERIFY((driveAt(44000).parking.rear == boxsim::ParkingZones {255, 255, 255, 255}));
    for (int now = 45500; now <= 56000; now += 500) {
        const boxsim::ParkingState before = driveAt(now - 500).parking;
        const boxsim::ParkingState after = driveAt(now).parking;
        for (std::size_t i = 0; i < 4; ++i) {
            QVERIFY(after.rear[i] < before.rear[i]);
            QVERIFY(after.left[i] < before.left[i]);
            QVERIFY(after.right[i] < before.right[i]);
            QVERIFY(after.front[i] <= before.front[i]);
        }
    }
    const boxsim::ParkingState parked = driveAt(56000).parking;
    QVERIFY((parked.rear == boxsim::ParkingZones {55, 30, 35, 65}));
    QVERIFY((parked.front == boxsim::ParkingZones {110, 95, 90, 105}));
    QVERIFY((parked.sensors == std::array<bool, 4> {true, true, true, true}));
}

void TestBoxsimCarDrive::showsASoftTireInStateAndText()
{
    QCOMPARE(int(driveAt(15000).vehicle.tires[2]), 0);
    QCOMPARE(driveAt(15000).vehicle.tireTexts, QStringList({"2.4", "2.4", "2.5", "2.5"}));
    QCOMPARE(int(driveAt(20000).vehicle.tires[2]), 2);
    QCOMPARE(driveAt(20000).vehicle.tireTexts, QStringList({"2.4", "2.4", "1.3", "2.5"}));
    QCOMPARE(int(driveAt(24000).vehicle.tires[2]), 0);
}

void TestBoxsimCarDrive::showsTheOtherFaceOfATurnedGauge()
{
    DrivenCar usual;
    DrivenCar turned({0, 1, 0, 0, 0});

    QCOMPARE(usual.at(20000).gauges.topTexts, QStringList({"Coolant", "Oil"}));
    QCOMPARE(usual.at(20000).gauges.valueTexts.at(1), QStringLiteral("90 °C"));
    QCOMPARE(turned.at(20000).gauges.topTexts, QStringList({"Boost", "Oil"}));
    QCOMPARE(turned.at(20000).gauges.valueTexts.at(1), QStringLiteral("0.8 bar"));
    QCOMPARE(turned.at(22000).gauges.valueTexts.at(1), QStringLiteral("1.4 bar"));
}

void TestBoxsimCarDrive::turnsAllGaugesForTenSeconds()
{
    for (const boxsim::GaugeFaces &faces : {boxsim::GaugeFaces {}, boxsim::GaugeFaces {0, 1, 0, 0, 0}}) {
        DrivenCar car(faces);
        QCOMPARE(car.at(33000).gauges.topTexts, QStringList({"Boost", "Oil pressure"}));
        QCOMPARE(car.at(42750).gauges.topTexts, QStringList({"Boost", "Oil pressure"}));
        QCOMPARE(car.at(43000).gauges.topTexts, QStringList({"Coolant", "Oil"}));
    }
}

void TestBoxsimCarDrive::hasNoDataThatTheHeadUnitCannotRead()
{
    for (const boxsim::GaugeFaces &faces : {boxsim::GaugeFaces {}, boxsim::GaugeFaces {1, 1, 1, 1, 1}}) {
        DrivenCar car(faces);
        for (int now = 0; now < kRoundMs; now += kStepMs) {
            for (const CategoryFrame &frame : boxsim::framesOf(car.at(now)))
                QVERIFY2(!frame.payload.contains("\x9f\x03"), frame.payload.toHex(' ').constData());
        }
    }
}

QTEST_GUILESS_MAIN(TestBoxsimCarDrive)
#include "tst_boxsim_cardrive.moc"
