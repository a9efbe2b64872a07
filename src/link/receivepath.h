#pragma once

#include <QtCore/QByteArray>

/// The steps by which a frame is found in the receive buffer, unescaped, checked and taken apart. Pure
/// functions over the buffer; each is linear in its length.
///
/// Their rules are the link's, and the other side counts on them: see docs/architecture.md for the ones
/// that surprise.
namespace canbus::receive {

/// A buffer that grows beyond this holds no frame that will end: it is thrown away.
constexpr int kMaxBufferedBytes = 2048;

/// An opening or closing mark: an escape and what it marks.
constexpr int kMarkSize = 2;

/// What closes a frame: the check byte and the closing mark.
constexpr int kTailSize = 1 + kMarkSize;

/// Which mark the last search for a frame's start has found; at most one is set.
struct Markers {
    bool nack = false;
    bool ack = false;
    bool stx = false;
};

struct Start {
    int index = -1; ///< the first byte behind the opening mark, or -1
    Markers markers;
};

/// Finds the first DLE STX, DLE ACK or DLE NACK. A DLE before any other byte is passed over alone, so the
/// second of two DLEs may still open a frame.
Start findStart(const QByteArray &buffer);

struct End {
    int index = -1;            ///< the first byte behind the closing mark, or -1
    bool escapeIsLast = false; ///< no end, and the buffer's last byte is a DLE
};

/// Finds the first DLE ETX at or behind `start`. The second of two DLEs counts too: a doubled escape
/// followed by 03 ends a frame.
/// @param start  an index into the buffer; -1 finds nothing
End findEnd(const QByteArray &buffer, int start);

/// Turns each DLE DLE into one DLE, from `start` on, in place. `end` is an index into the buffer as it
/// shrinks, so for each pair that goes one byte more behind the frame is looked at.
void unescape(QByteArray &buffer, int start, int end);

struct Check {
    bool holds = false;
    quint8 computed = 0; ///< the XOR over the frame
};

/// Compares the frame [start, end) of the unescaped buffer with its check byte, the one before the closing
/// mark. Fails for a buffer of less than four bytes and for indices outside of it.
Check checkFrame(const QByteArray &buffer, int start, int end);

/// How many of a frame's bytes are its payload, from `from` on, where it begins: all, or all before the check
/// byte and the closing mark where exactly these come last.
int payloadSize(const QByteArray &bytes, int from, quint8 checkByte);

/// Empties a buffer, and has it ready for whatever a pass does not throw away.
void startAnew(QByteArray &buffer);

/// What a parsing pass has come to.
struct Pass {
    enum End {
        Waits,    ///< no frame in the buffer, or not all of one
        Taken,    ///< a frame has gone
        BadCheck, ///< a frame has gone, and its check did not hold
    };

    End end = Waits;
    int discarded = 0; ///< the size of a buffer that was thrown away
    int skipped = 0;   ///< bytes that went with the frame, before its opening mark
};

/// One parsing pass: takes at most one frame off the buffer.
///
/// `Steps` offers the named steps of the protocol class. What this function fixes is their order: the two
/// searches around the unescaping, and that a frame goes whether its check holds or not, with everything
/// before it.
template <class Steps>
Pass runPass(QByteArray &buffer, Steps &steps)
{
    Pass pass;
    if (buffer.isEmpty())
        return pass;
    if (buffer.size() > kMaxBufferedBytes) {
        pass.discarded = buffer.size();
        startAnew(buffer);
        return pass;
    }
    int start = steps.onSearchDLE();
    int end = steps.onSearchDLE_ETX(start);
    if (end == -1)
        return pass;
    steps.onRemoveEscapeFrameHeaders(start, end);
    start = steps.onSearchDLE();
    end = steps.onSearchDLE_ETX(start);
    pass.skipped = start - kMarkSize;
    pass.end = steps.checkXOR(start, end) ? Pass::Taken : Pass::BadCheck;
    if (pass.end == Pass::Taken) {
        steps.onProcessingFrameData(start, end);
        steps.onCategoryDataProcessing();
    }
    buffer.remove(0, end);
    return pass;
}

} // namespace canbus::receive
