#include <datetimemanager.h>

namespace kddatetime {

DateTimeManager *DateTimeManager::instance()
{
    static DateTimeManager manager;
    return &manager;
}

QDateTime DateTimeManager::currentDateTime(Qt::TimeSpec timeSpec) const
{
    const QDateTime now = m_fixed.isValid() ? m_fixed : QDateTime::currentDateTime();
    return now.toTimeSpec(timeSpec);
}

void DateTimeManager::setCurrentDateTime(const QDateTime &fixed)
{
    m_fixed = fixed;
}

} // namespace kddatetime
