#include "scenariosteps.h"

#include "boxsim/bench/report.h"
#include "boxsim/scenario/scenarioconditions.h"
#include "boxsim/scenario/scenariodeeds.h"

#include <algorithm>

namespace boxsim {

namespace {

const QString kAt = QStringLiteral("at");
const QString kAfter = QStringLiteral("after");
const QString kSteps = QStringLiteral("steps");
const QString kElse = QStringLiteral("else");
const QString kTimeout = QStringLiteral("timeout");
const QString kTimes = QStringLiteral("times");

/// More often than this nothing is done at one moment.
constexpr int kMostTimesAtOnce = 1000;

/// Reads how long a wait lasts, and what goes on then.
void readTimeout(const JsonPlace &wait, const JsonPlace &elseHolder, Step *step)
{
    if (wait.has(kTimeout))
        step->timeoutMs = wait[kTimeout].wholeNumber(1, kLongestMs);
    if (!elseHolder.has(kElse))
        return;
    step->otherwise = readSteps(elseHolder[kElse]);
    if (!wait.has(kTimeout))
        elseHolder[kElse].refuse(QStringLiteral("goes with a timeout alone"));
}

Step readWait(const JsonPlace &value)
{
    Step step;
    step.kind = Step::Kind::Wait;
    if (!value.isObjectOf(conditionMembers() + QStringList {kTimeout}))
        return step;
    step.options.push_back({readCondition(value), {}});
    return step;
}

Option readOption(const JsonPlace &value)
{
    Option option;
    if (!value.isObjectOf(conditionMembers() + QStringList {kSteps}))
        return option;
    option.condition = readCondition(value);
    if (value.has(kSteps))
        option.steps = readSteps(value[kSteps]);
    else
        value.refuse(QStringLiteral("has no steps"));
    return option;
}

Step readBranch(const JsonPlace &value)
{
    const QString on = QStringLiteral("on");
    Step step;
    step.kind = Step::Kind::Wait;
    if (!value.isObjectOf({on, kTimeout, kElse}))
        return step;
    if (value.has(on)) {
        for (const JsonPlace &item : value[on].items())
            step.options.push_back(readOption(item));
    }
    if (step.options.empty())
        value.refuse(QStringLiteral("takes \"on\" with a list of at least one condition"));
    readTimeout(value, value, &step);
    return step;
}

Step readRepeat(const JsonPlace &value)
{
    Step step;
    step.kind = Step::Kind::Repeat;
    step.times = Step::kForEver;
    if (!value.isObjectOf({kTimes, kSteps}))
        return step;
    if (value.has(kTimes))
        step.times = int(value[kTimes].wholeNumber(1, kMostTimes));
    if (!value.has(kSteps)) {
        value.refuse(QStringLiteral("has no steps"));
        return step;
    }
    step.steps = readSteps(value[kSteps]);
    const bool isOften = step.times == Step::kForEver || step.times > kMostTimesAtOnce;
    if (isOften && !takesTime(step.steps))
        value.refuse(
            QStringLiteral("takes steps in which time passes, or at most %1 times").arg(kMostTimesAtOnce));
    return step;
}

/// What a step can do, by the member that says so.
struct Deed {
    const char *member;
    Step (*read)(const JsonPlace &value);
};

constexpr Deed kDeeds[] = {
    {"set", readSet},         {"ramp", readRamp},     {"send", readSend}, {"bytes", readBytes},
    {"restart", readRestart}, {"hangUp", readHangUp}, {"note", readNote}, {"wait", readWait},
    {"branch", readBranch},   {"repeat", readRepeat}, {"end", readEnd},   {"fail", readFail},
};

QStringList deedNames()
{
    QStringList names;
    for (const Deed &deed : kDeeds)
        names.append(QString::fromLatin1(deed.member));
    return names;
}

/// Reads the members that go with one deed: the name of the member and that of the deed.
void readEvery(const JsonPlace &object, const QString &deed, Step *step)
{
    const QString every = QStringLiteral("every");
    if (object.has(every))
        step->everyMs = int(object[every].wholeNumber(1, kLongestMs));
    if (object.has(every) && deed != QLatin1String("ramp"))
        object[every].refuse(QStringLiteral("goes with a ramp alone"));
    if (!object.has(every) && deed == QLatin1String("ramp"))
        object.refuse(QStringLiteral("has a ramp without \"every\", the milliseconds between two values"));
}

void readThenAndElse(const JsonPlace &object, const QString &deed, Step *step)
{
    const QString then = QStringLiteral("then");
    if (deed != QLatin1String("wait")) {
        const QStringList names = object.present({then, kElse});
        for (const QString &name : names)
            object[name].refuse(QStringLiteral("goes with a wait alone"));
        return;
    }
    const JsonPlace wait = object[deed];
    if (object.has(then) && !step->options.empty())
        step->options.front().steps = readSteps(object[then]);
    readTimeout(wait, object, step);
}

Step readDeed(const JsonPlace &object)
{
    const QStringList deeds = object.present(deedNames());
    Step step;
    if (deeds.size() > 1)
        object.refuse(QStringLiteral("does one thing, not %1").arg(deeds.join(QStringLiteral(" and "))));
    for (const Deed &deed : kDeeds) {
        if (deeds.value(0) == QLatin1String(deed.member))
            step = deed.read(object[deeds.first()]);
    }
    readEvery(object, deeds.value(0), &step);
    readThenAndElse(object, deeds.value(0), &step);
    return step;
}

void readTimes(const JsonPlace &object, Step *step)
{
    if (object.has(kAt))
        step->atMs = object[kAt].wholeNumber(0, kLongestMs);
    if (object.has(kAfter))
        step->afterMs = object[kAfter].wholeNumber(0, kLongestMs);
    if (object.has(kAt) && object.has(kAfter))
        object[kAfter].refuse(QStringLiteral("does not go with \"at\""));
    if (step->kind == Step::Kind::Pause && !object.has(kAt) && !object.has(kAfter))
        object.refuse(QStringLiteral("does nothing: it takes a time or one of %1")
                          .arg(deedNames().join(QStringLiteral(", "))));
}

Step readStep(const JsonPlace &object)
{
    const QString about = QStringLiteral("about");
    const QStringList others {about, kAt, kAfter, QStringLiteral("every"), QStringLiteral("then"), kElse};
    if (!object.isObjectOf(others + deedNames()))
        return {};
    Step step = readDeed(object);
    if (object.has(about))
        object[about].oneLine();
    readTimes(object, &step);
    return step;
}

qint64 lengthOf(const Step &step)
{
    qint64 length = 0;
    for (const Curve &curve : step.curves)
        length = qMax(length, qint64(curve.points.isEmpty() ? 0 : curve.points.last().x()));
    return length;
}

/// Refuses a time that is over before the step's turn comes.
class OrderCheck {
public:
    void check(const JsonPlace &object, const Step &step)
    {
        if (step.atMs != kNever && step.atMs < m_begunMs)
            object[kAt].refuse(
                QStringLiteral("takes at least %1, when the step before begins").arg(m_begunMs));
        m_begunMs = step.atMs != kNever ? qMax(step.atMs, m_begunMs) : m_endedMs + step.afterMs;
        m_endedMs = m_begunMs + lengthOf(step);
    }

private:
    qint64 m_begunMs = 0;
    qint64 m_endedMs = 0;
};

/// Whether something outside the scenario is needed for the condition, so that it is not met again at once.
bool waitsForOthers(const Condition &condition)
{
    static const QStringList events {eventName(Event::Kind::Command), eventName(Event::Kind::Ack),
                                     eventName(Event::Kind::Nack),    eventName(Event::Kind::BadFrame),
                                     eventName(Event::Kind::Resend),  eventName(Event::Kind::GiveUp),
                                     eventName(Event::Kind::LinkUp),  eventName(Event::Kind::LineBack)};
    return condition.kind == Condition::Kind::Command
        || (condition.kind == Condition::Kind::Event && events.contains(condition.name));
}

bool takesTimeBy(const Option &option)
{
    return waitsForOthers(option.condition) || takesTime(option.steps);
}

bool takesTime(const Step &step)
{
    if (step.afterMs > 0 || step.atMs > 0 || lengthOf(step) > 0)
        return true;
    switch (step.kind) {
    case Step::Kind::Do:
        return step.instruction.kind == Instruction::Kind::End
            || step.instruction.kind == Instruction::Kind::Fail;
    case Step::Kind::Wait:
        return std::all_of(step.options.begin(), step.options.end(), takesTimeBy);
    case Step::Kind::Repeat:
        return takesTime(step.steps);
    default:
        return false;
    }
}

} // namespace

std::vector<Step> readSteps(const JsonPlace &list)
{
    std::vector<Step> steps;
    OrderCheck order;
    for (const JsonPlace &item : list.items()) {
        steps.push_back(readStep(item));
        if (item.value().kind == JsonValue::Kind::Object)
            order.check(item, steps.back());
    }
    return steps;
}

bool takesTime(const std::vector<Step> &steps)
{
    return std::any_of(steps.begin(), steps.end(), [](const Step &step) { return takesTime(step); });
}

} // namespace boxsim
