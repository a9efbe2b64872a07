#include "fieldrows.h"

namespace boxsim {

namespace {

using Rows = FieldRows<ClimateState>;

void addSeats(Rows &rows)
{
    rows.add("leftHeatedSeat", &ClimateState::leftHeatedSeat, "step of the left seat's heating", kFourBits)
        .add("rightHeatedSeat", &ClimateState::rightHeatedSeat, "step of the right seat's heating", kFourBits)
        .add("leftCooledSeat", &ClimateState::leftCooledSeat, "step of the left seat's cooling", kFourBits)
        .add("rightCooledSeat", &ClimateState::rightCooledSeat, "step of the right seat's cooling",
             kFourBits);
}

void addFan(Rows &rows)
{
    rows.add("fanDirectValue", &ClimateState::fanDirectValue, "fan speed as a value", kByte)
        .add("fanSpeedStatus", &ClimateState::fanSpeedStatus, "how the fan speed is shown", kTwoBits)
        .add("ventPosition", &ClimateState::ventPosition, "where the air comes out", kFourBits)
        .add("fanDirect", &ClimateState::fanDirect, "state of the fan's direct control", kTwoBits);
}

} // namespace

QVector<FieldRow> climateRows()
{
    Rows rows(
        "climate", [](auto &state) -> auto & { return state.car.climate; });
    rows.add("type", &ClimateState::type, "kind of climate screen", kByte)
        .add("title", &ClimateState::title, "title of the climate screen")
        .add("labels", &ClimateState::labels, "texts of the custom controls", {0, kMostTexts})
        .add("mainTemp", &ClimateState::mainTemp, "main temperature; the drive counts in tenths of a degree",
             kTwoBytes)
        .add("secondTemp", &ClimateState::secondTemp, "second temperature", kTwoBytes)
        .add("mainUnit", &ClimateState::mainUnit, "unit of the main temperature", kTwoBits)
        .add("secondUnit", &ClimateState::secondUnit, "unit of the second temperature", kTwoBits);
    addSeats(rows);
    addFan(rows);
    rows.add("systemOn", &ClimateState::systemOn, "the climate system is on")
        .add("driverSeat", &ClimateState::driverSeat, "side of the driver's seat")
        .add("manualTemp", &ClimateState::manualTemp, "temperature of a manual system", kByte)
        .add("button", &ClimateState::buttons, "states of the buttons; entry 1 is button 0 of the wire",
             kTwoBits);
    return rows.rows();
}

} // namespace boxsim
