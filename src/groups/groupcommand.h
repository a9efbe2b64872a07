#pragma once

#include "canbuslog.h"
#include "link/wireconstants.h"

#include <QtCore/QByteArray>

#include <initializer_list>

namespace canbus {

/// How the id of a command is written to the log.
enum class IdInLog {
    Hexadecimal,
    AsItIs,
};

/// Builds one command frame and emits it through CanBusPlayer::sendCmdData(): the groups' only way to the
/// box.
///
/// The id is that of the category's last frame, 0 before the first. MOD is 0.
/// @param origin  the control on whose behalf the log lines are written
/// @param plain  data bytes that are never escaped, because their range has no 9F
/// @param escaped  the data bytes behind them, of any value
void sendCommand(const logging::Origin &origin, Category category, Command command,
                 std::initializer_list<quint8> plain, const QByteArray &escaped = {},
                 IdInLog idInLog = IdInLog::Hexadecimal);

} // namespace canbus
