#include "receivingrules.h"

#include <algorithm>
#include <utility>

using Found = HeadUnitReading::Found;

namespace {

const char kOnce[] = "a good frame is decoded once, with its content";
const char kAcknowledged[] = "a good frame is acknowledged once";
const char kBadCheck[] = "a bad check byte gives no answer and no signal";
const char kAwaits[] = "a NACK goes out exactly while a closing mark is awaited";
const char kTakes[] = "a pass takes one frame and what is before it, or too much of everything";
const char kWellFormed[] = "well-formed frames are taken in order, whatever came before them";
const char kOutside[] = "nothing is told or answered between the passes";
const char kLoopBack[] = "a block that begins with 1 gets the loop-back reply";

const QByteArray kLoopBackQuestion = "121314151617";
const QByteArray kLoopBackReply = "716151413121";

quint8 byteOf(const QByteArray &bytes)
{
    return bytes.isEmpty() ? quint8(0) : quint8(bytes.at(0));
}

bool isAnnounced(quint8 tp)
{
    return (tp >= 2 && tp <= 7) || tp == 0x11;
}

bool carriesMod(quint8 tp)
{
    return tp >= 3 && tp <= 6;
}

QByteArray answer(char kind, const QByteArray &id)
{
    return QByteArray("\x9f") + kind + id + id + QByteArray("\x9f\x03");
}

bool isSame(const boxsim::WireFrame &frame, const HeadUnitReading::Pass &pass)
{
    using Kind = boxsim::WireFrame::Kind;
    if (frame.id != byteOf(pass.id))
        return false;
    if (pass.found != Found::Data)
        return frame.kind == (pass.found == Found::Ack ? Kind::Ack : Kind::Nack);
    return frame.kind == Kind::Data && frame.tp == byteOf(pass.tp) && frame.mod == byteOf(pass.mod)
        && frame.data == pass.payload;
}

} // namespace

ReceivingRules::ReceivingRules(Findings &findings, WireCounts &counts)
    : m_findings(findings)
    , m_counts(counts)
{
}

void ReceivingRules::arrive(const QByteArray &block)
{
    m_counts.receivedBytes += quint64(block.size());
    m_reading.arrive(block);
    const bool isTooLong = block.size() > kLoopBackQuestion.size() && block.startsWith(kLoopBackQuestion);
    m_loopBacks += block.startsWith('1') && !isTooLong ? 1 : 0;
    if (hasEndInside(block))
        stopComparing();
    if (!m_compares)
        return;
    const QVector<boxsim::WireFrame> frames = m_properReader.feed(block);
    for (const boxsim::WireFrame &frame : frames) {
        if (frame.kind == boxsim::WireFrame::Kind::Bad)
            m_findings.broken("a sound line carries well-formed frames", hexText(frame.bytes));
        m_properFrames += frame;
    }
}

/// Whether a 03 follows escaped bytes alone: there the head unit ends a frame that goes on.
bool ReceivingRules::hasEndInside(const QByteArray &block)
{
    bool has = false;
    for (const char byte : block) {
        has = has || (byte == '\x03' && m_escapes > 0 && m_escapes % 2 == 0);
        m_isAtEnd = byte == '\x03' && m_escapes % 2 == 1;
        m_escapes = byte == '\x9f' ? m_escapes + 1 : 0;
    }
    return has;
}

void ReceivingRules::stopComparing()
{
    m_counts.comparisonsStopped += m_compares ? 1 : 0;
    m_compares = false;
}

/// From the next byte on: all before it is through.
void ReceivingRules::startComparing()
{
    m_compares = true;
    m_isDisturbed = false;
    m_properReader = boxsim::WireReader();
    m_properFrames.clear();
}

const HeadUnitReading::Pass &ReceivingRules::passBegins()
{
    m_counts.bufferHighWater = std::max(m_counts.bufferHighWater, quint64(m_reading.waiting().size()));
    m_pass = m_reading.pass();
    return m_pass;
}

void ReceivingRules::textWritten(const QByteArray &text)
{
    --m_loopBacks;
    if (text != kLoopBackReply || m_loopBacks < 0)
        m_findings.broken(kLoopBack, QStringLiteral("%1 was written").arg(hexText(text)));
}

void ReceivingRules::passEnds(const QByteArray &waiting)
{
    count(m_pass);
    if (waiting != m_reading.waiting())
        m_findings.broken(
            kTakes,
            QStringLiteral("%1 is left instead of %2").arg(hexText(waiting), hexText(m_reading.waiting())));
    checkNotified();
    checkAnswers();
    if (m_compares)
        compareWellFormed();
    else if (m_isWellFormed && m_isAtEnd && m_reading.waiting().isEmpty())
        startComparing();
    m_notified.clear();
    m_answered.clear();
}

void ReceivingRules::settled()
{
    if (!m_notified.isEmpty() || !m_answered.isEmpty())
        m_findings.broken(kOutside,
                          QStringLiteral("%1 and %2").arg(m_notified.size()).arg(m_answered.size()));
    if (m_loopBacks != 0)
        m_findings.broken(kLoopBack, QStringLiteral("%1 replies are missing").arg(m_loopBacks));
}

void ReceivingRules::expectWellFormed(bool isWellFormed)
{
    m_isWellFormed = isWellFormed;
    startComparing();
    m_compares = isWellFormed;
    m_escapes = 0;
    m_takenProperly = 0;
}

int ReceivingRules::checkWellFormed()
{
    if (m_compares && !m_properFrames.isEmpty())
        m_findings.broken(kWellFormed,
                          QStringLiteral("%1 was not taken").arg(hexText(m_properFrames[0].bytes)));
    return m_takenProperly;
}

void ReceivingRules::count(const HeadUnitReading::Pass &pass)
{
    m_counts.discardedBuffers += pass.found == Found::Discarded ? 1 : 0;
    m_counts.discardedBytes += quint64(pass.discarded);
    m_counts.skippedBytes += quint64(pass.skipped);
    m_counts.badChecks += pass.found == Found::Broken ? 1 : 0;
    m_counts.receivedAcks += pass.found == Found::Ack ? 1 : 0;
    m_counts.receivedNacks += pass.found == Found::Nack ? 1 : 0;
    m_counts.awaitingNacks += pass.awaitsEnd ? 1 : 0;
    m_counts.sentNacks += pass.awaitsEnd ? 1 : 0;
    if (pass.found != Found::Data)
        return;
    ++m_counts.receivedFrames;
    ++m_counts.sentAcks;
    WireCounts::Traffic &traffic = m_counts.received[byteOf(pass.tp)];
    ++traffic.frames;
    traffic.bytes += quint64(pass.payload.size());
}

void ReceivingRules::checkNotified()
{
    const quint8 tp = byteOf(m_pass.tp);
    const bool isDue = m_pass.found == Found::Data && isAnnounced(tp);
    if (m_notified.size() != (isDue ? 1 : 0))
        return m_findings.broken(m_pass.found == Found::Broken ? kBadCheck : kOnce,
                                 QStringLiteral("%1 signals").arg(m_notified.size()));
    if (!isDue)
        return;
    const Notified &told = m_notified.constFirst();
    const quint8 mod = carriesMod(tp) ? byteOf(m_pass.mod) : quint8(0);
    if (told.tp != tp || told.mod != mod || told.payload != m_pass.payload)
        m_findings.broken(kOnce,
                          QStringLiteral("category %1, sub-type %2, %3")
                              .arg(told.tp)
                              .arg(told.mod)
                              .arg(hexText(told.payload)));
}

void ReceivingRules::checkAnswers()
{
    QList<QByteArray> due;
    if (m_pass.found == Found::Data)
        due += answer('\x06', m_pass.id);
    if (m_pass.awaitsEnd)
        due += answer('\x15', m_pass.awaiting);
    if (m_answered == due)
        return;
    const char *const rule = m_pass.found == Found::Data ? kAcknowledged
        : m_pass.found == Found::Broken                  ? kBadCheck
                                                         : kAwaits;
    m_findings.broken(rule, QStringLiteral("the answers are: %1").arg(hexText(m_answered.join())));
}

void ReceivingRules::compareWellFormed()
{
    // Neither is a well-formed frame's fault: too many at once, and the reach of the escapes of another.
    if (m_pass.found == Found::Discarded)
        stopComparing();
    const bool isDisturbed = std::exchange(m_isDisturbed, m_pass.reachedBeyond);
    if (m_pass.found == Found::Nothing || m_pass.found == Found::Discarded)
        return;
    if (m_properFrames.isEmpty() || (!isDisturbed && !isSame(m_properFrames.constFirst(), m_pass)))
        return m_findings.broken(kWellFormed,
                                 QStringLiteral("a pass has found %1, id %2, instead")
                                     .arg(int(m_pass.found))
                                     .arg(hexText(m_pass.id)));
    m_properFrames.removeFirst();
    ++m_takenProperly;
    ++m_counts.wellFormedTaken;
}
