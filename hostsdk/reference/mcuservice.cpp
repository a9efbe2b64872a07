#include <mcuservice.h>

namespace mcu {

McuService *McuService::instance()
{
    static McuService service;
    return &service;
}

bool McuService::getNeedSyncTimeState() const
{
    return m_needSyncTime;
}

void McuService::setNeedSyncTimeState(bool needed)
{
    m_needSyncTime = needed;
}

} // namespace mcu
