#include "replay.h"

#include "frameformat.h"
#include "wireconstants.h"

#include <algorithm>

namespace boxsim {

namespace {

using canbus::Category;
using canbus::recording::Block;
using canbus::recording::Direction;
using canbus::recording::Recording;

constexpr qint64 kUsPerMs = 1000;

/// Two threads record, so that a block may stand before one that is a little older.
constexpr qint64 kDisorderUs = 1000 * kUsPerMs;

/// A head unit that is connected speaks every 15 seconds at least.
constexpr qint64 kLongestPauseUs = qint64 {3600} * 1000 * kUsPerMs;

constexpr qint64 kShortestLoopGapMs = 20;

constexpr quint8 kReadyReplyId = 0x40;

/// The time of each block since the first.
QVector<qint64> timesOf(const QVector<Block> &blocks)
{
    QVector<qint64> times;
    qint64 zeroUs = blocks.isEmpty() ? 0 : blocks.first().timeUs;
    qint64 lastUs = 0;
    for (const Block &block : blocks) {
        const qint64 stepUs = block.timeUs - zeroUs - lastUs;
        if (stepUs < -kDisorderUs || stepUs > kLongestPauseUs)
            zeroUs += stepUs;
        lastUs = block.timeUs - zeroUs;
        times.append(lastUs);
    }
    return times;
}

int firstOf(const QVector<Block> &blocks, Direction direction)
{
    const auto found = std::find_if(blocks.begin(), blocks.end(), [direction](const Block &block) {
        return block.direction == direction && !block.bytes.isEmpty();
    });
    return found == blocks.end() ? -1 : int(found - blocks.begin());
}

bool isVersion(const WireFrame &frame)
{
    return frame.kind == WireFrame::Kind::Data && frame.tp == quint8(Category::Version);
}

bool isConnectRequest(const WireFrame &frame)
{
    return frame.kind == WireFrame::Kind::Data && decodeCommand(frame).action == Action::ConnectRequest;
}

/// The index of the block that completes the first such frame in this direction, or `none`.
template <class Condition>
int firstFrame(const QVector<Block> &blocks, Direction direction, int none, Condition &&condition)
{
    WireReader reader;
    for (int i = 0; i < blocks.size(); ++i) {
        if (blocks.at(i).direction != direction)
            continue;
        const QVector<WireFrame> frames = reader.feed(blocks.at(i).bytes);
        if (std::any_of(frames.begin(), frames.end(), condition))
            return i;
    }
    return none;
}

} // namespace

/// The bytes that came from the box, told apart.
class Replay::BoxStream {
public:
    explicit BoxStream(const QVector<Block> &blocks)
    {
        for (const Block &block : blocks)
            feed(block.direction == Direction::Received ? block.bytes : QByteArray());
        const bool cutOff = m_bytes.size() >= m_parts.size() + 2 && startsFrame(m_parts.size());
        mark(m_bytes.size() - m_parts.size(), cutOff ? Part::LeftOut : Part::Loose);
        leaveOutEscapedAnswers();
    }

    /// What is played of a block; without bytes when it is nothing.
    Entry entryOf(int block) const
    {
        Entry entry;
        entry.says = m_says.at(block);
        for (int i = block == 0 ? 0 : m_ends.at(block - 1); i < m_ends.at(block); ++i) {
            if (m_parts.at(i) == Part::LeftOut)
                continue;
            entry.bytes.append(m_bytes.at(i));
            entry.endsInside = m_parts.at(i) == Part::Inside;
        }
        return entry;
    }

private:
    enum class Part {
        Loose,  ///< noise, or a broken frame
        Inside, ///< a data frame that goes on behind it
        End,    ///< the last byte of a data frame
        LeftOut,
    };

    void feed(const QByteArray &block)
    {
        m_bytes.append(block);
        m_ends.append(m_bytes.size());
        m_says.append(Says::Nothing);
        const QVector<WireFrame> frames = m_reader.feed(block);
        for (const WireFrame &frame : frames)
            take(frame);
    }

    void take(const WireFrame &frame)
    {
        const int size = frame.bytes.size();
        if (frame.kind == WireFrame::Kind::Data) {
            mark(size - 1, Part::Inside);
            mark(1, Part::End);
        } else {
            mark(size, frame.id == kNoId ? Part::Loose : Part::LeftOut);
        }
        if (isVersion(frame))
            takeVersion(frame.data);
    }

    void takeVersion(const QByteArray &payload)
    {
        const quint8 state = payload.size() < 2 ? canbus::kBoxNotReady : quint8(payload.at(1));
        if (state == canbus::kBoxReady)
            m_says.last() = Says::Ready;
        if (state == canbus::kBoxNotReady)
            m_says.last() = Says::NotReady;
    }

    void mark(int size, Part part) { m_parts.insert(m_parts.size(), size, part); }

    bool startsFrame(int at) const
    {
        using namespace canbus::frame;
        const quint8 mark = quint8(m_bytes.at(at + 1));
        return quint8(m_bytes.at(at)) == kDle && (mark == kStx || mark == kAck || mark == kNack);
    }

    /// A box doubles the 9F as an answer's id, which the reader does not know: the head unit does not.
    void leaveOutEscapedAnswers()
    {
        const QByteArray escapedId("\x9f\x9f");
        for (const quint8 kind : {canbus::frame::kAck, canbus::frame::kNack}) {
            const QByteArray answer = canbus::frame::buildAnswer(kind, escapedId);
            for (int at = m_bytes.indexOf(answer); at >= 0; at = m_bytes.indexOf(answer, at + 1)) {
                const auto begin = m_parts.begin() + at;
                const auto end = begin + answer.size();
                if (std::count(begin, end, Part::Loose) == answer.size())
                    std::fill(begin, end, Part::LeftOut);
            }
        }
    }

    WireReader m_reader;
    QByteArray m_bytes;
    QVector<Part> m_parts; ///< of each byte
    QVector<int> m_ends;   ///< of each block
    QVector<Says> m_says;  ///< by each block
};

std::unique_ptr<Replay> Replay::make(const Recording &recording, bool loop, QString *error)
{
    std::unique_ptr<Replay> replay(new Replay(loop));
    if (firstOf(recording.blocks, Direction::Received) < 0) {
        *error = QStringLiteral("the recording holds nothing that came from the box; replay one with the box "
                                "switched on");
        return nullptr;
    }
    replay->load(recording);
    if (replay->m_entries.isEmpty()) {
        *error =
            QStringLiteral("the recording holds nothing from the box but answers; replay one with frames "
                           "of the box");
        return nullptr;
    }
    return replay;
}

void Replay::load(const Recording &recording)
{
    const QVector<Block> &blocks = recording.blocks;
    const QVector<qint64> times = timesOf(blocks);
    const int sent = firstOf(blocks, Direction::Sent);
    const qint64 beginUs = times.at(sent < 0 ? firstOf(blocks, Direction::Received) : sent);
    const BoxStream stream(blocks);
    for (int i = 0; i < blocks.size(); ++i) {
        Entry entry = stream.entryOf(i);
        entry.timeMs = qMax<qint64>(times.at(i) - beginUs + kUsPerMs / 2, 0) / kUsPerMs;
        if (!entry.bytes.isEmpty())
            m_entries.append(entry);
    }
    findHandshake(blocks);
}

/// The recorded link is not up yet when the head unit asked for it before the box said anything about it, or
/// when this is the first frame of the box. Where the box never says anything, nothing is answered here.
void Replay::findHandshake(const QVector<Block> &blocks)
{
    const int none = blocks.size();
    const auto isData = [](const WireFrame &frame) { return frame.kind == WireFrame::Kind::Data; };
    const int version = firstFrame(blocks, Direction::Received, none, isVersion);
    m_hasHandshake = version < none;
    m_beginsReady = version > firstFrame(blocks, Direction::Received, none, isData)
        && version < firstFrame(blocks, Direction::Sent, none, isConnectRequest);
    m_ready = m_beginsReady;
}

void Replay::observe(const Event &event, qint64 nowMs)
{
    if (event.kind != Event::Kind::Command)
        return;
    if (m_beginMs == kNever)
        m_beginMs = nowMs;
    if (m_ready && event.command.action == Action::ConnectRequest)
        m_owedMs = nowMs;
}

QVector<Instruction> Replay::advance(qint64 nowMs)
{
    QVector<Instruction> due;
    for (qint64 dueAt = dueMs(); dueAt != kNever && dueAt <= nowMs; dueAt = dueMs()) {
        if (mayAnswer())
            due.append(readyReply());
        else
            playNext(due);
    }
    return due;
}

qint64 Replay::dueMs() const
{
    if (mayAnswer())
        return m_owedMs;
    if (m_beginMs == kNever || m_next == m_entries.size())
        return kNever;
    return m_beginMs + m_entries.at(m_next).timeMs;
}

Instruction Replay::readyReply()
{
    m_owedMs = kNever;
    Instruction reply;
    reply.kind = Instruction::Kind::SendFrame;
    reply.id = kReadyReplyId;
    reply.tp = quint8(Category::Version);
    reply.bytes = QByteArray(1, char(0)) + char(canbus::kBoxReady);
    return reply;
}

void Replay::playNext(QVector<Instruction> &due)
{
    const Entry &entry = m_entries.at(m_next++);
    if (entry.says != Says::Nothing)
        m_ready = entry.says == Says::Ready;
    Instruction block;
    block.kind = Instruction::Kind::SendBytes;
    block.bytes = entry.bytes;
    due.append(block);
    if (m_next < m_entries.size())
        return;
    if (m_loop)
        return rewind();
    Instruction note;
    note.text = QStringLiteral("the recording is at its end");
    due.append(note);
}

void Replay::rewind()
{
    const qint64 firstMs = m_entries.first().timeMs;
    const qint64 lastMs = m_entries.last().timeMs;
    const qint64 meanGapMs = (lastMs - firstMs) / qMax(m_entries.size() - 1, 1);
    m_beginMs += lastMs + qMax(meanGapMs, kShortestLoopGapMs) - firstMs;
    m_next = 0;
    // A head unit that was told "not ready" does not ask again by itself.
    if (m_beginsReady && !m_ready)
        m_owedMs = m_beginMs + firstMs;
    m_ready = m_beginsReady;
}

} // namespace boxsim
