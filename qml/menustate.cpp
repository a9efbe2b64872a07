#include "menustate.h"

#include <canbusplayer.h>

namespace canbus::qml {

MenuState::MenuState(QObject *parent)
    : State(parent)
{
    const CanBusPlayer *const player = CanBusPlayer::instance();
    connect(player, &CanBusPlayer::updateMenuInfo, this, &MenuState::take);
    const CanBusPlayer::TextScreen screen = player->textScreen();
    take(screen.menu, screen.minus, screen.plus, screen.texts);
}

void MenuState::take(const QList<int> &menu, bool minus, bool plus, const QStringList &texts)
{
    announce(this, store(m_menu, readable(menu), &MenuState::menuChanged),
             store(m_minus, minus, &MenuState::minusChanged), store(m_plus, plus, &MenuState::plusChanged),
             store(m_texts, texts, &MenuState::textsChanged));
}

} // namespace canbus::qml
