#pragma once

#include "boxsim/bench/instruction.h"
#include "boxsim/link/box.h"

#include <QtCore/QVector>

namespace boxsim {

/// What leads the bench through a run: a scenario or a recording. Pure: times come in, milliseconds since the
/// bench began, never backwards, already divided by the run's speed.
class Script {
public:
    virtual ~Script() = default;

    /// Tells what the box has reported. What it leads to comes with the next advance().
    virtual void observe(const Event &event, qint64 nowMs) = 0;

    /// @return what is due at `nowMs`, in order
    virtual QVector<Instruction> advance(qint64 nowMs) = 0;

    /// When advance() will have something to do, or kNever.
    virtual qint64 dueMs() const = 0;

    /// Whether what it has sent so far ends within a frame that it has still to complete. What the box itself
    /// has to write waits for that.
    virtual bool isInsideFrame() const { return false; }
};

} // namespace boxsim
