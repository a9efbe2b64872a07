#include "scenarioplayer.h"

#include "boxsim/bench/report.h"

#include <algorithm>
#include <utility>

namespace boxsim {

namespace {

using Kind = Instruction::Kind;

bool isDue(qint64 dueMs, qint64 nowMs)
{
    return dueMs != kNever && dueMs <= nowMs;
}

int lastPointMs(const Step &ramp)
{
    int last = 0;
    for (const Curve &curve : ramp.curves)
        last = qMax(last, curve.points.last().x());
    return last;
}

bool carries(const DecodedCommand &command, const Argument &wanted)
{
    return std::any_of(command.arguments.begin(), command.arguments.end(), [&wanted](const Argument &one) {
        return one.name == wanted.name && one.value == wanted.value;
    });
}

bool isMet(const Condition &condition, const Event &event)
{
    if (condition.kind == Condition::Kind::Event)
        return condition.name == eventName(event.kind);
    if (condition.kind != Condition::Kind::Command || event.kind != Event::Kind::Command || event.repeated
        || event.command.name != condition.name)
        return false;
    return std::all_of(condition.arguments.begin(), condition.arguments.end(),
                       [&event](const Argument &wanted) { return carries(event.command, wanted); });
}

bool holds(const Condition &condition, bool linkUp)
{
    return condition.kind == (linkUp ? Condition::Kind::LinkUp : Condition::Kind::LinkDown);
}

} // namespace

ScenarioPlayer::ScenarioPlayer(Scenario scenario)
    : m_scenario(std::make_shared<const Scenario>(std::move(scenario)))
{
    if (!m_scenario->start.isEmpty()) {
        Instruction start;
        start.kind = Kind::Set;
        start.assignments = m_scenario->start;
        give(start, 0);
    }
    beginList(m_scenario->steps, m_scenario->loop ? Step::kForEver : 1, 0);
}

void ScenarioPlayer::observe(const Event &event, qint64 nowMs)
{
    runUntil(nowMs);
    if (event.kind == Event::Kind::LinkUp || event.kind == Event::Kind::LinkDown)
        m_linkUp = event.kind == Event::Kind::LinkUp;
    if (m_waiting == nullptr)
        return;
    for (const Option &option : m_waiting->options) {
        if (isMet(option.condition, event) || holds(option.condition, m_linkUp))
            return endWait(option.steps, nowMs);
    }
}

QVector<Instruction> ScenarioPlayer::advance(qint64 nowMs)
{
    runUntil(nowMs);
    m_givenMs = kNever;
    return std::exchange(m_given, {});
}

qint64 ScenarioPlayer::dueMs() const
{
    const qint64 given = m_given.isEmpty() ? kNever : m_givenMs;
    return earliest({given, rampsDueMs(), listsDueMs()});
}

void ScenarioPlayer::runUntil(qint64 nowMs)
{
    for (;;) {
        const qint64 ramps = rampsDueMs();
        const qint64 lists = listsDueMs();
        const qint64 next = earliest({ramps, lists});
        if (!isDue(next, nowMs))
            return;
        if (ramps == next)
            moveRamps(next);
        else
            proceed(next);
    }
}

/// When the innermost list goes on.
qint64 ScenarioPlayer::listsDueMs() const
{
    if (m_lists.empty())
        return kNever;
    if (m_waiting != nullptr)
        return m_deadlineMs;
    const List &list = m_lists.back();
    if (list.next == list.steps->size())
        return list.latestEndMs;
    const Step &step = list.steps->at(list.next);
    if (step.atMs == kNever)
        return list.stepEndMs + step.afterMs;
    return qMax(list.beganMs + step.atMs, list.reachedMs);
}

qint64 ScenarioPlayer::rampsDueMs() const
{
    qint64 due = kNever;
    for (const Running &ramp : m_ramps)
        due = earliest({due, ramp.nextMs});
    return due;
}

void ScenarioPlayer::proceed(qint64 timeMs)
{
    if (m_waiting != nullptr)
        return endWait(m_waiting->otherwise, timeMs);
    List &list = m_lists.back();
    if (list.next == list.steps->size())
        return endList(timeMs);
    list.reachedMs = timeMs;
    begin(list.steps->at(list.next++), timeMs);
}

void ScenarioPlayer::begin(const Step &step, qint64 timeMs)
{
    switch (step.kind) {
    case Step::Kind::Pause:
        return endStep(timeMs);
    case Step::Kind::Do:
        endStep(timeMs);
        return give(step.instruction, timeMs);
    case Step::Kind::Ramp:
        endStep(timeMs + lastPointMs(step));
        return beginRamp(step, timeMs);
    case Step::Kind::Wait:
        return beginWait(step, timeMs);
    case Step::Kind::Repeat:
        return beginList(step.steps, step.times, timeMs);
    }
}

void ScenarioPlayer::beginList(const std::vector<Step> &steps, int times, qint64 timeMs)
{
    m_lists.push_back({&steps, times, timeMs, timeMs, timeMs, timeMs});
}

void ScenarioPlayer::endList(qint64 timeMs)
{
    const List list = m_lists.back();
    m_lists.pop_back();
    if (list.times != 1)
        return beginList(*list.steps, list.times == Step::kForEver ? list.times : list.times - 1, timeMs);
    if (m_lists.empty())
        return;
    m_lists.back().reachedMs = timeMs;
    endStep(timeMs);
}

void ScenarioPlayer::endStep(qint64 timeMs)
{
    List &list = m_lists.back();
    list.stepEndMs = timeMs;
    list.latestEndMs = qMax(list.latestEndMs, timeMs);
}

void ScenarioPlayer::beginRamp(const Step &step, qint64 timeMs)
{
    m_ramps.push_back(
        {&step, timeMs, timeMs, std::vector<std::optional<int>>(std::size_t(step.curves.size()))});
    moveRamp(m_ramps.back(), timeMs);
    if (m_ramps.back().nextMs == kNever)
        m_ramps.pop_back();
}

void ScenarioPlayer::moveRamps(qint64 timeMs)
{
    for (Running &ramp : m_ramps) {
        if (ramp.nextMs == timeMs)
            moveRamp(ramp, timeMs);
    }
    const auto isOver = [](const Running &ramp) { return ramp.nextMs == kNever; };
    m_ramps.erase(std::remove_if(m_ramps.begin(), m_ramps.end(), isOver), m_ramps.end());
}

void ScenarioPlayer::moveRamp(Running &ramp, qint64 timeMs)
{
    const int ms = int(timeMs - ramp.beganMs);
    Instruction moved;
    moved.kind = Kind::Set;
    for (int i = 0; i < ramp.step->curves.size(); ++i) {
        const Curve &curve = ramp.step->curves.at(i);
        if (ms < curve.points.first().x())
            continue;
        const int value = valueAt(curve, ms);
        if (std::exchange(ramp.shown[std::size_t(i)], value) == value)
            continue;
        moved.assignments.append(curve.assignment);
        moved.assignments.last().value = value;
    }
    if (!moved.assignments.isEmpty())
        give(moved, timeMs);
    const int last = lastPointMs(*ramp.step);
    ramp.nextMs = ms < last ? ramp.beganMs + qMin(ms + ramp.step->everyMs, last) : kNever;
}

void ScenarioPlayer::beginWait(const Step &step, qint64 timeMs)
{
    m_waiting = &step;
    m_deadlineMs = step.timeoutMs == kNever ? kNever : timeMs + step.timeoutMs;
    for (const Option &option : step.options) {
        if (holds(option.condition, m_linkUp))
            return endWait(option.steps, timeMs);
    }
}

void ScenarioPlayer::endWait(const std::vector<Step> &steps, qint64 timeMs)
{
    m_waiting = nullptr;
    beginList(steps, 1, timeMs);
}

void ScenarioPlayer::give(const Instruction &instruction, qint64 timeMs)
{
    const bool joins = timeMs == m_givenMs && !m_given.isEmpty() && instruction.kind == Kind::Set
        && m_given.last().kind == Kind::Set;
    m_givenMs = timeMs;
    if (joins)
        m_given.last().assignments += instruction.assignments;
    else
        m_given.append(instruction);
    if (instruction.kind == Kind::End || instruction.kind == Kind::Fail) {
        m_lists.clear();
        m_ramps.clear();
    }
}

} // namespace boxsim
