#include "bench.h"

#include "frameformat.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace boxsim {

namespace {

bool drawsAnything(const Faults &faults)
{
    const double shares[] = {faults.dropAnswers, faults.nackAnswers, faults.wrongIds,
                             faults.wrongChecks, faults.flipBytes,   faults.loseBytes,
                             faults.doubleBytes, faults.insertBytes, faults.noise};
    return std::any_of(std::begin(shares), std::end(shares), [](double share) { return share > 0; });
}

} // namespace

Bench::Bench(const BenchOptions &options, std::unique_ptr<Script> script)
    : m_options(options)
    , m_script(std::move(script))
    , m_box(options.box, {{}, {}, {}, options.faults})
    , m_line(options.box.seed)
{
    m_line.setFaults(options.faults, 0);
}

BenchOutput Bench::receive(const QByteArray &bytes, qint64 nowMs)
{
    if (m_ending != Ending::None)
        return {};
    m_nowMs = nowMs;
    tellSeed();
    doWhatIsDue();
    followScript();
    if (m_ending == Ending::None)
        take(m_box.receive(m_hungUp ? QByteArray() : bytes, nowMs));
    return settle();
}

BenchOutput Bench::advance(qint64 nowMs)
{
    return receive({}, nowMs);
}

qint64 Bench::dueMs() const
{
    if (m_ending != Ending::None)
        return kNever;
    return earliest({m_box.dueMs(), m_line.dueMs(), scriptDueMs(), m_options.silentAfterMs,
                     m_options.restartAfterMs, m_options.hangUpAfterMs, m_returnMs});
}

BenchOutput Bench::carryOut(const Instruction &instruction, qint64 nowMs)
{
    if (m_ending != Ending::None)
        return {};
    // Before it, what is due before it.
    BenchOutput output = advance(nowMs);
    if (m_ending == Ending::None)
        perform(instruction);
    const BenchOutput after = settle();
    return {output.line + after.line, output.events + after.events};
}

/// Does what has become due since the bench last looked.
BenchOutput Bench::settle()
{
    if (m_ending == Ending::None) {
        take(m_box.advance(m_nowMs));
        followScript();
    }
    releaseHeld();
    releaseLine();
    return std::exchange(m_output, {});
}

qint64 Bench::scriptMs(qint64 nowMs) const
{
    return qint64(std::floor(double(nowMs) * m_options.speed));
}

/// The first moment of the bench at which the script is due.
qint64 Bench::scriptDueMs() const
{
    const qint64 due = m_script ? m_script->dueMs() : kNever;
    if (due == kNever)
        return kNever;
    qint64 nowMs = qint64(std::ceil(double(due) / m_options.speed));
    while (scriptMs(nowMs) < due)
        ++nowMs;
    return nowMs;
}

/// Whether the time has come. It comes once.
bool Bench::comesDue(qint64 *whenMs) const
{
    if (*whenMs == kNever || m_nowMs < *whenMs)
        return false;
    *whenMs = kNever;
    return true;
}

void Bench::doWhatIsDue()
{
    if (comesDue(&m_options.silentAfterMs))
        fallSilent();
    if (comesDue(&m_options.restartAfterMs))
        take(m_box.restart(m_nowMs));
    if (comesDue(&m_returnMs))
        bringLineBack();
    if (comesDue(&m_options.hangUpAfterMs))
        hangUp(m_options.hangUpForMs);
}

void Bench::fallSilent()
{
    BenchState state = m_box.state();
    state.faults.silence = true;
    takeState(state);
}

void Bench::bringLineBack()
{
    m_hungUp = false;
    m_output.line.append({LineStep::Kind::Return, {}});
    tell(Event::Kind::LineBack);
}

void Bench::followScript()
{
    if (!m_script)
        return;
    const QVector<Instruction> instructions = m_script->advance(scriptMs(m_nowMs));
    for (const Instruction &instruction : instructions) {
        if (m_ending == Ending::None)
            perform(instruction);
    }
    releaseHeld();
    if (!instructions.isEmpty() && m_ending == Ending::None)
        take(m_box.advance(m_nowMs));
}

void Bench::perform(const Instruction &instruction)
{
    using Kind = Instruction::Kind;
    switch (instruction.kind) {
    case Kind::Set:
        return set(instruction.assignments);
    case Kind::SendFrame:
        return sendForScript(
            canbus::frame::build(instruction.id, instruction.tp, instruction.mod, instruction.bytes), true,
            instruction.id);
    case Kind::SendBytes:
        return sendForScript(instruction.bytes, false, kNoId);
    case Kind::Restart:
        return take(m_box.restart(m_nowMs));
    case Kind::HangUp:
        return hangUp(instruction.ms);
    case Kind::Note:
        return tell(Event::Kind::Note, instruction.text);
    case Kind::End:
        return end(Ending::Success);
    case Kind::Fail:
        return end(Ending::Failure, instruction.text);
    }
}

void Bench::set(const QVector<Assignment> &assignments)
{
    BenchState state = m_box.state();
    for (const Assignment &assignment : assignments)
        apply(state, assignment);
    takeState(state);
}

void Bench::takeState(const BenchState &state)
{
    m_box.setState(state);
    m_line.setFaults(state.faults, m_nowMs);
    tellSeed();
}

void Bench::take(const Output &output)
{
    for (const Event &event : output.events)
        tell(event);
    if (!m_hungUp)
        m_held += output.writes;
    releaseHeld();
}

void Bench::sendForScript(const QByteArray &bytes, bool isFrame, int id)
{
    if (m_box.state().faults.silence)
        return tell(Event::Kind::Fault, QStringLiteral("not sent, because the box is silent"), bytes, id);
    if (m_hungUp)
        return tell(Event::Kind::Fault, QStringLiteral("lost, because the line is gone"), bytes, id);
    tell(Event::Kind::Sent, {}, bytes, id);
    if (isFrame)
        m_line.writeFrame(bytes, m_nowMs);
    else
        m_line.writeBytes(bytes, m_nowMs);
    tellLineFaults();
}

void Bench::hangUp(int ms)
{
    m_returnMs = m_nowMs + ms;
    if (m_hungUp)
        return;
    releaseLine();
    m_line.clear();
    m_held.clear();
    m_hungUp = true;
    m_output.line.append({LineStep::Kind::HangUp, {}});
    tell(Event::Kind::HangUp);
}

void Bench::end(Ending ending, const QString &failure)
{
    m_ending = ending;
    m_failure = failure;
}

void Bench::releaseHeld()
{
    if (m_script && m_script->isInsideFrame())
        return;
    const QVector<QByteArray> held = std::exchange(m_held, {});
    for (const QByteArray &frame : held)
        m_line.writeFrame(frame, m_nowMs);
    tellLineFaults();
}

void Bench::releaseLine()
{
    const QVector<QByteArray> blocks = m_line.advance(m_nowMs);
    tellLineFaults();
    for (const QByteArray &block : blocks) {
        if (!m_hungUp)
            m_output.line.append({LineStep::Kind::Write, block});
    }
}

void Bench::tellLineFaults()
{
    const QVector<FaultyLine::Fault> faults = m_line.takeFaults();
    for (const FaultyLine::Fault &fault : faults) {
        if (!m_hungUp)
            tell(Event::Kind::Fault, fault.what, fault.bytes);
    }
}

void Bench::tellSeed()
{
    if (!m_options.tellsSeed || !drawsAnything(m_box.state().faults))
        return;
    m_options.tellsSeed = false;
    tell(Event::Kind::Seed, QString::number(m_options.box.seed));
}

void Bench::tell(Event::Kind kind, const QString &reason, const QByteArray &bytes, int id)
{
    Event event;
    event.kind = kind;
    event.timeMs = m_nowMs;
    event.id = id;
    event.reason = reason;
    event.bytes = bytes;
    tell(event);
}

void Bench::tell(const Event &event)
{
    m_output.events.append(event);
    if (m_script)
        m_script->observe(event, scriptMs(m_nowMs));
}

} // namespace boxsim
