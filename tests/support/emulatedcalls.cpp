// What tests of a cross build need of the emulator and do not get. Linked into each of them, so that Qt's
// calls come here: a program's symbols win over the C library's.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>

#include <dlfcn.h>
#include <sys/syscall.h>
#include <sys/types.h>

namespace {

constexpr long kProcessDescriptor = 3; // P_PIDFD, which older headers lack
constexpr int kArguments = 6;          // as many as any call takes

} // namespace

/// qemu-user 7.2 answers that it has process descriptors, and makes no process with one: QProcess would
/// believe it, and start nothing. It is told that there are none.
extern "C" long syscall(long number, ...) noexcept
{
    long arguments[kArguments];
    va_list rest;
    va_start(rest, number);
    for (long &argument : arguments)
        argument = va_arg(rest, long);
    va_end(rest);
    if (number == SYS_waitid && arguments[0] == kProcessDescriptor) {
        errno = EINVAL;
        return -1;
    }
    static const auto real = reinterpret_cast<long (*)(long, ...)>(::dlsym(RTLD_NEXT, "syscall"));
    return real(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}

/// A QProcess that has started nothing kills the process -1, which stands for every process of the machine.
extern "C" int kill(pid_t process, int number) noexcept
{
    if (process == -1)
        std::abort();
    static const auto real = reinterpret_cast<int (*)(pid_t, int)>(::dlsym(RTLD_NEXT, "kill"));
    return real(process, number);
}
