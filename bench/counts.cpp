// Runs every case under callgrind, which counts its instructions: valgrind --tool=callgrind
// --collect-atstart=no --callgrind-out-file=FILE bench-counts. For each case callgrind writes a file whose
// "desc: Trigger" names it; the program prints a line for each: how often it ran, in how many parts, and its
// name. Without valgrind it runs everything and counts nothing. With an argument it runs only the cases that
// have it in their names, to be looked into with callgrind_annotate.

#include "cases/benchcase.h"
#include "cases/headunitrig.h"
#include "cases/idleticks.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <valgrind/callgrind.h>

namespace {

constexpr int kWarmUp = 20;
constexpr int kRepetitions = 100;
constexpr int kTicks = 1000;

void toggle()
{
    CALLGRIND_TOGGLE_COLLECT;
}

void report(const std::string &name, int repetitions, int parts)
{
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    std::printf("%d %d %s\n", repetitions, parts, name.c_str());
}

void countTicks(const char *name, bench::Loop loop)
{
    bench::runIdleTicks(loop, kTicks, toggle, toggle);
    report(name, kTicks, 1);
}

/// From the first use of the player to the open port.
void countStart()
{
    toggle();
    bench::HeadUnitRig::instance();
    toggle();
    report("start", 1, 1);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const std::string only = argc > 1 ? argv[1] : "";
    if (only.empty()) {
        countStart();
        countTicks("idle tick", bench::Loop::Library);
        countTicks("idle tick/bare", bench::Loop::Bare);
    }
    for (const bench::Case &one : bench::allCases()) {
        if (one.name.find(only) == std::string::npos)
            continue;
        bench::run(
            one, kWarmUp, [] {}, [] {});
        bench::run(one, kRepetitions, toggle, toggle);
        report(one.name, kRepetitions, one.parts);
        QCoreApplication::processEvents();
    }
    return EXIT_SUCCESS;
}
