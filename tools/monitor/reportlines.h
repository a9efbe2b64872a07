#pragma once

#include "metamethods.h"
#include "valuetext.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace canbus::monitor {

/// The lines that the monitor prints, without their line ends. `ms` is the time since the start; it is shown
/// in JSON only, in seconds.

/// 12.345
QString secondsText(qint64 ms);

/// climate updateClimateMainTemp value=215 Unit=1
QString signalLine(Form form, qint64 ms, const QString &object, const QMetaMethod &signal,
                   const QVariantList &arguments);

/// player getCanbusConnectStatus -> false
QString resultLine(Form form, qint64 ms, const QString &object, const QMetaMethod &method,
                   const QVariant &result);

/// climate.onSendDataSort(char Type[, bool isPress[, char value]]), and -> bool behind it if that is what it
/// returns
QString callableLine(Form form, const QString &object, const Callable &callable);

} // namespace canbus::monitor
