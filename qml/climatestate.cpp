#include "climatestate.h"

#include <velclimategroupcmd.h>

namespace canbus::qml {

ClimateState::ClimateState(QObject *parent)
    : State(parent)
{
    using Group = VelClimateGroupCmd;
    Group *const group = Group::instance();
    follow(this, group, &Group::updateClimateType, &ClimateState::m_type, &ClimateState::typeChanged);
    follow(this, group, &Group::updateClimateTopText, &ClimateState::m_title, &ClimateState::titleChanged);
    follow(this, group, &Group::updateClimateComText, &ClimateState::m_labels, &ClimateState::labelsChanged);
    follow(this, group, &Group::updateClimateBtnStatus, &ClimateState::m_buttons,
           &ClimateState::buttonsChanged);
    follow(this, group, &Group::updateClimateMainTemp, &ClimateState::m_mainTemp,
           &ClimateState::mainTempChanged, &ClimateState::m_mainUnit, &ClimateState::mainUnitChanged);
    follow(this, group, &Group::updateClimateSecondTemp, &ClimateState::m_secondTemp,
           &ClimateState::secondTempChanged, &ClimateState::m_secondUnit, &ClimateState::secondUnitChanged);
    follow(this, group, &Group::updateClimateHeatSeat, &ClimateState::m_leftHeatedSeat,
           &ClimateState::leftHeatedSeatChanged, &ClimateState::m_rightHeatedSeat,
           &ClimateState::rightHeatedSeatChanged);
    follow(this, group, &Group::updateClimateCoolSeat, &ClimateState::m_leftCooledSeat,
           &ClimateState::leftCooledSeatChanged, &ClimateState::m_rightCooledSeat,
           &ClimateState::rightCooledSeatChanged);
    follow(this, group, &Group::updateClimateFanDirectValue, &ClimateState::m_fanDirectValue,
           &ClimateState::fanDirectValueChanged);
    follow(this, group, &Group::updateClimateFanSpeedStatus, &ClimateState::m_fanSpeedStatus,
           &ClimateState::fanSpeedStatusChanged);
    follow(this, group, &Group::updateClimateVentPosition, &ClimateState::m_ventPosition,
           &ClimateState::ventPositionChanged);
    follow(this, group, &Group::updateClimateFanDirect, &ClimateState::m_fanDirect,
           &ClimateState::fanDirectChanged);
    follow(this, group, &Group::updateClimateManualTempValue, &ClimateState::m_manualTemp,
           &ClimateState::manualTempChanged);
    follow(this, group, &Group::updateClimateSystem, &ClimateState::m_systemOn,
           &ClimateState::systemOnChanged);
    follow(this, group, &Group::updateClimateDriverSeatPos, &ClimateState::m_driverSeat,
           &ClimateState::driverSeatChanged);
    // All that has arrived so far.
    group->getClimateInfo();
}

} // namespace canbus::qml
