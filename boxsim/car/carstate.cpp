#include "carstate.h"

#include "boxsim/car/payload.h"

#include "wireconstants.h"

namespace boxsim {

namespace {

using canbus::Category;

CategoryFrame frame(Category category, quint8 mod, const QByteArray &payload)
{
    return {quint8(category), mod, payload};
}

QVector<CategoryFrame> climateFrames(const ClimateState &state)
{
    return {
        frame(Category::Climate, ClimateTypeSelector, climateTypePayload(state)),
        frame(Category::Climate, ClimateLabelsSelector, climateLabelsPayload(state)),
        frame(Category::Climate, ClimateDataSelector, climateDataPayload(state)),
    };
}

QVector<CategoryFrame> gaugesFrames(const GaugesState &state)
{
    return {
        frame(Category::Gauges, GaugesTypeSelector, gaugesTypePayload(state)),
        frame(Category::Gauges, GaugesLabelsSelector, gaugesLabelsPayload(state)),
        frame(Category::Gauges, GaugesScaleSelector, gaugesScalePayload(state)),
        frame(Category::Gauges, GaugesTopTextsSelector, gaugesTopTextsPayload(state)),
        frame(Category::Gauges, GaugesBottomTextsSelector, gaugesBottomTextsPayload(state)),
        frame(Category::Gauges, GaugesDataSelector, gaugesDataPayload(state)),
    };
}

QVector<CategoryFrame> vehicleFrames(const VehicleState &state)
{
    return {
        frame(Category::Vehicle, VehicleTitleSelector, vehicleTitlePayload(state)),
        frame(Category::Vehicle, VehicleLabelsSelector, vehicleLabelsPayload(state)),
        frame(Category::Vehicle, VehicleDataSelector, vehicleDataPayload(state)),
    };
}

QVector<CategoryFrame> parkingFrames(const ParkingState &state)
{
    return {
        frame(Category::ParkingAssist, ParkingTitleSelector, parkingTitlePayload(state)),
        frame(Category::ParkingAssist, ParkingLabelsSelector, parkingLabelsPayload(state)),
        frame(Category::ParkingAssist, ParkingDataSelector, parkingDataPayload(state)),
    };
}

} // namespace

bool operator==(const CarState &a, const CarState &b)
{
    return a.climate == b.climate && a.gauges == b.gauges && a.vehicle == b.vehicle && a.parking == b.parking
        && a.textScreen == b.textScreen && a.screens == b.screens && a.transition == b.transition;
}

QVector<CategoryFrame> framesOf(const CarState &state)
{
    QVector<CategoryFrame> frames {frame(Category::ScreensInfo, 0, screensPayload(state.screens))};
    frames += climateFrames(state.climate);
    frames += gaugesFrames(state.gauges);
    frames += vehicleFrames(state.vehicle);
    frames += parkingFrames(state.parking);
    frames.append(frame(Category::TextScreen, 0, textScreenPayload(state.textScreen)));
    return frames;
}

void applyChanges(CarState &state, const CarState &before, const CarState &after)
{
    applyChanges(state.climate, before.climate, after.climate);
    applyChanges(state.gauges, before.gauges, after.gauges);
    applyChanges(state.vehicle, before.vehicle, after.vehicle);
    applyChanges(state.parking, before.parking, after.parking);
    applyChanges(state.textScreen, before.textScreen, after.textScreen);
    applyChanges(state.screens, before.screens, after.screens);
    applyChange(state.transition, before.transition, after.transition);
}

} // namespace boxsim
