#pragma once

#include <hexbytes.h>

#include <QtCore/QVector>

/// What a talkative box sends: two climate states in turn, whose temperature differs, so that each is a
/// change that is announced; labels; and the supported screens.
inline const QVector<QByteArray> &trafficFrames()
{
    static const QVector<QByteArray> frames {
        bytes("9f 02 50 03 02 00 d7 00 cd 54 40 20 01 80 55 34 00 01 14 16 9c 9f 03"),
        bytes("9f 02 52 03 01 4f 6e 00 4f 66 66 00 3e 9f 03"),
        bytes("9f 02 51 03 02 00 d8 00 cd 54 40 20 01 80 55 34 00 01 14 16 92 9f 03"),
        bytes("9f 02 48 02 00 1f 55 9f 03"),
    };
    return frames;
}
