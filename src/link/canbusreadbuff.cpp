#include "receivepath.h"
#include "velcanbusprotocol.h"

namespace canbus {

CanBusReadBuff::CanBusReadBuff()
{
    receive::startAnew(data);
}

CanBusReadBuff *CanBusReadBuff::instance()
{
    // Never destroyed: a slot that calls exit() on the parser thread holds the mutex until the process is
    // gone.
    static CanBusReadBuff *const buffer = new CanBusReadBuff;
    return buffer;
}

} // namespace canbus
