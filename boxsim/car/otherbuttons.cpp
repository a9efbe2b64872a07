#include "otherbuttons.h"

#include "wireconstants.h"

namespace boxsim {

namespace {

using canbus::GaugesButton;
using canbus::ParkingButton;
using canbus::VehicleButton;

constexpr int kCheckEngineStates = 4;

void toggle(quint8 &labelState)
{
    labelState = labelState == 0 ? 1 : 0;
}

} // namespace

void pressGaugesButton(GaugesState &state, GaugeFaces &faces, quint8 button, bool press)
{
    if (!press)
        return;
    switch (GaugesButton(button)) {
    case GaugesButton::Center:
        return turnGauge(faces, CenterGauge);
    case GaugesButton::TopLeft:
        return turnGauge(faces, TopLeftGauge);
    case GaugesButton::TopRight:
        return turnGauge(faces, TopRightGauge);
    case GaugesButton::BottomLeft:
        return turnGauge(faces, BottomLeftGauge);
    case GaugesButton::BottomRight:
        return turnGauge(faces, BottomRightGauge);
    case GaugesButton::CustomControl1:
        return toggle(state.labelState1);
    case GaugesButton::CustomControl2:
        return toggle(state.labelState2);
    }
}

void pressVehicleButton(VehicleState &state, quint8 button, bool press)
{
    if (!press)
        return;
    switch (VehicleButton(button)) {
    case VehicleButton::CheckEngine:
        state.checkEngine = quint8((state.checkEngine + 1) % kCheckEngineStates);
        return;
    case VehicleButton::CustomControl1:
        return toggle(state.labelState1);
    case VehicleButton::CustomControl2:
        return toggle(state.labelState2);
    }
}

void pressParkingButton(ParkingState &state, quint8 button, bool press)
{
    if (!press)
        return;
    switch (ParkingButton(button)) {
    case ParkingButton::CustomControl1:
        return toggle(state.labelState1);
    case ParkingButton::CustomControl2:
        return toggle(state.labelState2);
    }
}

} // namespace boxsim
