#include "frameformat.h"
#include "plainreader.h"
#include "receivepath.h"
#include "target.h"

/// Each step of the receive path alone, with any indices, and frames built and read again.
///
/// The input: two index bytes, then the buffer, which is also taken for the id, TP, MOD and payload of a
/// frame.

using namespace canbus;

namespace {

void compareSearches(const QByteArray &buffer, int from)
{
    const fuzz::Buffer plain = fuzz::toBuffer(buffer);
    const receive::Start start = receive::findStart(buffer);
    const fuzz::PlainStart plainStart = fuzz::plainStart(plain);
    fuzz::check(start.index == plainStart.index, "the first opening mark is found");
    fuzz::check(int(start.markers.stx) + int(start.markers.ack) + int(start.markers.nack)
                    == (start.index == -1 ? 0 : 1),
                "one marker goes with a start and none without");

    const receive::End end = receive::findEnd(buffer, from);
    fuzz::check(end.index == fuzz::plainEnd(plain, from), "the first closing mark is found");
    const bool isLast = end.index == -1 && from >= 0 && from < buffer.size() && quint8(buffer.back()) == 0x9F;
    fuzz::check(end.escapeIsLast == isLast, "an escape waits only as the last byte, with no end before it");
}

void compareUnescaping(const QByteArray &buffer, int start, int end)
{
    QByteArray unescaped(buffer.constData(), buffer.size());
    receive::unescape(unescaped, start, end);
    if (start < 0) {
        fuzz::check(unescaped == buffer, "no start, no change");
        return;
    }
    fuzz::Buffer plain = fuzz::toBuffer(buffer);
    fuzz::plainUnescape(plain, start, end);
    fuzz::check(unescaped == fuzz::toBytes(plain), "pairs go within the range, and the range is not lowered");
}

void compareChecks(const QByteArray &buffer, int start, int end)
{
    const receive::Check check = receive::checkFrame(buffer, start, end);
    const bool fits = buffer.size() >= 4 && start >= 0 && end >= 3 && end <= buffer.size();
    if (!fits) {
        fuzz::check(!check.holds, "indices outside of the buffer check nothing");
        return;
    }
    const quint8 plain = fuzz::plainXor(fuzz::toBuffer(buffer), start, end - 3);
    fuzz::check(check.computed == plain, "the XOR over the frame is computed");
    fuzz::check(check.holds == (quint8(buffer.at(end - 3)) == plain), "the frame's check byte is compared");
}

/// A limit that frames have: an escaped 9F before 03 ends them early.
bool endsEarly(const QByteArray &content)
{
    return content.contains(QByteArrayLiteral("\x9f\x03"));
}

QByteArray plainBuild(const QByteArray &content)
{
    QByteArray frame("\x9f\x02", 2);
    for (const char byte : content) {
        frame += byte;
        if (quint8(byte) == 0x9F)
            frame += byte;
    }
    return frame + QByteArray("\x9f\x03", 2);
}

struct Taken {
    QByteArray frame;
    quint8 check = 0;
};

class Steps {
public:
    Steps(QByteArray &buffer, Taken &taken)
        : m_buffer(buffer)
        , m_taken(taken)
    {
    }
    int onSearchDLE() { return receive::findStart(m_buffer).index; }
    int onSearchDLE_ETX(int start) { return receive::findEnd(m_buffer, start).index; }
    void onRemoveEscapeFrameHeaders(int start, int end) { receive::unescape(m_buffer, start, end); }
    bool checkXOR(int start, int end)
    {
        const receive::Check check = receive::checkFrame(m_buffer, start, end);
        m_taken.check = check.computed;
        return check.holds;
    }
    void onProcessingFrameData(int start, int end) { m_taken.frame = m_buffer.mid(start, end - start); }
    void onCategoryDataProcessing() { }

private:
    QByteArray &m_buffer;
    Taken &m_taken;
};

void buildAndRead(const QByteArray &content)
{
    if (content.size() < 3)
        return;
    const auto at = [&content](int index) { return quint8(content.at(index)); };
    const QByteArray frame = frame::build(at(0), at(1), at(2), content.mid(3));
    const char checkByte = char(fuzz::plainXor(fuzz::toBuffer(content), 0, content.size()));
    const QByteArray whole = content + checkByte;
    fuzz::check(frame == plainBuild(whole), "a frame is its content escaped, its check byte and its marks");
    if (endsEarly(whole) || frame.size() > 2048)
        return;

    QByteArray buffer = frame;
    Taken taken;
    Steps steps(buffer, taken);
    const receive::Pass pass = receive::runPass(buffer, steps);
    fuzz::check(pass.end == receive::Pass::Taken && pass.skipped == 0, "what was built is taken");
    fuzz::check(buffer.isEmpty(), "with all of its bytes");
    const QByteArray payload = taken.frame.mid(3, receive::payloadSize(taken.frame, 3, taken.check));
    fuzz::check(taken.frame.left(3) == content.left(3), "its id, TP and MOD come out as they went in");
    fuzz::check(payload == content.mid(3), "and so does its payload");
}

void answer(quint8 kind, const QByteArray &id)
{
    const QByteArray expected = QByteArray(1, char(0x9F)) + char(kind) + id + id + QByteArray("\x9f\x03", 2);
    fuzz::check(frame::buildAnswer(kind, id) == expected, "an answer has its id twice, as it is");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Program program(data, size);
    // From before the buffer to behind it.
    const int from = int(program.byte()) - 3;
    const int to = int(program.byte()) - 3;
    const QByteArray buffer = program.rest();
    compareSearches(buffer, from);
    compareUnescaping(buffer, from, to);
    compareChecks(buffer, from, to);
    buildAndRead(buffer);
    answer(frame::kAck, buffer.left(1));
    answer(frame::kNack, buffer.left(1));
    return 0;
}
