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
        if (!m_buffer->mutex.tryLock()) // GCOVR_EXCL_BR_LINE: a process that is left so writes no counts
            return;                     // GCOVR_EXCL_LINE: nor here
        m_buffer->mutex.unlock();
        delete m_buffer; // GCOVR_EXCL_BR_LINE: it is never null
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
    // One test for each call: the parser thread asks on every tick.
    static CanBusReadBuff *const buffer = [] {
        auto *const made = new CanBusReadBuff;
        static const Owner owner(made); // GCOVR_EXCL_BR_LINE: nobody comes here twice
        return made;
    }();
    return buffer;
}

} // namespace canbus
