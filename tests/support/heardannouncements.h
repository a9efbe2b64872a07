#pragma once

#include "canbusplayer.h"
#include "itemtable.h"
#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <touchevent.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <utility>

/// Hears everything that the facade and the groups announce, in the form of the item table, and the touches
/// that reach the application object.
class HeardAnnouncements : public QObject {
public:
    HeardAnnouncements()
    {
        QCoreApplication::instance()->installEventFilter(this);
        hearClimate(canbus::VelClimateGroupCmd::instance());
        hearGauges(canbus::VelGaugesGroupCmd::instance());
        hearVehicle(canbus::VelVehicleGroupCmd::instance());
        hearParking(canbus::VelParkingGroupCmd::instance());
        using canbus::CanBusPlayer;
        hear(CanBusPlayer::instance(), &CanBusPlayer::updateScreenInfo, "updateScreenInfo");
        hear(CanBusPlayer::instance(), &CanBusPlayer::updateMenuInfo, "updateMenuInfo");
    }

    /// What was announced since the last call, in order.
    itemtable::Announcements take() { return std::exchange(m_heard, {}); }

    /// The touches since the last call, those among them that were posted delivered first.
    QList<int> takeTouches()
    {
        QCoreApplication::sendPostedEvents(QCoreApplication::instance(), kTouch);
        return std::exchange(m_touches, {});
    }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (receiver != QCoreApplication::instance() || event->type() != kTouch)
            return false;
        m_touches += static_cast<TouchEvent *>(event)->touch;
        return true;
    }

private:
    Q_DISABLE_COPY(HeardAnnouncements)

    static constexpr int kTouch = 1008;

    void hearClimate(canbus::VelClimateGroupCmd *group)
    {
        using Group = canbus::VelClimateGroupCmd;
        hear(group, &Group::updateClimateType, "updateClimateType");
        hear(group, &Group::updateClimateTopText, "updateClimateTopText");
        hear(group, &Group::updateClimateComText, "updateClimateComText");
        hear(group, &Group::updateClimateBtnStatus, "updateClimateBtnStatus");
        hear(group, &Group::updateClimateMainTemp, "updateClimateMainTemp");
        hear(group, &Group::updateClimateSecondTemp, "updateClimateSecondTemp");
        hear(group, &Group::updateClimateHeatSeat, "updateClimateHeatSeat");
        hear(group, &Group::updateClimateCoolSeat, "updateClimateCoolSeat");
        hear(group, &Group::updateClimateFanDirectValue, "updateClimateFanDirectValue");
        hear(group, &Group::updateClimateFanSpeedStatus, "updateClimateFanSpeedStatus");
        hear(group, &Group::updateClimateVentPosition, "updateClimateVentPosition");
        hear(group, &Group::updateClimateFanDirect, "updateClimateFanDirect");
        hear(group, &Group::updateClimateManualTempValue, "updateClimateManualTempValue");
        hear(group, &Group::updateClimateSystem, "updateClimateSystem");
        hear(group, &Group::updateClimateDriverSeatPos, "updateClimateDriverSeatPos");
    }

    void hearGauges(canbus::VelGaugesGroupCmd *group)
    {
        using Group = canbus::VelGaugesGroupCmd;
        hear(group, &Group::updateGaugeType, "updateGaugeType");
        hear(group, &Group::updateGaugeTopText, "updateGaugeTopText");
        hear(group, &Group::updateGaugeComText, "updateGaugeComText");
        hear(group, &Group::updateGaugeScale, "updateGaugeScale");
        hear(group, &Group::updateGaugeCenterText, "updateGaugeCenterText");
        hear(group, &Group::updateGaugeTopLRText, "updateGaugeTopLRText");
        hear(group, &Group::updateGaugeBottomLRText, "updateGaugeBottomLRText");
        hear(group, &Group::updateGaugePeakColorState, "updateGaugePeakColorState");
        hear(group, &Group::updateGaugeComLabelsState, "updateGaugeComLabelsState");
        hear(group, &Group::updateGaugeZeroPos, "updateGaugeZeroPos");
        hear(group, &Group::updateGaugeValue, "updateGaugeValue");
        hear(group, &Group::updateGaugeValueText, "updateGaugeValueText");
        hear(group, &Group::updateGaugeShift, "updateGaugeShift");
        hear(group, &Group::updateGaugeFormat, "updateGaugeFormat");
    }

    void hearVehicle(canbus::VelVehicleGroupCmd *group)
    {
        using Group = canbus::VelVehicleGroupCmd;
        hear(group, &Group::updateVehicleTopText, "updateVehicleTopText");
        hear(group, &Group::updateVehicleComText, "updateVehicleComText");
        hear(group, &Group::updateVehicleDoorStatus, "updateVehicleDoorStatus");
        hear(group, &Group::updateVehicleHoodk, "updateVehicleHoodk");
        hear(group, &Group::updateVehicleTrunk, "updateVehicleTrunk");
        hear(group, &Group::updateVehicleBattery, "updateVehicleBattery");
        hear(group, &Group::updateVehicleTire, "updateVehicleTire");
        hear(group, &Group::updateVehicleCheckEngineState, "updateVehicleCheckEngineState");
        hear(group, &Group::updateVehicleComLabelsState, "updateVehicleComLabelsState");
        hear(group, &Group::updateVehicleTireText, "updateVehicleTireText");
    }

    void hearParking(canbus::VelParkingGroupCmd *group)
    {
        using Group = canbus::VelParkingGroupCmd;
        hear(group, &Group::updateParkTopText, "updateParkTopText");
        hear(group, &Group::updateParkComText, "updateParkComText");
        hear(group, &Group::updateParkSensorFront, "updateParkSensorFront");
        hear(group, &Group::updateParkSensorRear, "updateParkSensorRear");
        hear(group, &Group::updateParkSensorLeft, "updateParkSensorLeft");
        hear(group, &Group::updateParkSensorRight, "updateParkSensorRight");
        hear(group, &Group::updateParkComLabelsState, "updateParkComLabelsState");
        hear(group, &Group::updateParkSensorStatus, "updateParkSensorStatus");
    }

    template <class Sender, class... Values>
    void hear(Sender *sender, void (Sender::*signal)(Values...), const char *name)
    {
        connect(sender, signal, this, [this, row = itemtable::rowOf(name)](const Values &...values) {
            itemtable::Value value;
            (add(value, values), ...);
            m_heard.push_back({row, value});
        });
    }

    static void add(itemtable::Value &value, int number) { value.numbers += number; }
    static void add(itemtable::Value &value, bool flag) { value.numbers += flag ? 1 : 0; }
    static void add(itemtable::Value &value, const QList<int> &numbers) { value.numbers += numbers; }
    static void add(itemtable::Value &value, const QString &text) { value.texts += text; }
    static void add(itemtable::Value &value, const QStringList &texts) { value.texts += texts; }

    static void add(itemtable::Value &value, const QList<bool> &flags)
    {
        for (const bool flag : flags)
            add(value, flag);
    }

    // The keys are 0, 1, 2 and so on: another one would stand in the wrong place.
    static void add(itemtable::Value &value, const QMap<int, bool> &flags)
    {
        for (int key = 0; key < flags.size(); ++key)
            value.numbers += flags.contains(key) ? int(flags.value(key)) : -1;
    }

    itemtable::Announcements m_heard;
    QList<int> m_touches;
};
