#include "fieldrows.h"

namespace boxsim {

namespace {

constexpr Range kPeakColors {0, 6};
constexpr Range kScaleTexts {0, 11};
constexpr Range kFaces {0, 1};
constexpr Range kTexts {0, kMostTexts};

using Gauges = FieldRows<GaugesState>;
using Measured = FieldRows<Measurements>;

void addTexts(Gauges &rows)
{
    rows.add("title", &GaugesState::title, "title of the gauges screen")
        .add("labels", &GaugesState::labels, "texts of the custom controls", kTexts)
        .add("scale", &GaugesState::scale,
             "scale of the centre gauge: two bytes for the first text, three for each other", kScaleTexts)
        .add("centerTexts", &GaugesState::centerTexts, "texts of the centre gauge", kTexts)
        .add("topTexts", &GaugesState::topTexts, "texts of the upper gauges, left and right", kTexts)
        .add("bottomTexts", &GaugesState::bottomTexts, "texts of the lower gauges, left and right", kTexts);
}

} // namespace

QVector<FieldRow> gaugesRows()
{
    Gauges rows(
        "gauges", [](auto &state) -> auto & { return state.car.gauges; });
    rows.add("type", &GaugesState::types, "the four type flags; entry 1 is key 0 of the wire");
    addTexts(rows);
    rows.add("zeroPosition", &GaugesState::zeroPositions,
             "where 0 stands: centre, top left, top right, bottom left, bottom right", kByte)
        .add("value", &GaugesState::values, "values of the gauges, in the order of zeroPosition", kByte)
        .add("format", &GaugesState::formats, "format flags of the gauges")
        .add("shift", &GaugesState::shift, "the shift lamp")
        .add("labelState1", &GaugesState::labelState1, "state of custom label 1", kTwoBits)
        .add("labelState2", &GaugesState::labelState2, "state of custom label 2", kTwoBits)
        .add("peakColor", &GaugesState::peakColor, "colour of the peak", kPeakColors)
        .add("valueTexts", &GaugesState::valueTexts, "texts of the values", kTexts);
    return rows.rows();
}

QVector<FieldRow> measuredRows()
{
    Measured rows(
        "measured", [](auto &state) -> auto & { return state.measured; });
    rows.add("speed", &Measurements::speed, "km/h", {0, 300})
        .add("engineSpeed", &Measurements::engineSpeed, "revolutions a minute", {0, 10000})
        .add("coolant", &Measurements::coolant, "coolant, °C", {-60, 200})
        .add("boost", &Measurements::boost, "boost, tenths of a bar", {-20, 40})
        .add("oil", &Measurements::oil, "oil, °C", {-60, 200})
        .add("oilPressure", &Measurements::oilPressure, "oil pressure, tenths of a bar", {0, 150})
        .add("fuel", &Measurements::fuel, "fuel, percent", {0, 100})
        .add("consumption", &Measurements::consumption, "tenths of a litre for 100 km", {0, 999})
        .add("voltage", &Measurements::voltage, "battery, tenths of a volt", {0, 320})
        .add("outside", &Measurements::outside, "outside, °C", {-60, 80});
    FieldRows<BenchState> faces(
        "measured", [](auto &state) -> auto & { return state; });
    faces.add(
        "face", &BenchState::faces,
        "which of its two faces each gauge shows: centre, top left, top right, bottom left, bottom right",
        kFaces);
    return rows.rows() + faces.rows();
}

} // namespace boxsim
