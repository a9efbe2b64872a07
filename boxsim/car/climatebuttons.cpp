#include "climatebuttons.h"

#include "wireconstants.h"

#include <QtCore/QtGlobal>

namespace boxsim {

namespace {

using canbus::ClimateButton;

constexpr int kTempStep = 5;
constexpr int kCoolest = 160;
constexpr int kWarmest = 300;
constexpr int kManualTempMax = 255;
constexpr int kFanSpeedMax = 3;
constexpr int kVentPositions = 9;
constexpr int kSeatLevels = 4;

struct Press {
    bool down;
    quint8 value;
};

using Effect = void (*)(ClimateState &, const Press &);

struct Row {
    ClimateButton button;
    Effect effect;
};

template <ButtonLamp Lamp>
bool lit(const ClimateState &state)
{
    return state.buttons[Lamp] == 1;
}

template <ButtonLamp Lamp>
void setLamp(ClimateState &state, bool on)
{
    state.buttons[Lamp] = on ? 1 : 0;
}

void followMain(ClimateState &state)
{
    if (!lit<LampDual>(state))
        state.secondTemp = state.mainTemp;
}

/// A lamp that each press turns over.
template <ButtonLamp Lamp>
void toggle(ClimateState &state, const Press &press)
{
    if (press.down)
        setLamp<Lamp>(state, !lit<Lamp>(state));
}

template <ButtonLamp Lamp, int Step>
void changeMainTemp(ClimateState &state, const Press &press)
{
    setLamp<Lamp>(state, press.down);
    if (!press.down)
        return;
    state.mainTemp = quint16(qBound(kCoolest, state.mainTemp + Step, kWarmest));
    followMain(state);
}

template <ButtonLamp Lamp, int Step>
void changeSecondTemp(ClimateState &state, const Press &press)
{
    setLamp<Lamp>(state, press.down);
    if (!press.down)
        return;
    setLamp<LampDual>(state, true);
    state.secondTemp = quint16(qBound(kCoolest, state.secondTemp + Step, kWarmest));
}

template <int Step>
void changeManualTemp(ClimateState &state, const Press &press)
{
    if (press.down)
        state.manualTemp = quint8(qBound(0, state.manualTemp + Step, kManualTempMax));
}

template <ButtonLamp Lamp, int Step>
void changeFanSpeed(ClimateState &state, const Press &press)
{
    setLamp<Lamp>(state, press.down);
    if (press.down)
        state.fanSpeedStatus = quint8(qBound(0, state.fanSpeedStatus + Step, kFanSpeedMax));
}

template <quint8 ClimateState::*Level, quint8 ClimateState::*Opposite>
void cycleSeat(ClimateState &state, const Press &press)
{
    if (!press.down)
        return;
    state.*Level = quint8((state.*Level + 1) % kSeatLevels);
    state.*Opposite = 0;
    setLamp<LampSeats>(
        state,
        (state.leftHeatedSeat | state.rightHeatedSeat | state.leftCooledSeat | state.rightCooledSeat) != 0);
}

void onOff(ClimateState &state, const Press &press)
{
    if (press.down)
        state.systemOn = !state.systemOn;
    setLamp<LampSystem>(state, state.systemOn);
}

void autoButton(ClimateState &state, const Press &press)
{
    toggle<LampAuto>(state, press);
    state.fanDirect = lit<LampAuto>(state) ? 1 : 0;
}

void ventPosition(ClimateState &state, const Press &press)
{
    if (press.down)
        state.ventPosition = quint8((state.ventPosition + 1) % kVentPositions);
    setLamp<LampVent>(state, state.ventPosition != 0);
}

void dual(ClimateState &state, const Press &press)
{
    toggle<LampDual>(state, press);
    followMain(state);
}

void airConditioning(ClimateState &state, const Press &press)
{
    toggle<LampAirConditioning>(state, press);
    if (!lit<LampAirConditioning>(state))
        setLamp<LampMaxAirConditioning>(state, false);
}

void maxAirConditioning(ClimateState &state, const Press &press)
{
    toggle<LampMaxAirConditioning>(state, press);
    if (lit<LampMaxAirConditioning>(state))
        setLamp<LampAirConditioning>(state, true);
}

void fanDirectValue(ClimateState &state, const Press &press)
{
    if (press.down)
        state.fanDirectValue = press.value;
}

void manualTemp(ClimateState &state, const Press &press)
{
    if (press.down)
        state.manualTemp = press.value;
}

void manualFanSpeed(ClimateState &state, const Press &press)
{
    if (press.down)
        state.fanSpeedStatus = quint8(qMin(int(press.value), kFanSpeedMax));
}

const Row kRows[] = {
    {ClimateButton::OnOff, onOff},
    {ClimateButton::RearZone, toggle<LampRearZone>},
    {ClimateButton::AutoMainZoneTempPlus, changeMainTemp<LampMainTempPlus, kTempStep>},
    {ClimateButton::AutoMainZoneTempMinus, changeMainTemp<LampMainTempMinus, -kTempStep>},
    {ClimateButton::AutoSecondZoneTempPlus, changeSecondTemp<LampSecondTempPlus, kTempStep>},
    {ClimateButton::AutoSecondZoneTempMinus, changeSecondTemp<LampSecondTempMinus, -kTempStep>},
    {ClimateButton::ManualMainZoneTempUp, changeManualTemp<kTempStep>},
    {ClimateButton::ManualMainZoneTempDown, changeManualTemp<-kTempStep>},
    {ClimateButton::LeftHeatedSeat, cycleSeat<&ClimateState::leftHeatedSeat, &ClimateState::leftCooledSeat>},
    {ClimateButton::RightHeatedSeat,
     cycleSeat<&ClimateState::rightHeatedSeat, &ClimateState::rightCooledSeat>},
    {ClimateButton::LeftCooledSeat, cycleSeat<&ClimateState::leftCooledSeat, &ClimateState::leftHeatedSeat>},
    {ClimateButton::RightCooledSeat,
     cycleSeat<&ClimateState::rightCooledSeat, &ClimateState::rightHeatedSeat>},
    {ClimateButton::AutoFanDirectValue, fanDirectValue},
    {ClimateButton::Auto, autoButton},
    {ClimateButton::VentPosition, ventPosition},
    {ClimateButton::RecirculatedFreshAir, toggle<LampRecirculation>},
    {ClimateButton::Dual, dual},
    {ClimateButton::AirConditioning, airConditioning},
    {ClimateButton::MaxAirConditioning, maxAirConditioning},
    {ClimateButton::FrontDefroster, toggle<LampFrontDefroster>},
    {ClimateButton::RearDefroster, toggle<LampRearDefroster>},
    {ClimateButton::CustomControl1, toggle<LampCustom1>},
    {ClimateButton::CustomControl2, toggle<LampCustom2>},
    {ClimateButton::HeatedSteeringWheel, toggle<LampHeatedSteeringWheel>},
    {ClimateButton::FanSpeedUp, changeFanSpeed<LampFanSpeedUp, 1>},
    {ClimateButton::FanSpeedDown, changeFanSpeed<LampFanSpeedDown, -1>},
    {ClimateButton::ManualTemp, manualTemp},
    {ClimateButton::ManualFanSpeed, manualFanSpeed},
};

} // namespace

void pressClimateButton(ClimateState &state, quint8 button, bool press, quint8 value)
{
    for (const Row &row : kRows) {
        if (quint8(row.button) == button)
            row.effect(state, {press, value});
    }
}

} // namespace boxsim
