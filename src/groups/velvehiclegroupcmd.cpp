#include "velvehiclegroupcmd.h"

#include "canbuslog.h"
#include "groupcommand.h"
#include "grouptexts.h"
#include "support/bytes.h"
#include "support/changerule.h"
#include "support/processwide.h"

#include <array>

namespace canbus {

namespace {

constexpr int kShortestData = 3;
constexpr int kTireTexts = 3;
constexpr int kTireTextDelayMs = 300;

} // namespace

VelVehicleGroupCmd *VelVehicleGroupCmd::instance()
{
    static const ProcessWide<VelVehicleGroupCmd> group;
    return group.get();
}

VelVehicleGroupCmd::VelVehicleGroupCmd(QObject *parent)
    : QObject(parent)
{
    m_tireTextTimer.setInterval(kTireTextDelayMs);
    m_tireTextTimer.setSingleShot(true);
    m_tireTextTimer.setTimerType(Qt::PreciseTimer); // a coarse one may be 15 ms early or late
    connect(&m_tireTextTimer, &QTimer::timeout, this, &VelVehicleGroupCmd::onTimerOut);
}

void VelVehicleGroupCmd::onVehicleTopText(QByteArray data)
{
    if (takeTitle(CANBUS_HERE, m_topText, data))
        Q_EMIT updateVehicleTopText(m_topText);
}

void VelVehicleGroupCmd::onVehicleCustomLabel(QByteArray data)
{
    if (takeTexts(CANBUS_HERE, m_comText, data, ArrivalInLog::Yes))
        Q_EMIT updateVehicleComText(m_comText);
}

void VelVehicleGroupCmd::onVehicleData(QByteArray data)
{
    if (data.size() < kShortestData) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    onVehicleDoorStatus(data.at(0));
    onVehicleHoodStatus(data.at(0));
    onVehicleTrunkStatus(data.at(0));
    onVehicleBatteryStatus(data.at(2));
    onVehicleTire(data);
    onVehicleCheckEngineState(data);
    onVehicleComLabelsState(data);
    onVehicleTireText(data);
}

void VelVehicleGroupCmd::onVehicleDoorStatus(char byte)
{
    if (replaceIfChanged(m_doors, bitsAt(quint8(byte), 0, 1, 2, 3))) {
        CANBUS_DEBUG() << m_doors;
        Q_EMIT updateVehicleDoorStatus(m_doors);
    }
}

void VelVehicleGroupCmd::onVehicleHoodStatus(char byte)
{
    if (replaceIfChanged(m_hood, bitAt(quint8(byte), 4))) {
        CANBUS_DEBUG() << m_hood;
        Q_EMIT updateVehicleHoodk(m_hood);
    }
}

void VelVehicleGroupCmd::onVehicleTrunkStatus(char byte)
{
    if (replaceIfChanged(m_trunk, bitAt(quint8(byte), 5))) {
        CANBUS_DEBUG() << m_trunk;
        Q_EMIT updateVehicleTrunk(m_trunk);
    }
}

void VelVehicleGroupCmd::onVehicleBatteryStatus(char byte)
{
    if (replaceIfChanged(m_battery, bitAt(quint8(byte), 2))) {
        CANBUS_DEBUG() << m_battery;
        Q_EMIT updateVehicleBattery(m_battery);
    }
}

void VelVehicleGroupCmd::onVehicleTire(QByteArray data)
{
    const quint8 byte = byteAt(data, 1);
    const std::array states {state2At(byte, 0, 1), state2At(byte, 2, 3), state2At(byte, 4, 5),
                             state2At(byte, 6, 7)};
    if (replaceIfChanged(m_tires, states)) {
        CANBUS_DEBUG() << m_tires;
        Q_EMIT updateVehicleTire(m_tires);
    }
}

void VelVehicleGroupCmd::onVehicleCheckEngineState(QByteArray data)
{
    if (replaceIfChanged(m_checkEngineState, state2At(byteAt(data, 2), 0, 1))) {
        CANBUS_DEBUG() << m_checkEngineState;
        Q_EMIT updateVehicleCheckEngineState(m_checkEngineState);
    }
}

void VelVehicleGroupCmd::onVehicleComLabelsState(QByteArray data)
{
    const int state1 = state2At(byteAt(data, 2), 4, 5);
    const int state2 = state2At(byteAt(data, 2), 6, 7);
    if (replaceIfChanged(m_comLabelState1, state1, m_comLabelState2, state2)) {
        CANBUS_DEBUG() << m_comLabelState1 << m_comLabelState2;
        Q_EMIT updateVehicleComLabelsState(m_comLabelState1, m_comLabelState2);
    }
}

void VelVehicleGroupCmd::onVehicleTireText(QByteArray data)
{
    if (!replaceIfChangedOrEmpty(m_tireText, textsIn(data, kTireTexts)))
        return;
    CANBUS_DEBUG() << m_tireText;
    if (!m_tireTextTimer.isActive())
        m_tireTextTimer.start();
}

void VelVehicleGroupCmd::onTimerOut()
{
    CANBUS_DEBUG() << "VelVehicleGroupCmd timer out";
    Q_EMIT updateVehicleTireText(m_tireText);
}

void VelVehicleGroupCmd::getVehicleInfo()
{
    Q_EMIT updateVehicleTopText(m_topText);
    Q_EMIT updateVehicleComText(m_comText);
    Q_EMIT updateVehicleDoorStatus(m_doors);
    Q_EMIT updateVehicleHoodk(m_hood);
    Q_EMIT updateVehicleTrunk(m_trunk);
    Q_EMIT updateVehicleBattery(m_battery);
    Q_EMIT updateVehicleTire(m_tires);
    Q_EMIT updateVehicleCheckEngineState(m_checkEngineState);
    Q_EMIT updateVehicleComLabelsState(m_comLabelState1, m_comLabelState2);
    Q_EMIT updateVehicleTireText(m_tireText);
}

void VelVehicleGroupCmd::requestVehicleInfo()
{
    sendCommand(CANBUS_HERE, Category::Vehicle, Command::RequestData, {quint8(DataPage::Vehicle)});
}

void VelVehicleGroupCmd::settings()
{
    sendCommand(CANBUS_HERE, Category::Vehicle, Command::Settings, {0});
}

void VelVehicleGroupCmd::checkEngine()
{
    sendCommand(CANBUS_HERE, Category::Vehicle, Command::VehicleButton,
                {quint8(VehicleButton::CheckEngine), kPress});
}

void VelVehicleGroupCmd::customControl1()
{
    sendCommand(CANBUS_HERE, Category::Vehicle, Command::VehicleButton,
                {quint8(VehicleButton::CustomControl1), kPress});
}

void VelVehicleGroupCmd::customControl2()
{
    sendCommand(CANBUS_HERE, Category::Vehicle, Command::VehicleButton,
                {quint8(VehicleButton::CustomControl2), kPress});
}

} // namespace canbus
