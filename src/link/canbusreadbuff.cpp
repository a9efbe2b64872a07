#include "receivepath.h"
#include "velcanbusprotocol.h"

#include <memory>

namespace canbus {

namespace {

/// A thread holds the buffer at the end of the process when a slot has called exit() in a parsing pass.
void destroyUnlessHeld(CanBusReadBuff *buffer)
{
    if (!buffer->mutex.tryLock())
        return;
    buffer->mutex.unlock();
    delete buffer;
}

} // namespace

CanBusReadBuff::CanBusReadBuff()
{
    receive::startAnew(data);
}

CanBusReadBuff *CanBusReadBuff::instance()
{
    static const std::unique_ptr<CanBusReadBuff, void (*)(CanBusReadBuff *)> buffer(new CanBusReadBuff,
                                                                                    destroyUnlessHeld);
    return buffer.get();
}

} // namespace canbus
