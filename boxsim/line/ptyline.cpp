#include "line.h"

#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace boxsim {

namespace {

const char kPtyFolder[] = "/dev/pts/";
constexpr int kShareIntervalMs = 200;

QString systemError(const QString &what)
{
    return what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
}

/// A descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd = -1)
        : m_fd(fd)
    {
    }
    ~Descriptor() { reset(-1); }
    Q_DISABLE_COPY(Descriptor)

    void reset(int fd)
    {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = fd;
    }
    int get() const { return m_fd; }

private:
    int m_fd;
};

QByteArray targetOf(const QByteArray &link)
{
    QByteArray target(4096, '\0');
    const ssize_t size = ::readlink(link.constData(), target.data(), size_t(target.size()));
    return target.left(int(qMax<ssize_t>(size, 0)));
}

/// Whether something stands at `link` that is not the left-over of an earlier box.
bool isTaken(const QByteArray &link)
{
    struct stat info { };
    if (::lstat(link.constData(), &info) != 0)
        return false;
    if (!S_ISLNK(info.st_mode))
        return true;
    const bool leadsNowhere = ::stat(link.constData(), &info) != 0;
    return !leadsNowhere && !targetOf(link).startsWith(kPtyFolder);
}

/// Makes the link under another name and renames it, so that nobody ever sees it half made.
bool makeLink(const QByteArray &target, const QByteArray &link, QString *error)
{
    if (isTaken(link)) {
        *error = QStringLiteral("%1 exists and is not a link to a pseudo-terminal; remove it or choose "
                                "another path")
                     .arg(QFile::decodeName(link));
        return false;
    }
    const QByteArray temporary = link + ".new-" + QByteArray::number(::getpid());
    if (::symlink(target.constData(), temporary.constData()) != 0) {
        *error = systemError(QStringLiteral("cannot make the link %1").arg(QFile::decodeName(link)));
        return false;
    }
    if (std::rename(temporary.constData(), link.constData()) != 0) {
        *error = systemError(QStringLiteral("cannot make the link %1").arg(QFile::decodeName(link)));
        ::unlink(temporary.constData());
        return false;
    }
    return true;
}

class PtyLine : public Line {
public:
    PtyLine()
    {
        connect(&m_shareTimer, &QTimer::timeout, this, [this] { share(); });
    }

    ~PtyLine() override { removeLink(); }

    bool open(const QByteArray &link, QString *error)
    {
        if (!openMaster() || !openSlave()) {
            *error = systemError(QStringLiteral("cannot make a pseudo-terminal"));
            return false;
        }
        if (!makeLink(m_slaveName, link, error))
            return false;
        m_link = link;
        m_notifier = new QSocketNotifier(m_master.get(), QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, [this] { readAll(); });
        m_shareTimer.start(kShareIntervalMs);
        return true;
    }

    /// The link goes first: the number of the pseudo-terminal may soon be somebody else's.
    void hangUp() override
    {
        removeLink();
        m_shareTimer.stop();
        if (m_notifier) {
            m_notifier->setEnabled(false);
            // It may be what has just told of bytes.
            m_notifier->deleteLater();
            m_notifier = nullptr;
        }
        m_slave.reset(-1);
        m_master.reset(-1);
    }

    void comeBack() override
    {
        hangUp();
        QString error;
        if (!open(m_link, &error))
            Q_EMIT failed(error);
    }

    void write(const QByteArray &block) override
    {
        int done = 0;
        while (done < block.size()) {
            const ssize_t size =
                ::write(m_master.get(), block.constData() + done, size_t(block.size() - done));
            if (size < 0 && errno == EINTR)
                continue;
            if (size <= 0)
                return;
            done += int(size);
        }
    }

private:
    bool openMaster()
    {
        m_master.reset(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
        return m_master.get() >= 0 && ::grantpt(m_master.get()) == 0 && ::unlockpt(m_master.get()) == 0;
    }

    /// Held open so that the master never hangs up, and raw from the start so that nothing is echoed.
    bool openSlave()
    {
        char name[128];
        if (::ptsname_r(m_master.get(), name, sizeof name) != 0)
            return false;
        m_slaveName = name;
        m_slave.reset(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios settings {};
        if (m_slave.get() < 0 || ::tcgetattr(m_slave.get(), &settings) != 0)
            return false;
        ::cfmakeraw(&settings);
        return ::tcsetattr(m_slave.get(), TCSANOW, &settings) == 0;
    }

    /// A head unit opens its line for itself alone, which would outlast it while the box holds the line open:
    /// the next one, unless it is root, would find it busy.
    void share() { ::ioctl(m_slave.get(), TIOCNXCL); }

    void readAll()
    {
        char buffer[4096];
        const ssize_t size = ::read(m_master.get(), buffer, sizeof buffer);
        if (size > 0)
            Q_EMIT received(QByteArray(buffer, int(size)));
        else if (size < 0 && errno != EAGAIN && errno != EINTR)
            fail();
    }

    void fail()
    {
        m_notifier->setEnabled(false);
        Q_EMIT failed(systemError(QStringLiteral("cannot read the pseudo-terminal")));
    }

    void removeLink()
    {
        if (!m_slaveName.isEmpty() && targetOf(m_link) == m_slaveName)
            ::unlink(m_link.constData());
        m_slaveName.clear();
    }

    Descriptor m_master;
    Descriptor m_slave;
    QByteArray m_slaveName;
    QByteArray m_link;
    QSocketNotifier *m_notifier = nullptr; // a child
    QTimer m_shareTimer;
};

} // namespace

std::unique_ptr<Line> openPty(const QString &link, QString *error)
{
    auto line = std::make_unique<PtyLine>();
    if (!line->open(QFile::encodeName(link), error))
        return nullptr;
    return line;
}

} // namespace boxsim
