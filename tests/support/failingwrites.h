#pragma once

#include <QtCore/QString>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

/// Lets chosen writes to serial lines fail in a test program. Include it in one source: it stands before the
/// C library's write(), for the Qt libraries too.
///
/// A serial line is the end of a pseudo-terminal that a port has open; its other end, the box's, is not.
class FailingWrites {
public:
    static constexpr int kForEver = std::numeric_limits<int>::max();

    /// Counts writes from 1 on, and lets `times` of them fail from the one numbered `first`.
    static void fail(int first, int times, int errorNumber)
    {
        s_first = first;
        s_times = times;
        s_errorNumber = errorNumber;
        s_attempts = 0;
    }

    static void failNone() { fail(1, 0, 0); }

    /// Writes to the line since the last call of fail(), those that failed included.
    static int attempts() { return s_attempts; }

    /// Whether this write is to fail.
    static bool takes(int descriptor)
    {
        if (!isSerialLine(descriptor))
            return false;
        const int number = ++s_attempts;
        if (number < s_first || number - s_first >= s_times)
            return false;
        errno = s_errorNumber;
        return true;
    }

private:
    static bool isSerialLine(int descriptor)
    {
        constexpr unsigned int kFirstMajor = 136; // of the ends that are opened by name
        constexpr unsigned int kLastMajor = 143;
        struct stat status = {};
        if (::fstat(descriptor, &status) != 0 || !S_ISCHR(status.st_mode))
            return false;
        const unsigned int number = major(status.st_rdev);
        return number >= kFirstMajor && number <= kLastMajor && descriptor > STDERR_FILENO;
    }

    static inline std::atomic<int> s_first {1};
    static inline std::atomic<int> s_times {0};
    static inline std::atomic<int> s_errorNumber {0};
    static inline std::atomic<int> s_attempts {0};
};

extern "C" ssize_t write(int descriptor, const void *block, size_t size)
{
    return FailingWrites::takes(descriptor) ? -1 : ssize_t(::syscall(SYS_write, descriptor, block, size));
}
