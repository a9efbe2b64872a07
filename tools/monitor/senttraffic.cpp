#include "senttraffic.h"

#include "virtualclock.h"

#include "link/frameformat.h"
#include "link/sendqueue.h"
#include "link/wireconstants.h"

#include <QtCore/QScopedValueRollback>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

#include <algorithm>
#include <utility>

namespace canbus::monitor {

namespace {

constexpr char kCommandMark[] = {char(frame::kDle), char(frame::kStx), '\0'};
// The library's own comes a tick or so earlier here than it came on the line.
constexpr qint64 kOwnIsLateUs = 100000;

qint64 now()
{
    return VirtualClock::instance()->nowUs();
}

bool isCommand(const QByteArray &block)
{
    return block.startsWith(kCommandMark);
}

bool isConnectRequest(const QByteArray &frame)
{
    static const QByteArray request = QByteArray::fromHex("9f0221010000"
                                                          "00209f03");
    return frame == request;
}

/// A connect request or a connection check, by the byte behind the id.
bool isOfTheLink(const QByteArray &frame)
{
    const int at = frame.size() > 2 && quint8(frame.at(2)) == frame::kDle ? 4 : 3; // the id may be doubled
    return frame.size() > at && quint8(frame.at(at)) == quint8(Command::Connection);
}

/// Whether a version frame waits to be read, by which the box says whether it is ready.
bool isHandshakeWaiting()
{
    const QByteArray &waiting = CanBusReadBuff::instance()->data;
    for (int at = waiting.indexOf(kCommandMark); at >= 0; at = waiting.indexOf(kCommandMark, at + 1)) {
        if (isOfTheLink(waiting.mid(at)))
            return true;
    }
    return false;
}

} // namespace

SentTraffic::SentTraffic(VelCanBusProtocol *protocol, std::function<bool()> pass)
    : m_protocol(protocol)
    , m_pass(std::move(pass))
{
    m_giveUpTimer.setSingleShot(true);
    m_giveUpTimer.setInterval(SendQueue::kResendIntervalMs);
    connect(&m_giveUpTimer, &QTimer::timeout, this, &SentTraffic::giveUp);
    connect(protocol, &CanbusProtocol::onWritPortData, this, &SentTraffic::notice);
    connect(protocol->linkHealth(), &LinkHealth::commandEnded, this, &SentTraffic::forget);
}

void SentTraffic::take(const QByteArray &block)
{
    if (!isCommand(block) || takeOwn(block))
        return;
    if (isOfTheLink(block)) {
        // What makes the library send this may still wait to be read.
        passWhile([&] { return isHandshakeWaiting() && !hasOwn(block); });
        if (takeOwn(block))
            return;
    }
    if (block != m_current) {
        // One frame is under way at a time: the one before it has been answered by now, or given up.
        passWhile([this, before = m_current] { return !m_current.isEmpty() && m_current == before; });
        if (takeOwn(block))
            return;
    }
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    if (block == m_current) {
        m_protocol->restartSendTmr();
        return;
    }
    giveUp();
    send(block);
}

bool SentTraffic::hasOwn(const QByteArray &frame) const
{
    return std::any_of(m_own.cbegin(), m_own.cend(), [&](const Own &own) { return own.frame == frame; });
}

/// Whether the library has sent this by itself.
bool SentTraffic::takeOwn(const QByteArray &frame)
{
    const qint64 oldest = now() - kOwnIsLateUs;
    m_own.erase(
        std::remove_if(m_own.begin(), m_own.end(), [oldest](const Own &own) { return own.timeUs < oldest; }),
        m_own.end());
    const auto found =
        std::find_if(m_own.begin(), m_own.end(), [&](const Own &own) { return own.frame == frame; });
    if (found == m_own.end())
        return false;
    m_own.erase(found);
    return true;
}

template <class Condition>
void SentTraffic::passWhile(Condition condition)
{
    while (condition() && m_pass())
        continue;
}

void SentTraffic::giveUp()
{
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    for (int i = 0; i <= SendQueue::kMaxTransmissions && !m_current.isEmpty(); ++i)
        m_protocol->onSendTmrout();
}

void SentTraffic::send(const QByteArray &frame)
{
    if (isConnectRequest(frame))
        requestConnect();
    else if (frame == m_ownCheck)
        m_protocol->onCheckConnectTmrout();
    else if (isOfTheLink(frame)) // a connection check of another link than ours
        m_protocol->onSaveSendCmdData(frame);
    else
        Q_EMIT CanBusPlayer::instance()->sendCmdData(frame);
}

void SentTraffic::requestConnect()
{
    // It asks again when it has lost the link.
    if (CanBusPlayer::instance()->getCanbusConnectStatus())
        CanBusPlayer::instance()->setCanbusConnectStatus(false);
    m_protocol->onRequestConnect();
}

void SentTraffic::notice(const QByteArray &written)
{
    if (!isCommand(written))
        return;
    if (!m_isFollowing) {
        m_own.append({written, now()});
        if (isOfTheLink(written) && !isConnectRequest(written))
            m_ownCheck = written;
    }
    if (m_transmissions == 0 || written != m_current) {
        m_transmissions = 0;
        m_firstSentUs = now();
    }
    m_current = written;
    if (++m_transmissions >= SendQueue::kMaxTransmissions)
        m_giveUpTimer.start();
}

void SentTraffic::forget(const QByteArray &frame, LinkHealth::Fate fate, int transmissions)
{
    m_lastCommandUs = transmissions > 0 ? now() - m_firstSentUs : 0;
    if (transmissions > 0 && (fate == LinkHealth::Fate::Acknowledged || fate == LinkHealth::Fate::Refused)) {
        ++m_answers;
        m_answersUs += m_lastCommandUs;
        m_lastAnswerUs = m_lastCommandUs;
        m_maxAnswerUs = std::max(m_maxAnswerUs, m_lastCommandUs);
    }
    if (frame != m_current)
        return;
    m_current.clear();
    m_transmissions = 0;
    m_giveUpTimer.stop();
}

LinkFigures SentTraffic::figures() const
{
    LinkFigures figures = m_protocol->linkHealth()->figures();
    figures.lastAnswerUs = quint64(m_lastAnswerUs);
    figures.maxAnswerUs = quint64(m_maxAnswerUs);
    figures.meanAnswerUs = m_answers == 0 ? 0 : quint64(m_answersUs) / m_answers;
    return figures;
}

} // namespace canbus::monitor
