#include "setup.h"

#include "boxsim/bench/replay.h"
#include "boxsim/scenario/builtindrive.h"
#include "boxsim/scenario/scenario.h"
#include "boxsim/scenario/scenarioplayer.h"

#include <QtCore/QRandomGenerator>

#include <utility>

namespace boxsim {

namespace {

bool setUpReplay(const Options &options, Setup *setup, QString *error)
{
    canbus::recording::Recording recording;
    if (!canbus::recording::read(options.replay, &recording, error))
        return false;
    QString reason;
    std::unique_ptr<Replay> replay = Replay::make(recording, options.loop, &reason);
    if (!replay) {
        *error = options.replay + QStringLiteral(": ") + reason;
        return false;
    }
    setup->bench.box.reportsState = false;
    setup->bench.box.saysReady = !replay->hasHandshake();
    setup->script = std::move(replay);
    return true;
}

bool setUpScenario(const Options &options, Setup *setup, QString *error)
{
    Scenario scenario;
    if (options.scenario.isEmpty())
        scenario = builtinDrive();
    else if (!loadScenario(options.scenario, &scenario, error))
        return false;
    if (scenario.hasSeed && !options.seed) {
        setup->bench.box.seed = scenario.seed;
        setup->bench.tellsSeed = false;
    }
    setup->script = std::make_unique<ScenarioPlayer>(std::move(scenario));
    return true;
}

int countSteps(const std::vector<Step> &steps)
{
    int count = int(steps.size());
    for (const Step &step : steps) {
        count += countSteps(step.steps) + countSteps(step.otherwise);
        for (const Option &option : step.options)
            count += countSteps(option.steps);
    }
    return count;
}

} // namespace

bool setUp(const Options &options, Setup *setup, QString *error)
{
    BenchOptions &bench = setup->bench;
    bench.box.seed = options.seed ? *options.seed : QRandomGenerator::system()->generate();
    bench.tellsSeed = !options.seed;
    bench.speed = options.speed;
    bench.faults = options.faults;
    bench.silentAfterMs = options.silentAfterMs;
    bench.restartAfterMs = options.restartAfterMs;
    bench.hangUpAfterMs = options.hangUpAfterMs;
    bench.hangUpForMs = options.hangUpForMs;
    return options.replay.isEmpty() ? setUpScenario(options, setup, error)
                                    : setUpReplay(options, setup, error);
}

bool checkScenario(const Options &options, QString *report, QString *error)
{
    Scenario scenario;
    if (!loadScenario(options.scenario, &scenario, error))
        return false;
    const int count = countSteps(scenario.steps);
    const QString steps = count == 1 ? QStringLiteral("1 step") : QStringLiteral("%1 steps").arg(count);
    *report = QStringLiteral("%1: %2, correct").arg(options.scenario, steps);
    return true;
}

} // namespace boxsim
