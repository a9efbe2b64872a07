#pragma once

#include <functional>

class QThread;

/// Ends the library's threads before the objects that they use are gone.
///
/// A host need not delete the protocol or the port, and may leave the process in the middle of traffic.
/// Threads that are registered here end when the application object is destroyed, and at the latest when
/// the process exits: before the destruction of every static object that existed when the thread was
/// registered. So touch the singletons that a thread uses before adding it.
namespace canbus::threadsAtExit {

/// Registers a running thread. Usable on every thread.
/// @param requestEnd  tells the thread to end, without waiting; called on the exiting thread
void add(QThread *thread, std::function<void()> requestEnd);

/// Forgets a thread that somebody else has ended.
void remove(QThread *thread);

} // namespace canbus::threadsAtExit
