#include "simulatedrun.h"

#include "link/frameformat.h"

#include <algorithm>

using Kind = boxsim::Instruction::Kind;

namespace {

constexpr int kTickMs = 10;
constexpr qint64 kMinuteMs = 60000;
constexpr qint64 kHourMs = 60 * kMinuteMs;
constexpr qint64 kLastPartMs = 3000;
constexpr qint64 kNever = -1;

// A connect request at the latest, its answer, the ready reply and the check: each within a few ticks. What
// is left of the faults may cost each side a frame, which comes again after 300 ms.
constexpr qint64 kNextRequestMs = 2000;
constexpr qint64 kRoundTripMs = 1000;
constexpr qint64 kAnnouncementDelayMs = 300;
constexpr qint64 kNextCheckMs = 15000;

boxsim::Instruction instruction(Kind kind, const QByteArray &bytes = {})
{
    boxsim::Instruction made;
    made.kind = kind;
    made.bytes = bytes;
    return made;
}

} // namespace

SimulatedRun::SimulatedRun(ParkedHeadUnit &headUnit, quint32 seed, Trace &trace)
    : m_chance(seed)
    , m_trace(trace)
    , m_link(headUnit, trace)
    , m_box(m_chance.seed(), trace)
{
    drawKinds();
    drawPaces();
    m_nextTickMs = 1 + m_chance.below(kTickMs); // apart from the timers
    m_reactsToLink = m_chance.happens(0.5);
    m_link.whenStatusTold = [this](bool up) {
        if (up && m_reactsToLink && m_isInTrouble)
            m_controls.use(m_chance);
    };
}

QString SimulatedRun::runMinute()
{
    m_box.set(m_car.all(m_box.bench().state(), m_chance), 0);
    if (m_floods)
        flood();
    makeTrouble(m_chance.between(25000, 38000));
    letDrain();
    comeUpAgain();
    stayUp(kMinuteMs - kLastPartMs);
    startBoxAnew();
    runUntil(kMinuteMs);
    m_link.checkFigures();
    return m_link.findings.text();
}

QString SimulatedRun::runHours(int hours, QList<MemorySample> &samples)
{
    // The bench remembers for each length of block where it was cut last: that would grow for many hours.
    m_kinds = {true, true, false, true, true, true};
    drawPaces();
    m_box.set(m_car.all(m_box.bench().state(), m_chance), 0);
    for (int hour = 1; hour <= hours && m_link.findings.isEmpty(); ++hour) {
        if (hour % 2 == 0)
            flood();
        makeTrouble(hour * kHourMs - kMinuteMs);
        letDrain();
        comeUpAgain();
        stayUp(hour * kHourMs - kLastPartMs);
        startBoxAnew();
        runUntil(hour * kHourMs);
        samples += MemorySample::now();
    }
    m_link.checkFigures();
    return m_link.findings.text();
}

void SimulatedRun::drawKinds()
{
    const int mix = m_chance.below(8);
    const bool all = mix >= 5;
    m_kinds.answers = all || mix == 1;
    m_kinds.bytes = all || mix == 2;
    m_kinds.cuts = all || mix == 3;
    m_kinds.noise = all || mix == 4;
    m_kinds.garbage = all || mix == 4;
    m_kinds.restarts = all || mix == 1;
    m_floods = all && m_chance.happens(0.05);
}

void SimulatedRun::drawPaces()
{
    m_paceMs.fill(0);
    m_paceMs[FaultsChange] = 4000;
    m_paceMs[Press] = m_chance.share(100, 10000);
    m_paceMs[Burst] = m_chance.happens(0.3) ? m_chance.share(3000, 30000) : 0;
    m_paceMs[HostPlays] = m_chance.share(1000, 20000);
    m_paceMs[AskForAll] = 20000;
    m_paceMs[CarChange] = m_chance.share(200, 10000);
    if (m_kinds.garbage)
        m_paceMs[Garbage] = m_chance.share(50, 5000);
    if (m_kinds.restarts)
        m_paceMs[Restart] = m_chance.share(3000, 30000);
}

void SimulatedRun::drawTimes()
{
    for (size_t i = 0; i < kHappenings; ++i)
        m_nextMs[i] = m_paceMs[i] > 0 ? m_nowMs + m_chance.gapMs(m_paceMs[i]) : kNever;
    m_nextMs[FaultsChange] = m_nowMs;
}

void SimulatedRun::happen(Happening happening)
{
    switch (happening) {
    case FaultsChange:
        return changeFaults();
    case Press:
        return press();
    case Burst:
        for (int left = int(m_chance.share(2, 100)); left > 0; --left)
            press();
        return;
    case HostPlays:
        m_trace.add(m_nowMs, Controls::playHost(m_chance));
        return;
    case AskForAll:
        m_trace.add(m_nowMs, Controls::askForAll(m_chance));
        return m_link.toldToAnnounce();
    case CarChange:
        return m_box.set(m_car.some(m_box.bench().state(), m_chance), m_nowMs);
    case Garbage:
        return m_box.perform(instruction(Kind::SendBytes, drawnGarbage(m_chance)), m_nowMs);
    case Restart:
        return interrupt();
    case kHappenings:
        return;
    }
}

void SimulatedRun::press()
{
    m_trace.add(m_nowMs, m_controls.use(m_chance));
}

void SimulatedRun::changeFaults()
{
    m_box.setFaults(drawnFaults(m_kinds, m_chance), drawnFaults(m_kinds, m_chance), m_nowMs);
}

void SimulatedRun::interrupt()
{
    const double kind = m_chance.fraction();
    if (kind < 0.2)
        return sayNotReady();
    if (kind < 0.7)
        return m_box.perform(instruction(Kind::Restart), m_nowMs);
    boxsim::Instruction hangUp = instruction(Kind::HangUp);
    hangUp.ms = m_chance.between(20, 4000);
    m_box.perform(hangUp, m_nowMs);
}

void SimulatedRun::sayNotReady()
{
    const QByteArray notReady = canbus::frame::build(0x41, 0x01, 0x00, QByteArray(2, '\0'));
    m_box.perform(instruction(Kind::SendBytes, notReady), m_nowMs);
}

/// A box that answers nothing, and says not ready again and again: each time a connect request is cached.
void SimulatedRun::flood()
{
    boxsim::Faults faults;
    faults.dropAnswers = 1;
    faults.notReadyReplies = 1000000;
    m_box.setFaults(faults, {}, m_nowMs);
    m_floodEndMs = m_nowMs + m_chance.between(11000, 15000);
    runUntil(m_floodEndMs);
}

void SimulatedRun::tick()
{
    m_nowMs = m_nextTickMs;
    m_nextTickMs += kTickMs;
    m_link.advanceTo(m_nowMs);
    if (m_nowMs < m_floodEndMs && m_link.receiving().waitingBytes() == 0)
        sayNotReady();
    for (const QByteArray &block : m_box.tick(m_nowMs))
        m_link.arrive(block);
    m_link.pass();
    for (const QByteArray &block : m_link.takeWritten())
        m_box.write(block, m_nowMs);
}

void SimulatedRun::runUntil(qint64 nowMs)
{
    while (m_link.findings.isEmpty() && m_nextTickMs <= nowMs)
        tick();
}

template <class Condition>
bool SimulatedRun::runUntil(Condition &&condition, qint64 latestMs)
{
    while (m_link.findings.isEmpty() && !condition() && m_nextTickMs <= latestMs)
        tick();
    return condition();
}

void SimulatedRun::makeTrouble(qint64 endMs)
{
    m_isInTrouble = true;
    drawTimes();
    // An answer with the wrong id 9F, which has to stand twice, is nothing that the simpler reader knows.
    m_link.receiving().expectWellFormed(!m_kinds.damages() && !m_kinds.answers);
    while (m_link.findings.isEmpty()) {
        const auto next = std::min_element(m_nextMs.begin(), m_nextMs.end(), [](qint64 a, qint64 b) {
            return a != kNever && (b == kNever || a < b);
        });
        if (*next > endMs)
            break;
        runUntil(*next - 1);
        m_nowMs = *next;
        m_link.advanceTo(m_nowMs);
        const auto happening = size_t(next - m_nextMs.begin());
        happen(Happening(happening));
        *next += m_chance.gapMs(m_paceMs[happening]);
    }
    runUntil(endMs);
    m_isInTrouble = false;
    m_box.setFaults({}, {}, m_nowMs);
}

/// With the faults gone, the frames that wait go out one after the other, and nothing is left on the wire.
void SimulatedRun::letDrain()
{
    const qint64 latestMs = m_nowMs + 10000 + 100 * m_link.sending().cachedFrames();
    const bool drains =
        runUntil([this] { return m_link.sending().cachedFrames() == 0 && m_box.isQuiet(); }, latestMs);
    if (!drains)
        m_link.findings.broken("without faults the backlog drains",
                               QStringLiteral("%1 frames wait").arg(m_link.sending().cachedFrames()));
}

bool SimulatedRun::isConnected() const
{
    const SendingRules &sending = m_link.sending();
    return sending.isLinkUp() && sending.dueMs(SendingRules::CheckConnect) != SendingRules::kNever;
}

/// The link is up within 2 s and a round trip. There are two exceptions, both the link's own rules: after a
/// box that said not ready while connected no timer asks it again, so that it has to speak itself; and after
/// a connection check that was answered by a NACK the next one brings the link up.
void SimulatedRun::comeUpAgain()
{
    const SendingRules &sending = m_link.sending();
    qint64 latestMs = m_nowMs + kNextRequestMs;
    if (sending.isStranded()) {
        ++m_link.counts.strandings;
        m_box.perform(instruction(Kind::Restart), m_nowMs);
        latestMs = m_nowMs;
    } else if (!isConnected() && sending.isCheckRefused()
               && sending.dueMs(SendingRules::RequestConnect) == SendingRules::kNever) {
        ++m_link.counts.refusedChecks;
        latestMs = sending.dueMs(SendingRules::CheckConnect);
    }
    if (!runUntil([this] { return isConnected(); }, latestMs + kRoundTripMs))
        m_link.findings.broken("the link is up again within 2 s and a round trip", "it is down");
}

/// Until the next connection check at least, so that the box knows, too.
void SimulatedRun::stayUp(qint64 endMs)
{
    const quint64 lost = m_link.counts.linkLosses;
    runUntil(std::max(endMs, m_nowMs + kNextCheckMs + kRoundTripMs));
    if (m_link.counts.linkLosses != lost || !isConnected())
        m_link.findings.broken("without faults the link stays up", "it was lost");
    if (m_link.receiving().waitingBytes() != 0)
        m_link.findings.broken("clean frames end whatever came before them",
                               QStringLiteral("%1 bytes wait").arg(m_link.receiving().waitingBytes()));
    if (!m_kinds.damages() && CarChanges::canBeSent(m_box.bench().state().car))
        compareStates();
}

void SimulatedRun::startBoxAnew()
{
    if (!m_link.findings.isEmpty())
        return;
    m_link.receiving().checkWellFormed();
    m_link.receiving().expectWellFormed(true);
    if (!CarChanges::canBeSent(m_box.bench().state().car))
        m_box.set(m_car.all(m_box.bench().state(), m_chance), m_nowMs);
    m_box.perform(instruction(Kind::Restart), m_nowMs);
    const auto isDone = [this] { return m_box.bench().isLinkUp() && m_box.isQuiet(); };
    if (!runUntil(isDone, m_nowMs + 5000))
        m_link.findings.broken("a box that starts anew brings its state", "it has not come through");
    runUntil(m_nowMs + kAnnouncementDelayMs + kTickMs);
    compareStates();
    if (m_link.receiving().checkWellFormed() == 0)
        m_link.findings.broken("a box that starts anew is heard", "no frame came");
}

void SimulatedRun::compareStates()
{
    const boxsim::CarState &car = m_box.bench().state().car;
    const QVector<QPair<const char *, bool>> parts {
        {"climate", m_mirror.climate == car.climate},           {"gauges", m_mirror.gauges == car.gauges},
        {"vehicle", m_mirror.vehicle == car.vehicle},           {"parking", m_mirror.parking == car.parking},
        {"text screen", m_mirror.textScreen == car.textScreen}, {"screens", m_mirror.screens == car.screens},
    };
    for (const auto &part : parts) {
        if (!part.second)
            m_link.findings.broken("the user interface shows the box's state", QLatin1String(part.first));
    }
}
