#include "regularfile.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace canbus {

namespace {

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Why what is open cannot be read, or an empty text.
QString refusal(int descriptor)
{
    struct stat info = {};
    if (::fstat(descriptor, &info) != 0)
        return systemError();
    if (S_ISDIR(info.st_mode))
        return QStringLiteral("it is a folder");
    return S_ISREG(info.st_mode) ? QString() : QStringLiteral("it is no regular file");
}

/// @return why it could not be read, or an empty text
QString readAll(int descriptor, qint64 most, QByteArray *content)
{
    constexpr qint64 kReadAtOnce = 0x100000;
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::DontCloseHandle))
        return file.errorString();
    while (content->size() < most) {
        const QByteArray some = file.read(std::min(kReadAtOnce, most - content->size()));
        if (some.isEmpty())
            break;
        *content += some;
    }
    return file.error() == QFileDevice::NoError ? QString() : file.errorString();
}

} // namespace

bool readRegularFile(const QString &path, qint64 most, QByteArray *content, QString *reason)
{
    content->clear();
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        // A socket, for one, cannot even be opened.
        *reason = systemError();
        return false;
    }
    *reason = refusal(descriptor);
    if (reason->isEmpty())
        *reason = readAll(descriptor, most, content);
    ::close(descriptor);
    return reason->isEmpty();
}

} // namespace canbus
