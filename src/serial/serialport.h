#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <atomic>

class QSerialPort;

namespace canbus {

namespace logging {
struct Origin;
}

/// The UART that joins the head unit to the interface box: 8 data bits, no parity, one stop bit, no flow
/// control.
///
/// Received bytes go two ways: they are appended to CanBusReadBuff under its mutex, and emitted as read().
/// Nothing is known here of frames. The facade creates the port and moves it to a worker thread, on which
/// its slots run from then on; do not call them directly from elsewhere.
///
/// When the line is lost (adapter pulled, other end of a pseudo-terminal closed) error() is emitted with 9,
/// once for each open() made. The port stays formally open, is silent from then on and drops what is
/// written, until it is opened again.
///
/// @thread{The port's: the facade's worker thread once it is moved there.}
/// @emitted{The port's thread.}
class CANBUS_EXPORT SerialPort : public QObject {
    Q_OBJECT

public:
    /// A closed port, on the thread that makes it.
    /// @param parent  its owner, or null
    /// @thread{Any: it becomes the port's.}
    explicit SerialPort(QObject *parent = nullptr);

    /// Closes an open port and emits disconnected().
    ~SerialPort() override;

    /// Whether the port is open, formally: a lost line does not close it.
    /// @return false at first
    bool isOpen() const;

    /// Lets the port drop all that is written, without a word, until it is opened again or resumeWriting():
    /// for a thread that is to end, or to open another line, while many blocks wait for one that takes none.
    /// @thread{Any.}
    void stopWriting();
    /// Ends stopWriting(): what is written from now on goes on the line.
    /// @thread{Any.}
    void resumeWriting();

Q_SIGNALS:
    /// The port is open.
    /// @param portName  as it was asked for
    void connected(QString portName);
    /// Opening or writing has failed, or the line is lost.
    /// @param portName  as it was asked for where opening failed, otherwise the port's own name for itself
    ///   (without "/dev/")
    /// @param errorType  3 where opening failed, 9 where the line is lost, otherwise the code of
    ///   QSerialPort::SerialPortError (12: the bytes were not taken in time)
    /// @param errorString  the port's own words
    void error(QString portName, int errorType, QString errorString);
    /// An open port was closed.
    void disconnected();
    /// Bytes have arrived.
    /// @param data  at least one byte, any number of frames or parts of frames
    void read(QByteArray data);
    /// An operation that needs an open port found it closed.
    /// @param status  always "not connected"
    void status(QString status);

public Q_SLOTS:
    /// Opens the port, closing it first if it is open; emits connected() or error(). Each call connects the
    /// port's own signals once more, so a port opened twice reports its loss twice.
    /// @param portName  a device, for example "/dev/ttyS3"
    /// @param baudRate  bits per second, for example 57600: a rate of termios(3), or another where the
    ///   driver supports custom rates
    /// @return whether the port is open
    bool open(QString portName, int baudRate);
    /// Closes an open port and emits disconnected(); emits status() when it is closed.
    void disconnect();
    /// The port has reported an error: it is logged by its number. After a failed read the line itself is
    /// asked whether it is lost; a false alarm is listened on and not announced.
    void handleError();
    /// Writes a block in one go, waiting up to 100 ms for it to be taken. Emits status() when the port is
    /// closed, error() when the bytes were not taken in time. A line that is only slow gets them later; when
    /// it has been slow for 32 writes in a row and more than 4096 bytes wait, what is written is dropped,
    /// with an error(). A write that fails is tried once more at once and then with the next one, which is
    /// dropped if that fails too.
    /// @param data  as it goes on the line
    void writeData(const QByteArray &data);
    /// Writes bytes given as hexadecimal text, as writeData(const QByteArray &) does.
    /// @param data  two digits a byte; other characters are skipped
    void writeData(QString data);
    /// Writes bytes, as writeData(const QByteArray &) does.
    /// @param data  the first byte
    /// @param len  how many bytes
    void writeData(const char *data, int len);

private Q_SLOTS:
    void onReadyRead();

private:
    enum class LineState {
        Quiet, ///< nothing to read, and nothing wrong
        Readable,
        Lost,
    };

    void write(const char *bytes, int size, const logging::Origin &origin);
    bool writeAndWait(const char *bytes, int size);
    void deliver(const QByteArray &data);
    LineState examineLine();
    void giveUpWriting();
    void forgetReadable();
    void goOnListening();
    void goSilent();
    void enableNotifiers(int type, bool isEnabled);

    QSerialPort *m_port;
    int m_opens = 0;          // calls of open(), each of which wants the loss of the line reported
    int m_reportedLosses = 0; // since the port was last opened
    bool m_lost = false;
    bool m_isWriting = false;
    bool m_hasRead = false;    // since the last write began
    bool m_hasGivenUp = false; // a block that the port has failed twice to write, and has kept
    bool m_isStuck = false;
    std::atomic<bool> m_hasStopped {false};
    int m_lateWrites = 0; // in a row, after which bytes were still left
};

} // namespace canbus
