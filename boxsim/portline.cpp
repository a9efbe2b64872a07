#include "line.h"

#include <QtSerialPort/QSerialPort>

namespace boxsim {

namespace {

class PortLine : public Line {
public:
    bool open(const QString &device, int baudRate, QString *error)
    {
        m_port.setPortName(device);
        m_port.setBaudRate(baudRate);
        if (!m_port.open(QIODevice::ReadWrite)) {
            *error = QStringLiteral("cannot open %1: %2: name a serial device with --port")
                         .arg(device, m_port.errorString());
            return false;
        }
        connect(&m_port, &QSerialPort::readyRead, this, [this] { Q_EMIT received(m_port.readAll()); });
        connect(&m_port, &QSerialPort::errorOccurred, this, [this] { fail(); });
        return true;
    }

    void write(const QByteArray &block) override
    {
        if (m_port.isOpen())
            m_port.write(block);
    }

private:
    /// A hang-up is reported over and over as long as the port is open, with the processor busy: once is
    /// enough.
    void fail()
    {
        if (m_port.error() == QSerialPort::NoError)
            return;
        disconnect(&m_port, nullptr, this, nullptr);
        const QString error = QStringLiteral("%1 failed: %2").arg(m_port.portName(), m_port.errorString());
        QMetaObject::invokeMethod(
            this, [this] { m_port.close(); }, Qt::QueuedConnection);
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
