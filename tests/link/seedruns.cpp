#include "seedruns.h"

#include "simulatedclock.h"
#include "simulatedrun.h"

#include <QtCore/QDataStream>
#include <QtCore/QHash>

#include <sys/wait.h>
#include <unistd.h>

namespace {

void writeAll(int descriptor, const QByteArray &bytes)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t size = ::write(descriptor, bytes.constData() + done, size_t(bytes.size() - done));
        if (size <= 0)
            return;
        done += int(size);
    }
}

QByteArray readAll(int descriptor)
{
    QByteArray all;
    char block[4096];
    for (ssize_t size = ::read(descriptor, block, sizeof block); size > 0;
         size = ::read(descriptor, block, sizeof block))
        all.append(block, int(size));
    return all;
}

QByteArray packed(const RunResult &result)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << result.failure << result.digest;
    for (const NamedCount &each : addableCounts())
        stream << result.counts.*each.count;
    stream << qint32(result.samples.size());
    for (const MemorySample &sample : result.samples)
        stream << sample.residentKiB << sample.inUseBytes << sample.bufferedBytes;
    return bytes;
}

/// @return whether all of it was there
bool unpack(const QByteArray &bytes, RunResult &result)
{
    QDataStream stream(bytes);
    stream >> result.failure >> result.digest;
    for (const NamedCount &each : addableCounts())
        stream >> result.counts.*each.count;
    qint32 samples = 0;
    stream >> samples;
    for (; samples > 0 && stream.status() == QDataStream::Ok; --samples) {
        MemorySample sample;
        stream >> sample.residentKiB >> sample.inUseBytes >> sample.bufferedBytes;
        result.samples += sample;
    }
    return stream.status() == QDataStream::Ok;
}

} // namespace

RunResult SeedRuns::runOne(quint32 seed, const QString &tracePath)
{
    return runAlone({seed, tracePath, 0});
}

RunResult SeedRuns::runHours(quint32 seed, int hours)
{
    return runAlone({seed, {}, hours});
}

RunResult SeedRuns::runAlone(const Order &order)
{
    const Child child = start(order);
    const QByteArray results = readAll(child.results);
    int status = 0;
    ::waitpid(child.process, &status, 0);
    return finish(child, results, status);
}

void SeedRuns::run(quint32 first, quint32 count, int jobs, const std::function<bool(const RunResult &)> &take)
{
    QHash<pid_t, Child> running;
    quint32 next = 0;
    bool goesOn = true;
    while (!running.isEmpty() || (goesOn && next < count)) {
        if (goesOn && next < count && running.size() < jobs) {
            const Child child = start({first + next++, {}, 0});
            running.insert(child.process, child);
            continue;
        }
        int status = 0;
        const pid_t ended = ::wait(&status);
        if (!running.contains(ended))
            continue;
        const Child child = running.take(ended);
        goesOn = take(finish(child, readAll(child.results), status)) && goesOn;
    }
}

SeedRuns::Child SeedRuns::start(const Order &order)
{
    int ends[2];
    if (::pipe(ends) != 0)
        qFatal("no pipe is to be had");
    const pid_t process = ::fork();
    if (process < 0)
        qFatal("no process is to be had");
    if (process == 0) {
        ::close(ends[0]);
        runInChild(order, ends[1]);
    }
    ::close(ends[1]);
    return {process, order.seed, ends[0]};
}

void SeedRuns::runInChild(const Order &order, int results)
{
    simulatedclock::follow();
    Trace trace;
    if (!order.tracePath.isEmpty() && !trace.open(order.tracePath))
        qFatal("the trace cannot be written");
    SimulatedRun run(m_headUnit, order.seed, trace);
    RunResult result;
    result.failure = order.hours > 0 ? run.runHours(order.hours, result.samples) : run.runMinute();
    result.digest = trace.digest();
    result.counts = run.counts();
    writeAll(results, packed(result));
    ::_exit(0); // the parent's threads are not here, and nothing is to wait for them
}

RunResult SeedRuns::finish(const Child &child, const QByteArray &results, int status)
{
    RunResult result;
    const bool isWhole = unpack(results, result);
    result.seed = child.seed;
    ::close(child.results);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || !isWhole)
        result.failure = QStringLiteral("the process has died, wait status %1").arg(status);
    return result;
}
