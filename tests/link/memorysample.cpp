#include "memorysample.h"

#include "velcanbusprotocol.h"

#include <QtCore/QFile>

#include <malloc.h>
#include <memory>
#include <unistd.h>

namespace {

// For longer texts of this moment, and for what the heap keeps at hand of each size. A leak of a byte for
// each of the 15,000 frames in an hour is more than that in a day.
constexpr quint64 kResidentSlackKiB = 512;
constexpr quint64 kInUseSlackBytes = quint64(192) * 1024;

} // namespace

MemorySample MemorySample::now()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        qFatal("the size of the process is not to be had");
    const quint64 pages = statm.readAll().split(' ').value(1).toULongLong();
    MemorySample sample;
    sample.residentKiB = pages * quint64(::sysconf(_SC_PAGESIZE)) / 1024;
    sample.inUseBytes = ::mallinfo2().uordblks;
    sample.bufferedBytes = quint64(canbus::CanBusReadBuff::instance()->data.capacity());
    return sample;
}

bool MemorySample::meansSomething()
{
    const std::unique_ptr<char[]> some(new char[100000]);
    return ::mallinfo2().uordblks > 100000;
}

QString growthOf(const QList<MemorySample> &samples)
{
    if (samples.isEmpty())
        return QStringLiteral("no sample of the memory was taken");
    const MemorySample &first = samples.first();
    const MemorySample &last = samples.last();
    if (last.residentKiB > first.residentKiB + kResidentSlackKiB)
        return QStringLiteral("%1 KiB resident have become %2").arg(first.residentKiB).arg(last.residentKiB);
    if (last.inUseBytes > first.inUseBytes + kInUseSlackBytes)
        return QStringLiteral("%1 bytes in use have become %2").arg(first.inUseBytes).arg(last.inUseBytes);
    return {};
}
