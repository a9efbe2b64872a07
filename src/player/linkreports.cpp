#include "linkreports.h"

#include "canbusplayer.h"

namespace canbus {

void LinkReports::add(bool isUp)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_reports.append(isUp);
    }
    Q_EMIT added();
}

void LinkReports::deliverTo(CanBusPlayer *player)
{
    if (m_isDelivering)
        return;
    m_isDelivering = true;
    while (!isEmpty())
        player->setCanbusConnectStatus(takeFirst());
    m_isDelivering = false;
}

bool LinkReports::isEmpty()
{
    const QMutexLocker lock(&m_mutex);
    return m_reports.isEmpty();
}

bool LinkReports::takeFirst()
{
    const QMutexLocker lock(&m_mutex);
    return m_reports.takeFirst();
}

} // namespace canbus
