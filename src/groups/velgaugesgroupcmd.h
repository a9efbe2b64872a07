#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

namespace canbus {

/// The gauges screen: a centre gauge and four corner gauges, the box's reports as signals, presses on the
/// gauges as commands.
///
/// Every item is kept and announced by its `update*` signal when it changes; getGaugesInfo() announces all.
/// Lists of five are in the order centre, top left, top right, bottom left, bottom right. Values, value texts
/// and the shift flag change fast and are throttled together: the first change in a quiet period is announced
/// at once, later ones at most every 300 ms with the latest values, always all three items. When the link
/// goes down the last state stays. What scales, states and values mean on the screen belongs to the UI and
/// the box: they are passed on as they came.
///
/// Lives on the host's main thread: call everything there. Made on first use, destroyed when the process
/// exits.
class CANBUS_EXPORT VelGaugesGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    static VelGaugesGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    explicit VelGaugesGroupCmd(QObject *parent = nullptr);

    // The kinds of report, each with its whole payload. A payload that is too short is logged as an error and
    // changes nothing.

    /// Type flags and title, at least 2 bytes. The type is announced with every report.
    void handleGaugeType(QByteArray data);
    /// Custom labels, at least 1 byte.
    void handleGaugeCustomLabel(QByteArray data);
    /// Scale and centre texts, at least 2 bytes.
    void handleGaugeScaleAndCenterText(QByteArray data);
    /// At least 1 byte.
    void handleGaugeTopLeft_RightText(QByteArray data);
    /// At least 1 byte.
    void handleGaugeBottomLeft_RightText(QByteArray data);
    /// The gauges' state, at least 13 bytes.
    void handleGaugeStateValue(QByteArray data);

    // The items of the gauges' state: from the whole payload, or from the byte that holds them.

    /// Format flags, bits 1 to 5.
    void handleGaugeFormat(char byte);
    /// Shift flag, bit 0. Announced throttled.
    void handleGaugeShift(char byte);
    /// Peak colour, byte 3.
    void handleGaugePeakColorState(QByteArray data);
    /// States of the custom labels, bytes 2 and 3.
    void handleGaugeComLabelsState(QByteArray data);
    /// Zero positions, bytes 0, 4, 6, 8 and 10.
    void handleGaugeZeroPos(QByteArray data);
    /// Values, bytes 1, 5, 7, 9 and 11. Announced throttled.
    void handleGaugeValue(QByteArray data);
    /// Texts of the values, from byte 12 on. Announced throttled.
    void handleGaugeValueText(QByteArray data);

Q_SIGNALS:
    /// Four flags by the keys 0..3. Emitted with every type report, changed or not.
    void updateGaugeType(QMap<int, bool> m_list);
    /// Screen title, cleaned of bytes that are no UTF-8. An empty one is announced each time it arrives.
    void updateGaugeTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    void updateGaugeComText(QStringList Text);
    /// Up to eleven entries: one of two characters, ten of three.
    void updateGaugeScale(QStringList scale);
    /// Texts of the centre gauge. An empty list is announced each time it arrives.
    void updateGaugeCenterText(QStringList CenterText);
    /// Texts of the gauges top left and top right. An empty list is announced each time it arrives.
    void updateGaugeTopLRText(QStringList TopLRText);
    /// Texts of the gauges bottom left and bottom right. An empty list is announced each time it arrives.
    void updateGaugeBottomLRText(QStringList BottomLRText);
    /// State 0..6, -1 before the first.
    void updateGaugePeakColorState(int color);
    /// States 0..3, -1 before the first.
    void updateGaugeComLabelsState(int state1, int state2);
    /// Zero positions of the five gauges, 0..255.
    void updateGaugeZeroPos(QList<int>);
    /// Values of the five gauges, 0..255.
    void updateGaugeValue(QList<int>);
    /// Texts of the values. Throttled.
    void updateGaugeValueText(QStringList);
    /// Shift flag. Throttled.
    void updateGaugeShift(bool Shift);
    /// Format flags of the five gauges.
    void updateGaugeFormat(QList<bool>);

public Q_SLOTS:
    /// Emits all fourteen signals with the values as they are: for a UI that has bound late.
    void getGaugesInfo();
    /// Announces the throttled items.
    void onTimerOut();

    /// Asks the box for the gauges' data.
    void requestGaugesInfo();
    /// Asks the box to open its settings.
    void settings();
    // The gauges report press (true) and release (false), the custom controls a press alone.
    /// Centre gauge.
    void Gauge1_CenterGauge(bool isPress);
    /// Gauge top left.
    void Gauge2_TopLeft(bool isPress);
    /// Gauge top right.
    void Gauge3_TopRight(bool isPress);
    /// Gauge bottom left.
    void Gauge4_BottomLeft(bool isPress);
    /// Gauge bottom right.
    void Gauge5_BottomRight(bool isPress);
    /// First custom control.
    void customControl1();
    /// Second custom control.
    void customControl2();

private:
    void announceThrottled();

    QMap<int, bool> m_type;
    QString m_topText;
    QStringList m_comText;
    QStringList m_scale;
    QStringList m_centerText;
    QStringList m_topLeftRightText;
    QStringList m_bottomLeftRightText;
    QList<int> m_zeroPositions;
    QList<int> m_values;
    bool m_shift = false;
    QList<bool> m_format;
    QStringList m_valueText;
    int m_comLabelState1 = -1;
    int m_comLabelState2 = -1;
    int m_peakColorState = -1;
    QTimer m_throttleTimer;
};

} // namespace canbus
