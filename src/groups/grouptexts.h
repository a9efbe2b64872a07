#pragma once

#include "canbuslog.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace canbus {

/// Whether a list is written to the log when it arrives, beside when it is stored.
enum class ArrivalInLog {
    No,
    Yes,
};

/// A report that is nothing but a list of zero-terminated texts: logs the error of an empty payload,
/// otherwise splits it and stores and logs the list by the rule that announces an empty one each time.
/// @param origin  the decoder on whose behalf the log lines are written
/// @return whether `stored` is to be announced
bool takeTexts(const logging::Origin &origin, QStringList &stored, const QByteArray &data,
               ArrivalInLog arrivalInLog = ArrivalInLog::No);

/// A report that is nothing but a title: logs the error of an empty payload, otherwise logs the payload and
/// stores, cleans and logs the text before its first zero byte by the rule that announces an empty one each
/// time.
/// @param origin  the decoder on whose behalf the log lines are written
/// @return whether `stored` is to be announced
bool takeTitle(const logging::Origin &origin, QString &stored, const QByteArray &data);

/// Splits a payload into its zero-terminated texts, from the byte `from` on.
QStringList textsIn(const QByteArray &data, int from = 0);

} // namespace canbus
