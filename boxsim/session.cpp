#include "session.h"

namespace boxsim {

Session::Session(Line *line, const Faults &faults, qint64 silentAfterMs, bool split, QObject *parent)
    : QObject(parent)
    , m_line(line)
    , m_box({}, {{}, {}, {}, faults})
    , m_silentAfterMs(silentAfterMs)
    , m_split(split)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        fallSilentWhenDue();
        perform(m_box.advance(m_clock.elapsed()));
    });
    connect(line, &Line::received, this,
            [this](const QByteArray &bytes) { perform(m_box.receive(bytes, m_clock.elapsed())); });
    wakeWhenDue();
}

void Session::fallSilentWhenDue()
{
    if (m_silentAfterMs == kNever || m_clock.elapsed() < m_silentAfterMs)
        return;
    BenchState state = m_box.state();
    state.faults.silence = true;
    m_box.setState(state);
}

void Session::perform(const Output &output)
{
    for (const QByteArray &block : output.writes)
        write(block);
    for (const Event &event : output.events)
        Q_EMIT happened(event);
    wakeWhenDue();
}

void Session::write(const QByteArray &block)
{
    if (!m_split)
        return m_line->write(block);
    for (const char byte : block)
        m_line->write(QByteArray(1, byte));
}

void Session::wakeWhenDue()
{
    const qint64 silent = m_box.isSilent() ? kNever : m_silentAfterMs;
    const qint64 box = m_box.dueMs();
    const qint64 due = silent == kNever || box == kNever ? qMax(silent, box) : qMin(silent, box);
    if (due == kNever)
        m_timer.stop();
    else
        m_timer.start(int(qMax<qint64>(due - m_clock.elapsed(), 0)));
}

} // namespace boxsim
