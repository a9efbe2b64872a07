#pragma once

#include "framedecoder.h"
#include "receivepath.h"
#include "velcanbusprotocol.h"

namespace bench {

/// The receive core: the steps of a pass as the protocol has them, without what they tell others.
class ReceiveCore {
public:
    ReceiveCore()
    {
        canbus::receive::startAnew(buffer);
        m_frameBytes.reserve(canbus::receive::kMaxBufferedBytes);
    }

    QByteArray buffer;

    canbus::receive::Pass pass() { return canbus::receive::runPass(buffer, *this); }

    const canbus::FrameDataFormat &decoded() const { return m_decoded; }

    int onSearchDLE()
    {
        const canbus::receive::Start start = canbus::receive::findStart(buffer);
        m_markers = start.markers;
        return start.index;
    }

    int onSearchDLE_ETX(int start) { return canbus::receive::findEnd(buffer, start).index; }

    void onRemoveEscapeFrameHeaders(int start, int end) { canbus::receive::unescape(buffer, start, end); }

    bool checkXOR(int start, int end)
    {
        m_decoded.clear();
        const canbus::receive::Check check = canbus::receive::checkFrame(buffer, start, end);
        m_decoded.CS = check.computed;
        return check.holds;
    }

    void onProcessingFrameData(int start, int end)
    {
        m_frameBytes.resize(0);
        m_frameBytes.append(buffer.constData() + start, end - start);
    }

    void onCategoryDataProcessing()
    {
        if (m_markers.stx)
            canbus::receive::decode(m_frameBytes, m_decoded);
    }

private:
    canbus::receive::Markers m_markers;
    QByteArray m_frameBytes;
    canbus::FrameDataFormat m_decoded;
};

} // namespace bench
