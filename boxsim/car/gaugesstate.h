#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

namespace boxsim {

/// The gauges in the order in which the link counts them.
enum Gauge {
    CenterGauge = 0,
    TopLeftGauge = 1,
    TopRightGauge = 2,
    BottomLeftGauge = 3,
    BottomRightGauge = 4,
};

constexpr int kGaugeCount = 5;

/// What the box reports of the gauges. A value that does not fit its bits on the wire loses the bits above.
struct GaugesState {
    std::array<bool, 4> types {};
    QString title;
    QStringList labels; ///< texts of the custom controls
    /// The first two bytes long and up to ten of three bytes each, in UTF-8; further ones are not sent. A
    /// text that is longer loses the characters that do not fit.
    QStringList scale;
    QStringList centerTexts;
    QStringList topTexts;    ///< of the top left and the top right gauge
    QStringList bottomTexts; ///< of the bottom left and the bottom right gauge
    std::array<quint8, kGaugeCount> zeroPositions {};
    std::array<quint8, kGaugeCount> values {};
    std::array<bool, kGaugeCount> formats {};
    bool shift = false;
    quint8 labelState1 = 0; ///< 0..3
    quint8 labelState2 = 0; ///< 0..3
    quint8 peakColor = 0;   ///< 0..6; the head unit reads 7 as 0
    QStringList valueTexts;
};

bool operator==(const GaugesState &a, const GaugesState &b);

/// The sub-type (MOD) of each gauges frame.
enum GaugesSelector : quint8 {
    GaugesTypeSelector = 0,
    GaugesLabelsSelector = 1,
    GaugesScaleSelector = 2,
    GaugesTopTextsSelector = 3,
    GaugesBottomTextsSelector = 4,
    GaugesDataSelector = 5,
};

/// Payload of GaugesTypeSelector: the four type flags and the title in UTF-8, closed by a zero.
QByteArray gaugesTypePayload(const GaugesState &state);

/// Payload of GaugesLabelsSelector: each label in UTF-8, closed by a zero. No label at all is an empty
/// payload, which the head unit takes for an error; the same holds for the other lists of texts.
QByteArray gaugesLabelsPayload(const GaugesState &state);

/// Payload of GaugesScaleSelector: the scale, and the centre texts behind it.
///
/// A scale text that is shorter than its room is filled up with zeros, which end it. Centre texts can stand
/// behind a full scale of 32 bytes alone: with a shorter scale the missing entries are sent as empty ones,
/// and read as such. Without centre texts nothing stands behind the last entry. There is no scale without a
/// first entry: no scale at all reads as one empty entry.
QByteArray gaugesScalePayload(const GaugesState &state);

/// Payload of GaugesTopTextsSelector: each text in UTF-8, closed by a zero.
QByteArray gaugesTopTextsPayload(const GaugesState &state);

/// Payload of GaugesBottomTextsSelector: each text in UTF-8, closed by a zero.
QByteArray gaugesBottomTextsPayload(const GaugesState &state);

/// Payload of GaugesDataSelector: all the rest, the value texts last.
///
/// The head unit takes nothing of a payload without any byte for value texts: no value text at all is sent
/// as one empty text.
QByteArray gaugesDataPayload(const GaugesState &state);

/// Takes over into `state` the items that differ between `before` and `after`, and leaves the others.
void applyChanges(GaugesState &state, const GaugesState &before, const GaugesState &after);

} // namespace boxsim
