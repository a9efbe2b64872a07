#include "seedruns.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>

#include <algorithm>
#include <cstdio>

// Runs the whole link for as many seeds as are wanted: see run.sh.

namespace {

constexpr int kMostFailures = 10;
constexpr qint64 kProgressMs = 5000;

struct Wanted {
    quint32 first = 1;
    quint32 count = 1;
    int jobs = 1;
    int hours = 0;
};

Wanted wanted(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.addOptions({{"from", "The first seed.", "seed", "1"},
                       {"jobs", "So many at a time.", "count", "2"},
                       {"hours", "One seed for so many hours, with a look at the memory.", "count", "0"}});
    parser.addPositionalArgument("seeds", "How many seeds.");
    parser.addHelpOption();
    parser.process(application);
    return {parser.value("from").toUInt(), parser.positionalArguments().value(0, "10000").toUInt(),
            std::max(1, parser.value("jobs").toInt()), parser.value("hours").toInt()};
}

int verdict(bool isGood, const QString &text)
{
    std::printf("%s: %s\n", isGood ? "simulated link: good" : "simulated link: FAILED", qPrintable(text));
    return isGood ? 0 : 1;
}

void print(const WireCounts &counts)
{
    for (const NamedCount &each : addableCounts())
        std::printf("  %12llu %s\n", static_cast<unsigned long long>(counts.*each.count), each.name);
}

void printFailure(const RunResult &result)
{
    std::printf("seed %u: %s\n  again, with a trace: CANBUS_SIM_SEED=%u tests/link/run.sh\n", result.seed,
                qPrintable(result.failure), result.seed);
    std::fflush(stdout);
}

int runOne(SeedRuns &runs, quint32 seed)
{
    const QString path = QStringLiteral("simulated-link-%1.trace").arg(seed);
    const RunResult result = runs.runOne(seed, path);
    std::printf("trace: %s\n", qPrintable(path));
    const QString digest =
        QStringLiteral("seed %1, digest %2").arg(seed).arg(result.digest, 16, 16, QChar('0'));
    return verdict(result.failure.isEmpty(),
                   result.failure.isEmpty() ? digest : result.failure + QStringLiteral(" (%1)").arg(digest));
}

int runHours(SeedRuns &runs, quint32 seed, int hours)
{
    const RunResult result = runs.runHours(seed, hours);
    for (int hour = 0; hour < result.samples.size(); ++hour) {
        const MemorySample &sample = result.samples.at(hour);
        std::printf("hour %2d: %llu KiB resident, %llu bytes in use, %llu for the receive buffer\n", hour + 1,
                    static_cast<unsigned long long>(sample.residentKiB),
                    static_cast<unsigned long long>(sample.inUseBytes),
                    static_cast<unsigned long long>(sample.bufferedBytes));
    }
    print(result.counts);
    const QString growth = growthOf(result.samples);
    const bool isGood = result.failure.isEmpty() && growth.isEmpty();
    return verdict(isGood,
                   isGood ? QStringLiteral("%1 hours with flat memory").arg(hours) : result.failure + growth);
}

int runAll(SeedRuns &runs, const Wanted &all)
{
    QElapsedTimer clock;
    clock.start();
    quint32 done = 0;
    int failures = 0;
    qint64 told = 0;
    WireCounts sum;
    runs.run(all.first, all.count, all.jobs, [&](const RunResult &result) {
        ++done;
        for (const NamedCount &each : addableCounts())
            sum.*each.count += result.counts.*each.count;
        if (!result.failure.isEmpty()) {
            ++failures;
            printFailure(result);
        }
        if (clock.elapsed() - told > kProgressMs) {
            told = clock.elapsed();
            std::printf("%u of %u seeds, %lld s\n", done, all.count, static_cast<long long>(told / 1000));
            std::fflush(stdout);
        }
        return failures < kMostFailures;
    });
    print(sum);
    return verdict(failures == 0,
                   failures == 0 ? QStringLiteral("every rule held for %1 seeds").arg(done)
                                 : QStringLiteral("%1 of %2 seeds broke a rule").arg(failures).arg(done));
}

} // namespace

int main(int argc, char *argv[])
{
    VirtualTime::install();
    QCoreApplication application(argc, argv);
    const Wanted all = wanted(application);
    ParkedHeadUnit headUnit;
    SeedRuns runs(headUnit);
    if (qEnvironmentVariableIsSet("CANBUS_SIM_SEED"))
        return runOne(runs, quint32(qEnvironmentVariable("CANBUS_SIM_SEED").toUInt()));
    return all.hours > 0 ? runHours(runs, all.first, all.hours) : runAll(runs, all);
}
