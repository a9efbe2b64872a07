#pragma once

#include "memorysample.h"
#include "parkedheadunit.h"
#include "wirecounts.h"

#include <QtCore/QString>

#include <functional>

/// What a run in a process of its own has come to.
struct RunResult {
    quint32 seed = 0;
    QString failure;    ///< the rule that was broken, or how the process has died; nothing if all is well
    quint64 digest = 0; ///< of everything that has happened
    WireCounts counts;  ///< addableCounts()
    QList<MemorySample> samples; ///< one for each hour of a long run
};

/// Runs seeds, each in a child process that continues from the parked head unit.
class SeedRuns {
public:
    explicit SeedRuns(ParkedHeadUnit &headUnit)
        : m_headUnit(headUnit)
    {
    }

    /// A minute.
    /// @param tracePath  where everything that happens is written, or nothing
    RunResult runOne(quint32 seed, const QString &tracePath = {});

    /// Hours, with a look at the memory in each.
    RunResult runHours(quint32 seed, int hours);

    /// Minutes, so many at a time, until all have run or `take` says that it is enough.
    /// @param take  gets each result, not in the order of the seeds
    void run(quint32 first, quint32 count, int jobs, const std::function<bool(const RunResult &)> &take);

private:
    struct Child {
        pid_t process;
        quint32 seed;
        int results; ///< descriptor to read them from
    };
    struct Order {
        quint32 seed;
        QString tracePath;
        int hours; ///< 0: a minute
    };

    Child start(const Order &order);
    [[noreturn]] void runInChild(const Order &order, int results);
    static RunResult finish(const Child &child, const QByteArray &results, int status);
    RunResult runAlone(const Order &order);

    ParkedHeadUnit &m_headUnit;
};
