#include "gaugefaces.h"

namespace boxsim {

namespace {

constexpr int kHighestValue = 255;
constexpr int kShiftFrom = 3500;
constexpr int kColorStep = 700;
constexpr int kHighestColor = 6;

struct Face {
    const char *title;
    const char *unit;
    int Measurements::*quantity;
    int low;
    int high;
    int parts; ///< so many of the quantity make one of the unit
};

constexpr Face kFaces[kGaugeCount][2] = {
    {{"Speed", "km/h", &Measurements::speed, 0, 200, 1},
     {"Engine", "×1000/min", &Measurements::engineSpeed, 0, 5000, 1000}},
    {{"Coolant", "°C", &Measurements::coolant, 0, 150, 1},
     {"Boost", "bar", &Measurements::boost, -10, 20, 10}},
    {{"Oil", "°C", &Measurements::oil, 0, 150, 1},
     {"Oil pressure", "bar", &Measurements::oilPressure, 0, 100, 10}},
    {{"Fuel", "%", &Measurements::fuel, 0, 100, 1},
     {"Consumption", "l", &Measurements::consumption, 0, 300, 10}},
    {{"Battery", "V", &Measurements::voltage, 80, 160, 10},
     {"Outside", "°C", &Measurements::outside, -40, 60, 1}},
};

const Face &faceOf(Gauge gauge, const GaugeFaces &faces)
{
    return kFaces[gauge][faces[gauge] % 2];
}

quint8 position(const Face &face, int quantity)
{
    const int within = qBound(face.low, quantity, face.high) - face.low;
    return quint8(within * kHighestValue / (face.high - face.low));
}

bool hasDecimal(const Face &face)
{
    return face.parts > 1;
}

QString titleOf(const Face &face)
{
    return QString::fromUtf8(face.title);
}

QString valueText(const Face &face, int quantity)
{
    const QString number = QString::number(double(quantity) / face.parts, 'f', hasDecimal(face) ? 1 : 0);
    return number + QLatin1Char(' ') + QString::fromUtf8(face.unit);
}

QStringList scaleOf(const Face &face)
{
    static const QStringList speeds {"0", "20", "40", "60", "80", "100", "120", "140", "160", "180", "200"};
    static const QStringList thousands {"0",   "0.5", "1.0", "1.5", "2.0", "2.5",
                                        "3.0", "3.5", "4.0", "4.5", "5.0"};
    return face.quantity == &Measurements::speed ? speeds : thousands;
}

} // namespace

GaugesState gaugesShowing(const Measurements &car, const GaugeFaces &faces)
{
    GaugesState state;
    for (const Gauge gauge : {CenterGauge, TopLeftGauge, TopRightGauge, BottomLeftGauge, BottomRightGauge}) {
        const Face &face = faceOf(gauge, faces);
        state.zeroPositions[gauge] = position(face, 0);
        state.values[gauge] = position(face, car.*face.quantity);
        state.formats[gauge] = hasDecimal(face);
        state.valueTexts.append(valueText(face, car.*face.quantity));
    }
    const Face &center = faceOf(CenterGauge, faces);
    state.scale = scaleOf(center);
    state.centerTexts = QStringList {titleOf(center), QString::fromUtf8(center.unit)};
    state.topTexts =
        QStringList {titleOf(faceOf(TopLeftGauge, faces)), titleOf(faceOf(TopRightGauge, faces))};
    state.bottomTexts =
        QStringList {titleOf(faceOf(BottomLeftGauge, faces)), titleOf(faceOf(BottomRightGauge, faces))};
    state.shift = car.engineSpeed >= kShiftFrom;
    state.peakColor = quint8(qBound(0, car.engineSpeed / kColorStep, kHighestColor));
    return state;
}

void turnGauge(GaugeFaces &faces, Gauge gauge)
{
    faces[gauge] ^= 1U;
}

} // namespace boxsim
