// Counts what needs no valgrind, and prints one line for each: "allocations NUMBER CASE", the mean of a
// body's part, "asks NUMBER WHAT", how often the kernel was asked for the thread's id, and "built NAME WITH",
// what it was built with.

#include "cases/benchcase.h"
#include "cases/headunitrig.h"
#include "velcanbusprotocol.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <dlfcn.h>
#include <sys/syscall.h>

namespace {

constexpr int kWarmUp = 20;
constexpr int kRepetitions = 500;
constexpr int kLines = 100;

thread_local bool countsAllocations = false;
thread_local long allocations = 0; // of this thread
std::atomic<long> threadIdQuestions {0};

void countAllocation()
{
    if (countsAllocations)
        ++allocations;
}

} // namespace

// All that allocates comes through these, operator new and Qt among it. The C library offers its own under
// these names.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *memory, size_t size);

void *malloc(size_t size)
{
    countAllocation();
    return __libc_malloc(size);
}

void *calloc(size_t count, size_t size)
{
    countAllocation();
    return __libc_calloc(count, size);
}

void *realloc(void *memory, size_t size)
{
    countAllocation();
    return __libc_realloc(memory, size);
}

long syscall(long number, ...)
{
    if (number == SYS_gettid)
        ++threadIdQuestions;
    using Syscall = long (*)(long, ...);
    static const Syscall call = reinterpret_cast<Syscall>(dlsym(RTLD_NEXT, "syscall"));
    std::va_list list;
    va_start(list, number);
    long arguments[6];
    for (long &argument : arguments)
        argument = va_arg(list, long);
    va_end(list);
    return call(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}
}

namespace {

void countAllocationsOf(const bench::Case &one)
{
    std::atomic<long> all {0};
    bench::run(
        one, kWarmUp, [] {}, [] {});
    const auto begin = [] {
        allocations = 0;
        countsAllocations = true;
    };
    const auto end = [&all] {
        countsAllocations = false;
        all += allocations;
    };
    bench::run(one, kRepetitions, begin, end);
    std::printf("allocations %.2f %s\n", double(all) / kRepetitions / one.parts, one.name.c_str());
    QCoreApplication::processEvents();
}

void countThreadIdQuestions()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=true"));
    long first = 0;
    std::thread([&first] {
        const canbus::FrameDataFormat frame;
        const long before = threadIdQuestions;
        frame.LogFrameData();
        first = threadIdQuestions - before;
        for (int i = 0; i < kLines; ++i)
            frame.LogFrameData();
        std::printf("asks %ld the first line of a thread\n", first);
        std::printf("asks %ld the %d lines after it\n", threadIdQuestions - before - first, kLines);
    }).join();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    std::printf("built compiler %s\nbuilt Qt %s\n", __VERSION__, qVersion());
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    for (const bench::Case &one : bench::allCases())
        countAllocationsOf(one);
    countThreadIdQuestions();
    return EXIT_SUCCESS;
}
