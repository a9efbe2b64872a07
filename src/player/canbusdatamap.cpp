#include "canbusdatamap.h"

#include "support/locker.h"

#include <algorithm>
#include <iterator>

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
    m_shared.insert(id);
}

void CanBusDataMap::setRecord(unsigned char id, std::initializer_list<QByteArray> fields)
{
    const Locker lock(&m_mutex);
    // One with as many items is there after the category's first frame: so nothing is allocated. But one that
    // another thread may have read until a moment ago, without the lock, is not written to.
    QList<QVariant> &record = m_records[id];
    if (m_shared.remove(id) || record.size() != int(fields.size())) {
        record.clear();
        std::copy(fields.begin(), fields.end(), std::back_inserter(record));
    } else {
        std::copy(fields.begin(), fields.end(), record.begin());
    }
}

QByteArray CanBusDataMap::getId(unsigned char id)
{
    const Locker lock(&m_mutex);
    return m_records.value(id).value(0).toByteArray();
}

QList<QVariant> CanBusDataMap::getData(unsigned char id)
{
    const Locker lock(&m_mutex);
    const auto record = m_records.constFind(id);
    if (record == m_records.constEnd())
        return {};
    m_shared.insert(id);
    return *record;
}

bool CanBusDataMap::isHasData(unsigned char id)
{
    const Locker lock(&m_mutex);
    return m_records.contains(id);
}

} // namespace canbus
