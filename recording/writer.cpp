#include "recording/pcapng.h"

#include "commandline/oneline.h"

#include <QtCore/QFile>
#include <QtCore/QMutexLocker>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace canbus::recording {

namespace {

// A pipe that nobody reads must not be waited for.
constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
const QString kNoFile = QStringLiteral("no regular file: name a new one");
constexpr mode_t kReadWriteForAll = 0666; // less what the process masks out

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// What only opens for who reads it, or not at all.
bool isPipe(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0
        && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

} // namespace

Writer::Writer() = default;

Writer::~Writer()
{
    close();
}

bool Writer::open(const QString &path, const QString &comment)
{
    return open(path, Head {comment, {}, {}});
}

bool Writer::open(const QString &path, const Head &head)
{
    const QMutexLocker lock(&m_mutex);
    close();
    m_error.clear();
    m_path = path;
    if (!make(path)) {
        const QString reason = systemError();
        return fail(isPipe(path) ? kNoFile : QStringLiteral("cannot be written: %1").arg(reason));
    }
    struct stat status = {};
    if (::fstat(m_descriptor, &status) != 0)
        return fail(QStringLiteral("cannot be written: %1").arg(systemError()));
    if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode))
        return fail(kNoFile);
    beginToWait();
    if (status.st_size > 0)
        return fail(QStringLiteral("there and not empty: name a new file"));
    if (put(pcapng::head(head)))
        return true;
    takeAway();
    return false;
}

bool Writer::make(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    m_descriptor = ::open(name.constData(), kFlags | O_EXCL, kReadWriteForAll);
    m_isFresh = m_descriptor >= 0;
    if (m_descriptor < 0 && errno == EEXIST)
        m_descriptor = ::open(name.constData(), kFlags, kReadWriteForAll);
    return m_descriptor >= 0;
}

/// A character device, which takes a recording as well, may be slow.
void Writer::beginToWait()
{
    const int flags = ::fcntl(m_descriptor, F_GETFL);
    if (flags >= 0)
        ::fcntl(m_descriptor, F_SETFL, flags & ~O_NONBLOCK);
}

bool Writer::write(Direction direction, qint64 timeUs, const QByteArray &bytes)
{
    const QByteArray packet = pcapng::packet(direction, timeUs, bytes);
    const QMutexLocker lock(&m_mutex);
    return m_descriptor >= 0 && put(packet);
}

/// One write for a block: what interrupts the process comes before it or behind it.
bool Writer::put(const QByteArray &block)
{
    struct stat before = {};
    const bool isMeasured = ::fstat(m_descriptor, &before) == 0;
    ssize_t written = 0;
    do {
        written = ::write(m_descriptor, block.constData(), std::size_t(block.size()));
    } while (written < 0 && errno == EINTR);
    if (written == block.size())
        return true;
    // A part was written: the next write would tell why, and its text is the same for every cause here.
    const QString reason = written < 0 ? systemError() : QStringLiteral("there is no more room");
    if (written > 0 && isMeasured && ::ftruncate(m_descriptor, before.st_size) != 0)
        return fail(QStringLiteral("ends in half a block: %1").arg(reason));
    return fail(QStringLiteral("cannot be written any further: %1").arg(reason));
}

bool Writer::fail(const QString &what)
{
    m_error = onOneLine(QStringLiteral("%1: ").arg(m_path) + what);
    close();
    return false;
}

void Writer::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

void Writer::discard()
{
    const QMutexLocker lock(&m_mutex);
    if (m_descriptor < 0)
        return; // what is there is not ours
    close();
    takeAway();
}

void Writer::takeAway()
{
    const QByteArray name = QFile::encodeName(m_path);
    struct stat status = {};
    if (::stat(name.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return;
    if (m_isFresh)
        ::unlink(name.constData());
    else if (::truncate(name.constData(), 0) != 0)
        fail(QStringLiteral("cannot be emptied again: %1").arg(systemError()));
}

QString Writer::error() const
{
    const QMutexLocker lock(&m_mutex);
    return m_error;
}

} // namespace canbus::recording
