#pragma once

#include <QtCore/QtGlobal>

#include <initializer_list>

namespace boxsim {

/// No time at all.
constexpr qint64 kNever = -1;

/// The first of these times; kNever when each of them is.
inline qint64 earliest(std::initializer_list<qint64> times)
{
    qint64 found = kNever;
    for (const qint64 time : times) {
        if (time != kNever && (found == kNever || time < found))
            found = time;
    }
    return found;
}

} // namespace boxsim
