#pragma once

#include <QtCore/QString>

namespace canbus {

/// A serial device as an error names it: as it was given, and where it was looked for if that is elsewhere. A
/// name that begins neither with / nor with ./ or ../ stands for a device of that name in /dev.
QString deviceTried(const QString &name);

} // namespace canbus
