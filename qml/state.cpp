#include "state.h"

#include <canbusplayer.h>

namespace canbus::qml {

State::State(QObject *parent)
    : QObject(parent)
    , m_isStale(!CanBusPlayer::instance()->getCanbusConnectStatus())
{
    connect(CanBusPlayer::instance(), &CanBusPlayer::canbusConnectStatus, this,
            [this](bool isUp) { setStale(!isUp); });
}

void State::setValid()
{
    if (replaceIfChanged(m_isValid, true))
        Q_EMIT validChanged();
}

void State::setStale(bool isStale)
{
    if (replaceIfChanged(m_isStale, isStale))
        Q_EMIT staleChanged();
}

} // namespace canbus::qml
