#pragma once

#include <QtCore/QString>

namespace canbus::monitor::standardError {

/// Which of the library's log lines are written.
enum class LogLevel { Nothing, Errors, Everything };

/// Writes one line, after the command's name.
void complain(const QString &text);

/// From now on Qt's messages, and with them the library's log, are written as they are.
void takeLog();

void setLogLevel(LogLevel level);

} // namespace canbus::monitor::standardError
