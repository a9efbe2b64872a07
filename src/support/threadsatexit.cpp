#include "threadsatexit.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMutex>
#include <QtCore/QThread>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace canbus::threadsAtExit {

namespace {

/// How long an exiting process waits for all threads, and of that for those that end first: those that are
/// held up by the host's own code must not hold up the exit.
constexpr int kLongestWaitMs = 400;
constexpr int kLongestWaitForFirstMs = 200;

struct Entry {
    QThread *thread;
    std::function<void()> requestEnd;
    Order order;
};

struct Registry {
    QMutex mutex; // guards entries; not held while a thread is told to end or waited for
    std::vector<Entry> entries;
};

Registry &registry()
{
    // Never destroyed: the last thread may be forgotten after the last static object is gone.
    static Registry *const it = new Registry;
    return *it;
}

void end(const std::vector<Entry> &entries, Order order, const QDeadlineTimer &deadline)
{
    for (const Entry &entry : entries) {
        if (entry.order == order)
            entry.requestEnd();
    }
    for (const Entry &entry : entries) {
        if (entry.order == order && entry.thread != QThread::currentThread())
            entry.thread->wait(deadline);
    }
}

void endAll()
{
    std::vector<Entry> ending;
    {
        QMutexLocker lock(&registry().mutex);
        ending.swap(registry().entries);
    }
    const QDeadlineTimer deadline(kLongestWaitMs);
    end(ending, Order::First, QDeadlineTimer(kLongestWaitForFirstMs));
    end(ending, Order::Last, deadline);
}

} // namespace

void add(QThread *thread, std::function<void()> requestEnd, Order order)
{
    // Qt makes what a line is logged with on first use, and destroys it like any other static object.
    QLoggingCategory::defaultCategory();
    static_cast<void>(qFormatLogMessage(QtDebugMsg, QMessageLogContext(), QString()));
    {
        QMutexLocker lock(&registry().mutex);
        registry().entries.push_back({thread, std::move(requestEnd), order});
    }
    // For each thread anew: handlers run in the reverse order of registration, static objects among them.
    std::atexit(endAll);
    qAddPostRoutine(endAll);
}

void remove(QThread *thread)
{
    QMutexLocker lock(&registry().mutex);
    auto &entries = registry().entries;
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [thread](const Entry &entry) { return entry.thread == thread; }),
                  entries.end());
}

} // namespace canbus::threadsAtExit
