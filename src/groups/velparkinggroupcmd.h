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
/// Made on first use, destroyed when the process exits.
///
/// @thread{The host's main thread, on which the group lives.}
/// @emitted{The host's main thread.}
class CANBUS_EXPORT VelParkingGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    /// @return never null
    static VelParkingGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    /// @param parent  its owner, or null
    explicit VelParkingGroupCmd(QObject *parent = nullptr);

    // The kinds of report, each with its whole payload. A payload that is too short is logged as an error and
    // changes nothing.

    /// Title. Emits updateParkTopText() on a change, and whenever it is empty.
    /// @param data  at least 1 byte: the title in UTF-8, up to a zero byte or the end
    void onParkTopText(QByteArray data);
    /// Custom labels. Emits updateParkComText() on a change, and whenever the list is empty.
    /// @param data  at least 1 byte: zero-terminated texts in UTF-8
    void onParkCustomLabel(QByteArray data);
    /// The distances and states. Decodes the items below and emits the signals of those that have changed.
    /// @param data  at least 17 bytes: four zones at the front, the rear, on the left and on the right, then
    ///   the states; more are ignored
    void onParkData(QByteArray data);

    // The items of the parking data. Distances of the zones 1 to 4 of one side, 0..255.

    /// Distances at the front. Emits updateParkSensorFront() on a change.
    /// @param zone1, zone2, zone3, zone4  0..255, as the box counts
    void onParkDistanceSensorFront(int zone1, int zone2, int zone3, int zone4);
    /// Distances at the rear. Emits updateParkSensorRear() on a change.
    /// @param zone1, zone2, zone3, zone4  0..255, as the box counts
    void onParkDistanceSensorRear(int zone1, int zone2, int zone3, int zone4);
    /// Distances on the left. Emits updateParkSensorLeft() on a change.
    /// @param zone1, zone2, zone3, zone4  0..255, as the box counts
    void onParkDistanceSensorLeft(int zone1, int zone2, int zone3, int zone4);
    /// Distances on the right. Emits updateParkSensorRight() on a change.
    /// @param zone1, zone2, zone3, zone4  0..255, as the box counts
    void onParkDistanceSensorRight(int zone1, int zone2, int zone3, int zone4);
    /// States of the custom labels. Emits updateParkComLabelsState() on a change.
    /// @param data  the whole payload: bits 0 and 1, and 2 and 3, of byte 16
    void onParkDistanceComLabelsState(QByteArray data);
    /// Flags of the sensors. Emits updateParkSensorStatus() on a change.
    /// @param byte  byte 16 of the payload: bits 4 to 7
    void onParkDistanceSensorStatus(char byte);

Q_SIGNALS:
    /// Title of the screen. An empty one is announced each time it arrives.
    /// @param TopText  cleaned of bytes that are no UTF-8
    void updateParkTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    /// @param Text  any number of labels, empty ones too
    void updateParkComText(QStringList Text);
    /// Distances at the front.
    /// @param m_list  the zones 1 to 4, 0..255 each, as the box counts; empty before the first
    void updateParkSensorFront(QList<int> m_list);
    /// Distances at the rear.
    /// @param m_list  the zones 1 to 4, 0..255 each, as the box counts; empty before the first
    void updateParkSensorRear(QList<int> m_list);
    /// Distances on the left.
    /// @param m_list  the zones 1 to 4, 0..255 each, as the box counts; empty before the first
    void updateParkSensorLeft(QList<int> m_list);
    /// Distances on the right.
    /// @param m_list  the zones 1 to 4, 0..255 each, as the box counts; empty before the first
    void updateParkSensorRight(QList<int> m_list);
    /// States of the custom labels.
    /// @param state1, state2  0..3
    void updateParkComLabelsState(int state1, int state2);
    /// Flags of the sensors.
    /// @param m_list  four flags; empty before the first
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
