#include "benchbytes.h"
#include "benchcase.h"
#include "headunitrig.h"

namespace bench {

std::vector<Case> passCases()
{
    HeadUnitRig::instance(); // on the main thread, where it belongs
    canbus::CanBusReadBuff *const buffer = canbus::CanBusReadBuff::instance();
    const QByteArray frame = frameAround(plainBytes(15));
    // The library's own parser thread waits for the mutex meanwhile.
    const auto arrive = [buffer, frame] {
        HeadUnitRig::instance().line.received();
        buffer->mutex.lock();
        buffer->data.append(frame);
    };
    const auto pass = [buffer] {
        HeadUnitRig::instance().protocol->onParseDataTmrout();
        if (!buffer->data.isEmpty())
            giveUp("the pass has left the frame");
        buffer->mutex.unlock();
    };
    return {{"pass/store, signal and acknowledge 15 bytes", arrive, pass, 1, Place::ParserThread}};
}

} // namespace bench
