#pragma once

#include <QtCore/QString>

namespace canbus {

/// Where a serial device is looked for. A name that begins neither with / nor with ./ or ../ stands for a
/// device of that name in /dev.
QString devicePath(const QString &name);

/// A serial device as an error names it: as it was given, and where it was looked for if that is elsewhere.
QString deviceTried(const QString &name);

} // namespace canbus
