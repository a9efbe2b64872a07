#include "receivepath.h"
#include "velcanbusprotocol.h"

namespace canbus {

namespace {

/// A thread holds the buffer at the end of the process when a slot has called exit() in a parsing pass. Then
/// it is left alone, and those that still ask for it get it.
class Owner {
public:
    explicit Owner(CanBusReadBuff *buffer)
        : m_buffer(buffer)
    {
    }
    ~Owner()
    {
        if (!m_buffer->mutex.tryLock())
            return;
        m_buffer->mutex.unlock();
        delete m_buffer;
    }

private:
    Q_DISABLE_COPY(Owner)
    CanBusReadBuff *const m_buffer;
};

} // namespace

CanBusReadBuff::CanBusReadBuff()
{
    receive::startAnew(data);
}

CanBusReadBuff *CanBusReadBuff::instance()
{
    static CanBusReadBuff *const buffer = new CanBusReadBuff;
    static const Owner owner(buffer);
    return buffer;
}

} // namespace canbus
