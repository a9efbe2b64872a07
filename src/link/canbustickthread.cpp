#include "velcanbusprotocol.h"

#include <sys/prctl.h>

namespace canbus {

namespace {
constexpr unsigned long kTickMs = 10;
// What the kernel may add to a wait, so as to wake several threads at once: 50,000 by default. A full line
// brings a frame of 58 bytes every 10.07 ms.
constexpr unsigned long kTimerSlackNs = 1;
} // namespace

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
    ::prctl(PR_SET_TIMERSLACK, kTimerSlackNs);
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
