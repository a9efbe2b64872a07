#include "boxsim/scenario/scenario.h"

#include "target.h"

/// The reader of scenarios. A mistake is told in one line and leaves the scenario as it was; what was
/// accepted keeps the promises that its player relies on.
///
/// The input: the file.

using namespace boxsim;

namespace {

void checkSteps(const std::vector<Step> &steps);

void checkCurve(const Curve &curve)
{
    fuzz::check(curve.points.size() >= 2, "a curve has two points at least");
    for (int i = 1; i < curve.points.size(); ++i)
        fuzz::check(curve.points.at(i).x() > curve.points.at(i - 1).x(), "with rising times");
    for (const QPoint &point : curve.points)
        fuzz::check(valueAt(curve, point.x()) == point.y(), "and goes through each of them");
    fuzz::check(valueAt(curve, curve.points.last().x() + 1) == curve.points.last().y(),
                "and stays at the last");
}

void checkStep(const Step &step)
{
    fuzz::check(step.afterMs >= 0 && step.times >= 0, "no time and no number is negative");
    fuzz::check(step.kind != Step::Kind::Ramp || (step.everyMs > 0 && !step.curves.isEmpty()),
                "a ramp moves something, by steps");
    fuzz::check(step.kind != Step::Kind::Wait || !step.options.empty(), "a wait has something to wait for");
    for (const Curve &curve : step.curves)
        checkCurve(curve);
    for (const Option &option : step.options)
        checkSteps(option.steps);
    checkSteps(step.otherwise);
    checkSteps(step.steps);
}

void checkSteps(const std::vector<Step> &steps)
{
    for (const Step &step : steps)
        checkStep(step);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString name = QStringLiteral("drive.json");
    const QString kept = QStringLiteral("as it was");
    Scenario scenario;
    scenario.about = kept;
    QString error;
    if (readScenario(fuzz::bytesOf(data, size), name, &scenario, &error)) {
        fuzz::check(error.isEmpty(), "what is accepted has no mistake");
        checkSteps(scenario.steps);
    } else {
        fuzz::check(error.startsWith(name + QLatin1Char(':')), "a mistake is told with its file");
        fuzz::check(!error.contains(QLatin1Char('\n')), "in one line");
        fuzz::check(scenario.about == kept && scenario.steps.empty(), "the scenario is untouched");
    }
    return 0;
}
