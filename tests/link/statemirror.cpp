#include "statemirror.h"

#include "canbusplayer.h"
#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <algorithm>

using namespace canbus;

namespace {

template <class Array, class List>
void copyTo(Array &array, const List &list)
{
    // The throttled items are announced together, also those that were not received yet.
    if (list.isEmpty())
        return;
    if (list.size() != int(array.size()))
        qFatal("a list of %d entries instead of %d", list.size(), int(array.size()));
    std::transform(list.begin(), list.end(), array.begin(),
                   [](auto value) { return typename Array::value_type(value); });
}

template <class Array>
void copyFlags(Array &array, const QMap<int, bool> &flags)
{
    for (auto flag = flags.begin(); flag != flags.end(); ++flag)
        array.at(size_t(flag.key())) = flag.value();
}

} // namespace

StateMirror::StateMirror()
{
    followClimate();
    followClimateScreen();
    followGauges();
    followGaugesTexts();
    followVehicle();
    followParking();
    followPlayer();
}

void StateMirror::followClimate()
{
    using Group = VelClimateGroupCmd;
    Group *const group = Group::instance();
    connect(group, &Group::updateClimateType, this, [this](int type) { climate.type = quint8(type); });
    connect(group, &Group::updateClimateTopText, this, [this](const QString &text) { climate.title = text; });
    connect(group, &Group::updateClimateComText, this,
            [this](const QStringList &texts) { climate.labels = texts; });
    connect(group, &Group::updateClimateBtnStatus, this,
            [this](const QList<int> &states) { copyTo(climate.buttons, states); });
    connect(group, &Group::updateClimateMainTemp, this, [this](int value, int unit) {
        climate.mainTemp = quint16(value);
        climate.mainUnit = quint8(unit);
    });
    connect(group, &Group::updateClimateSecondTemp, this, [this](int value, int unit) {
        climate.secondTemp = quint16(value);
        climate.secondUnit = quint8(unit);
    });
    connect(group, &Group::updateClimateHeatSeat, this, [this](int left, int right) {
        climate.leftHeatedSeat = quint8(left);
        climate.rightHeatedSeat = quint8(right);
    });
    connect(group, &Group::updateClimateCoolSeat, this, [this](int left, int right) {
        climate.leftCooledSeat = quint8(left);
        climate.rightCooledSeat = quint8(right);
    });
}

void StateMirror::followClimateScreen()
{
    using Group = VelClimateGroupCmd;
    Group *const group = Group::instance();
    connect(group, &Group::updateClimateFanDirectValue, this,
            [this](int value) { climate.fanDirectValue = quint8(value); });
    connect(group, &Group::updateClimateFanSpeedStatus, this,
            [this](int value) { climate.fanSpeedStatus = quint8(value); });
    connect(group, &Group::updateClimateVentPosition, this,
            [this](int value) { climate.ventPosition = quint8(value); });
    connect(group, &Group::updateClimateFanDirect, this,
            [this](int value) { climate.fanDirect = quint8(value); });
    connect(group, &Group::updateClimateManualTempValue, this,
            [this](int value) { climate.manualTemp = quint8(value); });
    connect(group, &Group::updateClimateSystem, this, [this](bool on) { climate.systemOn = on; });
    connect(group, &Group::updateClimateDriverSeatPos, this, [this](bool on) { climate.driverSeat = on; });
}

void StateMirror::followGauges()
{
    using Group = VelGaugesGroupCmd;
    Group *const group = Group::instance();
    connect(group, &Group::updateGaugeType, this,
            [this](const QMap<int, bool> &types) { copyFlags(gauges.types, types); });
    connect(group, &Group::updateGaugePeakColorState, this,
            [this](int color) { gauges.peakColor = quint8(color); });
    connect(group, &Group::updateGaugeComLabelsState, this, [this](int state1, int state2) {
        gauges.labelState1 = quint8(state1);
        gauges.labelState2 = quint8(state2);
    });
    connect(group, &Group::updateGaugeZeroPos, this,
            [this](const QList<int> &positions) { copyTo(gauges.zeroPositions, positions); });
    connect(group, &Group::updateGaugeValue, this,
            [this](const QList<int> &values) { copyTo(gauges.values, values); });
    connect(group, &Group::updateGaugeShift, this, [this](bool shift) { gauges.shift = shift; });
    connect(group, &Group::updateGaugeFormat, this,
            [this](const QList<bool> &formats) { copyTo(gauges.formats, formats); });
}

void StateMirror::followGaugesTexts()
{
    using Group = VelGaugesGroupCmd;
    Group *const group = Group::instance();
    connect(group, &Group::updateGaugeTopText, this, [this](const QString &text) { gauges.title = text; });
    const auto follow = [this, group](auto signal, QStringList &mirrored) {
        connect(group, signal, this, [&mirrored](const QStringList &texts) { mirrored = texts; });
    };
    follow(&Group::updateGaugeComText, gauges.labels);
    follow(&Group::updateGaugeScale, gauges.scale);
    follow(&Group::updateGaugeCenterText, gauges.centerTexts);
    follow(&Group::updateGaugeTopLRText, gauges.topTexts);
    follow(&Group::updateGaugeBottomLRText, gauges.bottomTexts);
    follow(&Group::updateGaugeValueText, gauges.valueTexts);
}

void StateMirror::followVehicle()
{
    using Group = VelVehicleGroupCmd;
    Group *const group = Group::instance();
    connect(group, &Group::updateVehicleTopText, this, [this](const QString &text) { vehicle.title = text; });
    connect(group, &Group::updateVehicleComText, this,
            [this](const QStringList &texts) { vehicle.labels = texts; });
    connect(group, &Group::updateVehicleDoorStatus, this,
            [this](const QList<bool> &doors) { copyTo(vehicle.doors, doors); });
    connect(group, &Group::updateVehicleHoodk, this, [this](bool open) { vehicle.hood = open; });
    connect(group, &Group::updateVehicleTrunk, this, [this](bool open) { vehicle.trunk = open; });
    connect(group, &Group::updateVehicleBattery, this, [this](bool on) { vehicle.battery = on; });
    connect(group, &Group::updateVehicleTire, this,
            [this](const QList<int> &states) { copyTo(vehicle.tires, states); });
    connect(group, &Group::updateVehicleCheckEngineState, this,
            [this](int state) { vehicle.checkEngine = quint8(state); });
    connect(group, &Group::updateVehicleComLabelsState, this, [this](int state1, int state2) {
        vehicle.labelState1 = quint8(state1);
        vehicle.labelState2 = quint8(state2);
    });
    connect(group, &Group::updateVehicleTireText, this,
            [this](const QStringList &texts) { vehicle.tireTexts = texts; });
}

void StateMirror::followParking()
{
    using Group = VelParkingGroupCmd;
    Group *const group = Group::instance();
    connect(group, &Group::updateParkTopText, this, [this](const QString &text) { parking.title = text; });
    connect(group, &Group::updateParkComText, this,
            [this](const QStringList &texts) { parking.labels = texts; });
    const auto follow = [this, group](auto signal, boxsim::ParkingZones &mirrored) {
        connect(group, signal, this, [&mirrored](const QList<int> &zones) { copyTo(mirrored, zones); });
    };
    follow(&Group::updateParkSensorFront, parking.front);
    follow(&Group::updateParkSensorRear, parking.rear);
    follow(&Group::updateParkSensorLeft, parking.left);
    follow(&Group::updateParkSensorRight, parking.right);
    connect(group, &Group::updateParkComLabelsState, this, [this](int state1, int state2) {
        parking.labelState1 = quint8(state1);
        parking.labelState2 = quint8(state2);
    });
    connect(group, &Group::updateParkSensorStatus, this,
            [this](const QList<bool> &flags) { copyTo(parking.sensors, flags); });
}

void StateMirror::followPlayer()
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    connect(player, &CanBusPlayer::updateScreenInfo, this,
            [this](const QMap<int, bool> &supported) { copyFlags(screens.supported, supported); });
    connect(player, &CanBusPlayer::updateMenuInfo, this,
            [this](const QList<int> &menu, bool minus, bool plus, const QStringList &texts) {
                copyTo(textScreen.menu, menu);
                textScreen.minus = minus;
                textScreen.plus = plus;
                textScreen.texts = texts;
            });
}
