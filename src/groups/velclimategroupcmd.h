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
/// Made on first use, destroyed when the process exits.
///
/// @thread{The host's main thread, on which the group lives.}
/// @emitted{The host's main thread.}
class CANBUS_EXPORT VelClimateGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    /// @return never null
    static VelClimateGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    /// @param parent  its owner, or null
    explicit VelClimateGroupCmd(QObject *parent = nullptr);

    // The three kinds of report, each with its whole payload. A payload that is too short is logged as an
    // error and changes nothing.

    /// Screen type and title. Emits updateClimateType() and updateClimateTopText() on a change.
    /// @param data  at least 2 bytes: the type, then the title in UTF-8, up to a zero byte or the end
    void onClimateType(QByteArray data);
    /// Custom labels. Emits updateClimateComText() on a change, and whenever the list is empty.
    /// @param data  at least 1 byte: zero-terminated texts in UTF-8
    void onClimateCustomLabel(QByteArray data);
    /// The climate state. Decodes the items below and emits the signals of those that have changed.
    /// @param data  at least 15 bytes, the items as said below; more are ignored
    void onClimateData(QByteArray data);

    // The items of the climate state: from the whole payload, or from the value or byte that holds them.

    /// Button states. Emits updateClimateBtnStatus() on a change.
    /// @param data  the whole payload: two bits a button in bytes 4, 5 and 9 to 13
    void onClimateBtnStatus(QByteArray data);
    /// Temperature and unit of the main zone. Emits updateClimateMainTemp() on a change.
    /// @param data  the whole payload: temperature in bytes 0 (high) and 1, unit in bits 6 and 7 of byte 4
    void onClimateMainTemp(QByteArray data);
    /// Temperature and unit of the second zone. Emits updateClimateSecondTemp() on a change.
    /// @param data  the whole payload: temperature in bytes 2 (high) and 3, unit in bits 4 and 5 of byte 4
    void onClimateSecondTemp(QByteArray data);
    /// Levels of the heated seats. Emits updateClimateHeatSeat() on a change.
    /// @param data  the whole payload: left in bits 4 to 7 of byte 6, right in bits 0 to 3; 9..15 read as 0
    void onClimateHeatSeat(QByteArray data);
    /// Levels of the cooled seats. Emits updateClimateCoolSeat() on a change.
    /// @param data  the whole payload: left in bits 4 to 7 of byte 7, right in bits 0 to 3; 9..15 read as 0
    void onClimateCoolSeat(QByteArray data);
    /// Automatic fan direction. Emits updateClimateFanDirectValue() on a change.
    /// @param value  0..255, byte 8 of the payload
    void onClimateFanDirectValue(int value);
    /// State of the fan speed. Emits updateClimateFanSpeedStatus() on a change.
    /// @param data  the whole payload: bits 6 and 7 of byte 9
    void onClimateFanSpeedStatus(QByteArray data);
    /// Vent position. Emits updateClimateVentPosition() on a change.
    /// @param data  the whole payload: bits 4 to 7 of byte 10; 9..15 read as 0
    void onClimateVentPosition(QByteArray data);
    /// Manual fan direction. Emits updateClimateFanDirect() on a change.
    /// @param data  the whole payload: bits 0 and 1 of byte 12
    void onClimateFanDirect(QByteArray data);
    /// Manual temperature. Emits updateClimateManualTempValue() on a change.
    /// @param value  0..255, byte 14 of the payload
    void onClimateManualTempValue(int value);
    /// Whether the system is on. Emits updateClimateSystem() on a change.
    /// @param byte  byte 13 of the payload: bit 4
    void onClimateSystem(char byte);
    /// Driver's seat position. Emits updateClimateDriverSeatPos() on a change.
    /// @param byte  byte 13 of the payload: bit 5
    void onClimateDriverSeatPosition(char byte);

Q_SIGNALS:
    /// Type of the screen.
    /// @param Type  0..255; -1 before the first
    void updateClimateType(int Type);
    /// Title of the screen.
    /// @param TopText  cleaned of bytes that are no UTF-8
    void updateClimateTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    /// @param Text  any number of labels, empty ones too
    void updateClimateComText(QStringList Text);
    /// States of the buttons.
    /// @param m_list  twenty states 0..3; empty before the first
    void updateClimateBtnStatus(QList<int> m_list);
    /// Temperature of the main zone.
    /// @param value  0..65535, as the box counts, unscaled; -1 before the first
    /// @param Unit  state 0..3; -1 before the first
    void updateClimateMainTemp(int value, int Unit);
    /// Temperature of the second zone.
    /// @param value  0..65535, as the box counts, unscaled; -1 before the first
    /// @param Unit  state 0..3; -1 before the first
    void updateClimateSecondTemp(int value, int Unit);
    /// Levels of the heated seats.
    /// @param left, right  0..8; -1 before the first
    void updateClimateHeatSeat(int left, int right);
    /// Levels of the cooled seats.
    /// @param left, right  0..8; -1 before the first
    void updateClimateCoolSeat(int left, int right);
    /// Automatic fan direction.
    /// @param value  0..255; -1 before the first
    void updateClimateFanDirectValue(int value);
    /// State of the fan speed.
    /// @param value  0..3; -1 before the first
    void updateClimateFanSpeedStatus(int value);
    /// Vent position.
    /// @param value  state 0..8; -1 before the first
    void updateClimateVentPosition(int value);
    /// Manual fan direction.
    /// @param MaualFd  state 0..3; -1 before the first
    void updateClimateFanDirect(int MaualFd);
    /// Manual temperature.
    /// @param value  0..255, as the box counts; -1 before the first
    void updateClimateManualTempValue(int value);
    /// Whether the climate system is on.
    /// @param state  true when it is on
    void updateClimateSystem(bool state);
    /// Driver's seat position.
    /// @param pos  the box's flag
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
    /// @param isPress  true when the button is pressed, false when it is let go
    /// @param value  one data byte 0..255, sent as it is
    void onSendDataSort(char Type, bool isPress = true, char value = 0);

    // Buttons with an argument `isPress` report press (true) and release (false); those without send a press
    // alone. `value` is one byte, 0..255, passed on as it came.

    /// Climate system on or off.
    void onOff();
    /// Rear zone. @press
    void rearZone(bool isPress);
    /// Automatic climate, main zone: temperature up. @press
    void autoMainZoneTempPlus(bool isPress);
    /// Automatic climate, main zone: temperature down. @press
    void autoMainZoneTempMinus(bool isPress);
    /// Automatic climate, second zone: temperature up. @press
    void autoSecondZoneTempPlus(bool isPress);
    /// Automatic climate, second zone: temperature down. @press
    void autoSecondZoneTempMinus(bool isPress);
    /// Manual climate, main zone: temperature up. @press
    void manualMainZoneTempUp(bool isPress);
    /// Manual climate, main zone: temperature down. @press
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
    /// @param value  0..255, as the box counts
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
    /// Fan speed up. @press
    void fanSpeedUp(bool isPress);
    /// Fan speed down. @press
    void fanSpeedDown(bool isPress);
    /// Manual temperature.
    /// @param value  0..255, as the box counts
    void manualTemp(char value);
    /// Manual fan speed.
    /// @param value  0..255, as the box counts
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
