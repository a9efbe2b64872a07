#include "drive.h"

#include "boxsim/menu.h"

#include <initializer_list>

namespace boxsim {

namespace {

constexpr int kEngineStartMs = 3000;
constexpr int kTiresKnownMs = 11000;
constexpr int kSoftTireMs = 16000;
constexpr int kSofterTireMs = 19000;
constexpr int kTireWellMs = 24000;
constexpr int kCheckEngineMs = 26000;
constexpr int kCheckEngineUrgentMs = 28000;
constexpr int kEngineWellMs = 31000;
constexpr int kOtherGaugesMs = 33000;
constexpr int kUsualGaugesMs = 43000;
constexpr int kReverseMs = 45000;
constexpr int kParkedMs = 56000;
constexpr int kEngineOffMs = 57000;

/// A value at a moment of the round; between two of them it moves evenly.
struct Point {
    int ms;
    int value;
};

using Curve = std::initializer_list<Point>;

/// The value of a curve whose first point is the beginning of the round and whose last is its end.
int along(const Curve &curve, int ms)
{
    const Point *from = curve.begin();
    while (from + 2 < curve.end() && from[1].ms <= ms)
        ++from;
    const Point &to = from[1];
    return from->value + (to.value - from->value) * (ms - from->ms) / (to.ms - from->ms);
}

bool isWithin(int ms, int from, int until)
{
    return ms >= from && ms < until;
}

int speedAt(int ms)
{
    return along({{0, 0},
                  {10000, 0},
                  {14000, 52},
                  {18000, 60},
                  {24000, 118},
                  {31000, 146},
                  {36000, 84},
                  {42000, 22},
                  {44000, 0},
                  {46000, 0},
                  {47000, 4},
                  {55000, 4},
                  {56000, 0},
                  {60000, 0}},
                 ms);
}

int engineSpeedAt(int ms)
{
    return along({{0, 0},        {3000, 0},     {3500, 1250},  {10000, 850},  {12500, 3000},
                  {13000, 1900}, {16000, 2700}, {18000, 2100}, {22000, 3900}, {23000, 2600},
                  {31000, 4400}, {36000, 2100}, {42000, 1300}, {44000, 850},  {46000, 850},
                  {47000, 1200}, {55000, 1100}, {57000, 850},  {57250, 0},    {60000, 0}},
                 ms);
}

Measurements measurementsAt(int ms)
{
    Measurements car;
    car.speed = speedAt(ms);
    car.engineSpeed = engineSpeedAt(ms);
    const bool running = car.engineSpeed > 0;
    car.coolant = along({{0, 20}, {3000, 20}, {20000, 90}, {32000, 96}, {56000, 90}, {60000, 20}}, ms);
    car.boost = running ? car.engineSpeed / 150 - 12 : 0;
    car.oil = along({{0, 18}, {4000, 18}, {28000, 98}, {34000, 106}, {56000, 92}, {60000, 18}}, ms);
    car.oilPressure = running ? 8 + car.engineSpeed / 90 : 0;
    car.fuel = along({{0, 78}, {4000, 78}, {56000, 41}, {60000, 78}}, ms);
    car.consumption = running ? 8 + car.engineSpeed / 40 : 0;
    car.voltage = running ? 142 - car.engineSpeed / 1500 : along({{0, 122}, {3000, 116}, {60000, 122}}, ms);
    car.outside = along({{0, -4}, {30000, 3}, {60000, -4}}, ms);
    return car;
}

GaugesState gaugesAt(int ms, GaugeFaces faces)
{
    const bool other = isWithin(ms, kOtherGaugesMs, kUsualGaugesMs);
    for (quint8 &face : faces)
        face ^= other ? 1U : 0U;
    GaugesState state = gaugesShowing(measurementsAt(ms), faces);
    state.types = {!other, !other, other, other};
    state.title = other ? QStringLiteral("Sport") : QStringLiteral("Gauges");
    state.labels = other ? QStringList {"Comfort", "Peak"} : QStringList {"Sport", "Peak"};
    state.labelState1 = other ? 2 : 0;
    state.labelState2 = isWithin(ms, kCheckEngineMs, kOtherGaugesMs) ? 3 : 0;
    return state;
}

void setOpenings(VehicleState &state, int ms)
{
    const bool atRest = ms >= kEngineOffMs;
    state.doors = {ms < 2000 || atRest, ms >= 57500, ms >= 58000, ms >= 58500};
    state.trunk = isWithin(ms, 57500, 59500);
    state.hood = isWithin(ms, 58000, 59500) || ms < 1000;
}

void setTires(VehicleState &state, int ms)
{
    state.tires = {3, 3, 3, 3};
    state.tireTexts = QStringList {"--", "--", "--", "--"};
    if (!isWithin(ms, kTiresKnownMs, kEngineOffMs))
        return;
    const bool soft = isWithin(ms, kSoftTireMs, kTireWellMs);
    const bool softer = isWithin(ms, kSofterTireMs, kTireWellMs);
    state.tires = {0, 0, quint8(softer ? 2 : soft ? 1 : 0), 0};
    state.tireTexts = QStringList {"2.4", "2.4", softer ? "1.3" : soft ? "1.8" : "2.5", "2.5"};
}

quint8 checkEngineAt(int ms)
{
    if (isWithin(ms, kCheckEngineUrgentMs, kEngineWellMs))
        return 2;
    const bool lampTest = isWithin(ms, 2000, 4000);
    return lampTest || isWithin(ms, kCheckEngineMs, kEngineWellMs) ? 1 : 0;
}

VehicleState vehicleAt(int ms)
{
    const bool soft = isWithin(ms, kSoftTireMs, kTireWellMs);
    VehicleState state;
    state.title = soft ? QStringLiteral("Check the tires") : QStringLiteral("Vehicle");
    state.labels = soft ? QStringList {"Reset", "Tires"} : QStringList {"Reset", "Service"};
    setOpenings(state, ms);
    setTires(state, ms);
    state.checkEngine = checkEngineAt(ms);
    state.battery = ms < kEngineStartMs;
    state.labelState1 = isWithin(ms, kCheckEngineMs, kEngineWellMs) ? 2 : 0;
    state.labelState2 = soft ? 2 : 0;
    return state;
}

/// Four zones at a distance that falls from `far` to `near` while the car reverses; the outer zones see the
/// obstacle farther away.
ParkingZones zonesAt(int ms, int far, int near, const std::array<int, 4> &farther)
{
    constexpr int kCalmMs = 500;
    ParkingZones zones {255, 255, 255, 255};
    if (!isWithin(ms, kReverseMs, kEngineOffMs))
        return zones;
    const int calm = ms / kCalmMs * kCalmMs;
    const int distance =
        along({{0, far}, {kReverseMs, far}, {kParkedMs, near}, {int(kDriveRoundMs), near}}, calm);
    for (std::size_t i = 0; i < zones.size(); ++i)
        zones[i] = quint8(qMin(distance + farther[i], 255));
    return zones;
}

ParkingState parkingAt(int ms)
{
    const bool reversing = isWithin(ms, kReverseMs, kEngineOffMs);
    ParkingState state;
    state.title = reversing ? QStringLiteral("Reversing") : QStringLiteral("Parking assist");
    state.labels = reversing ? QStringList {"Mute", "Camera"} : QStringList {"Mute", "Trailer"};
    state.rear = zonesAt(ms, 180, 30, {25, 0, 5, 35});
    state.left = zonesAt(ms, 160, 45, {0, 10, 25, 45});
    state.right = zonesAt(ms, 150, 60, {5, 0, 15, 30});
    state.front = zonesAt(ms, 240, 90, {20, 5, 0, 15});
    state.labelState1 = reversing ? 1 : 0;
    state.labelState2 = isWithin(ms, 52000, kEngineOffMs) ? 2 : 0;
    // The rear sensors wake with the reverse gear, the others when the car is in the space.
    state.sensors = {isWithin(ms, 49000, kEngineOffMs), reversing, isWithin(ms, 47000, kEngineOffMs),
                     isWithin(ms, 47000, kEngineOffMs)};
    return state;
}

TextScreen menuAt(int ms)
{
    if (isWithin(ms, 12000, 16000))
        return menuScreen(1, 0, along({{0, 7}, {12000, 7}, {15000, kHighestMenuValue}, {60000, 10}}, ms));
    if (isWithin(ms, 34000, 38000))
        return menuScreen(3, 1, along({{0, 2}, {34000, 2}, {37000, 0}, {60000, 0}}, ms));
    return menuScreen(0);
}

/// Each request stands for one step.
int transitionAt(int ms)
{
    constexpr Point requests[] = {{10000, 1}, {25000, 2}, {33000, 3}, {kReverseMs, 4}, {58000, 0}};
    for (const Point &request : requests) {
        if (isWithin(ms, request.ms, request.ms + int(kDriveStepMs)))
            return request.value;
    }
    return kNoTransition;
}

} // namespace

CarState driveAt(qint64 nowMs, const GaugeFaces &turned)
{
    const int ms = int(nowMs % kDriveRoundMs / kDriveStepMs * kDriveStepMs);
    CarState state;
    state.climate = climateDriveAt(nowMs);
    state.gauges = gaugesAt(ms, turned);
    state.vehicle = vehicleAt(ms);
    state.parking = parkingAt(ms);
    state.textScreen = menuAt(ms);
    // The last screen is not to be had while the car is left.
    state.screens.supported[4] = ms < kEngineOffMs;
    state.transition = transitionAt(ms);
    return state;
}

} // namespace boxsim
