#include "grouptexts.h"

#include "support/changerule.h"
#include "support/text.h"

namespace canbus {

bool takeTexts(const logging::Origin &origin, QStringList &stored, const QByteArray &data,
               ArrivalInLog arrivalInLog)
{
    if (data.isEmpty()) {
        CANBUS_ERROR_AT(origin) << "data is error";
        return false;
    }
    const QStringList texts = textsIn(data);
    if (arrivalInLog == ArrivalInLog::Yes)
        CANBUS_DEBUG_AT(origin) << texts;
    if (!replaceIfChangedOrEmpty(stored, texts))
        return false;
    CANBUS_DEBUG_AT(origin) << stored;
    return true;
}

QStringList textsIn(const QByteArray &data)
{
    QStringList texts;
    splitZeroTerminated(texts, data);
    return texts;
}

} // namespace canbus
