#include "velparkinggroupcmd.h"

#include "canbuslog.h"
#include "groupcommand.h"
#include "grouptexts.h"
#include "support/bytes.h"
#include "support/changerule.h"
#include "support/processwide.h"

#include <array>

namespace canbus {

namespace {

constexpr int kShortestData = 17;
constexpr int kStatusByte = 16;

} // namespace

VelParkingGroupCmd *VelParkingGroupCmd::instance()
{
    static const ProcessWide<VelParkingGroupCmd> group;
    return group.get();
}

VelParkingGroupCmd::VelParkingGroupCmd(QObject *parent)
    : QObject(parent)
{
}

void VelParkingGroupCmd::onParkTopText(QByteArray data)
{
    if (takeTitle(CANBUS_HERE, m_topText, data))
        Q_EMIT updateParkTopText(m_topText);
}

void VelParkingGroupCmd::onParkCustomLabel(QByteArray data)
{
    if (takeTexts(CANBUS_HERE, m_comText, data, ArrivalInLog::Yes))
        Q_EMIT updateParkComText(m_comText);
}

void VelParkingGroupCmd::onParkData(QByteArray data)
{
    if (data.size() < kShortestData) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    onParkDistanceSensorFront(byteAt(data, 0), byteAt(data, 1), byteAt(data, 2), byteAt(data, 3));
    onParkDistanceSensorRear(byteAt(data, 4), byteAt(data, 5), byteAt(data, 6), byteAt(data, 7));
    onParkDistanceSensorLeft(byteAt(data, 8), byteAt(data, 9), byteAt(data, 10), byteAt(data, 11));
    onParkDistanceSensorRight(byteAt(data, 12), byteAt(data, 13), byteAt(data, 14), byteAt(data, 15));
    onParkDistanceComLabelsState(data);
    onParkDistanceSensorStatus(data.at(kStatusByte));
}

void VelParkingGroupCmd::onParkDistanceSensorFront(int zone1, int zone2, int zone3, int zone4)
{
    if (replaceIfChanged(m_front, std::array {zone1, zone2, zone3, zone4})) {
        CANBUS_DEBUG() << m_front;
        Q_EMIT updateParkSensorFront(m_front);
    }
}

void VelParkingGroupCmd::onParkDistanceSensorRear(int zone1, int zone2, int zone3, int zone4)
{
    if (replaceIfChanged(m_rear, std::array {zone1, zone2, zone3, zone4})) {
        CANBUS_DEBUG() << m_rear;
        Q_EMIT updateParkSensorRear(m_rear);
    }
}

void VelParkingGroupCmd::onParkDistanceSensorLeft(int zone1, int zone2, int zone3, int zone4)
{
    if (replaceIfChanged(m_left, std::array {zone1, zone2, zone3, zone4})) {
        CANBUS_DEBUG() << m_left;
        Q_EMIT updateParkSensorLeft(m_left);
    }
}

void VelParkingGroupCmd::onParkDistanceSensorRight(int zone1, int zone2, int zone3, int zone4)
{
    if (replaceIfChanged(m_right, std::array {zone1, zone2, zone3, zone4})) {
        CANBUS_DEBUG() << m_right;
        Q_EMIT updateParkSensorRight(m_right);
    }
}

void VelParkingGroupCmd::onParkDistanceComLabelsState(QByteArray data)
{
    const quint8 byte = byteAt(data, kStatusByte);
    if (replaceIfChanged(m_comLabelState1, state2At(byte, 0, 1), m_comLabelState2, state2At(byte, 2, 3))) {
        CANBUS_DEBUG() << m_comLabelState1 << m_comLabelState2;
        Q_EMIT updateParkComLabelsState(m_comLabelState1, m_comLabelState2);
    }
}

void VelParkingGroupCmd::onParkDistanceSensorStatus(char byte)
{
    if (replaceIfChanged(m_sensorStatus, bitsAt(quint8(byte), 4, 5, 6, 7))) {
        CANBUS_DEBUG() << m_sensorStatus;
        Q_EMIT updateParkSensorStatus(m_sensorStatus);
    }
}

void VelParkingGroupCmd::getParkInfo()
{
    Q_EMIT updateParkTopText(m_topText);
    Q_EMIT updateParkComText(m_comText);
    Q_EMIT updateParkSensorFront(m_front);
    Q_EMIT updateParkSensorRear(m_rear);
    Q_EMIT updateParkSensorLeft(m_left);
    Q_EMIT updateParkSensorRight(m_right);
    Q_EMIT updateParkComLabelsState(m_comLabelState1, m_comLabelState2);
    Q_EMIT updateParkSensorStatus(m_sensorStatus);
}

void VelParkingGroupCmd::requestParkInfo()
{
    sendCommand(CANBUS_HERE, Category::ParkingAssist, Command::RequestData,
                {quint8(DataPage::ParkingAssist)});
}

void VelParkingGroupCmd::settings()
{
    sendCommand(CANBUS_HERE, Category::ParkingAssist, Command::Settings, {0});
}

void VelParkingGroupCmd::customControl1()
{
    sendCommand(CANBUS_HERE, Category::ParkingAssist, Command::ParkingButton,
                {quint8(ParkingButton::CustomControl1), kPress});
}

void VelParkingGroupCmd::customControl2()
{
    sendCommand(CANBUS_HERE, Category::ParkingAssist, Command::ParkingButton,
                {quint8(ParkingButton::CustomControl2), kPress});
}

} // namespace canbus
