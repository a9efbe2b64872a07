#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

/// The box's end of a serial line: the master of a pseudo-terminal, whose other end is opened by its name.
class PseudoTerminal {
public:
    PseudoTerminal()
        : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
            qFatal("no pseudo-terminal is to be had");
        m_name = QString::fromLocal8Bit(::ptsname(m_master));
        makeRaw();
    }

    ~PseudoTerminal() { hangUp(); }

    /// The device to open, "/dev/pts/N".
    QString name() const { return m_name; }

    /// The name without "/dev/", by which QSerialPort calls it.
    QString shortName() const { return m_name.mid(5); }

    /// Writes to the line. @return whether it took all of it
    bool send(const QByteArray &data)
    {
        return ::write(m_master, data.constData(), size_t(data.size())) == data.size();
    }

    /// All that the other end has written so far.
    QByteArray received()
    {
        char block[4096];
        for (ssize_t size = take(block); size > 0; size = take(block))
            m_received.append(block, int(size));
        return m_received;
    }

    /// Breaks the line, as pulling the adapter out does.
    void hangUp()
    {
        if (m_master >= 0)
            ::close(m_master);
        m_master = -1;
    }

    /// The settings that the other end has chosen.
    termios settings() const
    {
        termios all = {};
        ::tcgetattr(m_master, &all);
        return all;
    }

    /// The speed that the other end sends at.
    speed_t speed() const
    {
        const termios all = settings();
        return ::cfgetospeed(&all);
    }

private:
    Q_DISABLE_COPY(PseudoTerminal)

    template <size_t Size>
    ssize_t take(char (&block)[Size])
    {
        return ::read(m_master, block, Size); // -1 also while nobody has the other end open
    }

    void makeRaw()
    {
        // Not echoed and not kept back, also before the other end is opened.
        termios raw = settings();
        ::cfmakeraw(&raw);
        ::tcsetattr(m_master, TCSANOW, &raw);
    }

    int m_master;
    QString m_name;
    QByteArray m_received;
};
