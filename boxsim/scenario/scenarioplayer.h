#pragma once

#include "boxsim/bench/script.h"
#include "boxsim/scenario/scenario.h"

#include <memory>
#include <optional>
#include <vector>

namespace boxsim {

/// Leads the bench through a scenario.
///
/// A step begins at the time that the scenario gives it, however late advance() is called: what became due in
/// between comes in order, and later times do not move. What begins at the same moment comes in the order of
/// the file, ramps that are under way first, and all that is set then in one instruction.
class ScenarioPlayer : public Script {
public:
    /// @param scenario  as readScenario() made it
    explicit ScenarioPlayer(Scenario scenario);

    void observe(const Event &event, qint64 nowMs) override;
    QVector<Instruction> advance(qint64 nowMs) override;
    qint64 dueMs() const override;

private:
    /// A list of steps under way.
    struct List {
        const std::vector<Step> *steps = nullptr;
        int times = 1; ///< how often it still runs, this time included; Step::kForEver
        qint64 beganMs = 0;
        qint64 reachedMs = 0;   ///< the steps before have begun, and those that hold up the list are over
        qint64 stepEndMs = 0;   ///< the end of the step before
        qint64 latestEndMs = 0; ///< the last end of all steps so far
        std::size_t next = 0;
    };

    /// A ramp under way.
    struct Running {
        const Step *step = nullptr;
        qint64 beganMs = 0;
        qint64 nextMs = 0;
        std::vector<std::optional<int>> shown; ///< the value of each curve that was set last
    };

    void runUntil(qint64 nowMs);
    qint64 listsDueMs() const;
    qint64 rampsDueMs() const;
    void proceed(qint64 timeMs);
    void begin(const Step &step, qint64 timeMs);
    void beginList(const std::vector<Step> &steps, int times, qint64 timeMs);
    void endList(qint64 timeMs);
    void endStep(qint64 timeMs);
    void beginRamp(const Step &step, qint64 timeMs);
    void moveRamps(qint64 timeMs);
    void moveRamp(Running &ramp, qint64 timeMs);
    void beginWait(const Step &step, qint64 timeMs);
    void endWait(const std::vector<Step> &steps, qint64 timeMs);
    void give(const Instruction &instruction, qint64 timeMs);

    std::shared_ptr<const Scenario> m_scenario;
    std::vector<List> m_lists; ///< the innermost last; empty when the scenario is over
    std::vector<Running> m_ramps;
    const Step *m_waiting = nullptr;
    qint64 m_deadlineMs = kNever;
    bool m_linkUp = false;
    QVector<Instruction> m_given;
    qint64 m_givenMs = kNever; ///< the time of the last one given
};

} // namespace boxsim
