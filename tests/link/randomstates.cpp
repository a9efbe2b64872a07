#include "randomstates.h"

namespace {

constexpr int kFullScale = 11;

// Of one to four bytes in UTF-8.
const QStringList kCharacters {"A", "z", "0", " ", "/", "%", "ä", "ß", "°", "é", "Ж", "€", "→", "温", "🚗"};

} // namespace

boxsim::ClimateState RandomStates::climate()
{
    boxsim::ClimateState climate;
    climate.type = byte();
    climate.title = text(12);
    climate.labels = texts(1, 4);
    climate.mainTemp = quint16(below(0x10000));
    climate.secondTemp = quint16(below(0x10000));
    climate.mainUnit = state(4);
    climate.secondUnit = state(4);
    climate.leftHeatedSeat = state(9);
    climate.rightHeatedSeat = state(9);
    climate.leftCooledSeat = state(9);
    climate.rightCooledSeat = state(9);
    climate.fanDirectValue = byte();
    climate.fanSpeedStatus = state(4);
    climate.ventPosition = state(9);
    climate.fanDirect = state(4);
    climate.systemOn = flag();
    climate.driverSeat = flag();
    climate.manualTemp = byte();
    fill(climate.buttons, 4);
    return climate;
}

boxsim::GaugesState RandomStates::gauges()
{
    boxsim::GaugesState gauges;
    fill(gauges.types, 2);
    gauges.title = text(12);
    gauges.labels = texts(1, 4);
    const bool isFull = flag();
    gauges.scale = scale(isFull ? kFullScale : 1 + below(kFullScale - 1));
    if (isFull)
        gauges.centerTexts = texts(0, 4); // they stand behind a full scale alone
    gauges.topTexts = texts(1, 4);
    gauges.bottomTexts = texts(1, 4);
    fill(gauges.zeroPositions, 256);
    fill(gauges.values, 256);
    fill(gauges.formats, 2);
    gauges.shift = flag();
    gauges.labelState1 = state(4);
    gauges.labelState2 = state(4);
    gauges.peakColor = state(7);
    gauges.valueTexts = texts(1, 5);
    return gauges;
}

boxsim::VehicleState RandomStates::vehicle()
{
    boxsim::VehicleState vehicle;
    vehicle.title = text(12);
    vehicle.labels = texts(1, 4);
    fill(vehicle.doors, 2);
    vehicle.hood = flag();
    vehicle.trunk = flag();
    fill(vehicle.tires, 4);
    vehicle.checkEngine = state(4);
    vehicle.battery = flag();
    vehicle.labelState1 = state(4);
    vehicle.labelState2 = state(4);
    vehicle.tireTexts = texts(0, 4);
    return vehicle;
}

boxsim::ParkingState RandomStates::parking()
{
    boxsim::ParkingState parking;
    parking.title = text(12);
    parking.labels = texts(1, 4);
    fill(parking.front, 256);
    fill(parking.rear, 256);
    fill(parking.left, 256);
    fill(parking.right, 256);
    parking.labelState1 = state(4);
    parking.labelState2 = state(4);
    fill(parking.sensors, 2);
    return parking;
}

boxsim::TextScreen RandomStates::textScreen()
{
    boxsim::TextScreen screen;
    fill(screen.menu, 256);
    screen.minus = flag();
    screen.plus = flag();
    screen.texts = texts(0, 6);
    return screen;
}

boxsim::Screens RandomStates::screens()
{
    boxsim::Screens screens;
    fill(screens.supported, 2);
    return screens;
}

QString RandomStates::text(int longest)
{
    QString text;
    for (int left = below(longest + 1); left > 0; --left)
        text += kCharacters.at(below(kCharacters.size()));
    return text;
}

QString RandomStates::asciiText(int length)
{
    QString text;
    for (int left = length; left > 0; --left)
        text += QChar('!' + below('~' - '!' + 1));
    return text;
}

QStringList RandomStates::texts(int fewest, int most)
{
    QStringList texts;
    for (int left = fewest + below(most - fewest + 1); left > 0; --left)
        texts += text(8);
    return texts;
}

QStringList RandomStates::scale(int entries)
{
    QStringList scale {asciiText(below(3))};
    while (scale.size() < entries)
        scale += asciiText(below(4));
    return scale;
}
