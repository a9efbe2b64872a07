#include "velcanbusprotocol.h"

namespace canbus {

CanBusReadBuff *CanBusReadBuff::instance()
{
    static CanBusReadBuff buffer;
    return &buffer;
}

} // namespace canbus
