#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

/// The box's end of a serial line: the master of a pseudo-terminal, whose other end is opened by its name.
class PseudoTerminal {
public:
    PseudoTerminal()
    {
        // The kernel gives a number again as soon as a line is hung up, whereas a test that runs beside this
        // one may still hold the lock that the port makes for the name. Such a line is kept until another is
        // found.
        std::vector<int> locked;
        openMaster();
        while (isLocked()) {
            locked.push_back(m_master);
            openMaster();
        }
        for (const int master : locked)
            ::close(master);
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

    void openMaster()
    {
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
            qFatal("no pseudo-terminal is to be had");
        m_name = QString::fromLocal8Bit(::ptsname(m_master));
    }

    /// Whether QSerialPort's lock for the name is there, in the first of the folders that it looks for.
    bool isLocked() const
    {
        const QString lock =
            QStringLiteral("LCK..") + shortName().replace(QLatin1Char('/'), QLatin1Char('_'));
        return QFile::exists(QStringLiteral("/var/lock/") + lock);
    }

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

    int m_master = -1;
    QString m_name;
    QByteArray m_received;
};
