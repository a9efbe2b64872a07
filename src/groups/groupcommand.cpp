#include "groupcommand.h"

#include "link/commandframe.h"
#include "player/canbusdatamap.h"
#include "player/canbusplayer.h"
#include "support/bytes.h"

namespace canbus {

void sendCommand(const logging::Origin &origin, Category category, Command command,
                 std::initializer_list<quint8> plain, const QByteArray &escaped, IdInLog idInLog)
{
    const QByteArray id = CanBusDataMap::instance()->getId(quint8(category));
    if (idInLog == IdInLog::AsItIs)
        CANBUS_DEBUG_AT(origin) << logging::asIs(id);
    else
        CANBUS_DEBUG_AT(origin) << id;
    Q_EMIT CanBusPlayer::instance()->sendCmdData(
        buildCommand(origin, firstByte(id), command, plain, escaped));
}

} // namespace canbus
