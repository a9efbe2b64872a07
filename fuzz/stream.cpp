#include "plainreader.h"
#include "receivepath.h"
#include "target.h"

#include <utility>

/// Bytes that arrive in chunks, through the pure steps of the receive path.
///
/// The input: one byte, whose halves say how long the chunks are by turns, one that says how much of an
/// endless frame comes first, then the stream. After each chunk one pass is made, and compared with a plain
/// reader; in the end all that the buffer still holds is taken, and clean frames must be found again.

using namespace canbus;

namespace {

/// What VelCanBusProtocol makes of the steps, without the rest of it.
class Steps {
public:
    explicit Steps(QByteArray &buffer)
        : m_buffer(buffer)
    {
    }

    int onSearchDLE()
    {
        const receive::Start start = receive::findStart(m_buffer);
        m_markers = start.markers;
        return start.index;
    }

    int onSearchDLE_ETX(int start)
    {
        const receive::End end = receive::findEnd(m_buffer, start);
        m_awaitsEnd = m_awaitsEnd || (end.escapeIsLast && m_markers.stx);
        return end.index;
    }

    void onRemoveEscapeFrameHeaders(int start, int end) { receive::unescape(m_buffer, start, end); }

    bool checkXOR(int start, int end)
    {
        const receive::Check check = receive::checkFrame(m_buffer, start, end);
        m_check = check.computed;
        return check.holds;
    }

    void onProcessingFrameData(int start, int end) { m_frame = m_buffer.mid(start, end - start); }

    void onCategoryDataProcessing() { ++m_dispatched; }

    void compareWith(const fuzz::PlainPass &plain) const
    {
        fuzz::check(m_awaitsEnd == plain.awaitsEnd, "a NACK is due while a data frame's end is awaited");
        const bool taken = plain.pass.end == receive::Pass::Taken;
        fuzz::check(m_dispatched == (taken ? 1 : 0), "a good frame is dispatched once");
        if (!taken)
            return;
        fuzz::check(fuzz::isSame(plain.frame, m_frame), "the frame's bytes are those between its marks");
        fuzz::check(m_check == plain.check, "the check byte is the XOR over the frame");
        fuzz::check(m_markers.stx == (plain.mark == 0x02) && m_markers.ack == (plain.mark == 0x06)
                        && m_markers.nack == (plain.mark == 0x15),
                    "the marker is the one that opened the frame");
        comparePayload(plain);
    }

private:
    void comparePayload(const fuzz::PlainPass &plain) const
    {
        const QByteArray payload = m_frame.mid(3, receive::payloadSize(m_frame, 3, m_check));
        fuzz::check(payload == fuzz::plainFrame(plain.frame, plain.check).data,
                    "the payload is what stands between MOD and the check byte");
    }

    QByteArray &m_buffer;
    receive::Markers m_markers;
    QByteArray m_frame;
    quint8 m_check = 0;
    int m_dispatched = 0;
    bool m_awaitsEnd = false;
};

/// The library's buffer and the plain reader's, side by side.
class Reader {
public:
    receive::Pass pass()
    {
        Steps steps(m_buffer);
        const receive::Pass pass = receive::runPass(m_buffer, steps);
        const fuzz::PlainPass plain = fuzz::plainPass(m_plain);
        fuzz::check(pass.end == plain.pass.end && pass.discarded == plain.pass.discarded
                        && pass.skipped == plain.pass.skipped,
                    "a pass comes to what it comes to by the book");
        fuzz::check(fuzz::isSame(m_plain, m_buffer), "a pass leaves the same bytes");
        steps.compareWith(plain);
        return pass;
    }

    void arrive(const QByteArray &bytes)
    {
        m_buffer += bytes;
        fuzz::append(m_plain, bytes);
    }

    void drain()
    {
        while (pass().end != receive::Pass::Waits) { }
    }

    bool isEmpty() const { return m_buffer.isEmpty(); }

private:
    QByteArray m_buffer;
    fuzz::Buffer m_plain;
};

int sizeOf(quint8 half)
{
    return (half + 1) * (half + 1);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Program program(data, size);
    const quint8 sizes = program.byte();
    int chunk = sizeOf(sizes & 0x0F);
    int nextChunk = sizeOf(sizes >> 4);
    Reader reader;
    if (const int noise = 16 * program.byte())
        reader.arrive(QByteArray("\x9f\x02") + QByteArray(noise, 'U'));
    while (!program.atEnd()) {
        reader.arrive(program.bytes(std::size_t(chunk)));
        reader.pass();
        std::swap(chunk, nextChunk);
    }
    reader.drain();

    // The first one may be taken for the end of what the noise has begun.
    reader.arrive(fuzz::cleanFrame());
    reader.drain();
    fuzz::check(reader.isEmpty(), "a clean frame's end empties the buffer");
    reader.arrive(fuzz::cleanFrame());
    fuzz::check(reader.pass().end == receive::Pass::Taken, "a clean frame after noise is found");
    fuzz::check(reader.isEmpty(), "nothing of it stays");
    return 0;
}
