#include "playback.h"

#include "commandline/exitstatus.h"
#include "hostcontrols.h"
#include "linkhints.h"
#include "reportlines.h"
#include "standarderror.h"
#include "statslines.h"
#include "targets.h"
#include "virtualclock.h"

#include "link/frameformat.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

#include <algorithm>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace canbus::monitor {

namespace {

using standardError::complain;

constexpr qint64 kTickUs = 10000;
// Where the recording shows when a frame was answered, the ticks follow that: a tick that comes early would
// take what the recorded head unit had still before it.
constexpr qint64 kAwaitedTickUs = 11000;
constexpr qint64 kStatsUs = 10000000;
// What is left of a frame changes no more by waiting; only NACKs are sent for it meanwhile.
constexpr int kTicksThatChangeNothing = 6000;
// No timer of the groups runs longer.
constexpr qint64 kSettleUs = 1000000;

VirtualClock *clock()
{
    return VirtualClock::instance();
}

/// The link's timers, which the library starts and stops by queued calls alone: what they would send is in
/// the recording.
class LinkTimersStandStill : public QObject {
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        return event->type() == QEvent::MetaCall && qobject_cast<QTimer *>(watched);
    }
};

bool isAnswer(const QByteArray &sent)
{
    constexpr char kAckMark[] = {char(frame::kDle), char(frame::kAck), '\0'};
    return sent.startsWith(kAckMark);
}

bool showsAnswers(const recording::Recording &recording)
{
    return std::any_of(recording.blocks.cbegin(), recording.blocks.cend(), [](const recording::Block &block) {
        return block.direction == recording::Direction::Sent && isAnswer(block.bytes);
    });
}

} // namespace

Playback::Playback(Options options, int stopDescriptor)
    : m_options(std::move(options))
    , m_stopDescriptor(stopDescriptor)
    , m_output(STDOUT_FILENO, stopDescriptor)
    , m_host(new HostControls)
    , m_spy([this](const QString &object, const QMetaMethod &signal, const QVariantList &arguments) {
        hear(object, signal, arguments);
    })
    , m_nextStatsUs(kStatsUs)
{
}

Playback::~Playback() = default;

int Playback::run()
{
    recording::Recording recording;
    QString fault;
    const bool isWhole = recording::read(m_options.readFile, &recording, &fault);
    if (isWhole || !recording.blocks.isEmpty()) {
        // The protocol's parser thread keeps out all the time: the passes are made here.
        CanBusReadBuff *const buffer = CanBusReadBuff::instance();
        buffer->mutex.lock();
        join();
        play(recording);
        if (m_options.wantsStats)
            printStats();
        complainOf(m_sent->figures());
        buffer->data.clear();
        buffer->mutex.unlock();
        m_sent.reset();
        m_protocol.reset();
    }
    const int status = exitStatus(m_output);
    if (isWhole)
        return status;
    complain(fault);
    return recording.blocks.isEmpty() ? kWrongArguments : kFailure;
}

/// As the facade joins itself to a protocol, less the port and the head unit's own events.
void Playback::join()
{
    CanBusPlayer *const player = CanBusPlayer::instance();
    {
        const VirtualClock::Standstill connectRequests;
        m_protocol = std::make_unique<VelCanBusProtocol>();
    }
    connect(m_protocol.get(), &CanbusProtocol::onWritPortData, this, [this](const QByteArray &written) {
        if (isAnswer(written))
            ++m_answers;
    });
    m_sent = std::make_unique<SentTraffic>(m_protocol.get(), [this] {
        m_nextTickUs = clock()->nowUs() + m_tickUs;
        return pass();
    });
    connect(m_protocol.get(), &CanbusProtocol::notifyCanbusStatus, player, [player](bool isUp) {
        const VirtualClock::Standstill timeSynchronisation; // what it has sent is in the recording
        player->setCanbusConnectStatus(isUp);
    });
    const QObject *const from = m_protocol.get();
    const auto route = [from, player](auto signal, auto slot) {
        connect(static_cast<const CanbusProtocol *>(from), signal, player, slot);
    };
    route(&CanbusProtocol::notifyScreensInfo, &CanBusPlayer::suppScreen);
    route(&CanbusProtocol::notifyClimateInfo, &CanBusPlayer::onClimateInfo);
    route(&CanbusProtocol::notifyGaugesInfo, &CanBusPlayer::onGaugesInfo);
    route(&CanbusProtocol::notifyVehicleInfo, &CanBusPlayer::onVehicleInfo);
    route(&CanbusProtocol::notifyParingAssistInfo, &CanBusPlayer::onParingAssistInfo);
    route(&CanbusProtocol::notifyScreensTransition, &CanBusPlayer::onChangeDsp);
    route(&CanbusProtocol::notifyTextScreen, &CanBusPlayer::onTextScreen);
    const Targets targets = allTargets(m_host.get());
    for (const Target &target : targets)
        m_spy.watch(target.name, target.object);
    if (m_options.wantsStats)
        m_spy.watch(QStringLiteral("link"), m_protocol->linkHealth());
}

void Playback::play(const recording::Recording &recording)
{
    LinkTimersStandStill linkTimers;
    QCoreApplication::instance()->installEventFilter(&linkTimers);
    const qint64 startUs = recording.blocks.isEmpty() ? 0 : recording.blocks.constFirst().timeUs;
    const qint64 endUs = m_options.durationMs ? *m_options.durationMs * qint64(1000) : -1;
    m_tickUs = showsAnswers(recording) ? kAwaitedTickUs : kTickUs;
    for (const recording::Block &block : recording.blocks) {
        const qint64 us = block.timeUs - startUs;
        if (isToldToStop() || (endUs >= 0 && us > endUs))
            break;
        printStatsUntil(us);
        advanceTo(us);
        take(block);
        VirtualClock::deliver();
    }
    finish();
}

void Playback::take(const recording::Block &block)
{
    if (block.direction == recording::Direction::Received)
        receive(block.bytes);
    else if (isAnswer(block.bytes))
        catchUp();
    else
        m_sent->take(block.bytes);
}

/// The recorded head unit has answered a frame at this moment: what is still unanswered here was read then.
void Playback::catchUp()
{
    ++m_recordedAnswers;
    while (m_answers < m_recordedAnswers && pass())
        m_nextTickUs = clock()->nowUs() + m_tickUs;
    m_answers = std::max(m_answers, m_recordedAnswers);
}

/// Lets the ticks come that are due, one pass each. Ticks at which nothing waits are passed over.
void Playback::advanceTo(qint64 us)
{
    const QByteArray &waiting = CanBusReadBuff::instance()->data;
    for (int idle = 0; m_nextTickUs <= us && !waiting.isEmpty() && idle < kTicksThatChangeNothing;) {
        clock()->advanceTo(m_nextTickUs);
        m_nextTickUs += m_tickUs;
        idle = pass() ? 0 : idle + 1;
    }
    if (m_nextTickUs <= us)
        m_nextTickUs = us + m_tickUs;
    clock()->advanceTo(us);
}

/// Reads on until nothing changes any more.
void Playback::finish()
{
    m_sent->end();
    do {
        clock()->advanceTo(m_nextTickUs);
        m_nextTickUs += m_tickUs;
    } while (!isToldToStop() && pass());
    if (!m_isStopped)
        clock()->advanceTo(clock()->nowUs() + kSettleUs);
}

bool Playback::pass()
{
    const QByteArray &waiting = CanBusReadBuff::instance()->data;
    const int before = waiting.size();
    m_protocol->onParseDataTmrout();
    VirtualClock::deliver();
    return waiting.size() != before;
}

void Playback::receive(const QByteArray &block)
{
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    if (buffer->data.isEmpty())
        m_nextTickUs = clock()->nowUs() + m_tickUs;
    Q_EMIT buffer->received(block);
    buffer->data += block;
    m_protocol->analyseData(block);
}

/// The figures of the last full ten seconds before this time. None for a time in which nothing was to be
/// heard.
void Playback::printStatsUntil(qint64 us)
{
    if (!m_options.wantsStats || us < m_nextStatsUs)
        return;
    advanceTo(m_nextStatsUs);
    printStats();
    m_nextStatsUs = (us / kStatsUs + 1) * kStatsUs;
}

void Playback::printStats()
{
    print(statsText(m_options.form, nowMs(), m_sent->figures()));
}

void Playback::hear(const QString &object, const QMetaMethod &signal, const QVariantList &arguments)
{
    QVariantList heard = arguments;
    // The library's clock knows nothing of the recording's.
    if (signal == QMetaMethod::fromSignal(&LinkHealth::commandEnded))
        heard.last() = m_sent->lastCommandUs();
    print(signalLine(m_options.form, nowMs(), object, signal, heard));
}

void Playback::print(const QString &text)
{
    if (m_output.writeLine(text) != Output::State::Open)
        m_isStopped = true;
}

bool Playback::isToldToStop()
{
    pollfd polled = {m_stopDescriptor, POLLIN, 0};
    if (m_stopDescriptor >= 0 && ::poll(&polled, 1, 0) > 0)
        m_isStopped = true;
    return m_isStopped;
}

qint64 Playback::nowMs() const
{
    return clock()->nowUs() / 1000;
}

} // namespace canbus::monitor
