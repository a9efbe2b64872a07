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
    static VelVehicleGroupCmd *instance();

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

    void onVehicleDoorStatus(char byte);
    void onVehicleHoodStatus(char byte);
    void onVehicleTrunkStatus(char byte);
    void onVehicleBatteryStatus(char byte);
    void onVehicleTire(QByteArray data);
    void onVehicleCheckEngineState(QByteArray data);
    void onVehicleComLabelsState(QByteArray data);
    void onVehicleTireText(QByteArray data);

Q_SIGNALS:
    void updateVehicleTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    void updateVehicleComText(QStringList Text);
    /// Four flags.
    void updateVehicleDoorStatus(QList<bool> m_list);
    void updateVehicleHoodk(bool hood);
    void updateVehicleTrunk(bool trunk);
    void updateVehicleBattery(bool battery);
    /// Four states 0..3.
    void updateVehicleTire(QList<int>);
    /// State 0..3.
    void updateVehicleCheckEngineState(int state);
    /// States 0..3, -1 before the first.
    void updateVehicleComLabelsState(int state1, int state2);
    void updateVehicleTireText(QStringList);

public Q_SLOTS:
    /// Asks the box for the vehicle's data.
    void requestVehicleInfo();
    /// Emits all ten signals with the values as they are: for a UI that has bound late.
    void getVehicleInfo();
    /// Asks the box to open its settings.
    void settings();
    // The buttons report a press alone.
    void checkEngine();
    void customControl1();
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
