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
/// Lives on the host's main thread: call everything there. Made on first use, destroyed when the process
/// exits.
class CANBUS_EXPORT VelVehicleGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    static VelVehicleGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    explicit VelVehicleGroupCmd(QObject *parent = nullptr);

    // The kinds of report, each with its whole payload. A payload that is too short is logged as an error and
    // changes nothing.

    /// Title, at least 1 byte.
    void onVehicleTopText(QByteArray data);
    /// Custom labels, at least 1 byte.
    void onVehicleCustomLabel(QByteArray data);
    /// The vehicle's state, at least 3 bytes.
    void onVehicleData(QByteArray data);

    // The items of the vehicle's state: from the byte that holds them, or from the whole payload.

    /// Doors, bits 0 to 3 of byte 0.
    void onVehicleDoorStatus(char byte);
    /// Hood, bit 4 of byte 0.
    void onVehicleHoodStatus(char byte);
    /// Trunk, bit 5 of byte 0.
    void onVehicleTrunkStatus(char byte);
    /// Battery, bit 2 of byte 2.
    void onVehicleBatteryStatus(char byte);
    /// States of the tires, byte 1.
    void onVehicleTire(QByteArray data);
    /// State of the check-engine lamp, byte 2.
    void onVehicleCheckEngineState(QByteArray data);
    /// States of the custom labels, byte 2.
    void onVehicleComLabelsState(QByteArray data);
    /// Texts of the tires, from byte 3 on.
    void onVehicleTireText(QByteArray data);

Q_SIGNALS:
    /// Screen title, cleaned of bytes that are no UTF-8. An empty one is announced each time it arrives.
    void updateVehicleTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    void updateVehicleComText(QStringList Text);
    /// Four flags.
    void updateVehicleDoorStatus(QList<bool> m_list);
    /// Flag of the hood.
    void updateVehicleHoodk(bool hood);
    /// Flag of the trunk.
    void updateVehicleTrunk(bool trunk);
    /// Flag of the battery.
    void updateVehicleBattery(bool battery);
    /// Four states 0..3.
    void updateVehicleTire(QList<int>);
    /// State 0..3.
    void updateVehicleCheckEngineState(int state);
    /// States 0..3, -1 before the first.
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
    /// Announces the tire texts.
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
