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
// What the receive buffer may take at once, and the room that it is then given.
constexpr quint64 kBufferedSlackBytes = quint64(8) * 1024;

QString growth(int hour, quint64 first, quint64 now, quint64 slack, const char *what)
{
    if (now <= first + slack)
        return {};
    return QStringLiteral("in hour %1 %2 %3 have become %4")
        .arg(hour)
        .arg(first)
        .arg(QLatin1String(what))
        .arg(now);
}

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
    QStringList all;
    for (int i = 1; i < samples.size(); ++i) {
        const MemorySample &now = samples.at(i);
        const int hour = i + 1;
        all += growth(hour, first.residentKiB, now.residentKiB, kResidentSlackKiB, "KiB resident");
        all += growth(hour, first.inUseBytes, now.inUseBytes, kInUseSlackBytes, "bytes in use");
        all += growth(hour, first.bufferedBytes, now.bufferedBytes, kBufferedSlackBytes,
                      "bytes for the receive buffer");
    }
    all.removeAll(QString());
    return all.join(QStringLiteral(", "));
}
