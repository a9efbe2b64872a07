#include "velclimategroupcmd.h"

#include "canbuslog.h"
#include "grouptexts.h"
#include "support/bytes.h"
#include "support/changerule.h"
#include "support/processwide.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace canbus {

namespace {

constexpr int kShortestType = 2;
constexpr int kShortestData = 15;

/// Where each button's 2-bit state stands in the climate state.
struct ButtonField {
    int byte;
    int highBit;
    int lowBit;
};
constexpr ButtonField kButtonFields[] = {
    {4, 3, 2},
    {4, 1, 0},
    {5, 7, 6},
    {5, 5, 4},
    {5, 3, 2},
    {5, 1, 0},
    {9, 5, 4},
    {9, 3, 2},
    {9, 1, 0},
    {10, 3, 2},
    {10, 1, 0},
    {11, 7, 6},
    {11, 5, 4},
    {11, 3, 2},
    {11, 1, 0},
    {12, 7, 6},
    {12, 5, 4},
    {12, 3, 2},
    // The last two stand the other way round than all others.
    {13, 1, 0},
    {13, 3, 2},
};

int state2Of(const QByteArray &data, int byte, int highBit, int lowBit)
{
    return state2At(byteAt(data, byte), lowBit, highBit);
}

int highNibbleState(const QByteArray &data, int byte)
{
    return state4At(byteAt(data, byte), 4, 5, 6, 7);
}

int lowNibbleState(const QByteArray &data, int byte)
{
    return state4At(byteAt(data, byte), 0, 1, 2, 3);
}

} // namespace

VelClimateGroupCmd *VelClimateGroupCmd::instance()
{
    static const ProcessWide<VelClimateGroupCmd> group;
    return group.get();
}

VelClimateGroupCmd::VelClimateGroupCmd(QObject *parent)
    : QObject(parent)
{
}

void VelClimateGroupCmd::onClimateType(QByteArray data)
{
    if (data.size() < kShortestType) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    if (replaceIfChanged(m_type, int(firstByte(data)))) {
        CANBUS_DEBUG() << m_type;
        Q_EMIT updateClimateType(m_type);
    }
    // Compared raw but stored cleaned: a title that cleaning alters is announced on every repetition.
    if (replaceIfChanged(m_topText, textUpToZero(data, 1))) {
        removeReplacementCharacters(m_topText);
        CANBUS_DEBUG() << m_topText;
        Q_EMIT updateClimateTopText(m_topText);
    }
}

void VelClimateGroupCmd::onClimateCustomLabel(QByteArray data)
{
    if (takeTexts(CANBUS_HERE, m_comText, data))
        Q_EMIT updateClimateComText(m_comText);
}

void VelClimateGroupCmd::onClimateData(QByteArray data)
{
    if (data.size() < kShortestData) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    onClimateSystem(data.at(13));
    onClimateDriverSeatPosition(data.at(13));
    onClimateBtnStatus(data);
    onClimateMainTemp(data);
    onClimateSecondTemp(data);
    onClimateHeatSeat(data);
    onClimateCoolSeat(data);
    onClimateFanDirectValue(byteAt(data, 8));
    onClimateFanSpeedStatus(data);
    onClimateVentPosition(data);
    onClimateFanDirect(data);
    onClimateManualTempValue(byteAt(data, 14));
}

void VelClimateGroupCmd::onClimateBtnStatus(QByteArray data)
{
    std::array<int, std::size(kButtonFields)> states {};
    std::transform(std::begin(kButtonFields), std::end(kButtonFields), states.begin(),
                   [&data](const ButtonField &field) {
                       return state2Of(data, field.byte, field.highBit, field.lowBit);
                   });
    if (replaceIfChanged(m_buttonStatus, states)) {
        CANBUS_DEBUG() << m_buttonStatus;
        Q_EMIT updateClimateBtnStatus(m_buttonStatus);
    }
}

void VelClimateGroupCmd::onClimateMainTemp(QByteArray data)
{
    if (replaceIfChanged(m_mainTemp, bigEndian16At(data, 0), m_mainUnit, state2Of(data, 4, 7, 6))) {
        CANBUS_DEBUG() << m_mainTemp << m_mainUnit;
        Q_EMIT updateClimateMainTemp(m_mainTemp, m_mainUnit);
    }
}

void VelClimateGroupCmd::onClimateSecondTemp(QByteArray data)
{
    if (replaceIfChanged(m_secondTemp, bigEndian16At(data, 2), m_secondUnit, state2Of(data, 4, 5, 4))) {
        CANBUS_DEBUG() << m_secondTemp << m_secondUnit;
        Q_EMIT updateClimateSecondTemp(m_secondTemp, m_secondUnit);
    }
}

void VelClimateGroupCmd::onClimateHeatSeat(QByteArray data)
{
    if (replaceIfChanged(m_leftHeatedSeat, highNibbleState(data, 6), m_rightHeatedSeat,
                         lowNibbleState(data, 6))) {
        CANBUS_DEBUG() << "Left Heated Seat" << m_leftHeatedSeat;
        CANBUS_DEBUG() << "Right Heated Seat" << m_rightHeatedSeat;
        Q_EMIT updateClimateHeatSeat(m_leftHeatedSeat, m_rightHeatedSeat);
    }
}

void VelClimateGroupCmd::onClimateCoolSeat(QByteArray data)
{
    if (replaceIfChanged(m_leftCooledSeat, highNibbleState(data, 7), m_rightCooledSeat,
                         lowNibbleState(data, 7))) {
        CANBUS_DEBUG() << "Left Cooled Seat" << m_leftCooledSeat;
        CANBUS_DEBUG() << "Right Cooled Seat" << m_rightCooledSeat;
        Q_EMIT updateClimateCoolSeat(m_leftCooledSeat, m_rightCooledSeat);
    }
}

void VelClimateGroupCmd::onClimateFanDirectValue(int value)
{
    if (replaceIfChanged(m_fanDirectValue, value)) {
        CANBUS_DEBUG() << "0 – 255 Fan direct Value (Auto) Meter" << m_fanDirectValue;
        Q_EMIT updateClimateFanDirectValue(m_fanDirectValue);
    }
}

void VelClimateGroupCmd::onClimateFanSpeedStatus(QByteArray data)
{
    if (replaceIfChanged(m_fanSpeedStatus, state2Of(data, 9, 7, 6))) {
        CANBUS_DEBUG() << m_fanSpeedStatus;
        Q_EMIT updateClimateFanSpeedStatus(m_fanSpeedStatus);
    }
}

void VelClimateGroupCmd::onClimateVentPosition(QByteArray data)
{
    if (replaceIfChanged(m_ventPosition, highNibbleState(data, 10))) {
        CANBUS_DEBUG() << "Vent Position" << m_ventPosition;
        Q_EMIT updateClimateVentPosition(m_ventPosition);
    }
}

void VelClimateGroupCmd::onClimateFanDirect(QByteArray data)
{
    if (replaceIfChanged(m_fanDirect, state2Of(data, 12, 1, 0))) {
        CANBUS_DEBUG() << m_fanDirect;
        Q_EMIT updateClimateFanDirect(m_fanDirect);
    }
}

void VelClimateGroupCmd::onClimateManualTempValue(int value)
{
    if (replaceIfChanged(m_manualTempValue, value)) {
        CANBUS_DEBUG() << "Manual Temperature Value Meter:" << m_manualTempValue;
        Q_EMIT updateClimateManualTempValue(m_manualTempValue);
    }
}

void VelClimateGroupCmd::onClimateSystem(char byte)
{
    if (replaceIfChanged(m_systemState, bitAt(quint8(byte), 4))) {
        CANBUS_DEBUG() << "Climate System Status " << m_systemState;
        Q_EMIT updateClimateSystem(m_systemState);
    }
}

void VelClimateGroupCmd::onClimateDriverSeatPosition(char byte)
{
    if (replaceIfChanged(m_driverSeatPosition, bitAt(quint8(byte), 5))) {
        CANBUS_DEBUG() << "Driver Seat Position " << m_driverSeatPosition;
        Q_EMIT updateClimateDriverSeatPos(m_driverSeatPosition);
    }
}

void VelClimateGroupCmd::getClimateInfo()
{
    Q_EMIT updateClimateType(m_type);
    Q_EMIT updateClimateTopText(m_topText);
    Q_EMIT updateClimateComText(m_comText);
    Q_EMIT updateClimateBtnStatus(m_buttonStatus);
    Q_EMIT updateClimateMainTemp(m_mainTemp, m_mainUnit);
    Q_EMIT updateClimateSecondTemp(m_secondTemp, m_secondUnit);
    Q_EMIT updateClimateHeatSeat(m_leftHeatedSeat, m_rightHeatedSeat);
    Q_EMIT updateClimateCoolSeat(m_leftCooledSeat, m_rightCooledSeat);
    Q_EMIT updateClimateFanDirectValue(m_fanDirectValue);
    Q_EMIT updateClimateFanSpeedStatus(m_fanSpeedStatus);
    Q_EMIT updateClimateVentPosition(m_ventPosition);
    Q_EMIT updateClimateFanDirect(m_fanDirect);
    Q_EMIT updateClimateManualTempValue(m_manualTempValue);
    Q_EMIT updateClimateSystem(m_systemState);
    Q_EMIT updateClimateDriverSeatPos(m_driverSeatPosition);
}

} // namespace canbus
