#pragma once

#include <QtCore/QtGlobal>

/// The numbers of the serial protocol that both sides must agree on.
namespace canbus {

/// What a frame of the box reports (its TP byte). The same numbers key the records of CanBusDataMap.
enum class Category : quint8 {
    Version = 0x01,
    ScreensInfo = 0x02,
    Climate = 0x03,
    Gauges = 0x04,
    Vehicle = 0x05,
    ParkingAssist = 0x06,
    ScreensTransition = 0x07,
    TextScreen = 0x11,
};

/// What a frame of the head unit asks for (its TP byte).
enum class Command : quint8 {
    Connection = 0x01, ///< connect request and connection check
    MenuPress = 0x91,
    Settings = 0x92,
    ClimateButton = 0x93,
    GaugesButton = 0x94,
    VehicleButton = 0x95,
    ParkingButton = 0x96,
    RequestData = 0x97,
    Time = 0x98,
};

/// The page that a RequestData command names in its data byte.
enum class DataPage : quint8 {
    Normal = 0x00,
    Climate = 0x01,
    Gauges = 0x02,
    Vehicle = 0x03,
    ParkingAssist = 0x04,
};

/// The button that a ClimateButton command names in its first data byte.
enum class ClimateButton : quint8 {
    OnOff = 1,
    RearZone = 2,
    AutoMainZoneTempPlus = 3,
    AutoMainZoneTempMinus = 4,
    AutoSecondZoneTempPlus = 5,
    AutoSecondZoneTempMinus = 6,
    ManualMainZoneTempUp = 7,
    ManualMainZoneTempDown = 8,
    LeftHeatedSeat = 9,
    RightHeatedSeat = 10,
    LeftCooledSeat = 11,
    RightCooledSeat = 12,
    AutoFanDirectValue = 13,
    Auto = 14,
    VentPosition = 15,
    RecirculatedFreshAir = 16,
    Dual = 17,
    AirConditioning = 18,
    MaxAirConditioning = 19,
    FrontDefroster = 20,
    RearDefroster = 21,
    CustomControl1 = 22,
    CustomControl2 = 23,
    HeatedSteeringWheel = 24,
    FanSpeedUp = 25,
    FanSpeedDown = 26,
    ManualTemp = 27,
    ManualFanSpeed = 28,
};

/// The button that a GaugesButton command names in its first data byte.
enum class GaugesButton : quint8 {
    Center = 1,
    TopLeft = 2,
    TopRight = 3,
    BottomLeft = 4,
    BottomRight = 5,
    CustomControl1 = 6,
    CustomControl2 = 7,
};

/// The button that a VehicleButton command names in its first data byte.
enum class VehicleButton : quint8 {
    CheckEngine = 1,
    CustomControl1 = 2,
    CustomControl2 = 3,
};

/// The button that a ParkingButton command names in its first data byte.
enum class ParkingButton : quint8 {
    CustomControl1 = 1,
    CustomControl2 = 2,
};

/// The data byte behind a button that was pressed; 0 says that it was released.
constexpr quint8 kPress = 0x01;

/// The ids of the commands that carry a fixed one.
constexpr quint8 kRequestNormalId = 0x22;
constexpr quint8 kTimeId = 0x23;

/// The id of every connect request.
constexpr quint8 kConnectRequestId = 0x21;

/// The second data byte of a Connection command.
constexpr quint8 kConnectRequest = 0x00;
constexpr quint8 kConnectionCheck = 0x01;

/// The second data byte of a Version frame: the box's answer to a connect request.
constexpr quint8 kBoxNotReady = 0x00;
constexpr quint8 kBoxReady = 0x01;

} // namespace canbus
