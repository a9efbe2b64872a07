#pragma once

#include "valuetext.h"

#include <QtCore/QString>

#include <linkhealth.h>

namespace canbus::monitor {

/// The figures of a link, as the monitor prints them: in text a block of lines, in JSON one line. Without the
/// last line's end. A figure that is new is there by itself.
/// @param ms  since the start
QString statsText(Form form, qint64 ms, const LinkFigures &figures);

} // namespace canbus::monitor
