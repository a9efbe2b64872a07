#include "session.h"

#include <limits>
#include <utility>

namespace boxsim {

Session::Session(Line *line, const BenchOptions &options, std::unique_ptr<Script> script, QObject *parent)
    : QObject(parent)
    , m_line(line)
    , m_bench(options, std::move(script))
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { perform(m_bench.advance(m_clock.elapsed())); });
    connect(line, &Line::received, this,
            [this](const QByteArray &bytes) { perform(m_bench.receive(bytes, m_clock.elapsed())); });
    m_timer.start(0);
}

void Session::carryOut(const Instruction &instruction)
{
    perform(m_bench.carryOut(instruction, m_clock.elapsed()));
}

void Session::perform(const BenchOutput &output)
{
    for (const LineStep &step : output.line)
        apply(step);
    for (const Event &event : output.events)
        Q_EMIT happened(event);
    wakeWhenDue();
    if (m_bench.ending() == Ending::None || std::exchange(m_hasEnded, true))
        return;
    Q_EMIT ended(m_bench.ending(), m_bench.failure());
}

void Session::apply(const LineStep &step)
{
    switch (step.kind) {
    case LineStep::Kind::Write:
        return m_line->write(step.bytes);
    case LineStep::Kind::HangUp:
        return m_line->hangUp();
    case LineStep::Kind::Return:
        return m_line->comeBack();
    }
}

void Session::wakeWhenDue()
{
    const qint64 due = m_bench.dueMs();
    if (due == kNever)
        return m_timer.stop();
    constexpr qint64 kLongest = std::numeric_limits<int>::max();
    m_timer.start(int(qBound<qint64>(0, due - m_clock.elapsed(), kLongest)));
}

} // namespace boxsim
