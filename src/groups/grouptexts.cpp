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

bool takeTitle(const logging::Origin &origin, QString &stored, const QByteArray &data)
{
    if (data.isEmpty()) {
        CANBUS_ERROR_AT(origin) << "data is error";
        return false;
    }
    CANBUS_DEBUG_AT(origin) << data;
    // Compared raw but stored cleaned: a title that cleaning alters is announced on every repetition.
    if (!replaceIfChangedOrEmpty(stored, textUpToZero(data)))
        return false;
    removeReplacementCharacters(stored);
    CANBUS_DEBUG_AT(origin) << stored;
    return true;
}

QStringList textsIn(const QByteArray &data, int from)
{
    QStringList texts;
    splitZeroTerminated(texts, data, from);
    return texts;
}

} // namespace canbus
