#pragma once

#include "recording/pcapng.h"

#include <QtCore/QtGlobal>

namespace canbus::recording {

/// The unit of an interface's times, and what they count from.
struct Clock {
    quint8 resolution = pcapng::kMicroseconds; // as the option has it
    qint64 offsetSeconds = 0;
};

/// @param time  in the clock's units
/// @return microseconds since 1970; a time before that is 0, one that no clock can show is cut
qint64 microseconds(quint64 time, const Clock &clock);

} // namespace canbus::recording
