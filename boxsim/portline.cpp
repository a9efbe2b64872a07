#include "line.h"

#include <QtCore/QSignalBlocker>
#include <QtSerialPort/QSerialPort>

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
        m_port.setPortName(device);
        m_port.setBaudRate(baudRate);
        // Otherwise an error in opening would be taken for one of the open port.
        const QSignalBlocker blocker(m_port);
        if (m_port.open(QIODevice::ReadWrite))
            return true;
        *error = QStringLiteral("cannot open %1: %2: name a serial device with --port")
                     .arg(device, m_port.errorString());
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
        QString error;
        if (!open(m_port.portName(), m_port.baudRate(), &error))
            Q_EMIT failed(error);
    }

private:
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
        const QString error = QStringLiteral("%1 failed: %2").arg(m_port.portName(), m_port.errorString());
        QMetaObject::invokeMethod(
            this, [this] { close(); }, Qt::QueuedConnection);
        Q_EMIT failed(error);
    }

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
