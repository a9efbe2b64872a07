#include "line.h"

#include "commandline/devicename.h"

#include <QtCore/QSignalBlocker>
#include <QtSerialPort/QSerialPort>

#include <poll.h>

namespace boxsim {

namespace {

class PortLine : public Line {
public:
    PortLine()
    {
        connect(&m_port, &QSerialPort::readyRead, this, [this] { Q_EMIT received(m_port.readAll()); });
        connect(&m_port, &QSerialPort::errorOccurred, this, [this] { fail(); });
    }

    /// What was written last may still wait for its turn.
    ~PortLine() override
    {
        if (m_port.isOpen())
            m_port.flush();
    }

    bool open(const QString &device, int baudRate, QString *error)
    {
        m_device = device;
        m_port.setPortName(device);
        m_port.setBaudRate(baudRate);
        if (openPort())
            return true;
        *error = QStringLiteral("cannot open %1: %2: name a serial device with --port")
                     .arg(canbus::deviceTried(device), m_port.errorString());
        return false;
    }

    void write(const QByteArray &block) override
    {
        if (m_port.isOpen())
            m_port.write(block);
    }

    /// Not at once: the port may be about to tell of bytes.
    void hangUp() override
    {
        QMetaObject::invokeMethod(
            this, [this] { close(); }, Qt::QueuedConnection);
    }

    void comeBack() override
    {
        close();
        if (!openPort())
            Q_EMIT failed(QStringLiteral("%1 did not come back: %2: connect it and start again")
                              .arg(m_device, m_port.errorString()));
    }

private:
    bool openPort()
    {
        // Otherwise an error in opening would be taken for one of the open port.
        const QSignalBlocker blocker(m_port);
        return m_port.open(QIODevice::ReadWrite);
    }

    /// Whether the device itself has gone, as one does that is pulled out.
    bool isGone() const
    {
        pollfd line {m_port.handle(), 0, 0};
        return m_port.isOpen() && ::poll(&line, 1, 0) > 0;
    }

    /// To close a port that is closed would be an error of the port.
    void close()
    {
        if (m_port.isOpen())
            m_port.close();
    }

    /// A hang-up is reported over and over as long as the port is open, with the processor busy: once is
    /// enough.
    void fail()
    {
        if (m_port.error() == QSerialPort::NoError)
            return;
        disconnect(&m_port, nullptr, this, nullptr);
        const QString error = isGone()
            ? QStringLiteral("%1 is gone: connect it and start again").arg(m_device)
            : QStringLiteral("%1 failed: %2: check it and start again").arg(m_device, m_port.errorString());
        QMetaObject::invokeMethod(
            this, [this] { close(); }, Qt::QueuedConnection);
        Q_EMIT failed(error);
    }

    QString m_device; ///< as it was named
    QSerialPort m_port;
};

} // namespace

std::unique_ptr<Line> openPort(const QString &device, int baudRate, QString *error)
{
    auto line = std::make_unique<PortLine>();
    if (!line->open(device, baudRate, error))
        return nullptr;
    return line;
}

} // namespace boxsim
