#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

/// How much memory the process has, at a quiet moment of the link.
struct MemorySample {
    quint64 residentKiB = 0;   ///< of the whole process
    quint64 inUseBytes = 0;    ///< of the heap, in objects that are alive
    quint64 bufferedBytes = 0; ///< room that the receive buffer holds

    static MemorySample now();

    /// Whether the heap is the C library's own: a sanitizer's keeps what is freed.
    static bool meansSomething();
};

/// What has been more at any hour than at the first: text, or nothing.
QString growthOf(const QList<MemorySample> &samples);
