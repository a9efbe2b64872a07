#include "sendingrules.h"

#include <algorithm>

namespace {

constexpr std::size_t kMostCommands = 65;
constexpr std::size_t kOverfull = 1024;
constexpr int kIntervalMs[] = {300, 2000, 15000};
constexpr int kMostTransmissions = 3;
// A frame that follows one that was given up waits 300 ms, and is then sent at 0, 300 and 600 ms.
constexpr qint64 kLongestTurnMs = 1200;

const char kBound[] = "commands never grow the cache past 65";
const char kHeadOnly[] = "only the head of the cache is on the wire";
const char kOrder[] = "first in, first out";
const char kPace[] = "a frame is sent at 0, 300 and 600 ms and gone at 900 ms";
const char kAgain[] = "each new frame sends the head at once and begins the 300 ms anew";
const char kLeaves[] = "a frame leaves by an answer with its id or after at least three transmissions";
const char kForeign[] = "an answer with a foreign id changes nothing";
const char kNext[] = "the next frame follows the answer at once";
const char kBounded[] = "every command ends in bounded time";
const char kUp[] = "up is told only of an ACK with the connection id";
const char kDown[] = "down is told exactly when a frame is given up while connected";
const char kRequests[] = "connect requests come every 2 s, and 2 s after the last loss";
const char kChecks[] = "connection checks come every 15 s while the box is ready";
const char kTold[] = "an end is told with its transmissions and its time";
const char *const kTimerRules[] = {kPace, kRequests, kChecks};

const QByteArray kConnectRequest = QByteArray::fromHex("9f022101000000209f03");

QByteArray escapedByte(char byte)
{
    return QByteArray(byte == '\x9f' ? 2 : 1, byte);
}

/// Its check byte is its id: everything else that counts is a one and a one.
QByteArray connectionCheck(const QByteArray &id)
{
    const QByteArray escaped = escapedByte(id.isEmpty() ? '\0' : id.at(0));
    return QByteArray("\x9f\x02", 2) + escaped + QByteArray("\x01\x00\x00\x01", 4) + escaped
        + QByteArray("\x9f\x03", 2);
}

bool isConnectionCheck(const QByteArray &frame)
{
    return frame == connectionCheck(frame.mid(2, 1));
}

/// Behind the id, which stands twice where it is an escape.
quint8 tpOf(const QByteArray &frame)
{
    const bool isIdDoubled = frame.mid(2, 2) == "\x9f\x9f";
    return quint8(frame.at(isIdDoubled ? 4 : 3));
}

QString fateText(canbus::LinkHealth::Fate fate)
{
    static const char *const kTexts[] = {"acknowledged", "refused", "given up", "not accepted"};
    return QLatin1String(kTexts[int(fate)]);
}

} // namespace

SendingRules::SendingRules(Findings &findings, WireCounts &counts)
    : m_findings(findings)
    , m_counts(counts)
{
    m_due.fill(kNever);
    m_due[RequestConnect] = kIntervalMs[RequestConnect];
}

void SendingRules::commandGiven(const QByteArray &frame)
{
    ++m_counts.commands;
    if (m_cache.size() >= kMostCommands)
        return expect({Expected::End, kBound, 0, frame, 0, Fate::NotAccepted});
    append(frame);
    restart(kAgain);
}

void SendingRules::timerExpired(Timer timer)
{
    const qint64 now = m_findings.now();
    if (m_due[timer] != now) {
        const QString due = m_due[timer] == kNever ? QStringLiteral("it must not run")
                                                   : QStringLiteral("it is due at %1 ms").arg(m_due[timer]);
        return m_findings.broken(kTimerRules[timer], QStringLiteral("the timer has expired, but ") + due);
    }
    m_due[timer] = now + kIntervalMs[timer];
    if (timer == CheckConnect) {
        m_counts.connectionChecks += appendConnectFrame(connectionCheck(m_connectionId)) ? 1 : 0;
    } else if (timer == RequestConnect) {
        m_handshaking = true;
        m_counts.connectRequests += appendConnectFrame(kConnectRequest) ? 1 : 0;
    } else if (m_transmissions < kMostTransmissions) {
        transmit(kPace);
    } else {
        giveUp();
    }
}

void SendingRules::answerRead(bool isAck, quint8 id)
{
    const quint8 current = m_cache.empty() ? 0 : quint8(head().at(2));
    if (id == current && !m_cache.empty()) {
        endHead(isAck ? Fate::Acknowledged : Fate::Refused, kLeaves);
        m_due[Send] = kNever;
        if (!m_cache.empty())
            restart(kNext);
    }
    const quint8 connection = m_connectionId.isEmpty() ? 0 : quint8(m_connectionId.at(0));
    if (isAck && id == connection)
        expect({Expected::Status, kUp, 0, {}, 0, {}, 0, true});
}

void SendingRules::readyRead(quint8 id)
{
    m_handshaking = false;
    m_connectionId = QByteArray(1, char(id));
    m_due[RequestConnect] = kNever;
    m_due[CheckConnect] = m_findings.now() + kIntervalMs[CheckConnect];
    m_counts.connectionChecks += appendConnectFrame(connectionCheck(m_connectionId)) ? 1 : 0;
}

void SendingRules::notReadyRead()
{
    m_handshaking = true;
    m_counts.connectRequests += appendConnectFrame(kConnectRequest) ? 1 : 0;
    m_due[CheckConnect] = kNever;
}

void SendingRules::append(const QByteArray &frame)
{
    const qint64 turns = qint64(m_cache.size()) + 1;
    m_cache.push_back({frame, m_findings.now() + turns * kLongestTurnMs, m_postponements});
    m_counts.cacheHighWater = std::max<quint64>(m_counts.cacheHighWater, m_cache.size());
}

/// @return whether the cache has taken it
bool SendingRules::appendConnectFrame(const QByteArray &frame)
{
    const bool isThere = std::any_of(m_cache.begin(), m_cache.end(),
                                     [&](const Cached &cached) { return cached.frame == frame; });
    const bool takes = m_cache.size() < kOverfull || !isThere;
    if (takes)
        append(frame);
    else
        ++m_counts.leftOut;
    restart(kAgain);
    return takes;
}

void SendingRules::restart(const char *rule)
{
    ++m_postponements;
    transmit(rule);
    m_due[Send] = m_findings.now() + kIntervalMs[Send];
}

void SendingRules::transmit(const char *rule)
{
    if (m_transmissions == 0)
        m_firstSentMs = m_findings.now();
    ++m_transmissions;
    expect({Expected::Write, rule, 0, head(), m_transmissions});
}

void SendingRules::giveUp()
{
    endHead(Fate::GivenUp, kPace);
    if (!m_handshaking) {
        m_due[CheckConnect] = kNever;
        m_due[RequestConnect] = m_findings.now() + kIntervalMs[RequestConnect];
        expect({Expected::Status, kDown, 0, {}, 0, {}, 0, false});
    }
    if (m_cache.empty())
        m_due[Send] = kNever;
}

void SendingRules::endHead(Fate fate, const char *rule)
{
    const qint64 tookMs = m_transmissions > 0 ? m_findings.now() - m_firstSentMs : 0;
    expect({Expected::End, rule, 0, head(), m_transmissions, fate, tookMs});
    if (isConnectionCheck(head()))
        m_checkRefused = fate == Fate::Refused;
    m_cache.pop_front();
    m_transmissions = 0;
}

void SendingRules::expect(const Expected &expected)
{
    m_expected.push_back(expected);
    m_expected.back().atMs = m_findings.now();
}

bool SendingRules::isNext(Expected::Kind kind) const
{
    return !m_expected.empty() && m_expected.front().kind == kind;
}

void SendingRules::frameWritten(const QByteArray &frame)
{
    if (!isNext(Expected::Write) || m_expected.front().frame != frame)
        return unexpectedWrite(frame);
    const Expected was = m_expected.front();
    m_expected.pop_front();
    checkTime(frame, was);
    if (was.transmissions == 1)
        m_sentAtMs.clear();
    m_restarted = was.transmissions > 1 && (m_restarted || was.rule == kAgain);
    m_sentAtMs += m_findings.now();
    count(frame, was.transmissions);
}

void SendingRules::frameEnded(const QByteArray &frame, Fate fate, int transmissions, qint64 microseconds)
{
    if (!isNext(Expected::End) || m_expected.front().frame != frame || m_expected.front().fate != fate)
        return unexpectedEnd(frame, fate, transmissions);
    const Expected was = m_expected.front();
    m_expected.pop_front();
    checkTime(frame, was);
    if (fate == Fate::GivenUp)
        checkPace();
    if (was.transmissions != transmissions || was.tookMs * 1000 != microseconds)
        m_findings.broken(kTold,
                          QStringLiteral("%1: %2 transmissions in %3 us")
                              .arg(hexText(frame))
                              .arg(transmissions)
                              .arg(microseconds));
    countEnd(fate, transmissions, microseconds);
}

void SendingRules::unexpectedWrite(const QByteArray &frame)
{
    const bool isCached = std::any_of(m_cache.begin(), m_cache.end(),
                                      [&](const Cached &cached) { return cached.frame == frame; });
    // Where a frame was to end, that is the rule, whatever was sent instead.
    const bool isEnd = isNext(Expected::End);
    const char *const rule = isEnd ? m_expected.front().rule
        : frame == head()          ? kPace
        : isCached                 ? kOrder
                                   : kHeadOnly;
    m_findings.broken(rule, QStringLiteral("%1 was sent").arg(hexText(frame)));
}

void SendingRules::unexpectedEnd(const QByteArray &frame, Fate fate, int transmissions)
{
    const QString how = QStringLiteral("%1 is %2 after %3 transmissions, with %4 cached")
                            .arg(hexText(frame), fateText(fate))
                            .arg(transmissions)
                            .arg(cachedFrames());
    if (fate == Fate::NotAccepted)
        return m_findings.broken(kBound, how);
    if (fate == Fate::GivenUp)
        return m_findings.broken(transmissions < kMostTransmissions ? kLeaves : kPace, how);
    m_findings.broken(frame == head() ? kForeign : kOrder, how);
}

void SendingRules::statusTold(bool up)
{
    if (!isNext(Expected::Status) || m_expected.front().up != up)
        return m_findings.broken(up ? kUp : kDown, QStringLiteral("it was told without that"));
    m_expected.pop_front();
    m_linkUp = up;
    ++(up ? m_counts.linkUps : m_counts.linkLosses);
}

void SendingRules::settled()
{
    checkBound();
    if (!m_expected.empty()) {
        const Expected &missing = m_expected.front();
        static const char *const kKinds[] = {"it is not sent", "its end is not told", "nothing is told"};
        m_findings.broken(missing.rule,
                          QLatin1String(kKinds[missing.kind]) + QLatin1Char(' ') + hexText(missing.frame));
    }
    for (const Timer timer : {Send, RequestConnect, CheckConnect}) {
        if (m_due[timer] != kNever && m_due[timer] <= m_findings.now())
            m_findings.broken(kTimerRules[timer],
                              QStringLiteral("nothing has come at %1 ms").arg(m_due[timer]));
    }
}

void SendingRules::checkBound()
{
    if (m_cache.empty())
        return;
    const Cached &first = m_cache.front();
    const qint64 latest = first.latestEndMs + (m_postponements - first.postponements) * kIntervalMs[Send];
    if (m_findings.now() > latest)
        m_findings.broken(kBounded, QStringLiteral("%1 waits").arg(hexText(first.frame)));
}

bool SendingRules::isStranded() const
{
    return std::all_of(m_due.begin(), m_due.end(), [](qint64 due) { return due == kNever; });
}

/// Of a frame that is given up, by what was seen of it alone.
void SendingRules::checkPace()
{
    const qint64 first = m_sentAtMs.value(0);
    if (m_sentAtMs.size() < kMostTransmissions)
        m_findings.broken(kLeaves, QStringLiteral("it was sent %1 times").arg(m_sentAtMs.size()));
    const QList<qint64> paced {first, first + 300, first + 600};
    if (!m_restarted && (m_sentAtMs != paced || m_findings.now() != first + 900))
        m_findings.broken(kPace, QStringLiteral("it was sent at %1 first").arg(first));
}

void SendingRules::checkTime(const QByteArray &frame, const Expected &was)
{
    if (was.atMs != m_findings.now())
        m_findings.broken(was.rule, QStringLiteral("%1 was due at %2 ms").arg(hexText(frame)).arg(was.atMs));
}

void SendingRules::count(const QByteArray &frame, int transmissions)
{
    ++m_counts.sentFrames;
    m_counts.retransmissions += transmissions > 1 ? 1 : 0;
    WireCounts::Traffic &traffic = m_counts.sent[tpOf(frame)];
    ++traffic.frames;
    traffic.bytes += quint64(frame.size());
}

void SendingRules::countEnd(Fate fate, int transmissions, qint64 microseconds)
{
    m_counts.givenUp += fate == Fate::GivenUp ? 1 : 0;
    m_counts.refusedFull += fate == Fate::NotAccepted ? 1 : 0;
    if (fate == Fate::GivenUp || fate == Fate::NotAccepted)
        return;
    ++m_counts.answers;
    if (transmissions == 0)
        return;
    ++m_counts.timedAnswers;
    m_counts.answersUs += quint64(microseconds);
    m_counts.lastAnswerUs = quint64(microseconds);
    m_counts.maxAnswerUs = std::max(m_counts.maxAnswerUs, quint64(microseconds));
}
