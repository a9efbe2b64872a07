#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

namespace canbus {

/// The vehicle screen: doors, hood, trunk, battery, tires, check-engine lamp and texts as signals, its
/// buttons as commands.
///
/// Every item is kept and announced by its `update*` signal when it changes; getVehicleInfo() announces all.
/// Tire texts are announced 300 ms after they change, with what they are by then. When the link goes down the
/// last state stays. What the states mean on the screen belongs to the UI and the box: they are passed on as
/// they came.
///
/// Made on first use, destroyed when the process exits.
///
/// @thread{The host's main thread, on which the group lives.}
/// @emitted{The host's main thread.}
class CANBUS_EXPORT VelVehicleGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    /// @return never null
    static VelVehicleGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    /// @param parent  its owner, or null
    explicit VelVehicleGroupCmd(QObject *parent = nullptr);

    // The kinds of report, each with its whole payload. A payload that is too short is logged as an error and
    // changes nothing.

    /// Title. Emits updateVehicleTopText() on a change, and whenever it is empty.
    /// @param data  at least 1 byte: the title in UTF-8, up to a zero byte or the end
    void onVehicleTopText(QByteArray data);
    /// Custom labels. Emits updateVehicleComText() on a change, and whenever the list is empty.
    /// @param data  at least 1 byte: zero-terminated texts in UTF-8
    void onVehicleCustomLabel(QByteArray data);
    /// The vehicle's state. Decodes the items below and emits the signals of those that have changed.
    /// @param data  at least 3 bytes, the items as said below
    void onVehicleData(QByteArray data);

    // The items of the vehicle's state: from the byte that holds them, or from the whole payload.

    /// Doors. Emits updateVehicleDoorStatus() on a change.
    /// @param byte  byte 0 of the payload: bits 0 to 3
    void onVehicleDoorStatus(char byte);
    /// Hood. Emits updateVehicleHoodk() on a change.
    /// @param byte  byte 0 of the payload: bit 4
    void onVehicleHoodStatus(char byte);
    /// Trunk. Emits updateVehicleTrunk() on a change.
    /// @param byte  byte 0 of the payload: bit 5
    void onVehicleTrunkStatus(char byte);
    /// Battery. Emits updateVehicleBattery() on a change.
    /// @param byte  byte 2 of the payload: bit 2
    void onVehicleBatteryStatus(char byte);
    /// States of the tires. Emits updateVehicleTire() on a change.
    /// @param data  the whole payload: two bits a tire in byte 1, the first tire's lowest
    void onVehicleTire(QByteArray data);
    /// State of the check-engine lamp. Emits updateVehicleCheckEngineState() on a change.
    /// @param data  the whole payload: bits 0 and 1 of byte 2
    void onVehicleCheckEngineState(QByteArray data);
    /// States of the custom labels. Emits updateVehicleComLabelsState() on a change.
    /// @param data  the whole payload: bits 4 and 5, and 6 and 7, of byte 2
    void onVehicleComLabelsState(QByteArray data);
    /// Texts of the tires. A change, or an empty list, is announced by updateVehicleTireText() after 300 ms.
    /// @param data  the whole payload: zero-terminated texts in UTF-8 from byte 3 on
    void onVehicleTireText(QByteArray data);

Q_SIGNALS:
    /// Title of the screen. An empty one is announced each time it arrives.
    /// @param TopText  cleaned of bytes that are no UTF-8
    void updateVehicleTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    /// @param Text  any number of labels, empty ones too
    void updateVehicleComText(QStringList Text);
    /// Doors.
    /// @param m_list  the flags of the doors 1 to 4; empty before the first
    void updateVehicleDoorStatus(QList<bool> m_list);
    /// Hood.
    /// @param hood  the box's flag
    void updateVehicleHoodk(bool hood);
    /// Trunk.
    /// @param trunk  the box's flag
    void updateVehicleTrunk(bool trunk);
    /// Battery.
    /// @param battery  the box's flag
    void updateVehicleBattery(bool battery);
    /// States of the tires 1 to 4, 0..3 each; an empty list before the first.
    void updateVehicleTire(QList<int>);
    /// State of the check-engine lamp.
    /// @param state  0..3; 0 before the first
    void updateVehicleCheckEngineState(int state);
    /// States of the custom labels.
    /// @param state1, state2  0..3; -1 before the first
    void updateVehicleComLabelsState(int state1, int state2);
    /// Texts of the tires, 300 ms after they change. An empty list counts as a change each time it arrives.
    void updateVehicleTireText(QStringList);

public Q_SLOTS:
    /// Asks the box for the vehicle's data.
    void requestVehicleInfo();
    /// Emits all ten signals with the values as they are: for a UI that has bound late.
    void getVehicleInfo();
    /// Asks the box to open its settings.
    void settings();
    // The buttons report a press alone.
    /// Check-engine button.
    void checkEngine();
    /// First custom control.
    void customControl1();
    /// Second custom control.
    void customControl2();
    /// Emits updateVehicleTireText(): the timer of the tire texts.
    void onTimerOut();

private:
    QString m_topText;
    QStringList m_comText;
    QList<bool> m_doors;
    bool m_hood = false;
    bool m_trunk = false;
    QList<int> m_tires;
    int m_checkEngineState = 0;
    bool m_battery = false;
    int m_comLabelState1 = -1;
    int m_comLabelState2 = -1;
    QStringList m_tireText;
    QTimer m_tireTextTimer;
};

} // namespace canbus
