#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

namespace boxsim {

/// The box's end of the serial line. Lives on the thread of its event loop and does not block it.
class Line : public QObject {
    Q_OBJECT

public:
    /// Puts one block on the line. What the line cannot take is lost, as on a wire that nobody reads.
    virtual void write(const QByteArray &block) = 0;

    /// Makes the line go away under the head unit: what is written and what comes is lost.
    virtual void hangUp() = 0;

    /// Makes it come back after hangUp(); failed() is emitted if it cannot.
    virtual void comeBack() = 0;

Q_SIGNALS:
    /// Bytes came, cut anywhere.
    void received(const QByteArray &bytes);

    /// The line is gone; `error` is one line that says how. Emitted once.
    void failed(const QString &error);
};

/// Makes a pseudo-terminal in raw mode and links `link` to it.
///
/// The line outlives head units that open and close it. A symbolic link that leads nowhere, or to another
/// pseudo-terminal, is replaced; anything else of that name is left alone and is an error. The link is
/// removed with the line, unless it leads somewhere else by then.
///
/// A hang-up is one for the head unit as well, and takes the link away. The line comes back as another
/// pseudo-terminal behind the same link: a head unit that opens the link again is connected.
/// @return the line, or null with `error` set to one line
std::unique_ptr<Line> openPty(const QString &link, QString *error);

/// Opens a serial device with 8 data bits, no parity, one stop bit and no flow control.
///
/// A hang-up closes the device, which lowers its control lines, and the return opens it again. A head unit at
/// the other end of three wires notices nothing but that the box does not answer.
/// @return the line, or null with `error` set to one line
std::unique_ptr<Line> openPort(const QString &device, int baudRate, QString *error);

} // namespace boxsim
