#include "fieldrows.h"

namespace boxsim {

namespace {

constexpr Range kTransitions {kNoTransition, kHighestTransition};
constexpr Range kTexts {0, kMostTexts};

} // namespace

QVector<FieldRow> versionRows()
{
    FieldRows<BenchState> rows(
        "version", [](auto &state) -> auto & { return state; });
    rows.add("ready", &BenchState::ready, "whether the box is ready; it reports a change unasked")
        .words("not-ready", "ready");
    return rows.rows();
}

QVector<FieldRow> screensRows()
{
    FieldRows<Screens> screens(
        "screens", [](auto &state) -> auto & { return state.car.screens; });
    screens.add("supported", &Screens::supported, "which screens there are; entry 1 is screen 0 of the wire")
        .words("no", "yes");
    FieldRows<CarState> car(
        "screens", [](auto &state) -> auto & { return state.car; });
    car.add("transition", &CarState::transition,
            "the move to another screen that is asked for; -1 asks for none", kTransitions);
    return screens.rows() + car.rows();
}

QVector<FieldRow> vehicleRows()
{
    FieldRows<VehicleState> rows(
        "vehicle", [](auto &state) -> auto & { return state.car.vehicle; });
    rows.add("title", &VehicleState::title, "title of the vehicle screen")
        .add("labels", &VehicleState::labels, "texts of the custom controls", kTexts)
        .add("door", &VehicleState::doors, "doors: front left, front right, rear left, rear right")
        .words("closed", "open")
        .add("hood", &VehicleState::hood, "hood")
        .words("closed", "open")
        .add("trunk", &VehicleState::trunk, "trunk")
        .words("closed", "open")
        .add("tire", &VehicleState::tires, "states of the tires, in the order of the doors", kTwoBits)
        .add("checkEngine", &VehicleState::checkEngine, "state of the check engine lamp", kTwoBits)
        .add("battery", &VehicleState::battery, "the battery lamp")
        .add("labelState1", &VehicleState::labelState1, "state of custom label 1", kTwoBits)
        .add("labelState2", &VehicleState::labelState2, "state of custom label 2", kTwoBits)
        .add("tireTexts", &VehicleState::tireTexts, "texts of the tires", kTexts);
    return rows.rows();
}

QVector<FieldRow> parkingRows()
{
    FieldRows<ParkingState> rows(
        "parking", [](auto &state) -> auto & { return state.car.parking; });
    rows.add("title", &ParkingState::title, "title of the parking screen")
        .add("labels", &ParkingState::labels, "texts of the custom controls", kTexts)
        .add("front", &ParkingState::front, "zones in front; 255 is nothing in reach", kByte)
        .add("rear", &ParkingState::rear, "zones behind", kByte)
        .add("left", &ParkingState::left, "zones on the left", kByte)
        .add("right", &ParkingState::right, "zones on the right", kByte)
        .add("labelState1", &ParkingState::labelState1, "state of custom label 1", kTwoBits)
        .add("labelState2", &ParkingState::labelState2, "state of custom label 2", kTwoBits)
        .add("sensor", &ParkingState::sensors, "sensors that measure: front, rear, left, right");
    return rows.rows();
}

QVector<FieldRow> textScreenRows()
{
    FieldRows<TextScreen> rows(
        "textScreen", [](auto &state) -> auto & { return state.car.textScreen; });
    rows.add("menu", &TextScreen::menu, "the menu's identifiers", kByte)
        .add("minus", &TextScreen::minus, "a minus button is offered")
        .add("plus", &TextScreen::plus, "a plus button is offered")
        .add("texts", &TextScreen::texts, "title and lines", kTexts);
    return rows.rows();
}

} // namespace boxsim
