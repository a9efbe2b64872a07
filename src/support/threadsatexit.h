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

/// When a thread ends. Qt lets nobody post to a thread while it ends: its event loop may be gone in between.
enum class Order {
    First, ///< one that posts to others: these are told to end when it has ended, or does not in its time
    Last,
};

/// Registers a running thread, which may log. Usable on every thread.
/// @param requestEnd  tells the thread to end, without waiting; called on the exiting thread
void add(QThread *thread, std::function<void()> requestEnd, Order order = Order::Last);

/// Forgets a thread that somebody else has ended.
void remove(QThread *thread);

} // namespace canbus::threadsAtExit
