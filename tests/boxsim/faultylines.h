#pragma once

#include "boxsim/line/faultyline.h"

/// Lines with faults, for the tests of what they do to bytes.
namespace faultylines {

using Blocks = QVector<QByteArray>;

constexpr char kFrame[] = "9f 02 50 03 00 01 02 50 9f 03";

inline boxsim::FaultyLine lineWith(const boxsim::Faults &faults, quint32 seed = 1)
{
    boxsim::FaultyLine line(seed);
    line.setFaults(faults, 0);
    return line;
}

inline QByteArray joined(const Blocks &blocks)
{
    QByteArray all;
    for (const QByteArray &block : blocks)
        all += block;
    return all;
}

} // namespace faultylines
