#include "canbusdatamap.h"

#include "support/locker.h"

namespace canbus {

CanBusDataMap *CanBusDataMap::instance()
{
    static CanBusDataMap map;
    return &map;
}

void CanBusDataMap::setData(unsigned char id, QList<QVariant> list)
{
    const Locker lock(&m_mutex);
    const auto stored = m_records.constFind(id);
    if (stored != m_records.constEnd() && stored->isSharedWith(list))
        return;
    m_records.insert(id, list);
}

QByteArray CanBusDataMap::getId(unsigned char id)
{
    return getData(id).value(0).toByteArray();
}

QList<QVariant> CanBusDataMap::getData(unsigned char id)
{
    const Locker lock(&m_mutex);
    return m_records.value(id);
}

bool CanBusDataMap::isHasData(unsigned char id)
{
    const Locker lock(&m_mutex);
    return m_records.contains(id);
}

} // namespace canbus
