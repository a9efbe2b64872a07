#include "velcanbusprotocol.h"

namespace canbus {

namespace {
constexpr unsigned long kTickMs = 10;
}

CanbusTickThread::CanbusTickThread(QObject *parent, VelCanBusProtocol *protocol)
    : QThread(parent)
    , m_protocol(protocol)
{
    setObjectName(QStringLiteral("CanbusTickThread"));
}

void CanbusTickThread::stop()
{
    m_running = false;
}

void CanbusTickThread::run()
{
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    while (m_running) {
        buffer->mutex.lock();
        if (m_protocol)
            m_protocol->onParseDataTmrout();
        buffer->mutex.unlock();
        msleep(kTickMs);
    }
}

} // namespace canbus
