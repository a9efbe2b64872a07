#include "boxside.h"

namespace {

boxsim::BenchOptions optionsFor(quint32 seed)
{
    boxsim::BenchOptions options;
    options.box.seed = seed;
    return options;
}

} // namespace

BoxSide::BoxSide(quint32 seed, Trace &trace)
    : m_trace(trace)
    , m_bench(optionsFor(seed))
    , m_faultsToBox(~seed)
{
}

void BoxSide::write(const QByteArray &block, qint64 nowMs)
{
    // Only data frames can get another check byte: the line sees to that.
    m_faultsToBox.writeFrame(block, nowMs);
}

QList<QByteArray> BoxSide::tick(qint64 nowMs)
{
    m_nowMs = nowMs;
    for (const QByteArray &block : m_faultsToBox.advance(nowMs))
        m_toBox.write(block);
    m_faultsToBox.takeFaults();
    QByteArray heard;
    for (const QByteArray &block : m_toBox.deliver())
        heard += block;
    const qint64 due = m_bench.dueMs();
    if (!heard.isEmpty() || (due != boxsim::kNever && due <= nowMs))
        take(m_bench.receive(heard, nowMs));
    return m_toHeadUnit.deliver();
}

void BoxSide::perform(const boxsim::Instruction &instruction, qint64 nowMs)
{
    m_nowMs = nowMs;
    m_trace.add(nowMs, "box", instruction.bytes, int(instruction.kind));
    take(m_bench.carryOut(instruction, nowMs));
}

void BoxSide::set(const QVector<boxsim::Assignment> &assignments, qint64 nowMs)
{
    boxsim::Instruction instruction;
    instruction.kind = boxsim::Instruction::Kind::Set;
    instruction.assignments = assignments;
    perform(instruction, nowMs);
}

void BoxSide::setFaults(const boxsim::Faults &toHeadUnit, const boxsim::Faults &toBox, qint64 nowMs)
{
    set(faultAssignments(toHeadUnit), nowMs);
    m_faultsToBox.setFaults(toBox, nowMs);
}

bool BoxSide::isQuiet() const
{
    return m_toHeadUnit.isIdle() && m_bench.dueMs() == boxsim::kNever;
}

void BoxSide::take(const boxsim::BenchOutput &output)
{
    for (const boxsim::LineStep &step : output.line) {
        if (step.kind == boxsim::LineStep::Kind::Write)
            m_toHeadUnit.write(step.bytes);
    }
    for (const boxsim::Event &event : output.events)
        m_trace.add(m_nowMs, "box event", event.bytes, int(event.kind));
}
