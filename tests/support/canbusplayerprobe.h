#pragma once

#include "player/canbusplayer.h"
#include "player/canbusplayer_p.h"

namespace canbus {

/// Looks into a player.
struct CanBusPlayerProbe {
    static QThread *thread(const CanBusPlayer &player) { return player.thread; }
    static CanBusPlayerPrivate &data(const CanBusPlayer &player) { return *player.d; }
};

} // namespace canbus
