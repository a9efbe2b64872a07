#pragma once

#include <csignal>
#include <initializer_list>

#include <execinfo.h>
#include <unistd.h>

/// Makes a process that crashes print the stack of the crashing thread on standard error.
inline void printStackOnCrash()
{
    void *unused[1];
    ::backtrace(unused, 1); // loads what it needs now: there may be no loading in a crash
    const auto print = [](int number) {
        void *addresses[64];
        ::backtrace_symbols_fd(addresses, ::backtrace(addresses, 64), STDERR_FILENO);
        ::signal(number, SIG_DFL);
        ::raise(number);
    };
    for (const int number : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL})
        ::signal(number, print);
}
