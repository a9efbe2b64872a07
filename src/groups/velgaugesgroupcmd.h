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
/// Made on first use, destroyed when the process exits.
///
/// @thread{The host's main thread, on which the group lives.}
/// @emitted{The host's main thread.}
class CANBUS_EXPORT VelGaugesGroupCmd : public QObject {
    Q_OBJECT

public:
    /// The group that the facade hands the box's reports to.
    /// @return never null
    static VelGaugesGroupCmd *instance();

    /// A further group, which the facade hands no reports.
    /// @param parent  its owner, or null
    explicit VelGaugesGroupCmd(QObject *parent = nullptr);

    // The kinds of report, each with its whole payload. A payload that is too short is logged as an error and
    // changes nothing.

    /// Type flags and title. Emits updateGaugeTopText() on a change, and updateGaugeType() each time.
    /// @param data  at least 2 bytes: four flags in bits 0 to 3, then the title in UTF-8, up to a zero byte
    ///   or the end
    void handleGaugeType(QByteArray data);
    /// Custom labels. Emits updateGaugeComText() on a change, and whenever the list is empty.
    /// @param data  at least 1 byte: zero-terminated texts in UTF-8
    void handleGaugeCustomLabel(QByteArray data);
    /// Scale, and texts of the centre gauge. Emits updateGaugeScale() and updateGaugeCenterText() on a
    /// change.
    /// @param data  at least 2 bytes: a scale entry of two characters, up to ten of three, and behind them
    ///   zero-terminated texts in UTF-8
    void handleGaugeScaleAndCenterText(QByteArray data);
    /// Texts of the gauges at the top. Emits updateGaugeTopLRText() on a change, and whenever the list is
    /// empty.
    /// @param data  at least 1 byte: zero-terminated texts in UTF-8
    void handleGaugeTopLeft_RightText(QByteArray data);
    /// Texts of the gauges at the bottom. Emits updateGaugeBottomLRText() on a change, and whenever the list
    /// is empty.
    /// @param data  at least 1 byte: zero-terminated texts in UTF-8
    void handleGaugeBottomLeft_RightText(QByteArray data);
    /// The gauges' state. Decodes the items below and emits the signals of those that have changed.
    /// @param data  at least 13 bytes, the items as said below
    void handleGaugeStateValue(QByteArray data);

    // The items of the gauges' state: from the whole payload, or from the byte that holds them.

    /// Format flags. Emits updateGaugeFormat() on a change.
    /// @param byte  byte 2 of the payload: bits 1 to 5
    void handleGaugeFormat(char byte);
    /// Shift flag. A change is announced throttled.
    /// @param byte  byte 2 of the payload: bit 0
    void handleGaugeShift(char byte);
    /// Peak colour. Emits updateGaugePeakColorState() on a change.
    /// @param data  the whole payload: bits 2 to 4 of byte 3; 7 reads as 0
    void handleGaugePeakColorState(QByteArray data);
    /// States of the custom labels. Emits updateGaugeComLabelsState() on a change.
    /// @param data  the whole payload: bits 6 and 7 of byte 2, bits 0 and 1 of byte 3
    void handleGaugeComLabelsState(QByteArray data);
    /// Zero positions. Emits updateGaugeZeroPos() on a change.
    /// @param data  the whole payload: bytes 0, 4, 6, 8 and 10
    void handleGaugeZeroPos(QByteArray data);
    /// Values. A change is announced throttled.
    /// @param data  the whole payload: bytes 1, 5, 7, 9 and 11
    void handleGaugeValue(QByteArray data);
    /// Texts of the values. A change is announced throttled.
    /// @param data  the whole payload: zero-terminated texts in UTF-8 from byte 12 on
    void handleGaugeValueText(QByteArray data);

Q_SIGNALS:
    /// Type of the screen. Emitted with every type report, changed or not.
    /// @param m_list  four flags by the keys 0..3; empty before the first
    void updateGaugeType(QMap<int, bool> m_list);
    /// Title of the screen. An empty one is announced each time it arrives.
    /// @param TopText  cleaned of bytes that are no UTF-8
    void updateGaugeTopText(QString TopText);
    /// Custom labels. An empty list is announced each time it arrives.
    /// @param Text  any number of labels, empty ones too
    void updateGaugeComText(QStringList Text);
    /// Scale of the centre gauge.
    /// @param scale  up to eleven entries: one of two characters, ten of three
    void updateGaugeScale(QStringList scale);
    /// Texts of the centre gauge. An empty list is announced each time it arrives.
    /// @param CenterText  any number of texts, empty ones too
    void updateGaugeCenterText(QStringList CenterText);
    /// Texts of the gauges top left and top right. An empty list is announced each time it arrives.
    /// @param TopLRText  any number of texts, empty ones too
    void updateGaugeTopLRText(QStringList TopLRText);
    /// Texts of the gauges bottom left and bottom right. An empty list is announced each time it arrives.
    /// @param BottomLRText  any number of texts, empty ones too
    void updateGaugeBottomLRText(QStringList BottomLRText);
    /// Peak colour.
    /// @param color  state 0..6; -1 before the first
    void updateGaugePeakColorState(int color);
    /// States of the custom labels.
    /// @param state1, state2  0..3; -1 before the first
    void updateGaugeComLabelsState(int state1, int state2);
    /// Zero positions of the five gauges, 0..255 each; an empty list before the first.
    void updateGaugeZeroPos(QList<int>);
    /// Values of the five gauges, 0..255 each; an empty list before the first. Throttled.
    void updateGaugeValue(QList<int>);
    /// Texts of the values. Throttled.
    void updateGaugeValueText(QStringList);
    /// Shift flag. Throttled.
    /// @param Shift  the box's flag
    void updateGaugeShift(bool Shift);
    /// Format flags of the five gauges; an empty list before the first.
    void updateGaugeFormat(QList<bool>);

public Q_SLOTS:
    /// Emits all fourteen signals with the values as they are: for a UI that has bound late.
    void getGaugesInfo();
    /// Emits updateGaugeValueText(), updateGaugeValue() and updateGaugeShift(): the timer of the throttled
    /// items.
    void onTimerOut();

    /// Asks the box for the gauges' data.
    void requestGaugesInfo();
    /// Asks the box to open its settings.
    void settings();
    // The gauges report press (true) and release (false), the custom controls a press alone.
    /// Centre gauge. @press
    void Gauge1_CenterGauge(bool isPress);
    /// Gauge top left. @press
    void Gauge2_TopLeft(bool isPress);
    /// Gauge top right. @press
    void Gauge3_TopRight(bool isPress);
    /// Gauge bottom left. @press
    void Gauge4_BottomLeft(bool isPress);
    /// Gauge bottom right. @press
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
