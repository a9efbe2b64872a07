#include "portwatch.h"

#include "commandline/devicename.h"

#include <QtCore/QFile>

#include <poll.h>
#include <sys/stat.h>

namespace canbus::monitor {

namespace {

/// The lowest descriptor of this process that has the device open, or -1.
int descriptorOf(dev_t device)
{
    constexpr int kMostDescriptors = 1024; // the port is opened when the program begins
    for (int descriptor = 0; descriptor < kMostDescriptors; ++descriptor) {
        // By its name: the number may be one that another thread is about to open or close.
        const QByteArray name = "/proc/self/fd/" + QByteArray::number(descriptor);
        struct stat info = {};
        if (::stat(name.constData(), &info) == 0 && S_ISCHR(info.st_mode) && info.st_rdev == device)
            return descriptor;
    }
    return -1;
}

} // namespace

PortWatch::PortWatch(const QString &device)
{
    struct stat info = {};
    m_isFound = ::stat(QFile::encodeName(devicePath(device)).constData(), &info) == 0;
    if (m_isFound)
        m_descriptor = descriptorOf(info.st_rdev);
}

bool PortWatch::isGone() const
{
    // Nothing is asked for: a line that has hung up says so anyway.
    pollfd line = {m_descriptor, 0, 0};
    return !m_isFound || ::poll(&line, 1, 0) > 0;
}

} // namespace canbus::monitor
