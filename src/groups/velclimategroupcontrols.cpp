#include "velclimategroupcmd.h"

#include "groupcommand.h"

namespace canbus {

void VelClimateGroupCmd::requestClimateInfo()
{
    sendCommand(CANBUS_HERE, Category::Climate, Command::RequestData, {quint8(DataPage::Climate)});
}

void VelClimateGroupCmd::settings()
{
    sendCommand(CANBUS_HERE, Category::Climate, Command::Settings, {0}, {}, IdInLog::AsItIs);
}

void VelClimateGroupCmd::onSendDataSort(char Type, bool isPress, char value)
{
    sendCommand(CANBUS_HERE, Category::Climate, Command::ClimateButton, {quint8(Type), quint8(isPress)},
                QByteArray(1, value));
}

void VelClimateGroupCmd::onOff()
{
    onSendDataSort(char(ClimateButton::OnOff));
}

void VelClimateGroupCmd::rearZone(bool isPress)
{
    onSendDataSort(char(ClimateButton::RearZone), isPress);
}

void VelClimateGroupCmd::autoMainZoneTempPlus(bool isPress)
{
    onSendDataSort(char(ClimateButton::AutoMainZoneTempPlus), isPress);
}

void VelClimateGroupCmd::autoMainZoneTempMinus(bool isPress)
{
    onSendDataSort(char(ClimateButton::AutoMainZoneTempMinus), isPress);
}

void VelClimateGroupCmd::autoSecondZoneTempPlus(bool isPress)
{
    onSendDataSort(char(ClimateButton::AutoSecondZoneTempPlus), isPress);
}

void VelClimateGroupCmd::autoSecondZoneTempMinus(bool isPress)
{
    onSendDataSort(char(ClimateButton::AutoSecondZoneTempMinus), isPress);
}

void VelClimateGroupCmd::manualMainZoneTempUp(bool isPress)
{
    onSendDataSort(char(ClimateButton::ManualMainZoneTempUp), isPress);
}

void VelClimateGroupCmd::manualMainZoneTempDown(bool isPress)
{
    onSendDataSort(char(ClimateButton::ManualMainZoneTempDown), isPress);
}

void VelClimateGroupCmd::leftHeatedSeat()
{
    onSendDataSort(char(ClimateButton::LeftHeatedSeat));
}

void VelClimateGroupCmd::rightHeatedSeat()
{
    onSendDataSort(char(ClimateButton::RightHeatedSeat));
}

void VelClimateGroupCmd::leftCooledSeat()
{
    onSendDataSort(char(ClimateButton::LeftCooledSeat));
}

void VelClimateGroupCmd::rightCooledSeat()
{
    onSendDataSort(char(ClimateButton::RightCooledSeat));
}

void VelClimateGroupCmd::autoFanDirectValue(char value)
{
    onSendDataSort(char(ClimateButton::AutoFanDirectValue), true, value);
}

void VelClimateGroupCmd::autoBtn()
{
    onSendDataSort(char(ClimateButton::Auto));
}

void VelClimateGroupCmd::ventPos()
{
    onSendDataSort(char(ClimateButton::VentPosition));
}

void VelClimateGroupCmd::recircFresh()
{
    onSendDataSort(char(ClimateButton::RecirculatedFreshAir));
}

void VelClimateGroupCmd::dualBtn()
{
    onSendDataSort(char(ClimateButton::Dual));
}

void VelClimateGroupCmd::acBtn()
{
    onSendDataSort(char(ClimateButton::AirConditioning));
}

void VelClimateGroupCmd::maxACBtn()
{
    onSendDataSort(char(ClimateButton::MaxAirConditioning));
}

void VelClimateGroupCmd::frontDefroster()
{
    onSendDataSort(char(ClimateButton::FrontDefroster));
}

void VelClimateGroupCmd::rearDefroster()
{
    onSendDataSort(char(ClimateButton::RearDefroster));
}

void VelClimateGroupCmd::customControl1()
{
    onSendDataSort(char(ClimateButton::CustomControl1));
}

void VelClimateGroupCmd::customControl2()
{
    onSendDataSort(char(ClimateButton::CustomControl2));
}

void VelClimateGroupCmd::heatedSteerWheel()
{
    onSendDataSort(char(ClimateButton::HeatedSteeringWheel));
}

void VelClimateGroupCmd::fanSpeedUp(bool isPress)
{
    onSendDataSort(char(ClimateButton::FanSpeedUp), isPress);
}

void VelClimateGroupCmd::fanSpeedDown(bool isPress)
{
    onSendDataSort(char(ClimateButton::FanSpeedDown), isPress);
}

void VelClimateGroupCmd::manualTemp(char value)
{
    onSendDataSort(char(ClimateButton::ManualTemp), true, value);
}

void VelClimateGroupCmd::manualFanSpeed(char value)
{
    onSendDataSort(char(ClimateButton::ManualFanSpeed), true, value);
}

} // namespace canbus
