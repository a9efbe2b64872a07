#include "groupcommand.h"

#include "link/frameformat.h"
#include "player/canbusdatamap.h"
#include "player/canbusplayer.h"
#include "support/bytes.h"

namespace canbus {

void sendCommand(const log::Origin &origin, Category category, Command command,
                 std::initializer_list<quint8> plain, const QByteArray &escaped, IdInLog idInLog)
{
    const QByteArray id = CanBusDataMap::instance()->getId(quint8(category));
    if (idInLog == IdInLog::AsItIs)
        CANBUS_DEBUG_AT(origin) << log::asIs(id);
    else
        CANBUS_DEBUG_AT(origin) << id;

    frame::FrameWriter writer(firstByte(id));
    writer.plain(quint8(command)).plain(0);
    for (const quint8 byte : plain)
        writer.plain(byte);
    writer.escaped(escaped);
    CANBUS_DEBUG_AT(origin) << log::hex(writer.checkByte());

    const QByteArray frame = writer.finish();
    CANBUS_DEBUG_AT(origin) << frame;
    Q_EMIT CanBusPlayer::instance()->sendCmdData(frame);
}

} // namespace canbus
