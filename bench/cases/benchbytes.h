#pragma once

#include "frameformat.h"

#include <QtCore/QByteArray>

#include <cstdio>
#include <cstdlib>

namespace bench {

/// Ends the program: what is measured does not do what it is measured for.
[[noreturn]] inline void giveUp(const char *what)
{
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

inline QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

/// Bytes that count upwards and are none of 9F: so a frame of them has the length that it seems to have.
inline QByteArray plainBytes(int size)
{
    QByteArray all(size, '\0');
    for (int i = 0; i < size; ++i)
        all[i] = char(i % 0x9F);
    return all;
}

/// A climate frame around this payload.
inline QByteArray frameAround(const QByteArray &payload)
{
    return canbus::frame::build(0x21, 0x03, 0x02, payload);
}

/// Bytes as an idle, disturbed line may give them: of any value, and the same in each run. No frame begins or
/// ends in them.
inline QByteArray noise(int size)
{
    QByteArray all(size, '\0');
    quint32 state = 1;
    for (int i = 0; i < size; ++i) {
        state = state * 1664525 + 1013904223;
        all[i] = char(state >> 24);
        const bool isMark =
            i > 0 && quint8(all.at(i - 1)) == canbus::frame::kDle && quint8(all.at(i)) <= 0x15;
        if (isMark)
            all[i] = 0x20;
    }
    return all;
}

} // namespace bench
