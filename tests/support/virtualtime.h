#pragma once

#include "tools/monitor/virtualtimers.h"

/// The event dispatcher of a test whose QTimers run in virtual time: the clock stands still except in
/// advance(), which jumps from one timer to the next without waiting.
///
/// For tests on the main thread alone. Use VIRTUAL_TIME_TEST_MAIN in the place of QTEST_GUILESS_MAIN; what
/// waits for real time to pass (QTRY_*, qWait) does not work in such a program.
class VirtualTime : public canbus::VirtualTimers {
public:
    /// Makes virtual time the main thread's. Call it before the application object is made, which owns it.
    static void install() { QCoreApplication::setEventDispatcher(new VirtualTime); }

    /// Lets this many milliseconds pass: each timer that is due in them expires, in order, at its own time.
    static void advance(int milliseconds)
    {
        current()->advanceTo(current()->nowUs() + qint64(milliseconds) * 1000);
    }

    /// The milliseconds that have passed so far.
    static qint64 now() { return current()->nowUs() / 1000; }

private:
    static VirtualTime *current() { return static_cast<VirtualTime *>(instance()); }
};

/// The main() of a test program that runs in virtual time.
#define VIRTUAL_TIME_TEST_MAIN(TestClass)                                                                    \
    int main(int argc, char *argv[])                                                                         \
    {                                                                                                        \
        VirtualTime::install();                                                                              \
        QCoreApplication application(argc, argv);                                                            \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
