#include "commandframe.h"

#include "frameformat.h"

namespace canbus {

QByteArray buildCommand(const logging::Origin &origin, quint8 id, Command command,
                        std::initializer_list<quint8> plain, const QByteArray &escaped)
{
    frame::FrameWriter writer(id);
    writer.plain(quint8(command)).plain(0);
    for (const quint8 byte : plain)
        writer.plain(byte);
    writer.escaped(escaped);
    CANBUS_DEBUG_AT(origin) << logging::hex(writer.checkByte());

    QByteArray frame = writer.finish();
    CANBUS_DEBUG_AT(origin) << frame;
    return frame;
}

} // namespace canbus
