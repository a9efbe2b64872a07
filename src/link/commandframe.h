#pragma once

#include "canbuslog.h"
#include "wireconstants.h"

#include <QtCore/QByteArray>

#include <initializer_list>

namespace canbus {

/// Builds one command frame (MOD 0) and writes its check byte and the frame to the debug log.
///
/// @param origin  the operation on whose behalf the log lines are written
/// @param plain  data bytes that are never escaped, because their range has no 9F
/// @param escaped  the data bytes behind them, of any value
QByteArray buildCommand(const logging::Origin &origin, quint8 id, Command command,
                        std::initializer_list<quint8> plain, const QByteArray &escaped = {});

} // namespace canbus
