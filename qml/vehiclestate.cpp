#include "vehiclestate.h"

#include <velvehiclegroupcmd.h>

namespace canbus::qml {

VehicleState::VehicleState(QObject *parent)
    : State(parent)
{
    using Group = VelVehicleGroupCmd;
    Group *const group = Group::instance();
    follow(this, group, &Group::updateVehicleTopText, &VehicleState::m_title, &VehicleState::titleChanged);
    follow(this, group, &Group::updateVehicleComText, &VehicleState::m_labels, &VehicleState::labelsChanged);
    follow(this, group, &Group::updateVehicleDoorStatus, &VehicleState::m_doors, &VehicleState::doorsChanged);
    follow(this, group, &Group::updateVehicleHoodk, &VehicleState::m_hood, &VehicleState::hoodChanged);
    follow(this, group, &Group::updateVehicleTrunk, &VehicleState::m_trunk, &VehicleState::trunkChanged);
    follow(this, group, &Group::updateVehicleBattery, &VehicleState::m_battery,
           &VehicleState::batteryChanged);
    follow(this, group, &Group::updateVehicleTire, &VehicleState::m_tires, &VehicleState::tiresChanged);
    follow(this, group, &Group::updateVehicleCheckEngineState, &VehicleState::m_checkEngine,
           &VehicleState::checkEngineChanged);
    follow(this, group, &Group::updateVehicleComLabelsState, &VehicleState::m_labelState1,
           &VehicleState::labelState1Changed, &VehicleState::m_labelState2,
           &VehicleState::labelState2Changed);
    follow(this, group, &Group::updateVehicleTireText, &VehicleState::m_tireTexts,
           &VehicleState::tireTextsChanged);
    // All that has arrived so far.
    group->getVehicleInfo();
}

} // namespace canbus::qml
