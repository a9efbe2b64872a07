#pragma once

#include "longestwait.h"

#include <QtCore/QThread>

#include <functional>
#include <memory>

/// Carries it out on a thread of its own, and waits for that. @return whether it has ended
inline bool onAnotherThread(const std::function<void()> &work)
{
    const std::unique_ptr<QThread> other(QThread::create(work));
    other->start();
    return other->wait(kLongestWaitMs);
}
