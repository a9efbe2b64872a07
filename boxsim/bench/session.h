#pragma once

#include "boxsim/bench/bench.h"
#include "boxsim/line/line.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <memory>

namespace boxsim {

/// A bench on a line, in real time. Lives on the thread of its event loop; does not own the line.
class Session : public QObject {
    Q_OBJECT

public:
    /// The bench's time begins with the event loop.
    /// @param line  the box's end, which lives longer than the session
    /// @param script  what leads the bench, or null
    Session(Line *line, const BenchOptions &options, std::unique_ptr<Script> script = {},
            QObject *parent = nullptr);

    const BenchState &state() const { return m_bench.state(); }

    /// Carries out an instruction from outside the script, at once.
    void carryOut(const Instruction &instruction);

Q_SIGNALS:
    /// Something happened on the bench.
    void happened(const boxsim::Event &event);

    /// The script has ended the run. Emitted once, after everything else.
    /// @param failure  why it ended with a failure
    void ended(boxsim::Ending ending, const QString &failure);

private:
    void perform(const BenchOutput &output);
    void apply(const LineStep &step);
    void wakeWhenDue();

    Line *m_line;
    Bench m_bench;
    bool m_hasEnded = false;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

} // namespace boxsim
