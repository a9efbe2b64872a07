#include "velgaugesgroupcmd.h"

#include "canbuslog.h"
#include "groupcommand.h"
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
constexpr int kShortestScale = 2;
constexpr int kShortestStateValue = 13;
constexpr int kThrottleMs = 300;

constexpr int kFirstScaleEntry = 2; // characters
constexpr int kScaleEntry = 3;      // characters of each that follows
constexpr int kScaleEnd = 32;       // where a full scale of eleven entries ends and the centre texts begin
constexpr int kValueTexts = 12;

constexpr int kZeroPositionBytes[] = {0, 4, 6, 8, 10};
constexpr int kValueBytes[] = {1, 5, 7, 9, 11};

std::array<int, 5> bytesOf(const QByteArray &data, const int (&indices)[5])
{
    std::array<int, 5> bytes {};
    std::transform(std::begin(indices), std::end(indices), bytes.begin(),
                   [&data](int index) { return byteAt(data, index); });
    return bytes;
}

/// Takes the scale off the front of `data`. @return where the centre texts begin
int splitScale(QStringList &scale, const QByteArray &data)
{
    scale.append(textUpToZero(data.left(kFirstScaleEntry)));
    int i = kFirstScaleEntry;
    for (; i < data.size() && i != kScaleEnd; i += kScaleEntry) {
        if (i + kScaleEntry <= data.size())
            scale.append(textUpToZero(data.mid(i, kScaleEntry)));
    }
    return i;
}

} // namespace

VelGaugesGroupCmd *VelGaugesGroupCmd::instance()
{
    static const ProcessWide<VelGaugesGroupCmd> group;
    return group.get();
}

VelGaugesGroupCmd::VelGaugesGroupCmd(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<QList<bool>>("QList<bool>");
    m_throttleTimer.setInterval(kThrottleMs);
    m_throttleTimer.setSingleShot(true);
    m_throttleTimer.setTimerType(Qt::PreciseTimer); // a coarse one may be 15 ms early or late
    connect(&m_throttleTimer, &QTimer::timeout, this, &VelGaugesGroupCmd::onTimerOut);
}

void VelGaugesGroupCmd::handleGaugeType(QByteArray data)
{
    if (data.size() < kShortestType) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    m_type.clear();
    for (int key = 0; key < 4; ++key) {
        m_type.insert(key, bitAt(firstByte(data), key));
        CANBUS_DEBUG() << key << ":" << m_type.value(key);
    }
    // Compared raw but stored cleaned: a title that cleaning alters is announced on every repetition.
    if (replaceIfChangedOrEmpty(m_topText, textUpToZero(data, 1))) {
        removeReplacementCharacters(m_topText);
        Q_EMIT updateGaugeTopText(m_topText);
    }
    // Changed or not, unlike every other item.
    Q_EMIT updateGaugeType(m_type);
}

void VelGaugesGroupCmd::handleGaugeCustomLabel(QByteArray data)
{
    if (takeTexts(CANBUS_HERE, m_comText, data))
        Q_EMIT updateGaugeComText(m_comText);
}

void VelGaugesGroupCmd::handleGaugeScaleAndCenterText(QByteArray data)
{
    if (data.size() < kShortestScale) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    QStringList scale;
    const QStringList centerText = textsIn(data, splitScale(scale, data));
    // Not announced again when it is the same, not even an empty one: it never is.
    if (replaceIfChanged(m_scale, scale)) {
        CANBUS_DEBUG() << "Scale value:" << m_scale;
        Q_EMIT updateGaugeScale(m_scale);
    }
    if (replaceIfChangedOrEmpty(m_centerText, centerText))
        Q_EMIT updateGaugeCenterText(m_centerText);
}

void VelGaugesGroupCmd::handleGaugeTopLeft_RightText(QByteArray data)
{
    if (takeTexts(CANBUS_HERE, m_topLeftRightText, data))
        Q_EMIT updateGaugeTopLRText(m_topLeftRightText);
}

void VelGaugesGroupCmd::handleGaugeBottomLeft_RightText(QByteArray data)
{
    if (takeTexts(CANBUS_HERE, m_bottomLeftRightText, data))
        Q_EMIT updateGaugeBottomLRText(m_bottomLeftRightText);
}

void VelGaugesGroupCmd::handleGaugeStateValue(QByteArray data)
{
    if (data.size() < kShortestStateValue) {
        CANBUS_ERROR() << "data is error";
        return;
    }
    handleGaugeShift(data.at(2));
    handleGaugeFormat(data.at(2));
    handleGaugeComLabelsState(data);
    handleGaugePeakColorState(data);
    handleGaugeZeroPos(data);
    handleGaugeValue(data);
    handleGaugeValueText(data);
}

void VelGaugesGroupCmd::handleGaugeFormat(char byte)
{
    if (replaceIfChanged(m_format, bitsAt(quint8(byte), 1, 2, 3, 4, 5))) {
        CANBUS_DEBUG() << m_format;
        Q_EMIT updateGaugeFormat(m_format);
    }
}

void VelGaugesGroupCmd::handleGaugeShift(char byte)
{
    if (replaceIfChanged(m_shift, bitAt(quint8(byte), 0))) {
        CANBUS_DEBUG() << m_shift;
        announceThrottled();
    }
}

void VelGaugesGroupCmd::handleGaugePeakColorState(QByteArray data)
{
    if (replaceIfChanged(m_peakColorState, state3At(byteAt(data, 3), 2, 3, 4))) {
        CANBUS_DEBUG() << m_peakColorState;
        Q_EMIT updateGaugePeakColorState(m_peakColorState);
    }
}

void VelGaugesGroupCmd::handleGaugeComLabelsState(QByteArray data)
{
    const int state1 = state2At(byteAt(data, 2), 6, 7);
    const int state2 = state2At(byteAt(data, 3), 0, 1);
    if (replaceIfChanged(m_comLabelState1, state1, m_comLabelState2, state2)) {
        CANBUS_DEBUG() << m_comLabelState1 << m_comLabelState2;
        Q_EMIT updateGaugeComLabelsState(m_comLabelState1, m_comLabelState2);
    }
}

void VelGaugesGroupCmd::handleGaugeZeroPos(QByteArray data)
{
    if (replaceIfChanged(m_zeroPositions, bytesOf(data, kZeroPositionBytes))) {
        CANBUS_DEBUG() << m_zeroPositions;
        Q_EMIT updateGaugeZeroPos(m_zeroPositions);
    }
}

void VelGaugesGroupCmd::handleGaugeValue(QByteArray data)
{
    if (replaceIfChanged(m_values, bytesOf(data, kValueBytes))) {
        CANBUS_DEBUG() << m_values;
        announceThrottled();
    }
}

void VelGaugesGroupCmd::handleGaugeValueText(QByteArray data)
{
    if (replaceIfChangedOrEmpty(m_valueText, textsIn(data, kValueTexts))) {
        CANBUS_DEBUG() << m_valueText;
        announceThrottled();
    }
}

void VelGaugesGroupCmd::announceThrottled()
{
    if (m_throttleTimer.isActive())
        return;
    m_throttleTimer.start();
    onTimerOut();
}

void VelGaugesGroupCmd::onTimerOut()
{
    CANBUS_DEBUG() << "timer out";
    Q_EMIT updateGaugeValueText(m_valueText);
    Q_EMIT updateGaugeValue(m_values);
    Q_EMIT updateGaugeShift(m_shift);
}

void VelGaugesGroupCmd::getGaugesInfo()
{
    Q_EMIT updateGaugeType(m_type);
    Q_EMIT updateGaugeTopText(m_topText);
    Q_EMIT updateGaugeComText(m_comText);
    Q_EMIT updateGaugeScale(m_scale);
    Q_EMIT updateGaugeCenterText(m_centerText);
    Q_EMIT updateGaugeTopLRText(m_topLeftRightText);
    Q_EMIT updateGaugeBottomLRText(m_bottomLeftRightText);
    Q_EMIT updateGaugePeakColorState(m_peakColorState);
    Q_EMIT updateGaugeComLabelsState(m_comLabelState1, m_comLabelState2);
    Q_EMIT updateGaugeZeroPos(m_zeroPositions);
    Q_EMIT updateGaugeValue(m_values);
    Q_EMIT updateGaugeValueText(m_valueText);
    Q_EMIT updateGaugeShift(m_shift);
    Q_EMIT updateGaugeFormat(m_format);
}

void VelGaugesGroupCmd::requestGaugesInfo()
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::RequestData, {quint8(DataPage::Gauges)});
}

void VelGaugesGroupCmd::settings()
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::Settings, {0});
}

void VelGaugesGroupCmd::Gauge1_CenterGauge(bool isPress)
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::Center), quint8(isPress)});
}

void VelGaugesGroupCmd::Gauge2_TopLeft(bool isPress)
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::TopLeft), quint8(isPress)});
}

void VelGaugesGroupCmd::Gauge3_TopRight(bool isPress)
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::TopRight), quint8(isPress)});
}

void VelGaugesGroupCmd::Gauge4_BottomLeft(bool isPress)
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::BottomLeft), quint8(isPress)});
}

void VelGaugesGroupCmd::Gauge5_BottomRight(bool isPress)
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::BottomRight), quint8(isPress)});
}

void VelGaugesGroupCmd::customControl1()
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::CustomControl1), kPress});
}

void VelGaugesGroupCmd::customControl2()
{
    sendCommand(CANBUS_HERE, Category::Gauges, Command::GaugesButton,
                {quint8(GaugesButton::CustomControl2), kPress});
}

} // namespace canbus
