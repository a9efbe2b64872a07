#pragma once

#include "boxsim/car/gaugesstate.h"

#include <array>

namespace boxsim {

/// What the simulated car measures, in whole numbers.
struct Measurements {
    int speed = 0;       ///< km/h
    int engineSpeed = 0; ///< revolutions a minute
    int coolant = 0;     ///< °C
    int boost = 0;       ///< tenths of a bar, below 0 while the engine draws
    int oil = 0;         ///< °C
    int oilPressure = 0; ///< tenths of a bar
    int fuel = 0;        ///< percent
    int consumption = 0; ///< tenths of a litre for 100 km
    int voltage = 0;     ///< tenths of a volt
    int outside = 0;     ///< °C
};

/// Which of its two faces each gauge shows, 0 or 1.
using GaugeFaces = std::array<quint8, kGaugeCount>;

/// The gauges with these faces: values and value texts, zero positions, formats, the texts beside the gauges
/// and the scale.
///
/// | gauge | face 0 | face 1 |
/// |---|---|---|
/// | centre | speed, 0..200 km/h | engine speed, 0..5.0 thousand a minute |
/// | top left | coolant, 0..150 °C | boost, -1.0..2.0 bar |
/// | top right | oil temperature, 0..150 °C | oil pressure, 0..10.0 bar |
/// | bottom left | fuel, 0..100 % | consumption, 0..30.0 l |
/// | bottom right | voltage, 8.0..16.0 V | outside temperature, -40..60 °C |
///
/// A value of 0 is the low end of the range and 255 the high one; the zero position is where 0 stands in it.
/// The format flag says that the value text has a decimal. The centre texts are title and unit, the texts of
/// the two upper and the two lower gauges their titles. The engine speed decides the shift flag and the peak
/// colour.
GaugesState gaugesShowing(const Measurements &car, const GaugeFaces &faces);

/// Turns a gauge to its other face.
void turnGauge(GaugeFaces &faces, Gauge gauge);

} // namespace boxsim
