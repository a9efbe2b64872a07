#include "serialport.h"

#include "canbuslog.h"
#include "support/locker.h"
#include "velcanbusprotocol.h"

#include <QtCore/QScopedValueRollback>
#include <QtCore/QSocketNotifier>
#include <QtSerialPort/QSerialPort>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace canbus {

namespace {

constexpr int kWriteTimeoutMs = 100;
// What is kept for a line that takes its bytes too late, and how often in a row it may be too late before
// that counts. Three seconds are more than the link waits for an answer.
constexpr int kMaxUnwrittenBytes = 4096;
constexpr int kMaxLateWrites = 32;
constexpr int kOpenError = 3; // the value that listeners know; later Qt versions have no name for it

QString notConnected()
{
    return QStringLiteral("not connected");
}

/// Whether the port's last read has found nothing to read, which the port takes for the loss of its device.
bool hasFoundNothing(const QSerialPort &port)
{
    return port.errorString() == qt_error_string(EAGAIN);
}

} // namespace

SerialPort::SerialPort(QObject *parent)
    : QObject(parent)
    , m_port(new QSerialPort(this))
{
}

SerialPort::~SerialPort()
{
    if (isOpen())
        disconnect();
}

bool SerialPort::isOpen() const
{
    return m_port && m_port->isOpen();
}

void SerialPort::stopWriting()
{
    m_hasStopped = true;
}

void SerialPort::resumeWriting()
{
    m_hasStopped = false;
}

bool SerialPort::open(QString portName, int baudRate)
{
    CANBUS_DEBUG() << "using port:" << portName << baudRate;
    connect(m_port, SIGNAL(error(QSerialPort::SerialPortError)), this, SLOT(handleError()));
    ++m_opens;
    m_reportedLosses = 0;
    m_lateWrites = 0;
    m_hasGivenUp = false;
    m_hasStopped = false;
    m_lost = false;
    if (m_port->isOpen())
        m_port->close();
    m_port->setPortName(portName);
    m_port->setBaudRate(baudRate);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setStopBits(QSerialPort::OneStop);
    m_port->setFlowControl(QSerialPort::NoFlowControl);

    if (!m_port->open(QIODevice::ReadWrite)) {
        CANBUS_ERROR() << "not open";
        Q_EMIT error(portName, kOpenError, m_port->errorString());
        return false;
    }
    CANBUS_DEBUG() << "open";
    m_port->clearError();
    m_port->clear(QSerialPort::AllDirections);
    connect(m_port, &QSerialPort::readyRead, this, &SerialPort::onReadyRead);
    Q_EMIT connected(portName);
    return true;
}

void SerialPort::disconnect()
{
    if (!isOpen()) {
        Q_EMIT status(notConnected());
        return;
    }
    m_port->close();
    Q_EMIT disconnected();
}

void SerialPort::handleError()
{
    const int code = m_port->error();
    if (code == QSerialPort::NoError)
        return;
    CANBUS_ERROR() << code;
    if (code == QSerialPort::WriteError)
        giveUpWriting();
    if (code != QSerialPort::ResourceError && code != QSerialPort::ReadError)
        return;
    const bool isFalseAlarm = hasFoundNothing(*m_port);
    const LineState state = examineLine();
    if (state == LineState::Lost) {
        goSilent();
    } else {
        giveUpWriting();
        goOnListening();
    }
    // A loss is reported once for each connection to this slot, however often the port repeats itself.
    const bool isReported = state == LineState::Lost
        ? m_reportedLosses < m_opens
        : state == LineState::Readable && code == QSerialPort::ResourceError && !isFalseAlarm;
    if (!isReported)
        return;
    if (state == LineState::Lost)
        ++m_reportedLosses;
    Q_EMIT error(m_port->portName(), QSerialPort::ResourceError, m_port->errorString());
}

void SerialPort::writeData(const QByteArray &data)
{
    write(data.constData(), data.size(), CANBUS_HERE);
}

void SerialPort::writeData(QString data)
{
    CANBUS_DEBUG() << data;
    const QByteArray bytes = QByteArray::fromHex(data.toLatin1().constData());
    CANBUS_DEBUG() << QString::fromLatin1(bytes.toHex());
    writeData(bytes);
}

void SerialPort::writeData(const char *data, int len)
{
    write(data, len, CANBUS_HERE);
}

void SerialPort::onReadyRead()
{
    QByteArray data;
    while (m_port->bytesAvailable() > 0)
        data += m_port->readAll();
    m_hasRead = true;
    if (data.isEmpty()) {
        CANBUS_DEBUG() << "buf is empty.";
        return;
    }
    deliver(data);
}

void SerialPort::deliver(const QByteArray &data)
{
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    Q_EMIT buffer->received(data);
    {
        const Locker lock(&buffer->mutex);
        buffer->data.append(data.constData(), data.size()); // shares nothing with what is told below
    }
    Q_EMIT read(data);
}

void SerialPort::write(const char *bytes, int size, const logging::Origin &origin)
{
    if (!isOpen()) {
        Q_EMIT status(notConnected());
        return;
    }
    if (m_lost || m_hasStopped)
        return; // reported already, and nobody is there to take it; or to be dropped
    if (m_lateWrites >= kMaxLateWrites && m_port->bytesToWrite() > kMaxUnwrittenBytes) {
        // Logged once, however much is still written to a line that takes nothing any more.
        if (!std::exchange(m_isStuck, true))
            CANBUS_ERROR_AT(origin) << "write error";
        Q_EMIT error(m_port->portName(), QSerialPort::TimeoutError, m_port->errorString());
        return;
    }
    m_isStuck = false;
    m_hasRead = false;
    const bool isTaken = writeAndWait(bytes, size);
    if (m_hasRead && !m_lost)
        forgetReadable();
    if (isTaken)
        return;
    CANBUS_ERROR_AT(origin) << "write error";
    // When it was this write that found the line lost, handleError() has said so.
    if (!m_lost)
        Q_EMIT error(m_port->portName(), m_port->error(), m_port->errorString());
}

/// @return whether the line has taken something; the rest it may take later
bool SerialPort::writeAndWait(const char *bytes, int size)
{
    const QScopedValueRollback<bool> isWriting(m_isWriting, true);
    // First what was given up: as long as that fails, this would fail too and be one more block to keep.
    if (m_hasGivenUp && m_port->bytesToWrite() > 0 && !m_port->waitForBytesWritten(kWriteTimeoutMs))
        return false;
    m_hasGivenUp = false;
    m_port->write(bytes, size);
    const bool isTaken = m_port->waitForBytesWritten(kWriteTimeoutMs);
    m_lateWrites = m_port->bytesToWrite() > 0 ? std::min(m_lateWrites + 1, kMaxLateWrites) : 0;
    return isTaken;
}

/// What the line itself says after a failed read. The port's word alone will not do: a hung-up line reads as
/// end of file, which the port takes for one failed read after another; and a read that finds nothing,
/// because a write has meanwhile waited on the same line and taken the bytes, fails with whatever error the
/// thread had last.
SerialPort::LineState SerialPort::examineLine()
{
    if (!m_port->isOpen())
        return LineState::Readable; // nothing to lose: it is a failure to open
    pollfd line {m_port->handle(), POLLIN, 0};
    if (::poll(&line, 1, 0) <= 0)
        return LineState::Quiet;
    if ((line.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0)
        return LineState::Lost;
    char bytes[256];
    const ssize_t size = ::read(line.fd, bytes, sizeof bytes);
    if (size > 0)
        deliver(m_port->readAll() + QByteArray(bytes, int(size)));
    // Readable, but nothing to be read: the end of the file.
    const bool hasEnded = size == 0 || (size < 0 && errno != EAGAIN && errno != EINTR);
    return hasEnded ? LineState::Lost : LineState::Readable;
}

/// Ends the port's own attempts to write. It makes one as soon as the line may be written to: while the line
/// says that it may and fails, for ever and at the cost of a whole core.
void SerialPort::giveUpWriting()
{
    // The write that has just failed may be tried again once.
    if (m_isWriting || m_port->bytesToWrite() == 0)
        return;
    pollfd line {m_port->handle(), POLLOUT, 0};
    if (::poll(&line, 1, 0) <= 0)
        return; // a line that is full, and something else that has failed
    m_hasGivenUp = true;
    enableNotifiers(QSocketNotifier::Write, false);
}

/// What the wait for a write has read may still be announced by the event loop, which has looked at the line
/// before: the port would read nothing, and report that as an error.
void SerialPort::forgetReadable()
{
    enableNotifiers(QSocketNotifier::Read, false);
    enableNotifiers(QSocketNotifier::Read, true);
}

void SerialPort::goOnListening()
{
    // After a resource error the port has stopped listening by itself.
    enableNotifiers(QSocketNotifier::Read, true);
}

void SerialPort::goSilent()
{
    m_lost = true;
    // Left to itself the port would find the dead line readable for ever, at the cost of a whole core.
    enableNotifiers(QSocketNotifier::Read, false);
    enableNotifiers(QSocketNotifier::Write, false);
}

void SerialPort::enableNotifiers(int type, bool isEnabled)
{
    const QList<QSocketNotifier *> notifiers = m_port->findChildren<QSocketNotifier *>();
    for (QSocketNotifier *notifier : notifiers) {
        if (notifier->type() == type)
            notifier->setEnabled(isEnabled);
    }
}

} // namespace canbus
