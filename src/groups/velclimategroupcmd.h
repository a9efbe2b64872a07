#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace canbus {

/// The air-conditioning screen: the box's climate reports as signals, the screen's buttons as commands.
///
/// Every item is kept and announced by its `update*` signal when it changes; getClimateInfo() announces all.
/// Integers are -1 until they were received, texts and lists empty, flags false. When the link goes down the
/// last state stays. What types, units, states and values mean on the screen belongs to the UI and the box:
/// they are passed on as they came.
///
/// Lives on the host's main thread: call everything there. Made on first use, destroyed when the process
/// exits.
class CANBUS_EXPORT VelClimateGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    static VelClimateGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    explicit VelClimateGroupCmd(QObject *parent = nullptr);

    // The three kinds of report, each with its whole payload. A payload that is too short is logged as an
    // error and changes nothing.

    /// Screen type and title, at least 2 bytes.
    void onClimateType(QByteArray data);
    /// Custom labels, at least 1 byte.
    void onClimateCustomLabel(QByteArray data);
    /// The climate state, at least 15 bytes.
    void onClimateData(QByteArray data);

    // The items of the climate state: from the whole payload, or from the value or byte that holds them.

    /// Button states, bytes 4, 5 and 9 to 13.
    void onClimateBtnStatus(QByteArray data);
    /// Main zone: temperature, bytes 0 and 1, and unit, byte 4.
    void onClimateMainTemp(QByteArray data);
    /// Second zone: temperature, bytes 2 and 3, and unit, byte 4.
    void onClimateSecondTemp(QByteArray data);
    /// Levels of the heated seats, byte 6.
    void onClimateHeatSeat(QByteArray data);
    /// Levels of the cooled seats, byte 7.
    void onClimateCoolSeat(QByteArray data);
    /// Automatic fan direction, 0..255.
    void onClimateFanDirectValue(int value);
    /// State of the fan speed, byte 9.
    void onClimateFanSpeedStatus(QByteArray data);
    /// Vent position, byte 10.
    void onClimateVentPosition(QByteArray data);
    /// Manual fan direction, byte 12.
    void onClimateFanDirect(QByteArray data);
    /// Manual temperature, 0..255.
    void onClimateManualTempValue(int value);
    /// Whether the system is on, bit 4.
    void onClimateSystem(char byte);
    /// Driver's seat position, bit 5.
    void onClimateDriverSeatPosition(char byte);

Q_SIGNALS:
    /// Screen type, 0..255.
    void updateClimateType(int Type);
    /// Screen title, cleaned of bytes that are no UTF-8.
    void updateClimateTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    void updateClimateComText(QStringList Text);
    /// Twenty button states, each 0..3.
    void updateClimateBtnStatus(QList<int> m_list);
    /// Main zone: temperature 0..65535, unscaled, and unit state 0..3.
    void updateClimateMainTemp(int value, int Unit);
    /// Second zone, likewise.
    void updateClimateSecondTemp(int value, int Unit);
    /// Levels 0..8.
    void updateClimateHeatSeat(int left, int right);
    /// Levels 0..8.
    void updateClimateCoolSeat(int left, int right);
    /// Automatic fan direction, 0..255.
    void updateClimateFanDirectValue(int value);
    /// State 0..3.
    void updateClimateFanSpeedStatus(int value);
    /// State 0..8.
    void updateClimateVentPosition(int value);
    /// Manual fan direction, state 0..3.
    void updateClimateFanDirect(int MaualFd);
    /// 0..255.
    void updateClimateManualTempValue(int value);
    /// Whether the climate system is on.
    void updateClimateSystem(bool state);
    /// Flag of the driver's seat position.
    void updateClimateDriverSeatPos(bool pos);

public Q_SLOTS:
    /// Emits all fifteen signals with the values as they are: for a UI that has bound late.
    void getClimateInfo();

    /// Asks the box for the climate state.
    void requestClimateInfo();
    /// Asks the box to open its climate settings.
    void settings();
    /// Sends one button command; the buttons below are calls of it.
    /// @param Type  the button's code, 1..28
    /// @param value  one data byte, sent as it is
    void onSendDataSort(char Type, bool isPress = true, char value = 0);

    // Buttons with an argument `isPress` report press (true) and release (false); those without send a press
    // alone. `value` is one byte, 0..255, passed on as it came.

    /// Climate system on or off.
    void onOff();
    /// Rear zone.
    void rearZone(bool isPress);
    /// Automatic climate, main zone: temperature up.
    void autoMainZoneTempPlus(bool isPress);
    /// Automatic climate, main zone: temperature down.
    void autoMainZoneTempMinus(bool isPress);
    /// Automatic climate, second zone: temperature up.
    void autoSecondZoneTempPlus(bool isPress);
    /// Automatic climate, second zone: temperature down.
    void autoSecondZoneTempMinus(bool isPress);
    /// Manual climate, main zone: temperature up.
    void manualMainZoneTempUp(bool isPress);
    /// Manual climate, main zone: temperature down.
    void manualMainZoneTempDown(bool isPress);
    /// Left heated seat.
    void leftHeatedSeat();
    /// Right heated seat.
    void rightHeatedSeat();
    /// Left cooled seat.
    void leftCooledSeat();
    /// Right cooled seat.
    void rightCooledSeat();
    /// Automatic fan direction.
    void autoFanDirectValue(char value);
    /// Automatic climate.
    void autoBtn();
    /// Vent position.
    void ventPos();
    /// Recirculated or fresh air.
    void recircFresh();
    /// Two zones.
    void dualBtn();
    /// Air conditioning.
    void acBtn();
    /// Air conditioning at its maximum.
    void maxACBtn();
    /// Front defroster.
    void frontDefroster();
    /// Rear defroster.
    void rearDefroster();
    /// First custom control.
    void customControl1();
    /// Second custom control.
    void customControl2();
    /// Heated steering wheel.
    void heatedSteerWheel();
    /// Fan speed up.
    void fanSpeedUp(bool isPress);
    /// Fan speed down.
    void fanSpeedDown(bool isPress);
    /// Manual temperature.
    void manualTemp(char value);
    /// Manual fan speed.
    void manualFanSpeed(char value);

private:
    int m_type = -1;
    QString m_topText;
    QStringList m_comText;
    int m_mainTemp = -1;
    int m_secondTemp = -1;
    int m_mainUnit = -1;
    int m_secondUnit = -1;
    int m_leftHeatedSeat = -1;
    int m_rightHeatedSeat = -1;
    int m_leftCooledSeat = -1;
    int m_rightCooledSeat = -1;
    int m_fanDirectValue = -1;
    int m_fanSpeedStatus = -1;
    int m_ventPosition = -1;
    int m_fanDirect = -1;
    bool m_systemState = false;
    bool m_driverSeatPosition = false;
    int m_manualTempValue = -1;
    QList<int> m_buttonStatus;
};

} // namespace canbus
