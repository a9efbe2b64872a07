#include "gaugesstate.h"

#include "boxsim/car/payload.h"

namespace boxsim {

namespace {

constexpr int kFirstScaleBytes = 2;
constexpr int kScaleBytes = 3;
constexpr int kScaleCount = 11;

template <class State>
auto itemsOf(State &s)
{
    return std::tie(s.types, s.title, s.labels, s.scale, s.centerTexts, s.topTexts, s.bottomTexts,
                    s.zeroPositions, s.values, s.formats, s.shift, s.labelState1, s.labelState2, s.peakColor,
                    s.valueTexts);
}

bool isInsideCharacter(const QByteArray &utf8, int index)
{
    return index < utf8.size() && (quint8(utf8.at(index)) & 0xC0U) == 0x80U;
}

/// As many whole characters of the text as fit into `room` bytes of UTF-8, filled up with zeros.
QByteArray fitted(const QString &text, int room)
{
    const QByteArray utf8 = text.toUtf8();
    int size = qMin(utf8.size(), room);
    while (isInsideCharacter(utf8, size))
        --size;
    return utf8.left(size).leftJustified(room, '\0');
}

} // namespace

bool operator==(const GaugesState &a, const GaugesState &b)
{
    return itemsOf(a) == itemsOf(b);
}

QByteArray gaugesTypePayload(const GaugesState &state)
{
    QByteArray payload;
    append(payload, flags(state.types));
    appendText(payload, state.title);
    return payload;
}

QByteArray gaugesLabelsPayload(const GaugesState &state)
{
    return textsPayload(state.labels);
}

QByteArray gaugesScalePayload(const GaugesState &state)
{
    const int given = qBound(1, state.scale.size(), kScaleCount);
    const int count = state.centerTexts.isEmpty() ? given : kScaleCount;
    QByteArray payload = fitted(state.scale.value(0), kFirstScaleBytes);
    for (int i = 1; i < count; ++i)
        payload += fitted(state.scale.value(i), kScaleBytes);
    appendTexts(payload, state.centerTexts);
    return payload;
}

QByteArray gaugesTopTextsPayload(const GaugesState &state)
{
    return textsPayload(state.topTexts);
}

QByteArray gaugesBottomTextsPayload(const GaugesState &state)
{
    return textsPayload(state.bottomTexts);
}

QByteArray gaugesDataPayload(const GaugesState &s)
{
    const std::array<quint8, 12> bytes {
        s.zeroPositions[CenterGauge],
        s.values[CenterGauge],
        quint8(flag(s.shift, 0) | flags(s.formats, 1) | pairs(s.labelState1, 0, 0, 0)),
        quint8((s.labelState2 & 0x03U) | (s.peakColor & 0x07U) << 2),
        s.zeroPositions[TopLeftGauge],
        s.values[TopLeftGauge],
        s.zeroPositions[TopRightGauge],
        s.values[TopRightGauge],
        s.zeroPositions[BottomLeftGauge],
        s.values[BottomLeftGauge],
        s.zeroPositions[BottomRightGauge],
        s.values[BottomRightGauge],
    };
    QByteArray payload;
    append(payload, bytes);
    appendTexts(payload, s.valueTexts.isEmpty() ? QStringList {QString()} : s.valueTexts);
    return payload;
}

void applyChanges(GaugesState &state, const GaugesState &before, const GaugesState &after)
{
    applyItems(itemsOf(state), itemsOf(before), itemsOf(after));
}

} // namespace boxsim
