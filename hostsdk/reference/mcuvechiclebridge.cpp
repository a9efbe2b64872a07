#include <mcuvechiclebridge.h>

McuVechicleBridge *McuVechicleBridge::instance()
{
    static McuVechicleBridge bridge;
    return &bridge;
}

void McuVechicleBridge::setReverse(bool engaged)
{
    if (m_engaged == engaged)
        return;
    m_engaged = engaged;
    Q_EMIT reverseChanged(engaged, 0);
}
