#include "linkhealth.h"

#include "frameformat.h"
#include "linkhealth_p.h"
#include "support/bytes.h"

#include <algorithm>

namespace canbus {

namespace {

/// The place of the frames with this TP: the last one where none has its name.
template <class Table>
NamedTraffic &placeOf(Table &table, quint8 tp)
{
    return *std::find_if(table.begin(), table.end() - 1,
                         [tp](const NamedTraffic &traffic) { return traffic.tp == tp; });
}

template <class Table>
QVariantMap byName(const Table &table)
{
    QVariantMap all;
    for (const NamedTraffic &traffic : table) {
        all.insert(QLatin1String(traffic.name),
                   QVariantMap {{QStringLiteral("frames"), traffic.frames.value()},
                                {QStringLiteral("bytes"), traffic.bytes.value()}});
    }
    return all;
}

/// The TP of a data frame as it goes on the wire, where an id that is an escape stands twice.
quint8 commandOf(const QByteArray &frame)
{
    const bool isIdDoubled = byteAt(frame, 2) == frame::kDle && byteAt(frame, 3) == frame::kDle;
    return byteAt(frame, isIdDoubled ? 4 : 3);
}

} // namespace

void LinkHealthPrivate::countReceivedFrame(quint8 tp, int payloadSize)
{
    m_receivedFrames.add();
    placeOf(m_received, tp).add(payloadSize);
}

void LinkHealthPrivate::countPass(const receive::Pass &pass)
{
    if (pass.discarded > 0) {
        m_discardedBuffers.add();
        m_discardedBytes.add(quint64(pass.discarded));
    }
    m_skippedBytes.add(quint64(pass.skipped));
    if (pass.end == receive::Pass::BadCheck)
        m_badChecks.add();
}

void LinkHealthPrivate::countWritten(const QByteArray &block, int transmissions)
{
    m_sentBytes.add(quint64(block.size()));
    if (transmissions > 1)
        m_retransmissions.add();
    if (firstByte(block) != frame::kDle)
        return;
    switch (byteAt(block, 1)) {
    case frame::kStx:
        m_sentFrames.add();
        placeOf(m_sent, commandOf(block)).add(block.size());
        break;
    case frame::kAck:
        m_sentAcks.add();
        break;
    case frame::kNack:
        m_sentNacks.add();
        break;
    default:
        break;
    }
}

void LinkHealthPrivate::countEnded(LinkHealth::Fate fate, int transmissions, qint64 microseconds)
{
    switch (fate) {
    case LinkHealth::Fate::Acknowledged:
    case LinkHealth::Fate::Refused:
        countAnswer(transmissions, microseconds);
        break;
    case LinkHealth::Fate::GivenUp:
        m_givenUp.add();
        break;
    case LinkHealth::Fate::NotAccepted:
        m_refusedFull.add();
        break;
    }
}

void LinkHealthPrivate::countAnswer(int transmissions, qint64 microseconds)
{
    m_answers.add();
    // A late answer may match a frame that has not been sent yet: no time has passed that would mean
    // anything.
    if (transmissions == 0)
        return;
    m_timedAnswers.add();
    m_answersUs.add(quint64(microseconds));
    m_lastAnswerUs.set(quint64(microseconds));
    m_maxAnswerUs.raiseTo(quint64(microseconds));
    m_meanAnswerUs.set(m_answersUs.value() / m_timedAnswers.value());
}

LinkFigures LinkHealthPrivate::figures() const
{
    LinkFigures all;
    all.receivedBytes = receivedBytes.value();
    all.receivedFrames = m_receivedFrames.value();
    all.receivedAcks = receivedAcks.value();
    all.receivedNacks = receivedNacks.value();
    all.badChecks = m_badChecks.value();
    all.discardedBuffers = m_discardedBuffers.value();
    all.discardedBytes = m_discardedBytes.value();
    all.skippedBytes = m_skippedBytes.value();
    all.bufferHighWater = bufferHighWater.value();
    all.sentBytes = m_sentBytes.value();
    all.sentFrames = m_sentFrames.value();
    all.sentAcks = m_sentAcks.value();
    all.sentNacks = m_sentNacks.value();
    all.awaitingNacks = awaitingNacks.value();
    all.retransmissions = m_retransmissions.value();
    all.givenUp = m_givenUp.value();
    all.refusedFull = m_refusedFull.value();
    all.cacheHighWater = cacheHighWater.value();
    all.answers = m_answers.value();
    all.lastAnswerUs = m_lastAnswerUs.value();
    all.meanAnswerUs = m_meanAnswerUs.value();
    all.maxAnswerUs = m_maxAnswerUs.value();
    all.connectRequests = connectRequests.value();
    all.connectionChecks = connectionChecks.value();
    all.linkLosses = linkLosses.value();
    all.portErrors = portErrors.value();
    all.receivedByCategory = byName(m_received);
    all.sentByCommand = byName(m_sent);
    return all;
}

LinkHealth::LinkHealth()
    : d(std::make_shared<LinkHealthPrivate>())
{
    qRegisterMetaType<LinkFigures>();
    qRegisterMetaType<LinkHealth::Fate>();
}

LinkHealth::~LinkHealth() = default;

LinkFigures LinkHealth::figures() const
{
    return d->figures();
}

} // namespace canbus
