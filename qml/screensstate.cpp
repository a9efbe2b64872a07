#include "screensstate.h"

#include <canbusplayer.h>

namespace canbus::qml {

namespace {

constexpr int kReverseCameraScreen = 1;

} // namespace

ScreensState::ScreensState(QObject *parent)
    : State(parent)
    , m_numbers {{QStringLiteral("climate"), 0},
                 {QStringLiteral("parking"), kReverseCameraScreen},
                 {QStringLiteral("gauges"), 2},
                 {QStringLiteral("vehicle"), 3},
                 {QStringLiteral("menu"), 4}}
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    connect(player, &CanBusPlayer::updateScreenInfo, this, &ScreensState::take);
    take(player->getSuppScrennInfo());
}

void ScreensState::setNumbers(const QVariantMap &numbers)
{
    if (!replaceIfChanged(m_numbers, numbers))
        return;
    update(nullptr);
    Q_EMIT numbersChanged();
}

void ScreensState::take(const QMap<int, bool> &supported)
{
    update(store(m_supported, readable(supported), &ScreensState::supportedChanged));
}

/// Makes the screens' own flags follow, and announces them together with the list.
void ScreensState::update(Changed<ScreensState> supportedDue)
{
    using Self = ScreensState;
    announce(this, supportedDue,
             store(m_climate, isSupported(QStringLiteral("climate")), &Self::climateChanged),
             store(m_gauges, isSupported(QStringLiteral("gauges")), &Self::gaugesChanged),
             store(m_vehicle, isSupported(QStringLiteral("vehicle")), &Self::vehicleChanged),
             store(m_parking, isSupported(QStringLiteral("parking")), &Self::parkingChanged),
             store(m_menu, isSupported(QStringLiteral("menu")), &Self::menuChanged),
             store(m_reverseCamera, m_supported.value(kReverseCameraScreen).toBool(),
                   &Self::reverseCameraChanged));
}

bool ScreensState::isSupported(const QString &name) const
{
    return m_supported.value(m_numbers.value(name, -1).toInt()).toBool();
}

} // namespace canbus::qml
