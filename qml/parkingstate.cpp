#include "parkingstate.h"

#include <velparkinggroupcmd.h>

namespace canbus::qml {

ParkingState::ParkingState(QObject *parent)
    : State(parent)
{
    using Group = VelParkingGroupCmd;
    Group *const group = Group::instance();
    follow(this, group, &Group::updateParkTopText, &ParkingState::m_title, &ParkingState::titleChanged);
    follow(this, group, &Group::updateParkComText, &ParkingState::m_labels, &ParkingState::labelsChanged);
    follow(this, group, &Group::updateParkSensorFront, &ParkingState::m_front, &ParkingState::frontChanged);
    follow(this, group, &Group::updateParkSensorRear, &ParkingState::m_rear, &ParkingState::rearChanged);
    follow(this, group, &Group::updateParkSensorLeft, &ParkingState::m_left, &ParkingState::leftChanged);
    follow(this, group, &Group::updateParkSensorRight, &ParkingState::m_right, &ParkingState::rightChanged);
    follow(this, group, &Group::updateParkComLabelsState, &ParkingState::m_labelState1,
           &ParkingState::labelState1Changed, &ParkingState::m_labelState2,
           &ParkingState::labelState2Changed);
    follow(this, group, &Group::updateParkSensorStatus, &ParkingState::m_sensors,
           &ParkingState::sensorsChanged);
    // All that has arrived so far.
    group->getParkInfo();
}

} // namespace canbus::qml
