#pragma once

#include <QtCore/QString>

namespace canbus {

/// Writes one line to standard error, in one piece: several threads may write. Where that fails, there is
/// nobody to be told.
void writeErrorLine(const QString &line);

/// Says in one line what is wrong, after the command's name.
void complain(const char *command, const QString &text);

} // namespace canbus
