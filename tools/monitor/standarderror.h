#pragma once

#include <QtCore/QString>

namespace canbus::monitor::standardError {

/// Writes one line, after the command's name.
void complain(const QString &text);

/// From now on Qt's messages are written as they are.
/// @param isVerbose  the library's log as well; what a user has to know of it the command says itself
void takeLog(bool isVerbose);

} // namespace canbus::monitor::standardError
