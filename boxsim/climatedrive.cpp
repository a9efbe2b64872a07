#include "drive.h"

namespace boxsim {

namespace {

constexpr qint64 kSecondMs = 1000;
constexpr int kRoundSeconds = int(kDriveRoundMs / kSecondMs);

/// Counts 0 to `count` - 1 and again, one further every `period` seconds. `ahead` lets items take turns.
int cycle(int second, int period, int count, int ahead = 0)
{
    return (second + ahead) % kRoundSeconds / period % count;
}

/// 0 up to 10 and down again in one round.
int upAndDown(int second)
{
    const int step = cycle(second, 3, 20);
    return step <= 10 ? step : 20 - step;
}

QString titleOf(int index)
{
    static const QStringList titles {QStringLiteral("Climate"), QStringLiteral("Klima für vorn"),
                                     QStringLiteral("Климат"), QStringLiteral("空调")};
    return titles.at(index);
}

QStringList labelsOf(int index)
{
    static const QVector<QStringList> labels {
        {QStringLiteral("Rear"), QStringLiteral("Ions")},
        {QStringLiteral("Heck"), QStringLiteral("Lüftung")},
        {QStringLiteral("Зад"), QString(), QStringLiteral("Ионы")},
        {QStringLiteral("后排"), QStringLiteral("离子")},
    };
    return labels.at(index);
}

void setSeats(ClimateState &state, int second)
{
    state.leftHeatedSeat = quint8(cycle(second, 6, 9));
    state.rightHeatedSeat = quint8(cycle(second, 6, 9, 2));
    state.leftCooledSeat = quint8(8 - cycle(second, 6, 9, 4));
    state.rightCooledSeat = quint8(8 - cycle(second, 6, 9, 5));
}

void setFan(ClimateState &state, int second)
{
    state.fanDirectValue = quint8(cycle(second, 4, 15) * 16 + 15);
    state.fanSpeedStatus = quint8(cycle(second, 5, 4, 1));
    state.ventPosition = quint8(cycle(second, 6, 9, 1));
    state.fanDirect = quint8(cycle(second, 15, 4, 7));
}

} // namespace

ClimateState climateDriveAt(qint64 nowMs)
{
    const int second = int(nowMs % kDriveRoundMs / kSecondMs);
    ClimateState state;
    state.type = quint8(cycle(second, 15, 4));
    state.title = titleOf(cycle(second, 15, 4, 14));
    state.labels = labelsOf(cycle(second, 15, 4, 8));
    state.mainTemp = quint16(160 + 14 * upAndDown(second));
    state.secondTemp = quint16(300 - 14 * upAndDown(second + 1));
    state.mainUnit = quint8(cycle(second, 15, 4, 4));
    state.secondUnit = quint8(cycle(second, 15, 4, 11));
    setSeats(state, second);
    setFan(state, second);
    state.systemOn = second < 55;
    state.driverSeat = cycle(second, 30, 2) == 1;
    state.manualTemp = quint8(cycle(second, 4, 15, 2) * 16 + 15);
    for (int i = 0; i < kButtonCount; ++i)
        state.buttons[std::size_t(i)] = quint8(cycle(second, 15, 4, 3 * i));
    return state;
}

} // namespace boxsim
