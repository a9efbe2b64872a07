#pragma once

#include "boxsim/car/climatestate.h"
#include "boxsim/car/gaugesstate.h"
#include "boxsim/car/parkingstate.h"
#include "boxsim/car/screens.h"
#include "boxsim/car/textscreen.h"
#include "boxsim/car/vehiclestate.h"

#include <random>

/// Random states of the box, from a seed: within what the wire can carry and the head unit can tell apart.
class RandomStates {
public:
    explicit RandomStates(quint32 seed)
        : m_random(seed)
    {
    }

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }

    boxsim::ClimateState climate();
    boxsim::GaugesState gauges();
    boxsim::VehicleState vehicle();
    boxsim::ParkingState parking();
    boxsim::TextScreen textScreen();
    boxsim::Screens screens();

private:
    quint8 state(int count) { return quint8(below(count)); }
    quint8 byte() { return quint8(below(256)); }
    bool flag() { return below(2) == 1; }
    QString text(int longest);
    QString asciiText(int length);
    QStringList texts(int fewest, int most);
    QStringList scale(int entries);

    template <class Array>
    void fill(Array &array, int count)
    {
        for (auto &entry : array)
            entry = typename Array::value_type(below(count));
    }

    std::mt19937 m_random;
};
