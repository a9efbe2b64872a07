#pragma once

#include "boxsim/car/climatestate.h"
#include "boxsim/car/gaugesstate.h"
#include "boxsim/car/parkingstate.h"
#include "boxsim/car/screens.h"
#include "boxsim/car/textscreen.h"
#include "boxsim/car/vehiclestate.h"

#include <QtCore/QObject>

/// What a user interface would show: filled by the library's signals alone, from the moment of its making.
class StateMirror : public QObject {
public:
    StateMirror();

    boxsim::ClimateState climate;
    boxsim::GaugesState gauges;
    boxsim::VehicleState vehicle;
    boxsim::ParkingState parking;
    boxsim::TextScreen textScreen;
    boxsim::Screens screens;

private:
    void followClimate();
    void followClimateScreen();
    void followGauges();
    void followGaugesTexts();
    void followVehicle();
    void followParking();
    void followPlayer();
};
