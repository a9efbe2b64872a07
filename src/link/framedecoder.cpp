#include "framedecoder.h"

#include "receivepath.h"
#include "support/bytes.h"

namespace canbus::receive {

void decode(QByteArray &rest, FrameDataFormat &frame)
{
    QByteArray *const fields[kFieldBytes] = {&frame.id, &frame.TP, &frame.MOD};
    int taken = 0;
    for (; taken < kFieldBytes && taken < rest.size(); ++taken)
        *fields[taken] = oneByte(byteAt(rest, taken));
    const int size = payloadSize(rest, taken, frame.CS);
    // With a capacity of its own the storage outlives an emptied payload.
    if (!frame.DATA.isDetached())
        frame.DATA.reserve(frame.DATA.size() + size);
    frame.DATA.append(rest.constData() + taken, size);
    rest.remove(0, taken + size);
}

} // namespace canbus::receive
