#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

namespace boxsim {

/// The entries of ClimateState::buttons, by what this box uses them for. The link gives them no meaning.
enum ButtonLamp {
    LampSystem = 0,
    LampRearZone = 1,
    LampAuto = 2,
    LampRecirculation = 3,
    LampDual = 4,
    LampAirConditioning = 5,
    LampMaxAirConditioning = 6,
    LampFrontDefroster = 7,
    LampRearDefroster = 8,
    LampCustom1 = 9,
    LampCustom2 = 10,
    LampHeatedSteeringWheel = 11,
    LampMainTempPlus = 12,
    LampMainTempMinus = 13,
    LampSecondTempPlus = 14,
    LampSecondTempMinus = 15,
    LampFanSpeedUp = 16,
    LampFanSpeedDown = 17,
    LampVent = 18,
    LampSeats = 19,
};

constexpr int kButtonCount = 20;

/// What the box reports of the climate system. A value that does not fit its bits on the wire loses the
/// bits above.
struct ClimateState {
    quint8 type = 0; ///< kind of climate screen
    QString title;
    QStringList labels;   ///< texts of the custom controls
    quint16 mainTemp = 0; ///< this box counts in tenths of a degree
    quint16 secondTemp = 0;
    quint8 mainUnit = 0;       ///< 0..3
    quint8 secondUnit = 0;     ///< 0..3
    quint8 leftHeatedSeat = 0; ///< 0..8, as the three below
    quint8 rightHeatedSeat = 0;
    quint8 leftCooledSeat = 0;
    quint8 rightCooledSeat = 0;
    quint8 fanDirectValue = 0; ///< 0..255
    quint8 fanSpeedStatus = 0; ///< 0..3
    quint8 ventPosition = 0;   ///< 0..8
    quint8 fanDirect = 0;      ///< 0..3
    bool systemOn = false;
    bool driverSeat = false;
    quint8 manualTemp = 0;                       ///< 0..255
    std::array<quint8, kButtonCount> buttons {}; ///< 0..3 each; here 0 is dark and 1 is lit
};

bool operator==(const ClimateState &a, const ClimateState &b);

/// The sub-type (MOD) of each climate frame.
enum ClimateSelector : quint8 {
    ClimateTypeSelector = 0,
    ClimateLabelsSelector = 1,
    ClimateDataSelector = 2,
};

/// Payload of ClimateTypeSelector: the type and the title in UTF-8, closed by a zero.
QByteArray climateTypePayload(const ClimateState &state);

/// Payload of ClimateLabelsSelector: each label in UTF-8, closed by a zero.
QByteArray climateLabelsPayload(const ClimateState &state);

/// Payload of ClimateDataSelector: all the rest, in 15 bytes.
QByteArray climateDataPayload(const ClimateState &state);

/// Takes over into `state` the items that differ between `before` and `after`, and leaves the others.
void applyChanges(ClimateState &state, const ClimateState &before, const ClimateState &after);

} // namespace boxsim
