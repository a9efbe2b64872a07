#pragma once

#include "boxsim/car/climatestate.h"

namespace boxsim {

/// What a climate button of the head unit does to the simulated car.
///
/// The link gives buttons and lamps no meaning; this is what the box makes of them:
///
/// | button | effect |
/// |---|---|
/// | onOff | toggles the system; lamp 0 shows it |
/// | rearZone | toggles lamp 1 |
/// | autoMainZoneTempPlus, Minus | main temperature by 5, within 160..300; lamps 12, 13 while held |
/// | autoSecondZoneTempPlus, Minus | second temperature, likewise; lamps 14, 15 while held; dual on |
/// | manualMainZoneTempUp, Down | manual temperature by 5, within 0..255 |
/// | leftHeatedSeat, ... | level 0, 1, 2, 3, 0, ...; ends the opposite of that seat; lamp 19: any seat on |
/// | autoFanDirectValue | the fan direct value is the value that came |
/// | autoBtn | toggles lamp 2; fan direct is 1 while lit, else 0 |
/// | ventPos | vent position 0 to 8, then 0 again; lamp 18: not 0 |
/// | recircFresh | toggles lamp 3 |
/// | dualBtn | toggles lamp 4; while dark the second temperature follows the main one |
/// | acBtn | toggles lamp 5; dark ends max A/C |
/// | maxACBtn | toggles lamp 6; lit also lights lamp 5 |
/// | frontDefroster, rearDefroster | toggle lamps 7, 8 |
/// | customControl1, customControl2 | toggle lamps 9, 10 |
/// | heatedSteerWheel | toggles lamp 11 |
/// | fanSpeedUp, Down | fan speed by 1, within 0..3; lamps 16, 17 while held |
/// | manualTemp | the manual temperature is the value that came |
/// | manualFanSpeed | the fan speed is the value that came, 3 at most |
///
/// A release does nothing but darken the lamp of a held button.
/// @param button  1..28; any other changes nothing
/// @param press  true for a press, false for a release
/// @param value  what a value button carries, else 0
void pressClimateButton(ClimateState &state, quint8 button, bool press, quint8 value);

} // namespace boxsim
