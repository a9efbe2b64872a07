#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace canbus {

/// The parking screen: the distances of four zones on each side of the car as signals, its buttons as
/// commands.
///
/// Every item is kept and announced by its `update*` signal when it changes; getParkInfo() announces all.
/// Lists are empty until they were received; the label states start at 0, so a first pair of zeros is no
/// change. When the link goes down the last state stays. The unit of the distances and the meaning of states
/// and flags belong to the UI and the box: they are passed on as they came.
///
/// Lives on the host's main thread: call everything there. Made on first use, destroyed when the process
/// exits.
class CANBUS_EXPORT VelParkingGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    static VelParkingGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    explicit VelParkingGroupCmd(QObject *parent = nullptr);

    // The kinds of report, each with its whole payload. A payload that is too short is logged as an error and
    // changes nothing.

    /// Title, at least 1 byte. An empty title is announced each time it arrives.
    void onParkTopText(QByteArray data);
    /// Custom labels, at least 1 byte.
    void onParkCustomLabel(QByteArray data);
    /// The distances and states, at least 17 bytes.
    void onParkData(QByteArray data);

    // The items of the parking data. Distances of the zones 1 to 4 of one side, 0..255.

    /// Distances at the front.
    void onParkDistanceSensorFront(int zone1, int zone2, int zone3, int zone4);
    /// Distances at the rear.
    void onParkDistanceSensorRear(int zone1, int zone2, int zone3, int zone4);
    /// Distances on the left.
    void onParkDistanceSensorLeft(int zone1, int zone2, int zone3, int zone4);
    /// Distances on the right.
    void onParkDistanceSensorRight(int zone1, int zone2, int zone3, int zone4);
    /// States of the custom labels, byte 16.
    void onParkDistanceComLabelsState(QByteArray data);
    /// Flags of the sensors, bits 4 to 7 of byte 16.
    void onParkDistanceSensorStatus(char byte);

Q_SIGNALS:
    /// Screen title, cleaned of bytes that are no UTF-8. An empty one is announced each time it arrives.
    void updateParkTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    void updateParkComText(QStringList Text);
    /// Distances of four zones at the front, 0..255 each.
    void updateParkSensorFront(QList<int> m_list);
    /// Likewise at the rear.
    void updateParkSensorRear(QList<int> m_list);
    /// Likewise on the left.
    void updateParkSensorLeft(QList<int> m_list);
    /// Likewise on the right.
    void updateParkSensorRight(QList<int> m_list);
    /// States 0..3.
    void updateParkComLabelsState(int state1, int state2);
    /// Four flags.
    void updateParkSensorStatus(QList<bool> m_list);

public Q_SLOTS:
    /// Asks the box for the parking data.
    void requestParkInfo();
    /// Emits all eight signals with the values as they are: for a UI that has bound late.
    void getParkInfo();
    /// Asks the box to open its settings.
    void settings();
    // The custom controls report a press alone.
    /// First custom control.
    void customControl1();
    /// Second custom control.
    void customControl2();

private:
    QString m_topText;
    QStringList m_comText;
    QList<int> m_front;
    QList<int> m_rear;
    QList<int> m_left;
    QList<int> m_right;
    int m_comLabelState1 = 0;
    int m_comLabelState2 = 0;
    QList<bool> m_sensorStatus;
};

} // namespace canbus
