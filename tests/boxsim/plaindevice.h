#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <fcntl.h>
#include <unistd.h>

/// A head unit's end of the pseudo-terminal, opened as a plain file: nothing but the line sets it raw.
class Device {
public:
    explicit Device(const QString &path)
        : m_fd(::open(qPrintable(path), O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
    }
    ~Device()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Q_DISABLE_COPY(Device)

    bool isOpen() const { return m_fd >= 0; }
    bool write(const QByteArray &block)
    {
        return ::write(m_fd, block.constData(), size_t(block.size())) == block.size();
    }

    /// What has come since the device was opened.
    QByteArray received()
    {
        char buffer[4096];
        for (ssize_t size = 0; (size = ::read(m_fd, buffer, sizeof buffer)) > 0;)
            m_received.append(buffer, int(size));
        return m_received;
    }

private:
    int m_fd;
    QByteArray m_received;
};
